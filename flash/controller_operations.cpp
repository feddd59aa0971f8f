#include "flash/controller_operations.h"

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "storage/schema/array_controller.h"

namespace Operations {

using Core::OperationReturn;

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

}  // namespace Operations
