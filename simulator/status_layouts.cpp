/// Layouts of the records on surface scans, monitoring, power and encryption: offset, size, kind, name. All
/// numbers are little-endian.

#include "simulator/fields.h"

namespace simulator {

namespace {

constexpr Field surfaceStatusFields[] = {
    {0, 4, FieldKind::Number, "dwPassesCompleted"},
    {4, 4, FieldKind::Number, "dwPassStartTimestamp"},
    {8, 4, FieldKind::Number, "dwCurrentUnit"},
    {12, 8, FieldKind::Number, "qwCurrentLBA"},
    {20, 1, FieldKind::Number, "bScanState"},
    {21, 1, FieldKind::Number, "bAnalysisPriority"},
    {22, 2, FieldKind::Number, "wScanDelay"},
    {24, 256, FieldKind::Words, "pwUnitPassCount"},
    {280, 128, FieldKind::Raw, "pbUnitComplete"},
    {408, 128, FieldKind::Raw, "pbUnitInconsistencies"},
    {536, 2, FieldKind::Number, "wOffsetToExtendedUnitPassCount"},
    {538, 2, FieldKind::Number, "wOffsetToExtendedUnitComplete"},
    {540, 2, FieldKind::Number, "wMaximumLogicalDevicesSupported"},
    {542, 612, FieldKind::Reserved, "reserved2"},
    {1154, 268, FieldKind::Reserved, "reserved3"},
    {1422, 4, FieldKind::Number, "dwTotalStructureLength"},
    {1426, 4, FieldKind::Number, "dwFixedStructureLength"},
    {1430, 106, FieldKind::Reserved, "reserved"},
};

constexpr Field mnpStatusFields[] = {
    {0, 1, FieldKind::Number, "bMonitoringState"},  {1, 1, FieldKind::Number, "bMonitoringSupport"},
    {2, 2, FieldKind::Number, "wPollingInterval"},  {4, 4, FieldKind::Number, "dwParameterFlags"},
    {8, 2, FieldKind::Number, "wDelayMinutes"},     {10, 2, FieldKind::Number, "wMonitoredDriveCount"},
    {12, 4, FieldKind::Number, "dwPollsCompleted"}, {16, 16, FieldKind::Raw, "pbMonitoredDriveMap"},
    {32, 16, FieldKind::Raw, "pbViolatedDriveMap"}, {48, 464, FieldKind::Reserved, "reserved"},
};

constexpr Field mnpStatisticsFields[] = {
    {0, 4, FieldKind::Number, "dwFactoryTimestamp"},
    {4, 4, FieldKind::Number, "dwPowerOnMinutes"},
    {8, 8, FieldKind::Number, "qwSectorsRead"},
    {16, 8, FieldKind::Number, "qwSectorsWritten"},
    {24, 4, FieldKind::Number, "dwReadErrorsHard"},
    {28, 4, FieldKind::Number, "dwReadErrorsRetryRecovered"},
    {32, 4, FieldKind::Number, "dwReadErrorsECCCorrected"},
    {36, 4, FieldKind::Number, "dwWriteErrorsHard"},
    {40, 4, FieldKind::Number, "dwWriteErrorsRetryRecovered"},
    {44, 4, FieldKind::Number, "dwSeekCount"},
    {48, 4, FieldKind::Number, "dwSeekErrors"},
    {52, 4, FieldKind::Number, "dwSpinupCycles"},
    {56, 2, FieldKind::Number, "wSpinupTime"},
    {58, 4, FieldKind::Number, "dwReallocationAborts"},
    {62, 4, FieldKind::Number, "dwReallocatedSectors"},
    {66, 4, FieldKind::Number, "dwMediaFailures"},
    {70, 4, FieldKind::Number, "dwHardwareErrors"},
    {74, 4, FieldKind::Number, "dwBusFaults"},
    {78, 4, FieldKind::Number, "dwHotPlugCount"},
    {82, 4, FieldKind::Number, "dwServiceTime"},
    {86, 4, FieldKind::Number, "dwPredictiveFailureErrors"},
    {90, 422, FieldKind::Reserved, "reserved"},
};

constexpr Field eraseStateFields[] = {
    {0, 4, FieldKind::Number, "wOffsetToPhysicalDriveEraseState"},
    {4, 4, FieldKind::Number, "wOffsetToLogicalDriveEraseState"},
    {8, 2, FieldKind::Number, "wMaximumPhysicalDevicesSupported"},
    {10, 2, FieldKind::Number, "wMaximumLogicalDevicesSupported"},
    {12, 4, FieldKind::Number, "dwTotalStructureLength"},
    {16, 4, FieldKind::Number, "dwFixedStructureLength"},
    {20, 1, FieldKind::Number, "bSupportFlags"},
    {21, 1, FieldKind::Number, "bOptionFlags"},
    {22, 490, FieldKind::Reserved, "reserved"},
};

constexpr Field boardPowerFields[] = {
    {0, 4, FieldKind::Number, "dwTotalBoardPower"},
};

constexpr Field powerModeFields[] = {
    {0, 1, FieldKind::Number, "bCurrentPowerMode"},    {1, 1, FieldKind::Number, "bPendingPowerMode"},
    {2, 1, FieldKind::Number, "bSupportedPowerModes"}, {3, 1, FieldKind::Number, "bFlags"},
    {4, 4, FieldKind::Number, "dwCurrentPower"},       {8, 4, FieldKind::Number, "dwMaximumPower"},
};

constexpr Field localKeyCacheFields[] = {
    {0, 2, FieldKind::Number, "wCacheEntries"},
    {2, 2, FieldKind::Number, "wMaximumCacheEntries"},
    {4, 4, FieldKind::Number, "dwCacheFlags"},
    {8, 504, FieldKind::Reserved, "reserved"},
};

constexpr Field recoveryParametersFields[] = {
    {0, 1, FieldKind::Number, "bRole"},           {1, 1, FieldKind::Number, "bParametersSet"},
    {2, 2, FieldKind::Number, "wQuestionLength"}, {4, 128, FieldKind::Text, "sQuestion"},
    {132, 2, FieldKind::Number, "wAnswerLength"}, {134, 64, FieldKind::Text, "sAnswer"},
    {198, 314, FieldKind::Reserved, "reserved"},
};

constexpr Field bootPasswordStatusFields[] = {
    {0, 1, FieldKind::Number, "bPasswordSet"},
    {1, 1, FieldKind::Number, "bPasswordSuspended"},
    {2, 2, FieldKind::Number, "wFailedAttempts"},
    {4, 508, FieldKind::Reserved, "reserved"},
};

constexpr Field initialKeyStatusFields[] = {
    {0, 1, FieldKind::Number, "bKeyPresent"},   {1, 1, FieldKind::Number, "bKeyState"},
    {2, 2, FieldKind::Number, "wNameLength"},   {4, 64, FieldKind::Text, "sKeyName"},
    {68, 444, FieldKind::Reserved, "reserved"},
};

constexpr Field bootStatusFields[] = {
    {0, 1, FieldKind::Number, "bBootState"},         {1, 1, FieldKind::Number, "bLockedVolumesPresent"},
    {2, 2, FieldKind::Number, "wLockedVolumeCount"}, {4, 4, FieldKind::Number, "dwStatusFlags"},
    {8, 504, FieldKind::Reserved, "reserved"},
};

constexpr Field passwordStatusFields[] = {
    {0, 1, FieldKind::Number, "bCryptoPasswordSet"},     {1, 1, FieldKind::Number, "bUserPasswordSet"},
    {2, 1, FieldKind::Number, "bRecoveryParametersSet"}, {3, 1, FieldKind::Number, "bReserved3"},
    {4, 2, FieldKind::Number, "wCryptoFailedAttempts"},  {6, 2, FieldKind::Number, "wUserFailedAttempts"},
    {8, 504, FieldKind::Reserved, "reserved"},
};

constexpr Field keyManagerStatusFields[] = {
    {0, 1, FieldKind::Number, "bMode"},       {1, 1, FieldKind::Number, "bConnectionState"},
    {2, 2, FieldKind::Number, "wPort"},       {4, 4, FieldKind::Number, "dwStatusFlags"},
    {8, 256, FieldKind::Text, "sServerName"}, {264, 248, FieldKind::Reserved, "reserved"},
};

constexpr EncryptionPage encryptionPages[] = {
    {1, {"local key cache attributes", 512, localKeyCacheFields}},
    {3, {"recovery parameters", 512, recoveryParametersFields}},
    {6, {"boot password status", 512, bootPasswordStatusFields}},
    {7, {"initial key status", 512, initialKeyStatusFields}},
    {8, {"boot status", 512, bootStatusFields}},
    {9, {"password status", 512, passwordStatusFields}},
    {10, {"key manager status", 512, keyManagerStatusFields}},
};

}  // namespace

constinit RecordLayout const SURFACE_STATUS = {"surface status", 1536, surfaceStatusFields};
constinit RecordLayout const MNP_STATUS = {"mnp status", 512, mnpStatusFields};
constinit RecordLayout const MNP_STATISTICS = {"mnp statistics", 512, mnpStatisticsFields};
constinit RecordLayout const ERASE_STATE = {"erase state", 512, eraseStateFields};
constinit RecordLayout const BOARD_POWER = {"board power", 4, boardPowerFields};
constinit RecordLayout const POWER_MODE = {"power mode", 12, powerModeFields};
constinit std::span<EncryptionPage const> const ENCRYPTION_PAGES = encryptionPages;

}  // namespace simulator
