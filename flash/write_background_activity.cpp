#include "flash/write_background_activity.h"

#include "command/controller_command.h"
#include "command/csmi_command.h"
#include "command/device_command_return.h"
#include "core/tolkmod.h"
#include "flash/vocabulary_enclosure.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/sas_devices.h"

namespace Operations {
namespace {

namespace Controller = Interface::FlashMod::ArrayController;
namespace Enclosure = Interface::FlashMod::SEP;
using Core::OperationReturn;

template <typename Trait>
void sendWithDetails(Schema::ArrayController& controller, std::uint32_t details) {
    NoTransferControllerCommand<Trait> command;
    command.SetDetails(details);
    command(controller);
}

/// The state, or a result that says that it is missing.
bool isStateGiven(Core::DeviceOperation const& operation, char const* name, OperationReturn& result) {
    if (operation.hasArgument(name)) {
        return true;
    }
    DeviceCommandReturn::ArgumentProblem(
        Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_ARGUMENT_MISSING, name, result);
    return false;
}

OperationReturn pauseOrResume(Core::DeviceOperation const& operation, CSMIDevice& device) {
    OperationReturn result;
    if (isStateGiven(operation, Enclosure::ATTR_NAME_BACKGROUND_ACTIVITY_STATE, result)) {
        CSMIPauseResumeActivity command(
            operation.hasArgumentAndIs(Enclosure::ATTR_NAME_BACKGROUND_ACTIVITY_STATE,
                                       Enclosure::ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE));
        command(device);
    }
    return result;
}

}  // namespace

OperationReturn WriteBackgroundActivity::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    if (!isStateGiven(*this, Controller::ATTR_NAME_BACKGROUND_ACTIVITY_STATE, result)) {
        return result;
    }
    bool const disablesHotplug = !hasArgument(Controller::ATTR_NAME_DISABLE_HOTPLUG_EVENTS) ||
                                 hasArgumentAndIs(Controller::ATTR_NAME_DISABLE_HOTPLUG_EVENTS,
                                                  Controller::ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE);
    std::uint32_t const details = disablesHotplug ? 1 : 0;
    Common::string const state = getArgValue(Controller::ATTR_NAME_BACKGROUND_ACTIVITY_STATE);
    if (state == Controller::ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE) {
        sendWithDetails<PauseBackgroundActivityTrait>(controller, details);
    } else if (state == Controller::ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_ENABLE) {
        sendWithDetails<ResumeBackgroundActivityTrait>(controller, details);
    }
    return result;
}

OperationReturn WriteBackgroundActivity::visit(Schema::HostBusAdapter& adapter) {
    ConcreteCSMIDevice device(adapter.handle());
    return pauseOrResume(*this, device);
}

OperationReturn WriteBackgroundActivity::visit(Schema::NonVaultlinePhysicalDrive& drive) {
    return pauseOrResume(*this, drive);
}

OperationReturn WriteBackgroundActivity::visit(Schema::SEP& sep) {
    return pauseOrResume(*this, sep);
}

}  // namespace Operations
