#include <cstring>

#include "command/controller_command.h"
#include "common/debug_logger.h"
#include "storage/operations/controller_common.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_physical_drive_info.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;
namespace Controller = Interface::StorageMod::ArrayController;
using Statistics = Records::SENSE_MNP_STATISTICS;

/// dwSpiSpeedRules: what was negotiated on a parallel bus. The fastest bit counts.
constexpr unsigned WIDE_BIT = 0;
struct SpeedRow {
    unsigned bit;
    char const* mode;
    unsigned megatransfers;  ///< a second; twice as many bytes on a wide bus
};
constexpr SpeedRow PARALLEL_SPEEDS[] = {
    {5, Names::ATTR_VALUE_TRANSFER_MODE_ULTRA_320, 160}, {4, Names::ATTR_VALUE_TRANSFER_MODE_ULTRA_3, 80},
    {3, Names::ATTR_VALUE_TRANSFER_MODE_ULTRA_2, 40},    {2, Names::ATTR_VALUE_TRANSFER_MODE_ULTRA, 20},
    {1, Names::ATTR_VALUE_TRANSFER_MODE_FAST, 10},
};

#define KSL_COUNT(attribute, member)                                                     \
    {                                                                                    \
        Names::ATTR_NAME_MNP_##attribute, [](auto& r) { return decimalText(r.member); }, \
            KSL_MEMBER_END(SENSE_MNP_STATISTICS, member)                                 \
    }
constexpr PublishRow<Statistics> MNP_ROWS[] = {
    {Names::ATTR_NAME_MNP_SERVICE_HOURS, [](auto& r) { return decimalText(r.dwPowerOnMinutes / 60); },
     KSL_MEMBER_END(SENSE_MNP_STATISTICS, dwPowerOnMinutes)},
    KSL_COUNT(SECTORS_READ, qwSectorsRead),
    KSL_COUNT(SECTORS_WRITTEN, qwSectorsWritten),
    KSL_COUNT(HARD_READ_ERRORS, dwReadErrorsHard),
    KSL_COUNT(RETRY_RECOVERED_READ_ERRORS, dwReadErrorsRetryRecovered),
    KSL_COUNT(ECC_RECOVERED_READ_ERRORS, dwReadErrorsECCCorrected),
    KSL_COUNT(HARD_WRITE_ERRORS, dwWriteErrorsHard),
    KSL_COUNT(RETRY_RECOVERED_WRITE_ERRORS, dwWriteErrorsRetryRecovered),
    KSL_COUNT(SEEK_COUNT, dwSeekCount),
    KSL_COUNT(SEEK_ERRORS, dwSeekErrors),
    KSL_COUNT(MEDIA_FAILURES, dwMediaFailures),
    KSL_COUNT(HARDWARE_ERRORS, dwHardwareErrors),
    KSL_COUNT(SCSI_BUS_FAULTS, dwBusFaults),
    KSL_COUNT(HOT_PLUG_COUNT, dwHotPlugCount),
    KSL_COUNT(PREDICTIVE_FAILURES, dwPredictiveFailureErrors),
    KSL_COUNT(FAILED_READ_RECOVERS, dwReadRecoveryFailures),
    KSL_COUNT(FAILED_WRITE_RECOVERS, dwWriteRecoveryFailures),
    KSL_COUNT(DRQ_TIME_OUTS, dwDRQTimeouts),
    KSL_COUNT(OTHER_TIME_OUTS, dwOtherTimeouts),
    KSL_COUNT(SPIN_UP_ERRORS, dwSpinupErrors),
    KSL_COUNT(FORMAT_ERRORS, dwFormatErrors),
    KSL_COUNT(NOT_READY_ERRORS, dwNotReadyErrors),
    KSL_COUNT(ABORTED_COMMANDS, dwAbortedCommands),
    KSL_COUNT(BAD_TARGET_ERRORS, dwBadTargetErrors),
};
#undef KSL_COUNT

/// Behind wOffsetToPhysicalDriveEraseState an erase record has four bytes for each drive number.
struct EraseEntry {
    unsigned char status;
    unsigned char pattern;
    unsigned char percent;
    unsigned char reserved;
};

constexpr CodeRow ERASE_STATUSES[] = {
    {0, Names::ATTR_VALUE_ERASE_STATUS_NONE},        {1, Names::ATTR_VALUE_ERASE_STATUS_QUEUED},
    {2, Names::ATTR_VALUE_ERASE_STATUS_IN_PROGRESS}, {3, Names::ATTR_VALUE_ERASE_STATUS_COMPLETED},
    {4, Names::ATTR_VALUE_ERASE_STATUS_FAILED},
};
constexpr CodeRow ERASE_PATTERNS[] = {
    {1, Names::ATTR_VALUE_ERASE_PATTERN_ZERO},
    {2, Names::ATTR_VALUE_ERASE_PATTERN_RANDOM_ZERO},
    {3, Names::ATTR_VALUE_ERASE_PATTERN_RANDOM_RANDOM_ZERO},
    {4, Names::ATTR_VALUE_ERASE_PATTERN_CRYPTO_SCRAMBLE},
    {5, Names::ATTR_VALUE_ERASE_PATTERN_BLOCK_ERASE},
    {6, Names::ATTR_VALUE_ERASE_PATTERN_OVERWRITE},
};
constexpr unsigned WHOLE_PERCENT = 100;

using SenseErase = SenseControllerCommand<SenseDriveEraseProgressTrait>;

/// False, with a line in the log where the reply doesn't hold what it tells, when nothing is known.
bool findEraseEntry(SenseErase const& erase, unsigned number, EraseEntry& entry) {
    Records::ERASE_STATE const& record = erase.record();
    std::size_t const offset = record.wOffsetToPhysicalDriveEraseState;
    if (offset == 0 || number >= record.wMaximumPhysicalDevicesSupported) return false;
    std::size_t const end = offset + (number + 1) * sizeof entry;
    if (end > erase.receivedLength() || end > erase.buffer().size()) {
        Common::DebugLogger::LogCommand(
            "Erase state of drive %u refused: it ends at %zu in a reply of %u bytes", number, end,
            erase.receivedLength());
        return false;
    }
    std::memcpy(&entry, erase.buffer().data() + end - sizeof entry, sizeof entry);
    return true;
}

}  // namespace

void ReadParallelPhysicalDriveInfo(Core::Device& drive, DriveReply const& reply) {
    drive.Clear(Names::ATTR_NAME_TRANSFER_MODE);
    drive.Clear(Names::ATTR_NAME_TRANSFER_RATE);
    Records::PHYSICAL_DRIVE_STATUS const& record = *reply.record;
    if (!drive.hasAttributeAndIs(Names::ATTR_NAME_INTERFACE, Names::ATTR_VALUE_INTERFACE_PARALLEL_SCSI)) {
        return;
    }
    for (SpeedRow const& row : PARALLEL_SPEEDS) {
        if ((record.dwSpiSpeedRules >> row.bit & 1) == 0) continue;
        unsigned const width = (record.dwSpiSpeedRules >> WIDE_BIT & 1) != 0 ? 2 : 1;
        publish(drive, Names::ATTR_NAME_TRANSFER_MODE, row.mode);
        publish(drive, Names::ATTR_NAME_TRANSFER_RATE, decimalText(row.megatransfers * width));
        return;
    }
    publish(drive, Names::ATTR_NAME_TRANSFER_MODE, Names::ATTR_VALUE_TRANSFER_MODE_ASYNCHRONOUS);
}

void ReadMNPInfo(Common::shared_ptr<Core::Device> const& controller, Schema::PhysicalDrive& drive) {
    // Controllers of this family monitor nothing, as they have no status of it either.
    if (!controller ||
        controller->hasAttributeAndIs(Controller::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY,
                                      Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR)) {
        return;
    }
    SenseMNPStatistics statistics(drive.physicalDriveNumber());
    statistics.SetNumMaxRetries(OPTIONAL_REPEATS);
    BMICDevice& commands = drive;
    unsigned const received = statistics(commands) ? statistics.receivedLength() : 0;
    publishRows(drive, MNP_ROWS, statistics.record(), received);
}

void readEraseProgress(Schema::PhysicalDrive& drive, DriveReply const& reply) {
    for (char const* attribute : {Names::ATTR_NAME_ERASE_STATUS, Names::ATTR_NAME_ERASE_PATTERN,
                                  Names::ATTR_NAME_ERASE_PERCENT_COMPLETE}) {
        drive.Clear(attribute);
    }
    if (!reply.controllerHas(Controller::ATTR_NAME_DRIVE_ERASE_SUPPORTED,
                             Controller::ATTR_VALUE_DRIVE_ERASE_SUPPORTED_TRUE)) {
        return;
    }
    SenseErase erase;
    erase.SetNumMaxRetries(OPTIONAL_REPEATS);
    BMICDevice& commands = drive;
    EraseEntry entry;
    if (!erase(commands) || !holdsWhole(erase, "Erase state") ||
        !findEraseEntry(erase, drive.physicalDriveNumber(), entry)) {
        return;
    }
    char const* const status = valueOf(ERASE_STATUSES, entry.status, nullptr);
    if (status == nullptr || entry.percent > WHOLE_PERCENT) {
        Common::DebugLogger::LogCommand(
            "Erase state of drive %u refused: status %u and %u percent, at most 4 and 100 expected",
            static_cast<unsigned>(drive.physicalDriveNumber()), static_cast<unsigned>(entry.status),
            static_cast<unsigned>(entry.percent));
        return;
    }
    publish(drive, Names::ATTR_NAME_ERASE_STATUS, status);
    if (entry.status == 0) return;
    publishOrClear(drive, Names::ATTR_NAME_ERASE_PATTERN, valueOf(ERASE_PATTERNS, entry.pattern, ""));
    publish(drive, Names::ATTR_NAME_ERASE_PERCENT_COMPLETE, decimalText(entry.percent));
}

}  // namespace Operations
