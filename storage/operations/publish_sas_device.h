#pragma once

#include "command/devices.h"
#include "core/device.h"

namespace Operations {

/// What a controller knows of a device that isn't a disk, an enclosure processor or an expander; their
/// attributes have the same names. A command that fails leaves its attributes out.
///
/// From the inquiry data that the controller passes on: vendor, product and revision.
void publishSpecialInquiry(Core::Device& device, BMICDevice& controller, unsigned short bmicIndex);
/// From its identify record: WWID, port and box, and the active path where `controller`, the device above,
/// knows of several. Without the record the port isn't known.
void publishIdentity(Core::Device& device, Common::shared_ptr<Core::Device> const& controller,
                     BMICDevice& commands, unsigned short bmicIndex);

}  // namespace Operations
