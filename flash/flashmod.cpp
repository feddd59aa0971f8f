#include "flash/flashmod.h"

#include "command/scsi_status.h"
#include "core/operation_rows.h"
#include "flash/controller_operations.h"
#include "flash/vocabulary.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/device_types.h"

namespace Interface::FlashMod {
namespace {

using Core::creatorOf;
using Core::operationsOf;

constexpr Core::OperationRow OPERATIONS[] = {
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE,
     creatorOf<Operations::WriteFlashArrayControllerFirmware>},
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE, creatorOf<Operations::WriteToggleActiveRomImage>},
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER, creatorOf<Operations::WriteSoftResetArrayController>},
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE, creatorOf<Operations::WriteBackgroundActivity>},
};

}  // namespace

void InitializeModule() {
    static bool isInitialized = false;
    if (isInitialized) {
        return;
    }
    isInitialized = true;
    Core::RegisterOperationRows(OPERATIONS);
    // Exactly the command status 0xFF: it is no wildcard.
    SCSIStatus::AddStatusDescription(0x00FF, 2, 5, 0x2C, SCSIStatus::ANY_BYTE,
                                     OperationReturn::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
}

}  // namespace Interface::FlashMod
