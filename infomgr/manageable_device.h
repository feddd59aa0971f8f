#pragma once

#include <string>

#include "infomgr/info_mgr_api.h"
#include "infomgr/request_records.h"

/// A device that management objects stand for. Calls may come from several threads at once.
class ManageableDevice {
  public:
    virtual ~ManageableDevice() = default;

    /// Path of its node, and what tells it from all others of its type.
    virtual std::string node() const = 0;
    virtual std::string identity() const = 0;
    /// SUCCESS or DEVICE_FAILED, as the discovery found it.
    virtual int status() const = 0;
    /// Asks the device whether it answers: the same two.
    virtual int rescan() = 0;

    /// Carry a request to the device. `kind` is READ_KIND or WRITE_KIND where the record doesn't tell its
    /// direction. SUCCESS when the device did what it was asked to, perhaps with fewer bytes than asked for;
    /// REQUEST_FAILED when it refused or wasn't reached; BAD_ARGUMENT, and nothing sent, for a record that
    /// can't be. The device fills in what its record says. A form that it has no way for is NOT_OFFERED.
    virtual int ifuncControlObjInfo(std::uint32_t /*kind*/, _INFOMGR_BMIC_REQUEST&) {
        return InfoMgr::NOT_OFFERED;
    }
    virtual int ifuncControlObjInfo(std::uint32_t /*kind*/, _INFOMGR_SCSI_REQUEST&) {
        return InfoMgr::NOT_OFFERED;
    }
    virtual int ifuncControlObjInfo(std::uint32_t /*kind*/, _INFOMGR_CSMI_REQUEST&) {
        return InfoMgr::NOT_OFFERED;
    }
    virtual int ifuncControlObjInfo(std::uint32_t /*kind*/, _INFOMGR_PASSTHRU_REQUEST&) {
        return InfoMgr::NOT_OFFERED;
    }
};
