#pragma once

#include <string>

#include "common/shared_ptr.h"
#include "core/device.h"

/// Carries out one flash of an array controller with the package's controller firmware, if the controller's
/// row is marked. Only the `second` of the two calls writes its outcome to the ordinary log. Returns a code
/// of ReturnCode; 0 also when there was nothing to do.
int FlashArray(Common::shared_ptr<Core::Device> const& device, std::string const& model, bool second);

/// Lets the operation of that name go again: despite the name, no command is sent.
void sendReadBMICCommand(Common::shared_ptr<Core::Device> const& device);
