#pragma once

// What a controller says of itself: identity, parameters, pairing, cache.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_IDENTIFY_CONTROLLER(ONE, MANY)                  \
    ONE(0, 1, BYTE, bConfiguredLogicalDrives)               \
    ONE(1, 4, DWORD, dwConfigurationSignature)              \
    MANY(5, 4, char, sRAMFirmwareRev)                       \
    MANY(9, 4, char, sROMFirmwareRev)                       \
    ONE(13, 1, BYTE, bHardwareRevision)                     \
    MANY(14, 4, char, sBootBlockRevision)                   \
    ONE(18, 4, DWORD, dwDrivePresentMap)                    \
    ONE(22, 4, DWORD, dwExternalDriveMap)                   \
    ONE(26, 4, DWORD, dwBoardID)                            \
    ONE(30, 1, BYTE, bSwappedCableFlags)                    \
    ONE(31, 4, DWORD, dwNonDiskMap)                         \
    ONE(35, 1, BYTE, bBadHostRAMAddr)                       \
    ONE(36, 1, BYTE, bCPURev)                               \
    ONE(37, 1, BYTE, bPDPIRev)                              \
    ONE(38, 1, BYTE, bEPICRev)                              \
    ONE(39, 1, BYTE, bWCXCRev)                              \
    ONE(40, 1, char, cMarketingRevision)                    \
    ONE(41, 1, BYTE, bControllerFlags)                      \
    ONE(42, 1, BYTE, bHostFlags)                            \
    ONE(43, 1, BYTE, bExpandDisableCode)                    \
    ONE(44, 1, BYTE, bProtocolChipCount)                    \
    ONE(45, 4, DWORD, dwMaximumBlocks)                      \
    ONE(49, 4, DWORD, dwControllerClock)                    \
    ONE(53, 1, BYTE, bDrivesPerBus)                         \
    MANY(54, 16, BYTE, pbBigDrivePresentMap)                \
    MANY(70, 16, BYTE, pbBigExternalDriveMap)               \
    MANY(86, 16, BYTE, pbBigNonDiskMap)                     \
    ONE(102, 2, WORD, wTaskFlags)                           \
    ONE(104, 1, BYTE, bBussesForICL)                        \
    ONE(105, 1, BYTE, bSupportedControllerModes)            \
    ONE(106, 1, BYTE, bCurrentControllerMode)               \
    ONE(107, 1, BYTE, bControllerStatus)                    \
    ONE(108, 1, BYTE, bRedundantFailureReason)              \
    ONE(109, 1, BYTE, bUnsupportedNILEBusses)               \
    ONE(110, 1, BYTE, bHostI2CAutorev)                      \
    ONE(111, 1, BYTE, bCPLDRevision)                        \
    ONE(112, 1, BYTE, bFibreChipCount)                      \
    ONE(113, 1, BYTE, bDaughterboardType)                   \
    ONE(114, 1, BYTE, bMoreSwappedCableFlags)               \
    ONE(115, 1, BYTE, bReserved115)                         \
    ONE(116, 1, BYTE, bAccessModuleStatus)                  \
    ONE(117, 1, BYTE, bADGSupport)                          \
    MANY(118, 11, BYTE, pbFeaturesSupported)                \
    MANY(129, 4, char, sROMInactiveRev)                     \
    ONE(133, 1, BYTE, bActiveROMStatus)                     \
    ONE(134, 1, BYTE, bPPCtoPCIBridgeStatus)                \
    ONE(135, 4, DWORD, dwRedundantServerInfo)               \
    ONE(139, 1, BYTE, bPercentWriteCache)                   \
    ONE(140, 2, WORD, wDaughterboardSizeInMB)               \
    ONE(142, 1, BYTE, bCacheBatteryCount)                   \
    ONE(143, 2, WORD, wTotalAvailableMemorySize)            \
    ONE(145, 1, BYTE, bMoreControllerFlags)                 \
    ONE(146, 1, BYTE, bXBoardHostI2CAutorev)                \
    ONE(147, 1, BYTE, bBatteryPICRev)                       \
    MANY(148, 4, char, sDDFFVersion)                        \
    ONE(152, 2, WORD, wMaximumLogicalDevicesSupported)      \
    ONE(154, 2, WORD, wExtendedLogicalUnitCount)            \
    ONE(156, 2, WORD, wMaximumPhysicalDevicesSupported)     \
    ONE(158, 2, WORD, wMaximumPhysicalDrivesPerLogicalUnit) \
    ONE(160, 1, BYTE, bEnclosureCount)                      \
    ONE(161, 1, BYTE, bExpanderCount)                       \
    ONE(162, 2, WORD, wOffsetToExtendedDrivePresentMap)     \
    ONE(164, 2, WORD, wOffsetToExtendedExternalDriveMap)    \
    ONE(166, 2, WORD, wOffsetToExtendedNonDiskMap)          \
    MANY(168, 8, BYTE, bInternalPortStatus)                 \
    MANY(176, 8, BYTE, bExternalPortStatus)                 \
    ONE(184, 4, DWORD, dwYetMoreControllerFlags)            \
    ONE(188, 1, BYTE, bLastLockup)                          \
    ONE(189, 1, BYTE, bPCISlot)                             \
    ONE(190, 2, WORD, wFirmwareBuildNumber)                 \
    ONE(192, 4, DWORD, dwMaximumSafeFullStripeSizeMB)       \
    ONE(196, 4, DWORD, dwTotalStructureLength)              \
    MANY(200, 8, char, sVendorID)                           \
    MANY(208, 16, char, sProductID)                         \
    ONE(224, 4, DWORD, dwExtendedLastLockup)                \
    ONE(228, 2, WORD, wMaximumRAID01StripeSize)             \
    ONE(230, 2, WORD, wMaximumRAID45StripeSize)             \
    ONE(232, 2, WORD, wMaximumRAID6StripeSize)              \
    ONE(234, 2, WORD, wYetMoreSwappedCableFlags)            \
    ONE(236, 1, BYTE, bMaximumDevicePaths)                  \
    ONE(237, 1, RESERVED, reserved2)                        \
    ONE(238, 2, WORD, wOffsetToZonedInDriveMap)             \
    ONE(240, 4, DWORD, dwFixedStructureLength)              \
    MANY(244, 24, char, sFirmwareCompileTimeStamp)          \
    ONE(268, 4, DWORD, dwEvenMoreControllerFlags)           \
    ONE(272, 2, WORD, wHostInitializationCode)              \
    ONE(274, 2, WORD, wKelpImageSize)                       \
    MANY(276, 4, char, sOptionRomFWRev)                     \
    ONE(280, 2, WORD, wOptionRomFWBuild)                    \
    ONE(282, 4, DWORD, dwEncryptionStatus)                  \
    ONE(286, 4, DWORD, dwExtraControllerFlags)              \
    ONE(290, 1, BYTE, bPCIEGeneration)                      \
    ONE(291, 1, BYTE, bPCIEWidth)                           \
    ONE(292, 1, BYTE, bControllerMode)                      \
    MANY(293, 219, RESERVED, reserved1)
KSL_WIRE_RECORD(IDENTIFY_CONTROLLER, 512)

#define KSL_CONTROLLER_PARAMETERS(ONE, MANY)              \
    ONE(0, 1, BYTE, bLEDFlag)                             \
    ONE(1, 1, BYTE, bCmdListVerification)                 \
    ONE(2, 1, BYTE, bBackedOutWriteDrives)                \
    ONE(3, 2, WORD, wParityStripes)                       \
    ONE(5, 1, BYTE, bControllerConfigurationFlags)        \
    ONE(6, 2, WORD, wQueueDepth)                          \
    ONE(8, 2, WORD, wElevatorTrend)                       \
    ONE(10, 1, BYTE, bElevatorState)                      \
    ONE(11, 1, BYTE, bForceScanComplete)                  \
    ONE(12, 1, BYTE, bForcedTransferMode)                 \
    ONE(13, 1, BYTE, bForcedTransferWidth)                \
    ONE(14, 1, BYTE, bRebuildPriority)                    \
    ONE(15, 1, BYTE, bExpandPriority)                     \
    ONE(16, 1, BYTE, bHostSdbASICFix)                     \
    ONE(17, 1, BYTE, bPDPIBurstDisabled)                  \
    MANY(18, 64, char, sSoftwareName)                     \
    MANY(82, 32, char, sHardwareName)                     \
    ONE(114, 1, BYTE, bBridgeRevision)                    \
    ONE(115, 1, BYTE, bSnapshotPriority)                  \
    ONE(116, 4, DWORD, dwOSSpecific)                      \
    ONE(120, 1, BYTE, bPOSTPromptTimeout)                 \
    ONE(121, 1, BYTE, bAutomaticDriveSlamming)            \
    ONE(122, 1, BYTE, bDevicePathSelectionMethod)         \
    ONE(123, 1, BYTE, bNVRAMFlags)                        \
    ONE(124, 1, BYTE, bCacheNVRAMFlags)                   \
    ONE(125, 1, BYTE, bDriveConfigurationFlags)           \
    MANY(126, 2, RESERVED, reserved2)                     \
    ONE(128, 1, BYTE, bOverTemperatureWarning)            \
    ONE(129, 1, BYTE, bOverTemperatureShutdown)           \
    ONE(130, 1, BYTE, bOverTemperatureConditionCancelled) \
    ONE(131, 1, BYTE, bMaxCoalesceCommands)               \
    ONE(132, 4, DWORD, dwMaxCoalesceDelay)                \
    MANY(136, 4, char, sKelpPassword)                     \
    MANY(140, 16, char, sAccessID)                        \
    MANY(156, 16, char, sPrimaryBootLUN)                  \
    MANY(172, 16, char, sSecondaryBootLUN)                \
    ONE(188, 4, DWORD, dwTotalStructureLength)            \
    ONE(192, 2, WORD, wRAMDriveNumber)                    \
    ONE(194, 2, WORD, wRAMDriveSizeInMiB)                 \
    ONE(196, 4, DWORD, dwMoreConfigFlags)                 \
    ONE(200, 4, DWORD, dwMoreNVRAMFlags)                  \
    ONE(204, 1, BYTE, bElevatorLatencySetting)            \
    MANY(205, 307, RESERVED, reserved1)
KSL_WIRE_RECORD(CONTROLLER_PARAMETERS, 512)

#define KSL_REDUNDANT_CONTROLLER_PARAMETERS(ONE, MANY)          \
    ONE(0, 1, BYTE, bSupportedControllerModes)                  \
    ONE(1, 1, BYTE, bCurrentControllerMode)                     \
    ONE(2, 1, BYTE, bControllerStatus)                          \
    ONE(3, 1, BYTE, bRedundantFailureReason)                    \
    ONE(4, 4, DWORD, dwRedundantWarningCodes)                   \
    ONE(8, 1, BYTE, bSlotControlFlags)                          \
    ONE(9, 1, BYTE, bLinkedIRQ)                                 \
    ONE(10, 2, WORD, wLinked16bitIOAddress)                     \
    ONE(12, 4, DWORD, dwLinkedMemoryAddress)                    \
    MANY(16, 32, char, sCurrentControllerIdentifier)            \
    MANY(48, 32, char, sLinkedControllerIdentifier)             \
    MANY(80, 32, char, sCommonControllerIdentifier)             \
    ONE(112, 1, BYTE, bCurrentControllerType)                   \
    ONE(113, 1, BYTE, bLinkedControllerType)                    \
    ONE(114, 2, WORD, wMoreSlotControlFlags)                    \
    ONE(116, 4, DWORD, dwLinked32bitIOAddress)                  \
    MANY(120, 2, BYTE, pbPhysicalSlots)                         \
    MANY(122, 2, BYTE, pbControllerOrder)                       \
    ONE(124, 4, DWORD, dwCurrentLunOwnership)                   \
    ONE(128, 4, DWORD, dwPreferedLunOwnership)                  \
    ONE(132, 1, BYTE, bMinimumPercentProxiedRequests)           \
    ONE(133, 1, BYTE, bMinimumRequestsForImplicitPathChange)    \
    ONE(134, 1, BYTE, bMinimumPathOwnershipTimeAfterBoot)       \
    ONE(135, 1, BYTE, bMinimumPathOwnershipTimeAfterPathChange) \
    ONE(136, 2, WORD, wOffsetToExtendedCurrentLunOwnership)     \
    ONE(138, 2, WORD, wOffsetToExtendedPreferedLunOwnership)    \
    ONE(140, 4, DWORD, dwTotalStructureLength)                  \
    ONE(144, 2, WORD, wMaximumLogicalDevicesSupported)          \
    ONE(146, 4, DWORD, dwFixedStructureLength)                  \
    MANY(150, 362, RESERVED, reserved1)
KSL_WIRE_RECORD(REDUNDANT_CONTROLLER_PARAMETERS, 512)

#define KSL_SENSE_EXPANSION_ABILITY(ONE, MANY)                        \
    ONE(0, 4, DWORD, dwSupportFlags)                                  \
    ONE(4, 4, DWORD, dwExpansionMemorySize)                           \
    MANY(8, 32, BYTE, pbTransformationCapabilityStatus)               \
    ONE(40, 2, WORD, wOffsetToExtendedTransformationCapabilityStatus) \
    ONE(42, 2, WORD, wMaximumLogicalDevicesSupported)                 \
    ONE(44, 4, DWORD, dwTotalStructureLength)                         \
    ONE(48, 4, DWORD, dwFixedStructureLength)                         \
    MANY(52, 460, RESERVED, reserved1)
KSL_WIRE_RECORD(SENSE_EXPANSION_ABILITY, 512)

#define KSL_CACHE_CONFIG_STATUS(ONE, MANY)                   \
    ONE(0, 4, DWORD, dwCacheDisabledMap)                     \
    ONE(4, 2, WORD, wReadCacheSize)                          \
    ONE(6, 2, WORD, wWriteCacheSize)                         \
    ONE(8, 1, BYTE, bDisableFlag)                            \
    ONE(9, 2, WORD, wOffsetToExtendedCacheDisabledMap)       \
    ONE(11, 2, WORD, wOffsetToExtendedCacheFailureMap)       \
    ONE(13, 2, WORD, wOffsetToExtendedReadCacheDisabledMap)  \
    ONE(15, 1, BYTE, bCacheConfigurationFlags)               \
    ONE(16, 4, DWORD, dwTotalStructureLength)                \
    ONE(20, 2, WORD, wMaximumLogicalDevicesSupported)        \
    ONE(22, 2, WORD, wOffsetToExtendedWriteCacheDisabledMap) \
    ONE(24, 4, DWORD, dwFixedStructureLength)                \
    MANY(28, 4, RESERVED, reserved3)                         \
    ONE(32, 4, DWORD, dwCacheFlags)                          \
    ONE(36, 2, WORD, wCacheDisableCode)                      \
    ONE(38, 2, WORD, wTotalMemorySize)                       \
    ONE(40, 2, WORD, wBatteryCount)                          \
    ONE(42, 2, WORD, wBatteryStatus)                         \
    ONE(44, 2, WORD, wParityReadErrors)                      \
    ONE(46, 2, WORD, wParityWriteErrors)                     \
    MANY(48, 160, BYTE, bErrorLog)                           \
    ONE(208, 2, WORD, wFailedBatteries)                      \
    ONE(210, 1, BYTE, bBoardPresent)                         \
    ONE(211, 4, DWORD, dwCacheFailureMap)                    \
    ONE(215, 1, BYTE, bMaxErrorLogEntries)                   \
    ONE(216, 1, BYTE, bNVRAMLoadStatus)                      \
    ONE(217, 1, BYTE, bMemorySizeShiftFactor)                \
    ONE(218, 2, WORD, wNonBatteryBackedMemorySize)           \
    ONE(220, 1, BYTE, bMemoryState)                          \
    ONE(221, 1, BYTE, bCacheAutoRev)                         \
    ONE(222, 2, WORD, wTotalAvailableMemorySize)             \
    ONE(224, 1, BYTE, bPercentReadCache)                     \
    ONE(225, 1, BYTE, bPercentWriteCache)                    \
    ONE(226, 1, BYTE, bDefaultPercentReadCache)              \
    ONE(227, 1, BYTE, bDefaultPercentWriteCache)             \
    ONE(228, 2, WORD, wInstalledBatteries)                   \
    ONE(230, 1, BYTE, bCacheSupportFlags)                    \
    ONE(231, 1, BYTE, reserved2)                             \
    MANY(232, 16, BYTE, bDetailedBatteryStatus)              \
    MANY(248, 8, BYTE, bDetailedFlashlightHardwareStatus)    \
    MANY(256, 256, RESERVED, reserved1)
KSL_WIRE_RECORD(CACHE_CONFIG_STATUS, 512)

#define KSL_CLEAR_CONTROLLER_CONFIG(ONE, MANY) \
    ONE(0, 4, DWORD, dwSignature)              \
    ONE(4, 1, BYTE, bOptionFlags)              \
    MANY(5, 507, RESERVED, reserved)
KSL_WIRE_RECORD(CLEAR_CONTROLLER_CONFIG, 512)

#define KSL_FLUSH_DISABLE_CACHE(ONE, MANY) \
    ONE(0, 1, BYTE, bDisableFlag)          \
    ONE(1, 1, BYTE, bFlushFlag)            \
    ONE(2, 1, BYTE, bPowerOffFlag)         \
    MANY(3, 509, RESERVED, reserved)
KSL_WIRE_RECORD(FLUSH_DISABLE_CACHE, 512)

#define KSL_NOTIFY_ON_EVENT(ONE, MANY) \
    ONE(0, 4, DWORD, dwFlags)          \
    ONE(4, 4, DWORD, dwDetailFlags)    \
    ONE(8, 4, DWORD, dwTimestamp)      \
    ONE(12, 2, WORD, wEventClass)      \
    ONE(14, 2, WORD, wEventSubclass)   \
    ONE(16, 2, WORD, wEventDetail)     \
    MANY(18, 80, char, sMessage)       \
    ONE(98, 4, DWORD, dwTag)           \
    MANY(102, 64, BYTE, pbEventData)   \
    MANY(166, 346, RESERVED, reserved)
KSL_WIRE_RECORD(NOTIFY_ON_EVENT, 512)

#define KSL_LOCAL_NVRAM_ERROR(ONE, MANY) \
    ONE(0, 4, DWORD, dwErrorCode)        \
    ONE(4, 4, DWORD, dwAddress)          \
    ONE(8, 4, DWORD, dwTimestamp)
KSL_WIRE_RECORD(LOCAL_NVRAM_ERROR, 12)

#define KSL_TOTAL_BOARD_POWER(ONE, MANY) \
    ONE(0, 4, DWORD, dwTotalBoardPower)
KSL_WIRE_RECORD(TOTAL_BOARD_POWER, 4)

#define KSL_GET_POWER_MODE(ONE, MANY)     \
    ONE(0, 1, BYTE, bCurrentPowerMode)    \
    ONE(1, 1, BYTE, bPendingPowerMode)    \
    ONE(2, 1, BYTE, bSupportedPowerModes) \
    ONE(3, 1, BYTE, bFlags)               \
    ONE(4, 4, DWORD, dwCurrentPower)      \
    ONE(8, 4, DWORD, dwMaximumPower)
KSL_WIRE_RECORD(GET_POWER_MODE, 12)

#define KSL_SET_POWER_MODE(ONE, MANY) \
    ONE(0, 1, BYTE, bPowerMode)       \
    ONE(1, 1, BYTE, bFlags)           \
    ONE(2, 2, WORD, wReserved2)
KSL_WIRE_RECORD(SET_POWER_MODE, 4)

#define KSL_CONTROLLER_RECORDS(R)      \
    R(IDENTIFY_CONTROLLER)             \
    R(CONTROLLER_PARAMETERS)           \
    R(REDUNDANT_CONTROLLER_PARAMETERS) \
    R(SENSE_EXPANSION_ABILITY)         \
    R(CACHE_CONFIG_STATUS)             \
    R(CLEAR_CONTROLLER_CONFIG)         \
    R(FLUSH_DISABLE_CACHE)             \
    R(NOTIFY_ON_EVENT)                 \
    R(LOCAL_NVRAM_ERROR)               \
    R(TOTAL_BOARD_POWER)               \
    R(GET_POWER_MODE)                  \
    R(SET_POWER_MODE)

}  // namespace Records
// clang-format on
