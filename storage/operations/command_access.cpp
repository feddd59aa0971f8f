#include "storage/operations/command_access.h"

#include <cstdint>
#include <type_traits>

#include "command/ata_command.h"
#include "command/bmic_command.h"
#include "command/device_command_return.h"
#include "command/scsi_command.h"
#include "common/conversion.h"
#include "core/device.h"
#include "core/tolkmod.h"

namespace Operations {

namespace Status = Interface::TOLKMod::OperationReturn;

namespace {

/// The address behind decimal text; 0 for anything else, signs and blanks included.
std::uintptr_t addressOf(Common::string const& text) {
    std::uintptr_t address = 0;
    for (unsigned i = 0; i < text.size(); ++i) {
        unsigned const digit = static_cast<unsigned char>(text.c_str()[i]) - static_cast<unsigned>('0');
        if (digit > 9 || address > (UINTPTR_MAX - digit) / 10) return 0;
        address = address * 10 + digit;
    }
    return address;
}

}  // namespace

template <class Target>
Core::FilterReturn FilterTarget<Target>::applyImpl(Common::shared_ptr<Core::Device> device) const {
    Core::FilterReturn verdict;
    if (dynamic_cast<Target const*>(device.get()) == nullptr) {
        verdict =
            Interface::TOLKMod::UnavailableOperationReason::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
    }
    return verdict;
}

template <char const* const& Name, Core::DeviceOperation::EnType Type, class Command, class Target,
          char const* const& Argument>
Core::OperationReturn CommandOperation<Name, Type, Command, Target, Argument>::visit(Core::Device& device) {
    Core::OperationReturn result;
    if (!this->hasArgument(Argument)) {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_MISSING, Argument, result);
        return result;
    }
    std::uintptr_t const address = addressOf(this->getArgValue(Argument));
    auto* const command = reinterpret_cast<Command*>(address);
    if (command == nullptr || address % alignof(Command) != 0) {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_INVALID, Argument, result);
        return result;
    }
    Target* const target = dynamic_cast<Target*>(&device);
    if (target == nullptr) {
        return Core::OperationReturn(Status::ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE);
    }
    DeviceCommandReturn::executeCommand(*command, *target, result);
    if constexpr (std::is_same_v<Command, ATACommand>) {
        // A failure has filed them already.
        if (result) {
            result.Publish(
                result, Core::Attribute(Status::ATTR_NAME_ATA_RESULT_REGISTERS, command->ResultRegisters()));
        }
    }
    return result;
}

namespace Names = Interface::StorageMod;
using Core::DeviceOperation;

template class CommandOperation<Names::OPERATION_READ_BMIC_COMMAND, DeviceOperation::eRead, BmicCommand,
                                BMICDevice, Names::Device::ATTR_NAME_BMIC_COMMAND>;
template class CommandOperation<Names::OPERATION_WRITE_BMIC_COMMAND, DeviceOperation::eWrite, BmicCommand,
                                BMICDevice, Names::Device::ATTR_NAME_BMIC_COMMAND>;
template class CommandOperation<Names::OPERATION_READ_SCSI_COMMAND, DeviceOperation::eRead, ScsiCommand,
                                SCSIDevice, Names::Device::ATTR_NAME_SCSI_COMMAND>;
template class CommandOperation<Names::OPERATION_WRITE_SCSI_COMMAND, DeviceOperation::eWrite, ScsiCommand,
                                SCSIDevice, Names::Device::ATTR_NAME_SCSI_COMMAND>;
template class CommandOperation<Names::OPERATION_SEND_ATA_COMMAND, DeviceOperation::eWrite, ATACommand,
                                ATADevice, Names::Device::ATTR_NAME_ATA_COMMAND>;

}  // namespace Operations
