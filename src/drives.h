#pragma once

#include <string>
#include <vector>

#include "common/shared_ptr.h"
#include "core/device.h"

/// One physical drive; what the device doesn't tell is empty.
struct HDD_Info {
    std::string serialNum;
    std::string modelNum;
    std::string scfwRev;  ///< application version of the drive's carrier
    std::string type;     ///< interface, for instance ATTR_VALUE_INTERFACE_SAS_SSD
};

/// Every drive seen. Each pass adds its own, so a drive of two passes stands here twice.
extern std::vector<HDD_Info> hDDList;

/// Looks at the drives behind a controller and records their number, and that of the solid state drives, in
/// the device collection. 0, or -1 without drives.
int CheckArrayForPhysicalDrives(Common::shared_ptr<Core::Device> const& controller, std::string const& model);

/// Adds a row and, in the discovery pass, an element of the discovery document for the carrier of each drive
/// in hDDList. 0. Nothing calls it.
int printDriveInformation();
