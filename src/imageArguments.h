#pragma once

#include <string>
#include <vector>

#include "core/device_operation.h"

/// An address as the flash operations take it: decimal text in full width.
std::string addressText(void const* address);

/// Sets one argument of an operation.
void setText(Core::DeviceOperation& operation, char const* name, std::string const& value);

/// Tells an operation where the image lies and how long it is. The image is borrowed: it must stay where it
/// is until the operation was performed.
void setImageArguments(Core::DeviceOperation& operation, std::vector<unsigned char> const& image);
