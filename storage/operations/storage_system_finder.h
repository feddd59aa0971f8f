#pragma once

#include "core/device.h"

namespace Operations {

/// The array controller or host bus adapter above a device, or the device itself when it is one. Null when
/// there is none, or when something on the way up is stale.
Common::shared_ptr<Core::Device> storageSystemFinder(Common::shared_ptr<Core::Device> device);

}  // namespace Operations
