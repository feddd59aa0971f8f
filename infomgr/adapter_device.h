#pragma once

#include <string>

#include "common/string.h"
#include "infomgr/manageable_device.h"

/// An adapter that a discovery found, by its device handle (sysmod/device_handle.h).
class AdapterDevice : public ManageableDevice {
  public:
    explicit AdapterDevice(Common::string const& handle);

    std::string node() const override { return m_node; }
    std::string identity() const override { return m_identity; }
    int status() const override { return m_status; }

  protected:
    /// A copy of its own for each call: the library's texts count their shares without atomic operations.
    Common::string deviceHandle() const { return Common::string(m_handle.c_str()); }

  private:
    std::string m_handle;
    std::string m_node;
    std::string m_identity;
    int m_status;
};

/// An array controller, through its driver's pass-through.
class ArrayControllerDevice : public AdapterDevice {
  public:
    explicit ArrayControllerDevice(Common::string const& handle);

    int rescan() override;
    int ifuncControlObjInfo(std::uint32_t kind, _INFOMGR_BMIC_REQUEST& request) override;
    int ifuncControlObjInfo(std::uint32_t kind, _INFOMGR_SCSI_REQUEST& request) override;
    int ifuncControlObjInfo(std::uint32_t kind, _INFOMGR_PASSTHRU_REQUEST& request) override;
    using ManageableDevice::ifuncControlObjInfo;
};

/// A SAS adapter, through CSMI.
class SasAdapterDevice : public AdapterDevice {
  public:
    explicit SasAdapterDevice(Common::string const& handle) : AdapterDevice(handle) {}

    int rescan() override;
    int ifuncControlObjInfo(std::uint32_t kind, _INFOMGR_CSMI_REQUEST& request) override;
    using ManageableDevice::ifuncControlObjInfo;
};
