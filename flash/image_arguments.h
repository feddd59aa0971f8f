#pragma once

#include <cstddef>
#include <initializer_list>

#include "command/scsi/flash_commands.h"
#include "core/capability.h"
#include "core/device_operation.h"
#include "core/operation_return.h"

namespace Operations {

/// Most bytes that one management command carries: its block's length field has two bytes.
inline constexpr std::size_t LARGEST_COMMAND = 0xFFFF;

/// Takes an argument that is decimal digits and nothing else. False, with `value` as it was, for other text
/// and for a number above `largest`: half a number is another address, or another device.
bool readNumber(Common::string const& text, unsigned long long largest, unsigned long long& value);

/// Whether all arguments are there. Each missing one is filed, so that `result` names the last of them.
bool demandArguments(Core::DeviceOperation const& operation, std::initializer_list<char const*> names,
                     Core::OperationReturn& result);

/// The image that two arguments tell, borrowed from the caller. An image without bytes or of more than
/// `largest`, and one without an address, is a bad argument: a flash of nothing must not pass for a flash.
ImageSpan readImage(Core::DeviceOperation const& operation, char const* addressName, char const* sizeName,
                    std::size_t largest, Core::OperationReturn& result);

/// Records a bad argument, with a line in the log: the value found, and what was expected.
void refuseArgument(char const* name, Common::string const& found, char const* expected,
                    Core::OperationReturn& result);

/// An argument that names a file, of which there is no list.
Common::shared_ptr<Core::Capability> fileCapability(char const* name);

}  // namespace Operations
