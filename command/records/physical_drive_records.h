#pragma once

// Drives behind a controller: identity, maintenance, erase, deferred firmware updates, error logs.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_PHYSICAL_DRIVE_STATUS(ONE, MANY)             \
    ONE(0, 1, BYTE, bSCSIBus)                            \
    ONE(1, 1, BYTE, bSCSIID)                             \
    ONE(2, 2, WORD, wBlockSize)                          \
    ONE(4, 4, DWORD, dwTotalBlocks)                      \
    ONE(8, 4, DWORD, dwReservedBlocks)                   \
    MANY(12, 40, char, sDriveModel)                      \
    MANY(52, 40, char, sDriveSerialNumber)               \
    MANY(92, 8, char, sDriveFirmwareRevision)            \
    ONE(100, 1, BYTE, bSCSIInquiryBits)                  \
    ONE(101, 1, BYTE, bKestalDriveStamped)               \
    ONE(102, 1, BYTE, bLastFailureReason)                \
    ONE(103, 1, BYTE, bDeviceFlags)                      \
    ONE(104, 1, BYTE, bMoreDeviceFlags)                  \
    ONE(105, 1, BYTE, bSCSILun)                          \
    ONE(106, 1, BYTE, bYetMoreDeviceFlags)               \
    ONE(107, 1, BYTE, bEvenMoreDeviceFlags)              \
    ONE(108, 4, DWORD, dwSpiSpeedRules)                  \
    MANY(112, 2, char, sPhysicalPort)                    \
    ONE(114, 1, BYTE, bPhysicalBox)                      \
    ONE(115, 1, BYTE, bPhysicalBay)                      \
    ONE(116, 4, DWORD, dwRPM)                            \
    ONE(120, 1, BYTE, bDeviceType)                       \
    ONE(121, 1, BYTE, bSATAVersion)                      \
    ONE(122, 8, QWORD, qwBIGTotalBlockCount)             \
    ONE(130, 8, QWORD, qwRISStartingLBA)                 \
    ONE(138, 4, DWORD, dwRISSize)                        \
    MANY(142, 20, BYTE, bWWID)                           \
    MANY(162, 32, BYTE, bControllerPHYMap)               \
    ONE(194, 2, WORD, wPHYCount)                         \
    MANY(196, 256, BYTE, bPHYConnectedDeviceType)        \
    MANY(452, 256, BYTE, bPHYToDriveBayNumber)           \
    MANY(708, 512, WORD, wPHYToAttachedDeviceIndex)      \
    ONE(1220, 1, BYTE, bBoxIndex)                        \
    ONE(1221, 1, BYTE, bQBXSupport)                      \
    ONE(1222, 2, WORD, wExtraDeviceFlags)                \
    MANY(1224, 256, BYTE, bNegotiatedLinkRate)           \
    MANY(1480, 256, BYTE, bPhyToPhyMap)                  \
    ONE(1736, 1, BYTE, bRedundantPathPresentMap)         \
    ONE(1737, 1, BYTE, bRedundantPathFailureMap)         \
    ONE(1738, 1, BYTE, bActivePathNumber)                \
    MANY(1739, 2, char, sMultiPathPort1)                 \
    MANY(1741, 2, char, sMultiPathPort2)                 \
    MANY(1743, 2, char, sMultiPathPort3)                 \
    MANY(1745, 2, char, sMultiPathPort4)                 \
    MANY(1747, 2, char, sMultiPathPort5)                 \
    MANY(1749, 2, char, sMultiPathPort6)                 \
    MANY(1751, 2, char, sMultiPathPort7)                 \
    MANY(1753, 2, char, sMultiPathPort8)                 \
    ONE(1755, 1, BYTE, bMultiPathBox1)                   \
    ONE(1756, 1, BYTE, bMultiPathBox2)                   \
    ONE(1757, 1, BYTE, bMultiPathBox3)                   \
    ONE(1758, 1, BYTE, bMultiPathBox4)                   \
    ONE(1759, 1, BYTE, bMultiPathBox5)                   \
    ONE(1760, 1, BYTE, bMultiPathBox6)                   \
    ONE(1761, 1, BYTE, bMultiPathBox7)                   \
    ONE(1762, 1, BYTE, bMultiPathBox8)                   \
    ONE(1763, 1, BYTE, bMultiLUNDeviceLUNCount)          \
    MANY(1764, 8, char, sMinimumGoodFirmwareRevision)    \
    MANY(1772, 20, BYTE, bVendorUniqueInquiryBytes)      \
    ONE(1792, 1, BYTE, bCurrentTemperature)              \
    ONE(1793, 1, BYTE, bTemperatureThreshold)            \
    ONE(1794, 1, BYTE, bMaximumTemperature)              \
    ONE(1795, 1, BYTE, bLogicalBlocksPerPhysicalBlock)   \
    ONE(1796, 2, WORD, wCurrentQDepthLimit)              \
    MANY(1798, 10, BYTE, pbSwitchName)                   \
    ONE(1808, 2, WORD, wSwitchPort)                      \
    MANY(1810, 40, BYTE, pbAlternatePathsSwitchName)     \
    MANY(1850, 8, BYTE, pbAlternatePathsSwitchPort)      \
    ONE(1858, 2, WORD, wPowerOnHours)                    \
    ONE(1860, 2, WORD, wPercentEnduranceUsed)            \
    ONE(1862, 1, BYTE, bDriveAuthentication)             \
    ONE(1863, 1, BYTE, bActiveCarrierAuthentication)     \
    ONE(1864, 1, BYTE, bActiveCarrierApplicationVersion) \
    ONE(1865, 1, BYTE, bActiveCarrierBootloaderVersion)  \
    ONE(1866, 1, BYTE, bSanititzeEraseSupport)           \
    ONE(1867, 1, BYTE, bEncryptionFlags)                 \
    MANY(1868, 64, char, sEncryptionKeyName)             \
    ONE(1932, 1, BYTE, bMiscDriveFlags)                  \
    MANY(1933, 115, RESERVED, reserved1)
KSL_WIRE_RECORD(PHYSICAL_DRIVE_STATUS, 2048)

#define KSL_MAINTENANCE_OPERATION(ONE, MANY)             \
    ONE(0, 4, DWORD, dwDuration)                         \
    ONE(4, 4, DWORD, dwElapsed)                          \
    MANY(8, 256, BYTE, pbMaintenanceFlags)               \
    ONE(264, 2, WORD, wOffsetToExtendedMaintenanceFlags) \
    ONE(266, 2, WORD, wMaximumPhysicalDevicesSupported)  \
    ONE(268, 4, DWORD, dwTotalStructureLength)           \
    ONE(272, 4, DWORD, dwFixedStructureLength)           \
    MANY(276, 236, RESERVED, reserved)
KSL_WIRE_RECORD(MAINTENANCE_OPERATION, 512)

#define KSL_ERASE_STATE(ONE, MANY)                     \
    ONE(0, 4, DWORD, wOffsetToPhysicalDriveEraseState) \
    ONE(4, 4, DWORD, wOffsetToLogicalDriveEraseState)  \
    ONE(8, 2, WORD, wMaximumPhysicalDevicesSupported)  \
    ONE(10, 2, WORD, wMaximumLogicalDevicesSupported)  \
    ONE(12, 4, DWORD, dwTotalStructureLength)          \
    ONE(16, 4, DWORD, dwFixedStructureLength)          \
    ONE(20, 1, BYTE, bSupportFlags)                    \
    ONE(21, 1, BYTE, bOptionFlags)                     \
    MANY(22, 490, RESERVED, reserved)
KSL_WIRE_RECORD(ERASE_STATE, 512)

#define KSL_DDFF_STATUS(ONE, MANY)      \
    ONE(0, 1, BYTE, bState)             \
    ONE(1, 1, BYTE, bLastResult)        \
    ONE(2, 2, WORD, wProgressPercent)   \
    ONE(4, 4, DWORD, dwRequestID)       \
    ONE(8, 4, DWORD, dwImageLength)     \
    ONE(12, 4, DWORD, dwBytesReceived)  \
    ONE(16, 4, DWORD, dwErrorCode)      \
    MANY(20, 8, char, sActiveRevision)  \
    MANY(28, 8, char, sPendingRevision) \
    MANY(36, 8, RESERVED, reserved)
KSL_WIRE_RECORD(DDFF_STATUS, 44)

#define KSL_DDFF_REQUEST(ONE, MANY)        \
    ONE(0, 1, BYTE, bRequestType)          \
    ONE(1, 1, BYTE, bActivationMode)       \
    ONE(2, 2, WORD, wDeviceIndex)          \
    ONE(4, 4, DWORD, dwRequestID)          \
    ONE(8, 4, DWORD, dwImageLength)        \
    ONE(12, 4, DWORD, dwImageChecksum)     \
    MANY(16, 40, char, sDriveModel)        \
    MANY(56, 40, char, sDriveSerialNumber) \
    MANY(96, 8, char, sFirmwareRevision)   \
    MANY(104, 8, RESERVED, reserved)
KSL_WIRE_RECORD(DDFF_REQUEST, 112)

#define KSL_SENSE_DEFERRED_UPDATE_STATUS(ONE, MANY) \
    ONE(0, 44, DDFF_STATUS, DDFFStatus)             \
    ONE(44, 112, DDFF_REQUEST, DDFFREquest)
KSL_WIRE_RECORD(SENSE_DEFERRED_UPDATE_STATUS, 156)

#define KSL_PHYSICAL_DRIVE_ERROR_LOG_ENTRY(ONE, MANY) \
    ONE(0, 4, DWORD, dwTimestamp)                     \
    ONE(4, 1, BYTE, bErrorType)                       \
    ONE(5, 1, BYTE, bCommand)                         \
    ONE(6, 1, BYTE, bSCSIStatus)                      \
    ONE(7, 1, BYTE, bSenseKey)                        \
    ONE(8, 1, BYTE, bASC)                             \
    ONE(9, 1, BYTE, bASCQ)                            \
    ONE(10, 2, WORD, wErrorCode)                      \
    ONE(12, 4, DWORD, dwLBALow)                       \
    ONE(16, 4, DWORD, dwLBAHigh)
KSL_WIRE_RECORD(PHYSICAL_DRIVE_ERROR_LOG_ENTRY, 20)

#define KSL_PARALLEL_SCSI_PHYSICAL_DRIVE_ERROR_LOG(ONE, MANY) \
    ONE(0, 1, BYTE, bEntryCount)                              \
    ONE(1, 1, BYTE, bNewestEntry)                             \
    ONE(2, 2, WORD, wTotalErrors)                             \
    MANY(4, 8, RESERVED, reserved1)                           \
    MANY(12, 500, PHYSICAL_DRIVE_ERROR_LOG_ENTRY, entries)
KSL_WIRE_RECORD(PARALLEL_SCSI_PHYSICAL_DRIVE_ERROR_LOG, 512)

#define KSL_SERIAL_SCSI_PHYSICAL_DRIVE_ERROR_LOG(ONE, MANY) \
    ONE(0, 1, BYTE, bEntryCount)                            \
    ONE(1, 1, BYTE, bNewestEntry)                           \
    ONE(2, 2, WORD, wTotalErrors)                           \
    MANY(4, 12, RESERVED, reserved1)                        \
    MANY(16, 1520, PHYSICAL_DRIVE_ERROR_LOG_ENTRY, entries)
KSL_WIRE_RECORD(SERIAL_SCSI_PHYSICAL_DRIVE_ERROR_LOG, 1536)

#define KSL_FAIL_PHYSICAL_DRIVE_OPERATION(ONE, MANY) \
    ONE(0, 2, WORD, wDeviceIndex)                    \
    ONE(2, 1, BYTE, bFailureReason)                  \
    ONE(3, 1, BYTE, bFlags)                          \
    MANY(4, 508, RESERVED, reserved)
KSL_WIRE_RECORD(FAIL_PHYSICAL_DRIVE_OPERATION, 512)

#define KSL_RESET_SCSI_DEVICE_OPERATION(ONE, MANY) \
    ONE(0, 2, WORD, wDeviceIndex)                  \
    ONE(2, 1, BYTE, bResetType)                    \
    ONE(3, 1, BYTE, bFlags)                        \
    MANY(4, 508, RESERVED, reserved)
KSL_WIRE_RECORD(RESET_SCSI_DEVICE_OPERATION, 512)

#define KSL_PHYSICAL_DRIVE_RECORDS(R)         \
    R(PHYSICAL_DRIVE_STATUS)                  \
    R(MAINTENANCE_OPERATION)                  \
    R(ERASE_STATE)                            \
    R(DDFF_STATUS)                            \
    R(DDFF_REQUEST)                           \
    R(SENSE_DEFERRED_UPDATE_STATUS)           \
    R(PHYSICAL_DRIVE_ERROR_LOG_ENTRY)         \
    R(PARALLEL_SCSI_PHYSICAL_DRIVE_ERROR_LOG) \
    R(SERIAL_SCSI_PHYSICAL_DRIVE_ERROR_LOG)   \
    R(FAIL_PHYSICAL_DRIVE_OPERATION)          \
    R(RESET_SCSI_DEVICE_OPERATION)

}  // namespace Records
// clang-format on
