#pragma once

#include <map>
#include <vector>

#include "infomgr/class_discoverer.h"
#include "infomgr/device_record.h"
#include "infomgr/info_mgr_schema_object.h"

/// The devices of one class, by object type. Each type is discovered when it is first enumerated.
class InfoMgrDeviceClass : public InfoMgrAPIInterface {
  public:
    /// Has every type discovered anew when it is next enumerated. Handles of devices that are still there
    /// then stay good.
    void Rescan();

    int InfoMgrEnumObject(std::uint32_t type, std::uint32_t index, HMGMTOBJECT* result) override;
    std::uint32_t objectType() const override { return m_discoverer.classType(); }

    void count(std::uint32_t& discoveredTypes, std::uint32_t& objects);

  private:
    friend class InfoMgrAPIInterface;
    explicit InfoMgrDeviceClass(ClassDiscoverer discoverer);

    ClassDiscoverer const m_discoverer;
    /// Of what follows. Held while a type is discovered, so that it is discovered once however many threads
    /// ask; not held while a request is under way.
    InfoMgrMutex m_mutex;
    std::map<std::uint32_t, std::vector<boost::shared_ptr<InfoMgrSchemaObject>>> m_objects;
    DeviceRecord m_discovered;
};
