#include "flash/flashmod.h"

#include "command/scsi_status.h"
#include "core/operation_registry.h"
#include "flash/controller_operations.h"
#include "flash/vocabulary.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/device_types.h"

namespace Interface::FlashMod {
namespace {

template <typename Operation>
Core::DeviceOperationCreatorBase* creatorOf() {
    return new Core::DeviceOperationCreator<Operation>;
}

template <typename Kind>
Core::OperationList& operationsOf() {
    return Core::DeviceOperationRegistry<Kind>::sm_operations;
}

/// One operation of one device type, in the order of registration.
struct OperationRow {
    char const* deviceType;
    Core::OperationList& (*operations)();
    Core::DeviceOperationCreatorBase* (*creator)();
};

constexpr OperationRow OPERATIONS[] = {
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::WriteFlashArrayControllerFirmware>},
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::WriteToggleActiveRomImage>},
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::WriteSoftResetArrayController>},
    {StorageMod::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER, operationsOf<Schema::ArrayController>,
     creatorOf<Operations::WriteBackgroundActivity>},
};

}  // namespace

void InitializeModule() {
    static bool isInitialized = false;
    if (isInitialized) {
        return;
    }
    isInitialized = true;
    for (OperationRow const& row : OPERATIONS) {
        Core::RegisterSchema(row.deviceType, row.operations());
        Core::RegisterOperation(row.deviceType, row.creator());
    }
    // Exactly the command status 0xFF: it is no wildcard.
    SCSIStatus::AddStatusDescription(0x00FF, 2, 5, 0x2C, SCSIStatus::ANY_BYTE,
                                     OperationReturn::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
}

}  // namespace Interface::FlashMod
