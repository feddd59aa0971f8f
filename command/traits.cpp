#include "command/traits.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

#include "command/endian.h"
#include "common/debug_logger.h"

using Interface::SysMod::Command::EnTransferType;
using Records::MemberRow;

namespace {

constexpr CommandRow COMMAND_ROWS[] = {
#define KSL_ROW(code, Trait, addressed, direction, record, size, total) \
    {code, #Trait, EnAddressed::addressed, EnDirection::direction, #record, size, total},
    KSL_BMIC_COMMANDS(KSL_ROW)
#undef KSL_ROW
};

// The three traits that turn only some of their record's multi-byte members.
constexpr std::string_view IDENTIFY_CONTROLLER_MEMBERS[] = {"dwConfigurationSignature",
                                                            "dwDrivePresentMap",
                                                            "dwExternalDriveMap",
                                                            "dwBoardID",
                                                            "dwNonDiskMap",
                                                            "dwMaximumBlocks",
                                                            "dwControllerClock",
                                                            "wTaskFlags",
                                                            "wTotalAvailableMemorySize",
                                                            "wMaximumPhysicalDrivesPerLogicalUnit",
                                                            "wHostInitializationCode",
                                                            "wKelpImageSize",
                                                            "wOptionRomFWBuild"};
constexpr std::string_view SENSE_BUS_PARAMETERS_MEMBERS[] = {"wConnectionFlags"};
constexpr std::string_view IDENTIFY_PHYSICAL_DRIVE_MEMBERS[] = {
    "wBlockSize", "dwTotalBlocks",        "dwReservedBlocks", "dwSpiSpeedRules",
    "dwRPM",      "qwBIGTotalBlockCount", "qwRISStartingLBA", "dwRISSize",
    "wPHYCount",  "wCurrentQDepthLimit",  "wPowerOnHours",    "wPercentEnduranceUsed"};

struct Selection {
    std::string_view trait;
    std::span<std::string_view const> members;
};

constexpr Selection SELECTIONS[] = {
    {"IdentifyControllerTrait", IDENTIFY_CONTROLLER_MEMBERS},
    {"SenseBusParametersTrait", SENSE_BUS_PARAMETERS_MEMBERS},
    {"IdentifyPhysicalDriveTrait", IDENTIFY_PHYSICAL_DRIVE_MEMBERS},
};

bool isTurned(std::string_view trait, std::string_view member) {
    for (Selection const& selection : SELECTIONS) {
        if (selection.trait != trait) continue;
        return std::find(selection.members.begin(), selection.members.end(), member) !=
               selection.members.end();
    }
    return true;
}

// In record order, through the records within the record.
void collect(std::string_view trait, std::span<MemberRow const> members, unsigned base,
             std::vector<MemberSpot>& spots) {
    for (MemberRow const& member : members) {
        if (!isTurned(trait, member.name)) continue;
        unsigned const count = member.size / member.elementSize;
        if (!member.nested.empty()) {
            for (unsigned i = 0; i < count; ++i) {
                collect(trait, member.nested, base + member.offset + i * member.elementSize, spots);
            }
        } else if (member.elementSize > 1) {
            spots.push_back({base + member.offset, member.elementSize, count});
        }
    }
}

std::vector<MemberSpot> membersToTurn(std::string_view trait, std::span<MemberRow const> members) {
    std::vector<MemberSpot> spots;
    collect(trait, members, 0, spots);
    return spots;
}

template <class T>
void turn(unsigned char* at, unsigned count, bool fromWire) {
    for (unsigned i = 0; i < count; ++i, at += sizeof(T)) {
        T value;
        std::memcpy(&value, at, sizeof(value));
        value = fromWire ? ConvertLittleEndianToValue(value) : ConvertValueToLittleEndian(value);
        std::memcpy(at, &value, sizeof(value));
    }
}

}  // namespace

std::span<CommandRow const> commandTable() {
    return COMMAND_ROWS;
}

void ProcessMembers(unsigned char* record, unsigned size, std::span<MemberSpot const> spots,
                    EnTransferType transferType) {
    bool const fromWire = transferType == EnTransferType::In;
    for (MemberSpot const& spot : spots) {
        unsigned long long const end = spot.offset + 1ULL * spot.width * spot.count;
        if (end > size) {
            Common::DebugLogger::LogCommand("Member at %u refused: it ends at %llu in a record of %u bytes",
                                            spot.offset, end, size);
            continue;
        }
        unsigned char* const at = record + spot.offset;
        switch (spot.width) {
            case 2:
                turn<std::uint16_t>(at, spot.count, fromWire);
                break;
            case 4:
                turn<std::uint32_t>(at, spot.count, fromWire);
                break;
            case 8:
                turn<std::uint64_t>(at, spot.count, fromWire);
                break;
            default:
                break;
        }
    }
}

#define KSL_CONVERTED_MEMBERS(code, Trait, addressed, direction, record, size, total) \
    std::span<MemberSpot const> Trait::convertedMembers() {                           \
        static std::vector<MemberSpot> const s_spots =                                \
            membersToTurn(#Trait, Records::RecordInfo<Record>::members);              \
        return s_spots;                                                               \
    }
KSL_BMIC_COMMANDS(KSL_CONVERTED_MEMBERS)
#undef KSL_CONVERTED_MEMBERS
