#pragma once

// The controller management commands, one row each. Everything about a command that is a constant stands
// here; its trait class (command/traits.h) is made of the row.
//
//   code        command byte
//   trait       name of the trait class
//   addressed   Controller: run it with the templates of command/controller_command.h; LogicalDrive: with
//               those of command/logical_drive_command.h
//   direction   In: Sense... templates; Out: Set... templates; NoneOrIn: NoTransferControllerCommand, or
//               SenseControllerCommand where the firmware returns something
//   record      what the buffer holds
//   size        bytes of the buffer, and what is asked for until the device's size memo knows better
//   total       offset of dwTotalStructureLength, by which a reply tells that newer firmware has more of it;
//               FIXED_SIZE for replies that don't
//
// Code 0x1E is one command with many status pages, 0x6C and 0xC1 are two commands each: the address field
// or the unit tells them apart.

// clang-format off
#define KSL_BMIC_COMMANDS(COMMAND)                                                                                                               \
    COMMAND(0x10, IdentifyLogicalDriveTrait,                   LogicalDrive, In,       IDENTIFY_LOGICAL_DRIVE,                512,   FIXED_SIZE) \
    COMMAND(0x11, IdentifyControllerTrait,                     Controller,   In,       IDENTIFY_CONTROLLER,                   512,   196)        \
    COMMAND(0x12, SenseLogicalDriveStatusTrait,                LogicalDrive, In,       LOGICAL_DRIVE_STATUS,                  1536,  1020)       \
    COMMAND(0x15, IdentifyPhysicalDriveTrait,                  Controller,   In,       PHYSICAL_DRIVE_STATUS,                 2048,  FIXED_SIZE) \
    COMMAND(0x16, SetMaintenanceTrait,                         Controller,   Out,      MAINTENANCE_OPERATION,                 512,   268)        \
    COMMAND(0x17, SenseMaintenanceTrait,                       Controller,   In,       MAINTENANCE_OPERATION,                 512,   268)        \
    COMMAND(0x1E, SenseEncryptionBootPasswordStatusTrait,      Controller,   In,       ENCRYPTION_BOOT_PASSWORD_STATUS,       512,   FIXED_SIZE) \
    COMMAND(0x1E, SenseEncryptionBootStatusTrait,              Controller,   In,       ENCRYPTION_BOOT_STATUS,                512,   FIXED_SIZE) \
    COMMAND(0x1E, SenseEncryptionIKEKStatusTrait,              Controller,   In,       ENCRYPTION_IKEK_STATUS,                512,   FIXED_SIZE) \
    COMMAND(0x1E, SenseEncryptionKeyManagerStatusTrait,        Controller,   In,       ENCRYPTION_KEY_MANAGER_STATUS,         512,   FIXED_SIZE) \
    COMMAND(0x1E, SenseEncryptionLocalKEKCacheAttributesTrait, Controller,   In,       ENCRYPTION_LOCAL_KEK_CACHE_ATTRIBUTES, 512,   FIXED_SIZE) \
    COMMAND(0x1E, SenseEncryptionPasswordStatusTrait,          Controller,   In,       ENCRYPTION_PASSWORD_STATUS,            512,   FIXED_SIZE) \
    COMMAND(0x1E, SetEncryptionRecoveryParamsTrait,            Controller,   In,       ENCRYPTION_PASSWORD_RECOVERY_PARAMS,   512,   FIXED_SIZE) \
    COMMAND(0x20, ReadLogicalDriveTrait,                       LogicalDrive, In,       CHAR_PAYLOAD,                          512,   FIXED_SIZE) \
    COMMAND(0x27, SenseDeferredUpdateStatusTrait,              Controller,   In,       SENSE_DEFERRED_UPDATE_STATUS,          156,   FIXED_SIZE) \
    COMMAND(0x30, WriteLogicalDriveTrait,                      LogicalDrive, Out,      CHAR_PAYLOAD,                          512,   FIXED_SIZE) \
    COMMAND(0x40, SoftResetControllerTrait,                    Controller,   NoneOrIn, NO_PAYLOAD,                            512,   FIXED_SIZE) \
    COMMAND(0x46, NVRAMPassThroughTrait,                       Controller,   Out,      NVRAM_PASS_THROUGH_PAYLOAD,            256,   FIXED_SIZE) \
    COMMAND(0x50, SenseLogicalDriveConfigurationTrait,         LogicalDrive, In,       LOGICAL_DRIVE_CONFIG,                  512,   256)        \
    COMMAND(0x51, SetLogicalDriveConfigurationTrait,           LogicalDrive, Out,      LOGICAL_DRIVE_CONFIG,                  512,   256)        \
    COMMAND(0x55, SenseOriginalLogicalDriveConfigurationTrait, LogicalDrive, In,       LOGICAL_DRIVE_CONFIG,                  512,   256)        \
    COMMAND(0x59, SenseExpansionAbilityTrait,                  Controller,   In,       SENSE_EXPANSION_ABILITY,               512,   44)         \
    COMMAND(0x5D, MirrorDrivePairInfoTrait,                    LogicalDrive, In,       MIRROR_DRIVE_PAIR_INFO,                1024,  516)        \
    COMMAND(0x64, SenseControllerParametersTrait,              Controller,   In,       CONTROLLER_PARAMETERS,                 512,   FIXED_SIZE) \
    COMMAND(0x65, SenseBusParametersTrait,                     Controller,   In,       SENSE_BUS_PARAMETERS,                  1024,  412)        \
    COMMAND(0x66, SenseSubsystemInformationTrait,              Controller,   In,       SUBSYSTEM_PARAMETERS,                  1600,  704)        \
    COMMAND(0x6C, FlashDriveActiveCarrierTrait,                Controller,   Out,      FLASH_DRIVE_ACTIVE_CARRIER_PAYLOAD,    32768, FIXED_SIZE) \
    COMMAND(0x6C, FlashFBWCTrait,                              Controller,   Out,      FLASH_FBWC_PAYLOAD,                    49152, FIXED_SIZE) \
    COMMAND(0x70, SenseSurfaceStatusTrait,                     Controller,   In,       SURFACE_STATUS,                        1536,  1422)       \
    COMMAND(0x72, SenseMNPStatusTrait,                         Controller,   In,       MNP_STATUS,                            512,   FIXED_SIZE) \
    COMMAND(0x73, SenseKeyRecordsTrait,                        Controller,   In,       OPAQUE_PAYLOAD<1044>,                  1044,  FIXED_SIZE) \
    COMMAND(0x82, SenseRedundantParameterTrait,                Controller,   In,       REDUNDANT_CONTROLLER_PARAMETERS,       512,   140)        \
    COMMAND(0x92, PassThroughSpecialInquiryTrait,              Controller,   In,       PASS_THROUGH_SPECIAL_INQUIRY,          802,   FIXED_SIZE) \
    COMMAND(0x98, PauseBackgroundActivityTrait,                Controller,   NoneOrIn, NO_PAYLOAD,                            512,   FIXED_SIZE) \
    COMMAND(0x99, ResumeBackgroundActivityTrait,               Controller,   NoneOrIn, NO_PAYLOAD,                            512,   FIXED_SIZE) \
    COMMAND(0xA0, SenseMNPStatisticsTrait,                     Controller,   In,       SENSE_MNP_STATISTICS,                  512,   FIXED_SIZE) \
    COMMAND(0xC0, SetSSDCacheLUNTrait,                         Controller,   Out,      LU_CACHE_CREATE,                       512,   FIXED_SIZE) \
    COMMAND(0xC1, SenseControllerCacheConfigStatusTrait,       Controller,   In,       CACHE_CONFIG_STATUS,                   512,   16)         \
    COMMAND(0xC1, SenseSSDCacheLUNTrait,                       Controller,   In,       LU_CACHE_SENSE,                        512,   FIXED_SIZE) \
    COMMAND(0xD2, CollectBufferTrait,                          Controller,   Out,      COLLECT_BUFFER_PAYLOAD,                16384, FIXED_SIZE) \
    COMMAND(0xD3, FreeCollectedBufferTrait,                    Controller,   NoneOrIn, NO_PAYLOAD,                            512,   FIXED_SIZE) \
    COMMAND(0xE5, SenseDriveEraseProgressTrait,                Controller,   In,       ERASE_STATE,                           512,   12)         \
    COMMAND(0xED, GetTotalBoardPowerTrait,                     Controller,   In,       TOTAL_BOARD_POWER,                     4,     FIXED_SIZE) \
    COMMAND(0xEE, GetPowerModeTrait,                           Controller,   In,       GET_POWER_MODE,                        12,    FIXED_SIZE) \
    COMMAND(0xF7, FlashControllerFirmwareTrait,                Controller,   NoneOrIn, NO_PAYLOAD,                            512,   FIXED_SIZE) \
    COMMAND(0xFC, ToggleActiveRomTrait,                        Controller,   NoneOrIn, NO_PAYLOAD,                            512,   FIXED_SIZE)
// clang-format on
