#pragma once

#include <string>

#include "common/shared_ptr.h"
#include "core/device.h"

/// Whether a model needs setArrayShiftBit() after its flash.
bool checkArrayForSetBit(Common::shared_ptr<Core::Device> const& controller, std::string const& model);

/// Sets the two boot strap bytes in the controller's NVRAM by how many drives and enclosures are behind it,
/// after a flash that succeeded. 0; codeNotFound when there is no way to the controller: no serial number, no
/// row in the device collection, or no management object; codeSerious when NVRAM couldn't be read or written.
int setArrayShiftBit(Common::shared_ptr<Core::Device> const& controller, std::string const& model);
