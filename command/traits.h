#pragma once

#include <span>
#include <string_view>

#include "command/command_table.h"
#include "command/records/all_records.h"
#include "sysmod/transfer_type.h"

// Whom a command is addressed to.
enum class EnAddressed { Controller, LogicalDrive };

// Directions that a command is sent with.
enum class EnDirection { In, Out, NoneOrIn };

// Stands for "no total length in the reply" in a command's row.
inline constexpr unsigned FIXED_SIZE = 0xFFFFFFFF;

// A multi-byte number, or an array of them, in a record.
struct MemberSpot {
    unsigned offset;
    unsigned width;  // bytes of one number: 2, 4 or 8
    unsigned count;
};

// The row of a command, for those who go by name or code at run time.
struct CommandRow {
    unsigned char code;
    char const* trait;
    EnAddressed addressed;
    EnDirection direction;
    char const* record;
    unsigned defaultSize;
    unsigned totalLengthOffset;  // or FIXED_SIZE
};

std::span<CommandRow const> commandTable();

// Turns the numbers at `spots` between wire and host order: from the wire for In, to the wire for any other
// transfer type. A spot that doesn't lie within `size` bytes is refused with a log line.
void ProcessMembers(unsigned char* record, unsigned size, std::span<MemberSpot const> spots,
                    Interface::SysMod::Command::EnTransferType transferType);

// Whether a record has dwTotalStructureLength at `offset`; FIXED_SIZE asks nothing.
constexpr bool hasTotalLengthAt(std::span<Records::MemberRow const> members, unsigned offset) {
    if (offset == FIXED_SIZE) return true;
    for (Records::MemberRow const& member : members) {
        if (member.offset == offset) return std::string_view(member.name) == "dwTotalStructureLength";
    }
    return false;
}

// Each row makes one class, with
//   Record               the wire record
//   commandByte, defaultSize, totalLengthOffset, addressed, direction   the row's columns
//   convertedMembers()   the members that ProcessBuffer turns. All multi-byte members, except that three of
//                        the identify commands turn only the members that their users expect to be turned;
//                        the others of those records are read as little-endian values by their users.
//   ProcessBuffer(record, transferType)   turns them: from the wire for In, to the wire for any other
#define KSL_BMIC_TRAIT(code, Trait, addressedTo, directionOf, record, size, total)                           \
    struct Trait {                                                                                           \
        using Record = Records::record;                                                                      \
        static constexpr unsigned char commandByte = code;                                                   \
        static constexpr unsigned defaultSize = size;                                                        \
        static constexpr unsigned totalLengthOffset = total;                                                 \
        static constexpr EnAddressed addressed = EnAddressed::addressedTo;                                   \
        static constexpr EnDirection direction = EnDirection::directionOf;                                   \
        static std::span<MemberSpot const> convertedMembers();                                               \
        static void ProcessBuffer(Record* buffer, Interface::SysMod::Command::EnTransferType transferType) { \
            ProcessMembers(reinterpret_cast<unsigned char*>(buffer), sizeof(Record), convertedMembers(),     \
                           transferType);                                                                    \
        }                                                                                                    \
        static_assert(sizeof(Record) == defaultSize, #Trait ": the buffer is not the record");               \
        static_assert(hasTotalLengthAt(Records::RecordInfo<Record>::members, totalLengthOffset),             \
                      #Trait ": no total length there");                                                     \
    };
KSL_BMIC_COMMANDS(KSL_BMIC_TRAIT)
#undef KSL_BMIC_TRAIT
