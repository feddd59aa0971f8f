#include "storage/operations/bmic_access.h"

#include <cstdint>

#include "command/bmic_command.h"
#include "command/device_command_return.h"
#include "common/conversion.h"
#include "core/device.h"
#include "core/filter.h"
#include "core/tolkmod.h"
#include "storage/vocabulary/device_names.h"
#include "storage/vocabulary/operations.h"

namespace Operations {
namespace {

namespace Status = Interface::TOLKMod::OperationReturn;
constexpr char const* ARGUMENT = Interface::StorageMod::Device::ATTR_NAME_BMIC_COMMAND;

/// Admits the devices that take management commands.
class FilterBMICDevice : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override {
        Core::FilterReturn verdict;
        if (dynamic_cast<BMICDevice const*>(device.get()) == nullptr) {
            verdict =
                Interface::TOLKMod::UnavailableOperationReason::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
        }
        return verdict;
    }
};

}  // namespace

Core::OperationReturn BMICCommandOperation::visit(Core::Device& device) {
    Core::OperationReturn result;
    if (!hasArgument(ARGUMENT)) {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_MISSING, ARGUMENT, result);
        return result;
    }
    auto* const command = reinterpret_cast<BmicCommand*>(
        static_cast<std::uintptr_t>(Conversion::toNumber<unsigned long long>(getArgValue(ARGUMENT))));
    if (command == nullptr) {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_INVALID, ARGUMENT, result);
        return result;
    }
    BMICDevice* const target = dynamic_cast<BMICDevice*>(&device);
    if (target == nullptr) {
        return Core::OperationReturn(Status::ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE);
    }
    DeviceCommandReturn::executeCommand(*command, *target, result);
    return result;
}

Common::shared_ptr<Core::Filter> BMICCommandOperation::pFilterImpl() const {
    return Common::shared_ptr<Core::Filter>(new FilterBMICDevice);
}

Common::string ReadBMICCommand::nameImpl() const {
    return Interface::StorageMod::OPERATION_READ_BMIC_COMMAND;
}

Common::string WriteBMICCommand::nameImpl() const {
    return Interface::StorageMod::OPERATION_WRITE_BMIC_COMMAND;
}

}  // namespace Operations
