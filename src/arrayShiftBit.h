#pragma once

#include <string>

#include "common/shared_ptr.h"
#include "core/device.h"

/// Whether a model needs setArrayShiftBit() after its flash.
bool checkArrayForSetBit(Common::shared_ptr<Core::Device> const& controller, std::string const& model);

/// Sets the two boot strap bytes in the controller's NVRAM by how many drives and enclosures are behind it,
/// after a flash that succeeded. 0; codeNotFound without a management object of the controller; codeSerious
/// when NVRAM couldn't be read or written. A controller without a serial number or a row in the device
/// collection is left as it is, with a line in the verbose log, and one in the ordinary log behind the
/// second flash of the pair: 0.
int setArrayShiftBit(Common::shared_ptr<Core::Device> const& controller, std::string const& model,
                     bool second = true);
