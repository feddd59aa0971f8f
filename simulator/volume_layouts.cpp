/// Layouts of the records on logical drives, cache and surface scans: offset, size, kind, name. All numbers
/// are little-endian.

#include "simulator/fields.h"

namespace simulator {

namespace {

constexpr Field logicalDriveGeometryFields[] = {
    {0, 2, FieldKind::Number, "wMaxCylinders"},         {2, 1, FieldKind::Number, "bMaxHeads"},
    {3, 1, FieldKind::Number, "bTranslationSignature"}, {4, 1, FieldKind::Number, "bPhysSectorsPerTrack"},
    {5, 2, FieldKind::Number, "wPreCompCylinder"},      {7, 1, FieldKind::Number, "bMaxECCBurst"},
    {8, 1, FieldKind::Number, "bDriveControl"},         {9, 2, FieldKind::Number, "wMaxPhysicalCylinders"},
    {11, 1, FieldKind::Number, "bMaxPhysicalHeads"},    {12, 2, FieldKind::Number, "wLandingZone"},
    {14, 1, FieldKind::Number, "bSectorsPerTrack"},     {15, 1, FieldKind::Number, "bChecksum"},
};

constexpr Field logicalDriveConfigurationFields[] = {
    {0, 4, FieldKind::Number, "dwSignature"},
    {4, 2, FieldKind::Number, "wCPCPort"},
    {6, 1, FieldKind::Number, "bDataDistributionMode"},
    {7, 1, FieldKind::Number, "bSurfaceAnalysisControl"},
    {8, 2, FieldKind::Number, "wPhysicalDrives"},
    {10, 2, FieldKind::Number, "wAssignedDrives"},
    {12, 2, FieldKind::Number, "wFaultToleranceMode"},
    {14, 2, FieldKind::Number, "wDrivesConsumedForFaultTolerance"},
    {16, 8, FieldKind::Number, "qwBigBlocksInLogicalDrive"},
    {24, 2, FieldKind::Number, "wBlockSize"},
    {26, 1, FieldKind::Number, "bMoreUnitFlags"},
    {27, 1, FieldKind::Reserved, "reserved1"},
    {28, 1, FieldKind::Number, "bFastParityInitialization"},
    {29, 1, FieldKind::Number, "bNumberOfParityGroups"},
    {30, 16, FieldKind::Record, "logicalDriveParamTable", &LOGICAL_DRIVE_GEOMETRY},
    {46, 4, FieldKind::Number, "dwDriveAssignmentMap"},
    {50, 2, FieldKind::Number, "wDistribution"},
    {52, 4, FieldKind::Number, "dwSpareAssignmentMap"},
    {56, 1, FieldKind::Number, "bBreakUpFlags"},
    {57, 1, FieldKind::Number, "bConfigurationFlags"},
    {58, 4, FieldKind::Number, "dwOtherVolumeSignature"},
    {62, 2, FieldKind::Number, "wOS"},
    {64, 1, FieldKind::Number, "bControllerOrder"},
    {65, 1, FieldKind::Number, "bAdditionalInfo"},
    {66, 4, FieldKind::Number, "dwDataOffset"},
    {70, 1, FieldKind::Number, "bBackedOutWriteDrives"},
    {71, 1, FieldKind::Number, "bParityDistributionMode"},
    {72, 1, FieldKind::Number, "bParityShiftFactor"},
    {73, 1, FieldKind::Number, "bBIOSDisableFlag"},
    {74, 4, FieldKind::Number, "dwBlocksOnVolume"},
    {78, 4, FieldKind::Number, "dwBlocksPerDrive"},
    {82, 1, FieldKind::Number, "bConfigModMajorVer"},
    {83, 1, FieldKind::Number, "bConfigModMinorVer"},
    {84, 1, FieldKind::Number, "bGUIMajorVer"},
    {85, 1, FieldKind::Number, "bGUIMinorVer"},
    {86, 1, FieldKind::Number, "bGUIOptions"},
    {87, 1, FieldKind::Number, "bLogicalDriveProperty"},
    {88, 1, FieldKind::Number, "bLogicalDriveAlignment"},
    {89, 4, FieldKind::Number, "dwBackupTimestamp"},
    {93, 5, FieldKind::Raw, "bScratchPad"},
    {98, 16, FieldKind::Raw, "pbBigDriveAssignmentMap"},
    {114, 16, FieldKind::Raw, "pbBigSpareAssignmentMap"},
    {130, 1, FieldKind::Number, "bSnapshotSourceVolume"},
    {131, 1, FieldKind::Number, "bDriveTypeMixFlag"},
    {132, 96, FieldKind::Reserved, "reserved2"},
    {228, 1, FieldKind::Number, "bSnapshotResourceVolumeFlag"},
    {229, 1, FieldKind::Number, "bSnapshotRISCounter"},
    {230, 2, FieldKind::Number, "wExtendedSnapshotSourceVolume"},
    {232, 2, FieldKind::Number, "wOtherVolumeDriveNumber"},
    {234, 8, FieldKind::Number, "qwExtendedOffsetToData"},
    {242, 8, FieldKind::Number, "qwExtendedBlocksPerDrive"},
    {250, 2, FieldKind::Number, "wOffsetToExtendedDriveAssignmentMap"},
    {252, 2, FieldKind::Number, "wOffsetToExtendedSpareAssignmentMap"},
    {254, 2, FieldKind::Number, "wOffsetToExtendedPhysicalDriveOrderList"},
    {256, 4, FieldKind::Number, "dwTotalStructureLength"},
    {260, 2, FieldKind::Number, "wMaximumPhysicalDevicesSupported"},
    {262, 2, FieldKind::Number, "wMaximumPhysicalDrivesPerLogicalUnit"},
    {264, 4, FieldKind::Number, "dwFixedStructureLength"},
    {268, 1, FieldKind::Number, "bLUCacheBits"},
    {269, 1, FieldKind::Number, "bLUCacheState"},
    {270, 1, FieldKind::Number, "bLUCacheNumberOfPrimaryUnits"},
    {271, 2, FieldKind::Number, "wLUCacheOtherUnitNumber"},
    {273, 1, FieldKind::Number, "bLUCacheCachingAlgorithm"},
    {274, 1, FieldKind::Number, "bLUCacheWritePolicy"},
    {275, 4, FieldKind::Number, "dwCacheLineSizeBlocks"},
    {279, 1, FieldKind::Number, "bLUMaxWriteCmds"},
    {280, 1, FieldKind::Number, "bLUMaxReadCmds"},
    {281, 7, FieldKind::Reserved, "reserved3"},
    {288, 12, FieldKind::Raw, "bLUCacheAlgorithmDetails"},
    {300, 212, FieldKind::Reserved, "reserved5"},
};

constexpr Field identifyLogicalDriveFields[] = {
    {0, 2, FieldKind::Number, "wBlockSize"},
    {2, 4, FieldKind::Number, "dwBlocksOnVolume"},
    {6, 16, FieldKind::Record, "logicalDriveParamTable", &LOGICAL_DRIVE_GEOMETRY},
    {22, 1, FieldKind::Number, "bFaultToleranceMode"},
    {23, 1, FieldKind::Reserved, "reserved3"},
    {24, 1, FieldKind::Number, "bBIOSDisableFlag"},
    {25, 1, FieldKind::Reserved, "reserved2"},
    {26, 4, FieldKind::Number, "dwVolumeIdentifier"},
    {30, 64, FieldKind::Text, "sVolumeLabel"},
    {94, 8, FieldKind::Number, "qwBigBlocksInLogicalDrive"},
    {102, 16, FieldKind::Raw, "bPage83Identifier"},
    {118, 394, FieldKind::Reserved, "reserved1"},
};

constexpr Field cacheConfigurationFields[] = {
    {0, 4, FieldKind::Number, "dwCacheDisabledMap"},
    {4, 2, FieldKind::Number, "wReadCacheSize"},
    {6, 2, FieldKind::Number, "wWriteCacheSize"},
    {8, 1, FieldKind::Number, "bDisableFlag"},
    {9, 2, FieldKind::Number, "wOffsetToExtendedCacheDisabledMap"},
    {11, 2, FieldKind::Number, "wOffsetToExtendedCacheFailureMap"},
    {13, 2, FieldKind::Number, "wOffsetToExtendedReadCacheDisabledMap"},
    {15, 1, FieldKind::Number, "bCacheConfigurationFlags"},
    {16, 4, FieldKind::Number, "dwTotalStructureLength"},
    {20, 2, FieldKind::Number, "wMaximumLogicalDevicesSupported"},
    {22, 2, FieldKind::Number, "wOffsetToExtendedWriteCacheDisabledMap"},
    {24, 4, FieldKind::Number, "dwFixedStructureLength"},
    {28, 4, FieldKind::Reserved, "reserved3"},
    {32, 4, FieldKind::Number, "dwCacheFlags"},
    {36, 2, FieldKind::Number, "wCacheDisableCode"},
    {38, 2, FieldKind::Number, "wTotalMemorySize"},
    {40, 2, FieldKind::Number, "wBatteryCount"},
    {42, 2, FieldKind::Number, "wBatteryStatus"},
    {44, 2, FieldKind::Number, "wParityReadErrors"},
    {46, 2, FieldKind::Number, "wParityWriteErrors"},
    {48, 160, FieldKind::Raw, "bErrorLog"},
    {208, 2, FieldKind::Number, "wFailedBatteries"},
    {210, 1, FieldKind::Number, "bBoardPresent"},
    {211, 4, FieldKind::Number, "dwCacheFailureMap"},
    {215, 1, FieldKind::Number, "bMaxErrorLogEntries"},
    {216, 1, FieldKind::Number, "bNVRAMLoadStatus"},
    {217, 1, FieldKind::Number, "bMemorySizeShiftFactor"},
    {218, 2, FieldKind::Number, "wNonBatteryBackedMemorySize"},
    {220, 1, FieldKind::Number, "bMemoryState"},
    {221, 1, FieldKind::Number, "bCacheAutoRev"},
    {222, 2, FieldKind::Number, "wTotalAvailableMemorySize"},
    {224, 1, FieldKind::Number, "bPercentReadCache"},
    {225, 1, FieldKind::Number, "bPercentWriteCache"},
    {226, 1, FieldKind::Number, "bDefaultPercentReadCache"},
    {227, 1, FieldKind::Number, "bDefaultPercentWriteCache"},
    {228, 2, FieldKind::Number, "wInstalledBatteries"},
    {230, 1, FieldKind::Number, "bCacheSupportFlags"},
    {231, 1, FieldKind::Number, "reserved2"},
    {232, 16, FieldKind::Raw, "bDetailedBatteryStatus"},
    {248, 8, FieldKind::Raw, "bDetailedFlashlightHardwareStatus"},
    {256, 256, FieldKind::Reserved, "reserved1"},
};

}  // namespace

constinit RecordLayout const LOGICAL_DRIVE_GEOMETRY = {"logical drive geometry", 16,
                                                       logicalDriveGeometryFields};
constinit RecordLayout const LOGICAL_DRIVE_CONFIGURATION = {"logical drive configuration", 512,
                                                            logicalDriveConfigurationFields};
constinit RecordLayout const IDENTIFY_LOGICAL_DRIVE = {"identify logical drive", 512,
                                                       identifyLogicalDriveFields};
constinit RecordLayout const CACHE_CONFIGURATION = {"cache configuration", 512, cacheConfigurationFields};
constinit RecordLayout const SURFACE_STATUS = {"surface status", 1536, {}};
constinit RecordLayout const MNP_STATUS = {"mnp status", 512, {}};
constinit RecordLayout const ENCRYPTION_PAGE = {"encryption page", 512, {}};

}  // namespace simulator
