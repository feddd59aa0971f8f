#include "storage/operations/read_ssd_info.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <vector>

#include "command/concrete_devices.h"
#include "command/device_command_return.h"
#include "command/scsi/page_commands.h"
#include "command/scsi/sat_commands.h"
#include "common/compound_list.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/operations/publish.h"
#include "storage/operations/wear_pages.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;
using Bytes = std::vector<unsigned char>;
using Core::OperationReturn;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr char const* WEAR_ATTRIBUTES[] = {
    Names::ATTR_NAME_EXINFO_SUPPORTED_LOG_PAGE_LIST,
    Names::ATTR_NAME_EXINFO_POWER_ON_HOURS,
    Names::ATTR_NAME_EXINFO_POWER_CYCLES,
    Names::ATTR_NAME_EXINFO_SSD_UTILIZATION,
    Names::ATTR_NAME_EXINFO_SSD_REMAINING_DAYS_UNTIL_WEAROUT,
    Names::ATTR_NAME_EXINFO_HAS_SMART_TRIP_SSD_WEAROUT,
    Names::ATTR_NAME_EXINFO_LOG_FULL,
    Names::ATTR_NAME_EXINFO_HAS_56DAY_WARNING,
    Names::ATTR_NAME_EXINFO_HAS_UTILIZATION_WARNING,
};

// SCSI log pages. That of workload and wear is the drives' own; the other is SPC's.
constexpr unsigned char WEAR_PAGE = 0x36;
constexpr unsigned char EXCEPTIONS_PAGE = 0x2F;

/// Parameters of the page of wear that are numbers.
struct NumberRow {
    unsigned parameter;
    char const* attribute;
    std::uint64_t unknown;  ///< stands for a number that isn't known
};
constexpr std::uint64_t NO_UNKNOWN = ~std::uint64_t{0};
constexpr NumberRow WEAR_NUMBERS[] = {
    {1, Names::ATTR_NAME_EXINFO_SSD_UTILIZATION, NO_UNKNOWN},
    {2, Names::ATTR_NAME_EXINFO_POWER_ON_HOURS, NO_UNKNOWN},
    {3, Names::ATTR_NAME_EXINFO_SSD_REMAINING_DAYS_UNTIL_WEAROUT, 0xFFFF},
    {4, Names::ATTR_NAME_EXINFO_POWER_CYCLES, NO_UNKNOWN},
};

/// Bits of its parameter of flags.
constexpr unsigned FLAGS_PARAMETER = 5;
struct FlagBitRow {
    unsigned bit;
    char const* attribute;
    char const* whenSet;
    char const* whenClear;
};
constexpr FlagBitRow WEAR_FLAGS[] = {
    {0, KSL_FACT(EXINFO_LOG_FULL)},
    {1, KSL_FACT(EXINFO_HAS_56DAY_WARNING)},
    {2, KSL_FACT(EXINFO_HAS_UTILIZATION_WARNING)},
};

// Parameters of the exceptions page: the cause that the drive reports, and the endurance used.
constexpr unsigned CAUSE_PARAMETER = 0;
constexpr unsigned ENDURANCE_PARAMETER = 4;
/// SPC: a predicted failure, because the media's endurance is used up.
constexpr unsigned char ASC_FAILURE_PREDICTED = 0x5D;
constexpr unsigned char ASCQ_ENDURANCE_LIMIT_MET = 0x73;

// ATA logs and the pages of device statistics (ACS).
constexpr unsigned char LOG_DIRECTORY = 0x00;
constexpr unsigned char DIRECTORY_VERSION = 1;
constexpr unsigned char STATISTICS_LOG = 0x04;
constexpr unsigned LOGS = 256;
constexpr unsigned WORN_OUT_PERCENT = 100;
struct StatisticRow {
    unsigned char page;
    unsigned offset;
    char const* attribute;
};
constexpr StatisticRow STATISTICS[] = {
    {1, 8, Names::ATTR_NAME_EXINFO_POWER_CYCLES},
    {1, 16, Names::ATTR_NAME_EXINFO_POWER_ON_HOURS},
    {7, 8, Names::ATTR_NAME_EXINFO_SSD_UTILIZATION},
};

void addToList(Common::CompoundList& list, unsigned number) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", number);
    list.Add(text);
}

void publishWornOut(Core::Device& drive, bool isWornOut) {
    publish(drive, Names::ATTR_NAME_EXINFO_HAS_SMART_TRIP_SSD_WEAROUT,
            isWornOut ? Names::ATTR_VALUE_EXINFO_HAS_SMART_TRIP_SSD_WEAROUT_TRUE
                      : Names::ATTR_VALUE_EXINFO_HAS_SMART_TRIP_SSD_WEAROUT_FALSE);
}

void publishWearPage(Core::Device& drive, std::span<unsigned char const> page) {
    if (page.empty() || (page[0] & 0x3F) != WEAR_PAGE) return;
    for (NumberRow const& row : WEAR_NUMBERS) {
        auto const number = logParameter(page, row.parameter);
        if (number && *number != row.unknown) publish(drive, row.attribute, decimalText(*number));
    }
    auto const flags = logParameter(page, FLAGS_PARAMETER);
    if (!flags) return;
    for (FlagBitRow const& row : WEAR_FLAGS)
        publish(drive, row.attribute, (*flags >> row.bit & 1) != 0 ? row.whenSet : row.whenClear);
}

/// As much as came of a page of a log; empty when it isn't answered.
Bytes readLog(Core::Device& drive, bool isBehindController, unsigned char log, unsigned char page,
              OperationReturn& result) {
    if (isBehindController) {
        SCSIATAReadLogExt command(log, page);
        DeviceCommandReturn::executeCommand(command, dynamic_cast<ConcreteSCSIDevice&>(drive), result);
        return result ? Bytes(command.received().begin(), command.received().end()) : Bytes();
    }
    ATAReadLogExt command(log, page);
    DeviceCommandReturn::executeCommand(command, dynamic_cast<ConcreteATADevice&>(drive), result);
    if (!result) return Bytes();
    return Bytes(command.data().begin(),
                 command.data().begin() + static_cast<std::ptrdiff_t>(command.receivedLength()));
}

}  // namespace

Core::FilterReturn FilterExtendedInfo::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (device->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE,
                                  Names::ATTR_VALUE_TYPE_PHYSICAL_DRIVE) &&
        !device->hasAttributeAndIs(Names::ATTR_NAME_EXINFO_SUPPORTED,
                                   Names::ATTR_VALUE_EXINFO_SUPPORTED_TRUE)) {
        verdict =
            Interface::TOLKMod::UnavailableOperationReason::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
    }
    return verdict;
}

OperationReturn ReadSSDInfo::visit(Schema::PhysicalDrive& drive) {
    return readBy(drive.getDevicePtr(), true);
}

OperationReturn ReadSSDInfo::visit(Schema::NonVaultlinePhysicalDrive& drive) {
    return readBy(drive.getDevicePtr(), false);
}

OperationReturn ReadSSDInfo::readBy(DevicePointer drive, bool isBehindController) {
    if (!drive) return OperationReturn(Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE);
    for (char const* attribute : WEAR_ATTRIBUTES)
        drive->Clear(attribute);
    return Schema::isSata(*drive) ? PublishLogInfoSATA(drive, isBehindController) : PublishLogInfoSAS(drive);
}

OperationReturn ReadSSDInfo::PublishLogInfoSAS(DevicePointer drive) {
    OperationReturn result;
    SCSIDevice& device = dynamic_cast<ConcreteSCSIDevice&>(*drive);
    ReadSupportedLogPages supported;
    DeviceCommandReturn::executeCommand(supported, device, result);
    if (!result) return result;
    Common::CompoundList list(false);
    for (unsigned char const page : supported.pages())
        addToList(list, page);
    publishOrClear(*drive, Names::ATTR_NAME_EXINFO_SUPPORTED_LOG_PAGE_LIST, list.toString());
    ReadWLLPage wear;
    if (supported.supports(WEAR_PAGE) && wear(device)) publishWearPage(*drive, wear.received());
    if (!supported.supports(EXCEPTIONS_PAGE)) return result;
    ReadWLLSmartPageParam0 cause;
    if (cause(device)) {
        auto const bytes = logParameterBytes(cause.received(), CAUSE_PARAMETER);
        if (bytes.size() >= 2) {
            publishWornOut(*drive, bytes[0] == ASC_FAILURE_PREDICTED && bytes[1] == ASCQ_ENDURANCE_LIMIT_MET);
        }
    }
    if (drive->hasAttribute(Names::ATTR_NAME_EXINFO_SSD_UTILIZATION)) return result;
    ReadWLLSmartPageParam4 endurance;
    if (endurance(device)) {
        auto const percent = logParameter(endurance.received(), ENDURANCE_PARAMETER);
        if (percent) publish(*drive, Names::ATTR_NAME_EXINFO_SSD_UTILIZATION, decimalText(*percent));
    }
    return result;
}

OperationReturn ReadSSDInfo::PublishLogInfoSATA(DevicePointer drive, bool isBehindController) {
    OperationReturn result;
    Bytes const directory = readLog(*drive, isBehindController, LOG_DIRECTORY, 0, result);
    if (!result) return result;
    // A taskfile has no outcome: what the drive refused comes back empty, or as zeros.
    unsigned const version =
        directory.size() < 2 ? 0 : directory[0] | static_cast<unsigned>(directory[1]) << 8;
    if (version != DIRECTORY_VERSION) {
        Common::DebugLogger::LogCommand("Log directory of a drive refused: version %u, %u expected", version,
                                        static_cast<unsigned>(DIRECTORY_VERSION));
        return OperationReturn(Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE);
    }
    Common::CompoundList list(false);
    bool hasStatistics = false;
    // A word for each log tells its pages; the first word is the directory's version.
    for (unsigned log = 1; log < LOGS && 2 * log + 1 < directory.size(); ++log) {
        if (directory[2 * log] == 0 && directory[2 * log + 1] == 0) continue;
        addToList(list, log);
        hasStatistics = hasStatistics || log == STATISTICS_LOG;
    }
    publishOrClear(*drive, Names::ATTR_NAME_EXINFO_SUPPORTED_LOG_PAGE_LIST, list.toString());
    if (!hasStatistics) return result;
    Bytes page;
    unsigned char number = 0;
    for (StatisticRow const& row : STATISTICS) {
        if (row.page != number) {
            number = row.page;
            OperationReturn outcome;
            page = readLog(*drive, isBehindController, STATISTICS_LOG, number, outcome);
        }
        auto const value = deviceStatistic(page, row.page, row.offset);
        if (!value) continue;
        publish(*drive, row.attribute, decimalText(*value));
        if (row.attribute == Names::ATTR_NAME_EXINFO_SSD_UTILIZATION) {
            publishWornOut(*drive, *value >= WORN_OUT_PERCENT);
        }
    }
    return result;
}

}  // namespace Operations
