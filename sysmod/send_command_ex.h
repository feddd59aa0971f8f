#pragma once

#include "sysmod/device_handle.h"
#include "sysmod/open_device_node.h"
#include "sysmod/requests.h"

namespace Core::SysMod {

/// Routing of one request over an open node, by the route in the device's property table. A route that
/// matches nothing gives false without a system call.
bool SendBMICCommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                       Interface::SysMod::Command::BMICRequest& request);
bool SendSCSICommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                       Interface::SysMod::Command::SCSIRequest& request);
bool SendATACommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                      Interface::SysMod::Command::ATARequest& request);
bool SendCSMICommandEx(OpenDeviceNode const& node, Common::string const (&table)[PROPERTY_COUNT],
                       Interface::SysMod::Command::CSMIRequest& request);

}  // namespace Core::SysMod
