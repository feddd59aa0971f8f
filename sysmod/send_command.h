#pragma once

#include "common/string.h"
#include "sysmod/requests.h"

namespace Interface::SysMod::Command {

/// Carry one request to the device that `handle` names: open its node, one ioctl, close. True means that the
/// request reached the kernel and came back without a system error, not that the device liked it; what the
/// device said stands in the request. False leaves the errno, if there was one, in `lowLevelStatus`.
/// No retry, no lock, no state: calls may run at the same time on one device.
bool SendBMICCommand(Common::string const& handle, BMICRequest& request);
bool SendSCSICommand(Common::string const& handle, SCSIRequest& request);
bool SendATACommand(Common::string const& handle, ATARequest& request);
bool SendCSMICommand(Common::string const& handle, CSMIRequest& request);

/// Ask the controller's driver to look for new disks.
bool SendRegNewDiskMessage(Common::string const& handle);

}  // namespace Interface::SysMod::Command
