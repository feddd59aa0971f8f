#include "storage/operations/read_array_controller_bootable_status.h"

#include "storage/operations/adapter_properties.h"
#include "storage/operations/publish.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"
#include "sysmod/boot_utils.h"

namespace Operations {

namespace Names = Interface::StorageMod::ArrayController;

Core::OperationReturn ReadArrayControllerBootableStatus::visit(Schema::ArrayController& controller) {
    Common::string slot = controller.getValueFor(Names::ATTR_NAME_SLOT);
    if (controller.hasAttributeAndIs(Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY,
                                     Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_ALDER)) {
        // Its slot attribute stands for the board itself. What the machine calls its place is in the handle.
        slot = AdapterProperties(controller.handle()).slot;
    } else if (slot.size() <= 1) {
        // Not asked about: front ends count on the attribute to be absent for slots of one character.
        controller.Clear(Names::ATTR_NAME_IS_BOOT_CONTROLLER);
        return Core::OperationReturn();
    }
    bool const isBoot = Core::SysMod::BootUtils::IsBootController(
        controller.getValueFor(Names::ATTR_NAME_SUBSYSTEM_ID), slot);
    publish(controller, Names::ATTR_NAME_IS_BOOT_CONTROLLER,
            isBoot ? Names::ATTR_VALUE_IS_BOOT_CONTROLLER_TRUE : Names::ATTR_VALUE_IS_BOOT_CONTROLLER_FALSE);
    return Core::OperationReturn();
}

}  // namespace Operations
