#pragma once

// Logical drives: identity, configuration, status, mirror pairs, their caches on solid-state drives.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_DRIVE_PARAM_TABLE(ONE, MANY)   \
    ONE(0, 2, WORD, wMaxCylinders)         \
    ONE(2, 1, BYTE, bMaxHeads)             \
    ONE(3, 1, BYTE, bTranslationSignature) \
    ONE(4, 1, BYTE, bPhysSectorsPerTrack)  \
    ONE(5, 2, WORD, wPreCompCylinder)      \
    ONE(7, 1, BYTE, bMaxECCBurst)          \
    ONE(8, 1, BYTE, bDriveControl)         \
    ONE(9, 2, WORD, wMaxPhysicalCylinders) \
    ONE(11, 1, BYTE, bMaxPhysicalHeads)    \
    ONE(12, 2, WORD, wLandingZone)         \
    ONE(14, 1, BYTE, bSectorsPerTrack)     \
    ONE(15, 1, BYTE, bChecksum)
KSL_WIRE_RECORD(DRIVE_PARAM_TABLE, 16)

#define KSL_LOGICAL_DRIVE_CONFIG(ONE, MANY)                    \
    ONE(0, 4, DWORD, dwSignature)                              \
    ONE(4, 2, WORD, wCPCPort)                                  \
    ONE(6, 1, BYTE, bDataDistributionMode)                     \
    ONE(7, 1, BYTE, bSurfaceAnalysisControl)                   \
    ONE(8, 2, WORD, wPhysicalDrives)                           \
    ONE(10, 2, WORD, wAssignedDrives)                          \
    ONE(12, 2, WORD, wFaultToleranceMode)                      \
    ONE(14, 2, WORD, wDrivesConsumedForFaultTolerance)         \
    ONE(16, 8, QWORD, qwBigBlocksInLogicalDrive)               \
    ONE(24, 2, WORD, wBlockSize)                               \
    ONE(26, 1, BYTE, bMoreUnitFlags)                           \
    MANY(27, 1, RESERVED, reserved1)                           \
    ONE(28, 1, BYTE, bFastParityInitialization)                \
    ONE(29, 1, BYTE, bNumberOfParityGroups)                    \
    ONE(30, 16, DRIVE_PARAM_TABLE, logicalDriveParamTable)     \
    ONE(46, 4, DWORD, dwDriveAssignmentMap)                    \
    ONE(50, 2, WORD, wDistribution)                            \
    ONE(52, 4, DWORD, dwSpareAssignmentMap)                    \
    ONE(56, 1, BYTE, bBreakUpFlags)                            \
    ONE(57, 1, BYTE, bConfigurationFlags)                      \
    ONE(58, 4, DWORD, dwOtherVolumeSignature)                  \
    ONE(62, 2, WORD, wOS)                                      \
    ONE(64, 1, BYTE, bControllerOrder)                         \
    ONE(65, 1, BYTE, bAdditionalInfo)                          \
    ONE(66, 4, DWORD, dwDataOffset)                            \
    ONE(70, 1, BYTE, bBackedOutWriteDrives)                    \
    ONE(71, 1, BYTE, bParityDistributionMode)                  \
    ONE(72, 1, BYTE, bParityShiftFactor)                       \
    ONE(73, 1, BYTE, bBIOSDisableFlag)                         \
    ONE(74, 4, DWORD, dwBlocksOnVolume)                        \
    ONE(78, 4, DWORD, dwBlocksPerDrive)                        \
    ONE(82, 1, BYTE, bConfigModMajorVer)                       \
    ONE(83, 1, BYTE, bConfigModMinorVer)                       \
    ONE(84, 1, BYTE, bGUIMajorVer)                             \
    ONE(85, 1, BYTE, bGUIMinorVer)                             \
    ONE(86, 1, BYTE, bGUIOptions)                              \
    ONE(87, 1, BYTE, bLogicalDriveProperty)                    \
    ONE(88, 1, BYTE, bLogicalDriveAlignment)                   \
    ONE(89, 4, DWORD, dwBackupTimestamp)                       \
    MANY(93, 5, BYTE, bScratchPad)                             \
    MANY(98, 16, BYTE, pbBigDriveAssignmentMap)                \
    MANY(114, 16, BYTE, pbBigSpareAssignmentMap)               \
    ONE(130, 1, BYTE, bSnapshotSourceVolume)                   \
    ONE(131, 1, BYTE, bDriveTypeMixFlag)                       \
    MANY(132, 96, RESERVED, reserved2)                         \
    ONE(228, 1, BYTE, bSnapshotResourceVolumeFlag)             \
    ONE(229, 1, BYTE, bSnapshotRISCounter)                     \
    ONE(230, 2, WORD, wExtendedSnapshotSourceVolume)           \
    ONE(232, 2, WORD, wOtherVolumeDriveNumber)                 \
    ONE(234, 8, QWORD, qwExtendedOffsetToData)                 \
    ONE(242, 8, QWORD, qwExtendedBlocksPerDrive)               \
    ONE(250, 2, WORD, wOffsetToExtendedDriveAssignmentMap)     \
    ONE(252, 2, WORD, wOffsetToExtendedSpareAssignmentMap)     \
    ONE(254, 2, WORD, wOffsetToExtendedPhysicalDriveOrderList) \
    ONE(256, 4, DWORD, dwTotalStructureLength)                 \
    ONE(260, 2, WORD, wMaximumPhysicalDevicesSupported)        \
    ONE(262, 2, WORD, wMaximumPhysicalDrivesPerLogicalUnit)    \
    ONE(264, 4, DWORD, dwFixedStructureLength)                 \
    ONE(268, 1, BYTE, bLUCacheBits)                            \
    ONE(269, 1, BYTE, bLUCacheState)                           \
    ONE(270, 1, BYTE, bLUCacheNumberOfPrimaryUnits)            \
    ONE(271, 2, WORD, wLUCacheOtherUnitNumber)                 \
    ONE(273, 1, BYTE, bLUCacheCachingAlgorithm)                \
    ONE(274, 1, BYTE, bLUCacheWritePolicy)                     \
    ONE(275, 4, DWORD, dwCacheLineSizeBlocks)                  \
    ONE(279, 1, BYTE, bLUMaxWriteCmds)                         \
    ONE(280, 1, BYTE, bLUMaxReadCmds)                          \
    MANY(281, 7, RESERVED, reserved3)                          \
    MANY(288, 12, BYTE, bLUCacheAlgorithmDetails)              \
    MANY(300, 212, RESERVED, reserved5)
KSL_WIRE_RECORD(LOGICAL_DRIVE_CONFIG, 512)

#define KSL_LOGICAL_DRIVE_STATUS(ONE, MANY)                      \
    ONE(0, 1, BYTE, bUnitStatus)                                 \
    ONE(1, 4, DWORD, dwDriveFailureMap)                          \
    MANY(5, 64, WORD, wReadErrorCount)                           \
    MANY(69, 64, WORD, wWriteErrorCount)                         \
    MANY(133, 256, BYTE, bDriveErrorData)                        \
    MANY(389, 32, BYTE, bDRQTimeOutCount)                        \
    ONE(421, 4, DWORD, dwBlocksLeftToRecover)                    \
    ONE(425, 1, BYTE, bDriveRebuilding)                          \
    MANY(426, 64, WORD, wRemapCount)                             \
    ONE(490, 4, DWORD, dwReplacementDriveMap)                    \
    ONE(494, 4, DWORD, dwActiveSpareMap)                         \
    ONE(498, 1, BYTE, bSpareStatus)                              \
    MANY(499, 32, BYTE, bSpareToReplaceMap)                      \
    ONE(531, 4, DWORD, dwReplacedMarkedOKMap)                    \
    ONE(535, 1, BYTE, bMediaExchanged)                           \
    ONE(536, 1, BYTE, bCacheFailure)                             \
    ONE(537, 1, BYTE, bExpandFailure)                            \
    ONE(538, 1, BYTE, bUnitFlags)                                \
    MANY(539, 16, BYTE, pbBigDriveFailureMap)                    \
    MANY(555, 256, WORD, pwBigRemapCount)                        \
    MANY(811, 16, BYTE, pbBigReplacementDriveMap)                \
    MANY(827, 16, BYTE, pbBigActiveSpareMap)                     \
    MANY(843, 128, BYTE, pbBigSpareToReplaceMap)                 \
    MANY(971, 16, BYTE, pbBigReplacedMarkedOKMap)                \
    ONE(987, 1, BYTE, bBigDriveRebuilding)                       \
    ONE(988, 8, QWORD, qwBigBlocksLeftToRecover)                 \
    ONE(996, 2, WORD, wNeverAccessedLBAZonesMap)                 \
    ONE(998, 2, WORD, wUnwrittenLBAZonesMap)                     \
    ONE(1000, 1, BYTE, bSourceResourceVolumeFlag)                \
    ONE(1001, 1, BYTE, bReplicaState)                            \
    ONE(1002, 2, WORD, wExtendedDriveRebuilding)                 \
    ONE(1004, 2, WORD, wOffsetToExtendedDriveFailureMap)         \
    ONE(1006, 2, WORD, wOffsetToExtendedReplacementDriveMap)     \
    ONE(1008, 2, WORD, wOffsetToExtendedActiveSpareMap)          \
    ONE(1010, 2, WORD, wOffsetToExtendedReplacedMarkedOKMap)     \
    ONE(1012, 2, WORD, wOffsetToExtendedSpareToReplaceMap)       \
    ONE(1014, 2, WORD, wOffsetToExtendedRemapCount)              \
    ONE(1016, 2, WORD, wOffsetToDriveRebuildPercentage)          \
    ONE(1018, 2, WORD, wMaximumPhysicalDevicesSupported)         \
    ONE(1020, 4, DWORD, dwTotalStructureLength)                  \
    ONE(1024, 2, WORD, wOffsetToExtendedRedundantPathFailureMap) \
    ONE(1026, 1, BYTE, bEncryptionFlags)                         \
    ONE(1027, 1, BYTE, bRedundantCablingFlags)                   \
    MANY(1028, 16, BYTE, pbBigRedundantPathFailureMap)           \
    ONE(1044, 4, DWORD, dwFixedStructureLength)                  \
    ONE(1048, 2, WORD, wOffsetToExtendedDriveOfflineMap)         \
    ONE(1050, 1, BYTE, bSecondaryUnitStatus)                     \
    ONE(1051, 1, BYTE, bAdditionalEncryptionFlags)               \
    ONE(1052, 4, DWORD, dwLogicalDriveStateBitField)             \
    MANY(1056, 480, RESERVED, reserved1)
KSL_WIRE_RECORD(LOGICAL_DRIVE_STATUS, 1536)

#define KSL_IDENTIFY_LOGICAL_DRIVE(ONE, MANY)             \
    ONE(0, 2, WORD, wBlockSize)                           \
    ONE(2, 4, DWORD, dwBlocksOnVolume)                    \
    ONE(6, 16, DRIVE_PARAM_TABLE, logicalDriveParamTable) \
    ONE(22, 1, BYTE, bFaultToleranceMode)                 \
    ONE(23, 1, RESERVED, reserved3)                       \
    ONE(24, 1, BYTE, bBIOSDisableFlag)                    \
    ONE(25, 1, RESERVED, reserved2)                       \
    ONE(26, 4, DWORD, dwVolumeIdentifier)                 \
    MANY(30, 64, char, sVolumeLabel)                      \
    ONE(94, 8, QWORD, qwBigBlocksInLogicalDrive)          \
    MANY(102, 16, BYTE, bPage83Identifier)                \
    MANY(118, 394, RESERVED, reserved1)
KSL_WIRE_RECORD(IDENTIFY_LOGICAL_DRIVE, 512)

#define KSL_MIRROR_DRIVE_PAIR_INFO(ONE, MANY)           \
    ONE(0, 2, WORD, wPairCount)                         \
    ONE(2, 2, WORD, wReserved2)                         \
    MANY(4, 512, WORD, pwPairedDevice)                  \
    ONE(516, 4, DWORD, dwTotalStructureLength)          \
    ONE(520, 4, DWORD, dwFixedStructureLength)          \
    ONE(524, 2, WORD, wMaximumPhysicalDevicesSupported) \
    ONE(526, 2, WORD, wOffsetToExtendedPairedDevice)    \
    MANY(528, 496, RESERVED, reserved)
KSL_WIRE_RECORD(MIRROR_DRIVE_PAIR_INFO, 1024)

#define KSL_MARK_BAD_SECTOR(ONE, MANY) \
    ONE(0, 8, QWORD, qwLBA)
KSL_WIRE_RECORD(MARK_BAD_SECTOR, 8)

#define KSL_LABEL_LOGICAL_DRIVE(ONE, MANY) \
    ONE(0, 4, DWORD, dwVolumeIdentifier)   \
    MANY(4, 64, char, sVolumeLabel)        \
    MANY(68, 444, RESERVED, reserved)
KSL_WIRE_RECORD(LABEL_LOGICAL_DRIVE, 512)

#define KSL_REORDER_LOGICAL_DRIVES(ONE, MANY) \
    ONE(0, 2, WORD, wLogicalDriveCount)       \
    MANY(2, 256, WORD, pwNewOrder)            \
    MANY(258, 254, RESERVED, reserved)
KSL_WIRE_RECORD(REORDER_LOGICAL_DRIVES, 512)

#define KSL_LU_CACHE_SENSE(ONE, MANY)            \
    ONE(0, 2, WORD, wLogicalDriveNumber)         \
    ONE(2, 1, BYTE, bLUCacheBits)                \
    ONE(3, 1, BYTE, bLUCacheState)               \
    ONE(4, 2, WORD, wLUCacheOtherUnitNumber)     \
    ONE(6, 1, BYTE, bLUCacheCachingAlgorithm)    \
    ONE(7, 1, BYTE, bLUCacheWritePolicy)         \
    ONE(8, 4, DWORD, dwCacheLineSizeBlocks)      \
    ONE(12, 1, BYTE, bLUMaxWriteCmds)            \
    ONE(13, 1, BYTE, bLUMaxReadCmds)             \
    MANY(14, 12, BYTE, bLUCacheAlgorithmDetails) \
    ONE(26, 8, QWORD, qwDirtyBlocks)             \
    MANY(34, 478, RESERVED, reserved)
KSL_WIRE_RECORD(LU_CACHE_SENSE, 512)

#define KSL_LU_CACHE_CREATE(ONE, MANY)           \
    ONE(0, 2, WORD, wLogicalDriveNumber)         \
    ONE(2, 2, WORD, wLUCacheOtherUnitNumber)     \
    ONE(4, 1, BYTE, bLUCacheCachingAlgorithm)    \
    ONE(5, 1, BYTE, bLUCacheWritePolicy)         \
    ONE(6, 4, DWORD, dwCacheLineSizeBlocks)      \
    ONE(10, 1, BYTE, bLUMaxWriteCmds)            \
    ONE(11, 1, BYTE, bLUMaxReadCmds)             \
    MANY(12, 12, BYTE, bLUCacheAlgorithmDetails) \
    MANY(24, 488, RESERVED, reserved)
KSL_WIRE_RECORD(LU_CACHE_CREATE, 512)

#define KSL_LU_CACHE_STATS(ONE, MANY)    \
    ONE(0, 2, WORD, wLogicalDriveNumber) \
    ONE(2, 2, WORD, wReserved2)          \
    ONE(4, 8, QWORD, qwReadHits)         \
    ONE(12, 8, QWORD, qwReadMisses)      \
    ONE(20, 8, QWORD, qwWriteHits)       \
    ONE(28, 8, QWORD, qwWriteMisses)     \
    ONE(36, 8, QWORD, qwEvictions)       \
    ONE(44, 8, QWORD, qwDirtyBlocks)     \
    MANY(52, 460, RESERVED, reserved)
KSL_WIRE_RECORD(LU_CACHE_STATS, 512)

#define KSL_LU_CACHE_RAM_INFO(ONE, MANY) \
    ONE(0, 4, DWORD, dwTotalRAM)         \
    ONE(4, 4, DWORD, dwAvailableRAM)     \
    ONE(8, 4, DWORD, dwRAMPerCacheGiB)   \
    ONE(12, 2, WORD, wMaximumCaches)     \
    ONE(14, 2, WORD, wConfiguredCaches)  \
    MANY(16, 496, RESERVED, reserved)
KSL_WIRE_RECORD(LU_CACHE_RAM_INFO, 512)

#define KSL_LOGICAL_DRIVE_RECORDS(R) \
    R(DRIVE_PARAM_TABLE)             \
    R(LOGICAL_DRIVE_CONFIG)          \
    R(LOGICAL_DRIVE_STATUS)          \
    R(IDENTIFY_LOGICAL_DRIVE)        \
    R(MIRROR_DRIVE_PAIR_INFO)        \
    R(MARK_BAD_SECTOR)               \
    R(LABEL_LOGICAL_DRIVE)           \
    R(REORDER_LOGICAL_DRIVES)        \
    R(LU_CACHE_SENSE)                \
    R(LU_CACHE_CREATE)               \
    R(LU_CACHE_STATS)                \
    R(LU_CACHE_RAM_INFO)

}  // namespace Records
// clang-format on
