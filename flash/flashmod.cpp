#include "flash/flashmod.h"

#include "command/scsi_status.h"
#include "flash/component_operations.h"
#include "flash/controller_operations.h"
#include "flash/nvram.h"
#include "flash/sense_deferred_update.h"
#include "flash/vocabulary.h"
#include "flash/write_background_activity.h"
#include "flash/write_flash_sep_firmware.h"
#include "storage/operation_row.h"

namespace Interface::FlashMod {
namespace {

using Core::creatorOf;
using Schema::on;

constexpr Core::OperationRow OPERATIONS[] = {
    on<Schema::ArrayController>(OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE,
                                creatorOf<Operations::WriteFlashArrayControllerFirmware>),
    on<Schema::ArrayController>(OPERATION_WRITE_FLASH_NVRAM, creatorOf<Operations::WriteFlashNVRAM>),
    on<Schema::ArrayController>(OPERATION_READ_NVRAM, creatorOf<Operations::ReadNVRAM>),
    on<Schema::ArrayController>(OPERATION_WRITE_FLASH_FBWC, creatorOf<Operations::WriteFlashFBWC>),
    on<Schema::ArrayController>(OPERATION_WRITE_FLASH_SEP_FIRMWARE,
                                creatorOf<Operations::WriteFlashSEPFirmware>),
    on<Schema::ArrayController>(OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE,
                                creatorOf<Operations::WriteToggleActiveRomImage>),
    on<Schema::ArrayController>(OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER,
                                creatorOf<Operations::WriteSoftResetArrayController>),
    on<Schema::ArrayController>(OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE,
                                creatorOf<Operations::WriteBackgroundActivity>),

    on<Schema::HostBusAdapter>(OPERATION_WRITE_FLASH_SEP_FIRMWARE,
                               creatorOf<Operations::WriteFlashSEPFirmware>),

    on<Schema::SEP>(OPERATION_WRITE_FLASH_SEP_FIRMWARE, creatorOf<Operations::WriteFlashSEPFirmware>),
    on<Schema::SEP>(OPERATION_WRITE_RESET_SEP, creatorOf<Operations::WriteResetSEP>),
    on<Schema::SEP>(OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE,
                    creatorOf<Operations::WriteBackgroundActivity>),

    // The last row's operation is declared for both kinds of drive, and its filter admits the drives of plain
    // adapters only: an array controller pauses for all of its drives.
    on<Schema::PhysicalDrive>(OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER,
                              creatorOf<Operations::WriteFlashDriveActiveCarrier>),
    on<Schema::PhysicalDrive>(OPERATION_WRITE_FLASH_PHYSICAL_DRIVE,
                              creatorOf<Operations::WriteFlashPhysicalDrive>),
    on<Schema::PhysicalDrive>(OPERATION_SENSE_DEFERRED_UPDATE_STATUS,
                              creatorOf<Operations::SenseDeferredUpdate>),
    on<Schema::PhysicalDrive>(OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE,
                              creatorOf<Operations::WriteBackgroundActivity>),
    on<Schema::NonVaultlinePhysicalDrive>(OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE,
                                          creatorOf<Operations::WriteBackgroundActivity>),
};

}  // namespace

std::span<Core::OperationRow const> operationRows() {
    return OPERATIONS;
}

void InitializeModule() {
    static bool isInitialized = false;
    if (isInitialized) {
        return;
    }
    isInitialized = true;
    Core::RegisterOperationRows(operationRows());
    // Exactly the command status 0xFF: it is no wildcard.
    SCSIStatus::AddStatusDescription(0x00FF, 2, 5, 0x2C, SCSIStatus::ANY_BYTE,
                                     OperationReturn::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
}

}  // namespace Interface::FlashMod
