#include "flash/controller_operations.h"

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "core/tolkmod.h"
#include "flash/controller_filters.h"
#include "flash/vocabulary.h"
#include "storage/schema/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::FlashMod::ArrayController;
using Core::OperationReturn;

template <typename Trait>
void sendWithDetails(Schema::ArrayController& controller, std::uint32_t details) {
    NoTransferControllerCommand<Trait> command;
    command.SetDetails(details);
    command(controller);
}

}  // namespace

OperationReturn WriteSoftResetArrayController::visit(Schema::ArrayController& controller) {
    NoTransferControllerCommand<SoftResetControllerTrait> command;
    command(controller);
    return OperationReturn();
}

OperationReturn WriteToggleActiveRomImage::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    NoTransferControllerCommand<ToggleActiveRomTrait> command;
    DeviceCommandReturn::executeCommand(command, controller, result);
    return result;
}

OperationReturn WriteBackgroundActivity::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    if (!hasArgument(Names::ATTR_NAME_BACKGROUND_ACTIVITY_STATE)) {
        DeviceCommandReturn::ArgumentProblem(
            Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_ARGUMENT_MISSING,
            Names::ATTR_NAME_BACKGROUND_ACTIVITY_STATE, result);
        return result;
    }
    bool const disablesHotplug = !hasArgument(Names::ATTR_NAME_DISABLE_HOTPLUG_EVENTS) ||
                                 hasArgumentAndIs(Names::ATTR_NAME_DISABLE_HOTPLUG_EVENTS,
                                                  Names::ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE);
    std::uint32_t const details = disablesHotplug ? 1 : 0;
    Common::string const state = getArgValue(Names::ATTR_NAME_BACKGROUND_ACTIVITY_STATE);
    if (state == Names::ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE) {
        sendWithDetails<PauseBackgroundActivityTrait>(controller, details);
    } else if (state == Names::ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_ENABLE) {
        sendWithDetails<ResumeBackgroundActivityTrait>(controller, details);
    }
    return result;
}

}  // namespace Operations
