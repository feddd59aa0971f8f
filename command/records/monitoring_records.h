#pragma once

// Monitoring and performance, surface analysis, performance samples.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_SENSE_MNP_STATISTICS(ONE, MANY)        \
    ONE(0, 4, DWORD, dwFactoryTimestamp)           \
    ONE(4, 4, DWORD, dwPowerOnMinutes)             \
    ONE(8, 8, QWORD, qwSectorsRead)                \
    ONE(16, 8, QWORD, qwSectorsWritten)            \
    ONE(24, 4, DWORD, dwReadErrorsHard)            \
    ONE(28, 4, DWORD, dwReadErrorsRetryRecovered)  \
    ONE(32, 4, DWORD, dwReadErrorsECCCorrected)    \
    ONE(36, 4, DWORD, dwWriteErrorsHard)           \
    ONE(40, 4, DWORD, dwWriteErrorsRetryRecovered) \
    ONE(44, 4, DWORD, dwSeekCount)                 \
    ONE(48, 4, DWORD, dwSeekErrors)                \
    ONE(52, 4, DWORD, dwSpinupCycles)              \
    ONE(56, 2, WORD, wSpinupTime)                  \
    ONE(58, 4, DWORD, dwReallocationAborts)        \
    ONE(62, 4, DWORD, dwReallocatedSectors)        \
    ONE(66, 4, DWORD, dwMediaFailures)             \
    ONE(70, 4, DWORD, dwHardwareErrors)            \
    ONE(74, 4, DWORD, dwBusFaults)                 \
    ONE(78, 4, DWORD, dwHotPlugCount)              \
    ONE(82, 4, DWORD, dwServiceTime)               \
    ONE(86, 4, DWORD, dwPredictiveFailureErrors)   \
    ONE(90, 4, DWORD, dwReadRecoveryFailures)      \
    ONE(94, 4, DWORD, dwWriteRecoveryFailures)     \
    ONE(98, 4, DWORD, dwDRQTimeouts)               \
    ONE(102, 4, DWORD, dwOtherTimeouts)            \
    ONE(106, 4, DWORD, dwSpinupErrors)             \
    ONE(110, 4, DWORD, dwFormatErrors)             \
    ONE(114, 4, DWORD, dwNotReadyErrors)           \
    ONE(118, 4, DWORD, dwAbortedCommands)          \
    ONE(122, 4, DWORD, dwBadTargetErrors)          \
    MANY(126, 386, RESERVED, reserved)
KSL_WIRE_RECORD(SENSE_MNP_STATISTICS, 512)

#define KSL_SENSE_MNP_THRESHOLDS(ONE, MANY)        \
    ONE(0, 4, DWORD, dwPowerOnMinutes)             \
    ONE(4, 8, QWORD, qwSectorsRead)                \
    ONE(12, 8, QWORD, qwSectorsWritten)            \
    ONE(20, 4, DWORD, dwReadErrorsHard)            \
    ONE(24, 4, DWORD, dwReadErrorsRetryRecovered)  \
    ONE(28, 4, DWORD, dwReadErrorsECCCorrected)    \
    ONE(32, 4, DWORD, dwWriteErrorsHard)           \
    ONE(36, 4, DWORD, dwWriteErrorsRetryRecovered) \
    ONE(40, 4, DWORD, dwSeekErrors)                \
    ONE(44, 4, DWORD, dwSpinupCycles)              \
    ONE(48, 2, WORD, wSpinupTime)                  \
    ONE(50, 4, DWORD, dwReallocatedSectors)        \
    ONE(54, 4, DWORD, dwMediaFailures)             \
    ONE(58, 4, DWORD, dwBusFaults)                 \
    ONE(62, 4, DWORD, dwHotPlugCount)              \
    MANY(66, 94, RESERVED, reserved)
KSL_WIRE_RECORD(SENSE_MNP_THRESHOLDS, 160)

#define KSL_SENSE_MNP_VIOLATIONS(ONE, MANY) \
    ONE(0, 2, WORD, wViolationCount)        \
    ONE(2, 1, BYTE, bNewestViolation)       \
    ONE(3, 1, BYTE, bFlags)                 \
    ONE(4, 4, DWORD, dwViolatedThresholds)  \
    MANY(8, 256, BYTE, pbViolationLog)      \
    MANY(264, 248, RESERVED, reserved)
KSL_WIRE_RECORD(SENSE_MNP_VIOLATIONS, 512)

#define KSL_MNP_PARAMETER_CONTROL(ONE, MANY) \
    ONE(0, 1, BYTE, bParameterFlags)         \
    ONE(1, 1, BYTE, bReserved1)              \
    ONE(2, 2, WORD, wPollingInterval)        \
    ONE(4, 4, DWORD, dwParameterMask)        \
    ONE(8, 4, DWORD, dwThresholdMask)        \
    MANY(12, 116, RESERVED, reserved)
KSL_WIRE_RECORD(MNP_PARAMETER_CONTROL, 128)

#define KSL_MNP_DELAY(ONE, MANY)     \
    ONE(0, 2, WORD, wDelayMinutes)   \
    MANY(2, 510, RESERVED, reserved)
KSL_WIRE_RECORD(MNP_DELAY, 512)

#define KSL_MNP_STATUS(ONE, MANY)           \
    ONE(0, 1, BYTE, bMonitoringState)       \
    ONE(1, 1, BYTE, bMonitoringSupport)     \
    ONE(2, 2, WORD, wPollingInterval)       \
    ONE(4, 4, DWORD, dwParameterFlags)      \
    ONE(8, 2, WORD, wDelayMinutes)          \
    ONE(10, 2, WORD, wMonitoredDriveCount)  \
    ONE(12, 4, DWORD, dwPollsCompleted)     \
    MANY(16, 16, BYTE, pbMonitoredDriveMap) \
    MANY(32, 16, BYTE, pbViolatedDriveMap)  \
    MANY(48, 464, RESERVED, reserved)
KSL_WIRE_RECORD(MNP_STATUS, 512)

#define KSL_SURFACE_ANALYSIS_SETTINGS(ONE, MANY) \
    ONE(0, 1, BYTE, bSurfaceAnalysisMode)        \
    ONE(1, 1, BYTE, bAnalysisPriority)           \
    ONE(2, 2, WORD, wAnalysisDelay)              \
    ONE(4, 2, WORD, wParallelCount)              \
    ONE(6, 2, WORD, wConsistencyCheckMode)       \
    MANY(8, 56, RESERVED, reserved)
KSL_WIRE_RECORD(SURFACE_ANALYSIS_SETTINGS, 64)

#define KSL_SURFACE_STATUS(ONE, MANY)                  \
    ONE(0, 4, DWORD, dwPassesCompleted)                \
    ONE(4, 4, DWORD, dwPassStartTimestamp)             \
    ONE(8, 4, DWORD, dwCurrentUnit)                    \
    ONE(12, 8, QWORD, qwCurrentLBA)                    \
    ONE(20, 1, BYTE, bScanState)                       \
    ONE(21, 1, BYTE, bAnalysisPriority)                \
    ONE(22, 2, WORD, wScanDelay)                       \
    MANY(24, 256, WORD, pwUnitPassCount)               \
    MANY(280, 128, BYTE, pbUnitComplete)               \
    MANY(408, 128, BYTE, pbUnitInconsistencies)        \
    ONE(536, 2, WORD, wOffsetToExtendedUnitPassCount)  \
    ONE(538, 2, WORD, wOffsetToExtendedUnitComplete)   \
    ONE(540, 2, WORD, wMaximumLogicalDevicesSupported) \
    MANY(542, 612, RESERVED, reserved2)                \
    MANY(1154, 268, RESERVED, reserved3)               \
    ONE(1422, 4, DWORD, dwTotalStructureLength)        \
    ONE(1426, 4, DWORD, dwFixedStructureLength)        \
    MANY(1430, 106, RESERVED, reserved)
KSL_WIRE_RECORD(SURFACE_STATUS, 1536)

#define KSL_SURFACE_DELAY(ONE, MANY) \
    ONE(0, 2, WORD, wDelaySeconds)   \
    MANY(2, 510, RESERVED, reserved)
KSL_WIRE_RECORD(SURFACE_DELAY, 512)

#define KSL_PMS_VOLUME_DATA(ONE, MANY)        \
    ONE(0, 2, WORD, wLogicalDriveNumber)      \
    ONE(2, 2, WORD, wReserved2)               \
    ONE(4, 8, QWORD, qwReadCommands)          \
    ONE(12, 8, QWORD, qwWriteCommands)        \
    ONE(20, 8, QWORD, qwBlocksRead)           \
    ONE(28, 8, QWORD, qwBlocksWritten)        \
    ONE(36, 4, DWORD, dwReadLatency)          \
    ONE(40, 4, DWORD, dwWriteLatency)         \
    MANY(44, 256, DWORD, pdwLatencyHistogram) \
    MANY(300, 20, RESERVED, reserved)
KSL_WIRE_RECORD(PMS_VOLUME_DATA, 320)

#define KSL_PMS_PHYSICAL_DATA(ONE, MANY) \
    ONE(0, 2, WORD, wDeviceIndex)        \
    ONE(2, 2, WORD, wQueueDepth)         \
    ONE(4, 8, QWORD, qwReadCommands)     \
    ONE(12, 8, QWORD, qwWriteCommands)   \
    ONE(20, 8, QWORD, qwBlocksRead)      \
    ONE(28, 8, QWORD, qwBlocksWritten)   \
    ONE(36, 4, DWORD, dwReadLatency)     \
    ONE(40, 4, DWORD, dwWriteLatency)    \
    ONE(44, 4, DWORD, dwBusyTime)        \
    ONE(48, 4, DWORD, dwErrors)
KSL_WIRE_RECORD(PMS_PHYSICAL_DATA, 52)

#define KSL_PMS_RECORD(ONE, MANY)                     \
    ONE(0, 4, DWORD, dwSequence)                      \
    ONE(4, 4, DWORD, dwIntervalSeconds)               \
    ONE(8, 8, QWORD, qwTimestamp)                     \
    ONE(16, 2, WORD, wVolumeCount)                    \
    ONE(18, 2, WORD, wPhysicalCount)                  \
    ONE(20, 4, DWORD, dwFlags)                        \
    MANY(24, 2560, PMS_VOLUME_DATA, volumeData)       \
    MANY(2584, 2860, PMS_PHYSICAL_DATA, physicalData) \
    MANY(5444, 20, RESERVED, reserved)
KSL_WIRE_RECORD(PMS_RECORD, 5464)

#define KSL_VOLUME_PROFILE_DATA(ONE, MANY)        \
    ONE(0, 2, WORD, wLogicalDriveNumber)          \
    ONE(2, 2, WORD, wReserved2)                   \
    ONE(4, 4, DWORD, dwIntervalSeconds)           \
    ONE(8, 8, QWORD, qwReadCommands)              \
    ONE(16, 8, QWORD, qwWriteCommands)            \
    MANY(24, 256, DWORD, pdwReadSizeHistogram)    \
    MANY(280, 256, DWORD, pdwWriteSizeHistogram)  \
    MANY(536, 256, DWORD, pdwSequentialHistogram) \
    MANY(792, 256, DWORD, pdwLatencyHistogram)    \
    MANY(1048, 692, RESERVED, reserved)
KSL_WIRE_RECORD(VOLUME_PROFILE_DATA, 1740)

#define KSL_VOLUME_PROFILE_DATA_TOTAL(ONE, MANY) \
    ONE(0, 2, WORD, wVolumeCount)                \
    ONE(2, 2, WORD, wReserved2)                  \
    ONE(4, 4, DWORD, dwFlags)                    \
    MANY(8, 24360, VOLUME_PROFILE_DATA, volumes)
KSL_WIRE_RECORD(VOLUME_PROFILE_DATA_TOTAL, 24368)

#define KSL_MONITORING_RECORDS(R) \
    R(SENSE_MNP_STATISTICS)       \
    R(SENSE_MNP_THRESHOLDS)       \
    R(SENSE_MNP_VIOLATIONS)       \
    R(MNP_PARAMETER_CONTROL)      \
    R(MNP_DELAY)                  \
    R(MNP_STATUS)                 \
    R(SURFACE_ANALYSIS_SETTINGS)  \
    R(SURFACE_STATUS)             \
    R(SURFACE_DELAY)              \
    R(PMS_VOLUME_DATA)            \
    R(PMS_PHYSICAL_DATA)          \
    R(PMS_RECORD)                 \
    R(VOLUME_PROFILE_DATA)        \
    R(VOLUME_PROFILE_DATA_TOTAL)

}  // namespace Records
// clang-format on
