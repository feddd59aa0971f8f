#pragma once

#include "command/devices.h"
#include "core/device.h"

namespace Operations {

/// Publishes the versions of the parts of an enclosure on its processor, which `device` reaches. How they
/// are read follows from the processor's product text. A page that isn't answered, or that ends early,
/// leaves out what it doesn't have.
void publishSubcomponentVersionInfo(Common::shared_ptr<Core::Device> const& sep, SCSIDevice& device);

}  // namespace Operations
