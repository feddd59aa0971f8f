#pragma once

#include "command/ata_command.h"
#include "command/scsi_status.h"
#include "core/operation_return.h"

// From a command's outcome to an operation's result.
namespace DeviceCommandReturn {

// Files the outcome of a command that failed: the low-level status, or the five status values of the
// device, as attributes with decimal text; and the text that describes it as the status. True when that text
// is the success text: some statuses are described as success.
bool FileOutcome(SCSIStatus const& outcome, Core::OperationReturn& result);

// The same for an ATA command, which has no outcome but its result registers: they are filed as one
// attribute, the status is failure, and the answer false.
bool FileOutcome(ATACommand const& command, Core::OperationReturn& result);

// Runs a command for an operation. With a result that already failed nothing is sent and the answer is
// true: a chain of commands stops by itself, and a test of `result` behind it shows the first failure.
// Otherwise true when the command succeeded; if not, the outcome is filed in `result`.
template <class Command, class Device>
bool executeCommand(Command& command, Device& device, Core::OperationReturn& result) {
    if (!result) return true;
    if (command(device)) return true;
    return FileOutcome(command, result);
}

// Records that an argument of an operation is missing or bad: `status` (such as
// ATTR_VALUE_STATUS_ARGUMENT_MISSING) becomes the status, `argument` the argument's name.
void ArgumentProblem(char const* status, char const* argument, Core::OperationReturn& result);

}  // namespace DeviceCommandReturn
