#include "command/device_command_return.h"

#include <cstdio>

namespace DeviceCommandReturn {

namespace Name = Interface::TOLKMod::OperationReturn;

namespace {

template <class Number>
void addNumber(Core::OperationReturn& result, char const* name, char const* format, Number value) {
    char text[16];
    std::snprintf(text, sizeof(text), format, value);
    result.Publish(result, Core::Attribute(name, text));
}

}  // namespace

bool FileOutcome(SCSIStatus const& outcome, Core::OperationReturn& result) {
    if (outcome.i32LowLevelStatus() != 0) {
        addNumber(result, Name::ATTR_NAME_LOW_LEVEL_STATUS, "%d", outcome.i32LowLevelStatus());
    } else {
        addNumber(result, Name::ATTR_NAME_SCSI_COMMAND_STATUS, "%u", outcome.wCommandStatus());
        addNumber(result, Name::ATTR_NAME_SCSI_STATUS, "%u", outcome.bScsiStatus());
        addNumber(result, Name::ATTR_NAME_SCSI_SENSE_KEY, "%u", outcome.bSenseKey());
        addNumber(result, Name::ATTR_NAME_SCSI_ASC, "%u", outcome.bASC());
        addNumber(result, Name::ATTR_NAME_SCSI_ASCQ, "%u", outcome.bASCQ());
    }
    Common::string status = Name::ATTR_VALUE_STATUS_FAILURE;
    if (outcome.hasStatusDescription()) status = outcome.statusDescription();
    result.Receive(Core::Attribute(Name::ATTR_NAME_STATUS, status));
    return status == Name::ATTR_VALUE_STATUS_SUCCESS;
}

bool FileOutcome(ATACommand const& command, Core::OperationReturn& result) {
    result.Publish(result, Core::Attribute(Name::ATTR_NAME_ATA_RESULT_REGISTERS, command.ResultRegisters()));
    result.Receive(Core::Attribute(Name::ATTR_NAME_STATUS, Name::ATTR_VALUE_STATUS_FAILURE));
    return false;
}

void ArgumentProblem(char const* status, char const* argument, Core::OperationReturn& result) {
    result.Receive(Core::Attribute(Name::ATTR_NAME_STATUS, status));
    result.Receive(Core::Attribute(Name::ATTR_NAME_ARGUMENT_NAME, argument));
}

}  // namespace DeviceCommandReturn
