#pragma once

#include <atomic>
#include <string>

#include "infomgr/info_mgr_api_interface.h"
#include "infomgr/info_mgr_thread_safe_shared_ptr.h"
#include "infomgr/manageable_device.h"

/// A device, as a management object.
class InfoMgrSchemaObject : public InfoMgrAPIInterface {
  public:
    int InfoMgrGetObjectInfo(std::uint32_t kind, void* buffer, std::uint32_t length) override;
    int InfoMgrControlObject(std::uint32_t function, std::uint32_t kind, void* request, std::uint32_t length,
                             std::uint32_t* resultLength) override;
    std::uint32_t objectType() const override { return m_type; }

    /// Asks the device whether it answers, and keeps what came of it.
    void Rescan();
    /// SUCCESS, or DEVICE_FAILED for a device that didn't answer when it was last asked.
    int status() const { return m_status; }

    std::string identity() const { return m_device.copy()->identity(); }
    /// The same device as another discovery found it: its node may have another name now.
    void replaceDevice(boost::shared_ptr<ManageableDevice> const& device);

  private:
    friend class InfoMgrAPIInterface;
    InfoMgrSchemaObject(std::uint32_t type, boost::shared_ptr<ManageableDevice> const& device);

    std::uint32_t const m_type;
    InfoMgrThreadSafeSharedPtr<ManageableDevice> m_device;
    std::atomic<int> m_status;
};
