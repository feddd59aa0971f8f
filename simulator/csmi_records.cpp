#include "simulator/csmi_records.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace simulator {

namespace {

constexpr std::size_t HEADER = 20;
constexpr std::size_t SMP_FRAME = 1020;
constexpr std::size_t SSP_FIXED = 360;
constexpr std::uint64_t LARGEST_TRANSFER = 16 * 1024 * 1024;

struct Row {
    std::uint32_t number;
    char const* name;
    std::size_t size;  ///< of the record without data
    bool answers;      ///< whether what follows the header is a reply
};

constexpr Row ROWS[] = {
    {CSMI_DRIVER_INFO, "CSMI DRIVER INFORMATION", 196, true},
    {CSMI_CONFIGURATION, "CSMI CONTROLLER CONFIGURATION", 200, true},
    {CSMI_STATUS, "CSMI CONTROLLER STATUS", 56, true},
    {CSMI_PHYS, "CSMI PHY INFORMATION", 2072, true},
    {CSMI_SMP, "CSMI SMP PASS-THROUGH", 2084, false},
    {CSMI_SSP, "CSMI SSP PASS-THROUGH", SSP_FIXED, false},
    {CSMI_PAUSE, "CSMI PAUSE BACKGROUND ACTIVITY", 92, false},
    {CSMI_RESUME, "CSMI RESUME BACKGROUND ACTIVITY", 92, false},
};

Row const* findRow(std::uint32_t number) {
    for (Row const& row : ROWS)
        if (row.number == number) return &row;
    return nullptr;
}

std::string expected(char const* what, std::uint64_t found, std::uint64_t wanted) {
    return std::string(what) + " " + std::to_string(found) + ", expected " + std::to_string(wanted);
}

int decodeSsp(std::uint8_t const* record, Command& command, std::string& reason) {
    std::size_t const length = record[40];
    if (length == 0 || length > 16) {
        reason = "a command block of " + std::to_string(length) + " bytes, expected 1 to 16";
        return EINVAL;
    }
    command.block.assign(record + 44, record + 44 + length);
    command.phy = record[20];
    std::copy_n(record + 24, 8, command.address.begin());
    switch (std::uint64_t const flags = getLittle(record + 60, 4)) {
        case 0:
        case 4:
            break;
        case 1:
            command.direction = Direction::In;
            break;
        case 2:
            command.direction = Direction::Out;
            break;
        default:
            reason = expected("flags", flags, 0) + ", 1, 2 or 4";
            return EINVAL;
    }
    command.bufferSize = getLittle(record + 88, 4);
    if (command.direction == Direction::Out)
        command.dataOut.assign(record + SSP_FIXED, record + SSP_FIXED + command.bufferSize);
    return 0;
}

void encodeSsp(std::uint8_t* record, Reply const& reply) {
    std::memset(record + 92, 0, SSP_FIXED - 92);
    record[97] = reply.scsiStatus;
    putLittle(record + 356, 4, reply.data.size());
    std::copy(reply.data.begin(), reply.data.end(), record + SSP_FIXED);
    if (reply.scsiStatus != CHECK_CONDITION) return;
    record[96] = 2;
    putBig(record + 98, 2, 18);
    record[100] = 0x70;  // fixed format (SPC)
    record[102] = reply.sense.key;
    record[107] = 10;
    record[112] = reply.sense.asc;
    record[113] = reply.sense.ascq;
}

}  // namespace

char const* csmiName(std::uint32_t number) {
    Row const* const row = findRow(number);
    return row != nullptr ? row->name : nullptr;
}

std::uint32_t csmiController(void const* record) {
    return static_cast<std::uint32_t>(getLittle(static_cast<std::uint8_t const*>(record), 4));
}

int decodeCsmi(std::uint32_t number, void const* given, Command& command, std::string& reason) {
    auto const* const record = static_cast<std::uint8_t const*>(given);
    Row const& row = *findRow(number);
    command.carrier = Carrier::Csmi;
    command.csmi = number;
    std::uint64_t size = row.size;
    if (number == CSMI_SSP) size += getLittle(record + 88, 4);
    if (std::uint64_t const length = getLittle(record + 4, 4); length != size || size > LARGEST_TRANSFER) {
        reason =
            expected("a record length of", length, size) + " and at most " + std::to_string(LARGEST_TRANSFER);
        return EINVAL;
    }
    if (std::uint64_t const seconds = getLittle(record + 12, 4); seconds != 60) {
        reason = expected("a time-out of", seconds, 60);
        return EINVAL;
    }
    bool const writes = number == CSMI_SSP && getLittle(record + 60, 4) == 2;
    if (std::uint64_t const direction = getLittle(record + 16, 2); direction != (writes ? 1 : 0)) {
        reason = expected("direction", direction, writes ? 1 : 0);
        return EINVAL;
    }
    command.timeoutMilliseconds = 60000;
    if (row.answers) {
        command.direction = Direction::In;
        command.bufferSize = row.size - HEADER;
    } else if (number == CSMI_SMP) {
        std::uint64_t const length = getLittle(record + 32, 4);
        if (length < 4 || length > SMP_FRAME || record[36] != 0x40) {
            reason = "an SMP frame of " + std::to_string(length) + " bytes and type " +
                     std::to_string(record[36]) + ", expected 4 to 1020 bytes and type 64";
            return EINVAL;
        }
        command.block.assign(record + 36, record + 36 + length);
        command.phy = record[20];
        std::copy_n(record + 24, 8, command.address.begin());
        command.direction = Direction::In;
        command.bufferSize = SMP_FRAME;
    } else if (number == CSMI_SSP) {
        return decodeSsp(record, command, reason);
    } else {
        std::copy_n(record + HEADER, 8, command.address.begin());
    }
    return 0;
}

void encodeCsmi(std::uint32_t number, void* given, Command const& command, Reply const& whole) {
    auto* const record = static_cast<std::uint8_t*>(given);
    Row const& row = *findRow(number);
    Reply reply = whole;
    reply.data.resize(std::min(reply.data.size(), command.room()));
    bool const done = reply.commandStatus == COMMAND_DONE || reply.commandStatus == COMMAND_UNDERRUN ||
                      reply.commandStatus == COMMAND_TARGET_STATUS;
    putLittle(record + 8, 4, done ? 0 : reply.commandStatus);
    if (row.answers) {
        std::memset(record + HEADER, 0, row.size - HEADER);
        std::copy(reply.data.begin(), reply.data.end(), record + HEADER);
    } else if (number == CSMI_SMP) {
        std::memset(record + 1056, 0, row.size - 1056);
        putLittle(record + 1060, 4, reply.data.size());
        std::copy(reply.data.begin(), reply.data.end(), record + 1064);
    } else if (number == CSMI_SSP) {
        encodeSsp(record, reply);
    }
}

}  // namespace simulator
