#pragma once

#include <map>

#include "infomgr/info_mgr_device_class.h"

/// The root of the management objects: the device classes by type.
class InfoMgrRoot : public InfoMgrAPIInterface {
  public:
    /// The one root, made on first use; null where the operating system shows no devices. The pointer keeps
    /// it over a Destroy() in another thread.
    static boost::shared_ptr<InfoMgrRoot> instance();
    /// Gives up the root and all below it: their handles are stale from here on. The next instance() is new.
    static void Destroy();

    int InfoMgrOpenObject(std::uint32_t type, HMGMTOBJECT* result) override;
    /// CLASS_FUNCTION alone.
    int InfoMgrControlObject(std::uint32_t function, std::uint32_t kind, void* request, std::uint32_t length,
                             std::uint32_t* resultLength) override;
    std::uint32_t objectType() const override { return 0; }

  private:
    friend class InfoMgrAPIInterface;
    explicit InfoMgrRoot(OperatingSystem::OsInterface& system);

    static InfoMgrMutex& instanceMutex();
    static boost::shared_ptr<InfoMgrRoot>& theInstance();

    std::map<std::uint32_t, boost::shared_ptr<InfoMgrDeviceClass>> m_classes;  ///< never changes
};
