#include "simulator/kernel_records.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "simulator/csmi_records.h"

namespace simulator {

namespace {

/// More than any command of this family moves; a larger length is a caller's mistake.
constexpr std::uint64_t LARGEST_TRANSFER = 16 * 1024 * 1024;
/// The driver's scatter list: a big transfer has no more chunks than this.
constexpr std::uint64_t MOST_CHUNKS = 32;
constexpr std::size_t SENSE_SIZE = 18;

struct NamedRequest {
    std::uint32_t number;
    Request request;
    char const* name;
};

constexpr NamedRequest REQUESTS[] = {
    {0x2285, Request::ScsiGeneric, "SG_IO"},
    {0xC058420B, Request::PassThrough, "XQRTH_PASSTHRU"},
    {0xC0604212, Request::BigPassThrough, "XQRTH_BIG_PASSTHRU"},
    {0x420E, Request::RegisterNewDisks, "XQRTH_REGNEWD"},
    {0xC054420B, Request::Unknown, "XQRTH_PASSTHRU of a 32-bit program"},
    {0xC0584212, Request::Unknown, "XQRTH_BIG_PASSTHRU of a 32-bit program"},
};

void* pointerAt(std::uint8_t const* place) {
    void* pointer = nullptr;
    std::memcpy(&pointer, place, sizeof pointer);
    return pointer;
}

/// Fixed-format sense data (SPC): response code 0x70, key, additional length, code and qualifier.
void putSense(std::uint8_t* sense, Sense const& codes) {
    std::memset(sense, 0, SENSE_SIZE);
    sense[0] = 0x70;
    sense[2] = codes.key;
    sense[7] = SENSE_SIZE - 8;
    sense[12] = codes.asc;
    sense[13] = codes.ascq;
}

int takeData(Command& command, void const* data, std::string& reason) {
    if (command.bufferSize > LARGEST_TRANSFER) {
        reason = "a buffer of " + std::to_string(command.bufferSize) + " bytes, at most " +
                 std::to_string(LARGEST_TRANSFER) + " are taken";
        return EINVAL;
    }
    if (command.direction == Direction::None || command.bufferSize == 0) return 0;
    if (data == nullptr) {
        reason = "no buffer for " + std::to_string(command.bufferSize) + " bytes";
        return EFAULT;
    }
    if (command.direction != Direction::In) {
        auto const* bytes = static_cast<std::uint8_t const*>(data);
        command.dataOut.assign(bytes, bytes + command.bufferSize);
    }
    return 0;
}

int decodeScsiGeneric(std::uint8_t const* record, Command& command, std::string& reason) {
    command.carrier = Carrier::ScsiGeneric;
    if (getLittle(record, 4) != 'S') {
        reason = "interface id " + std::to_string(getLittle(record, 4)) + ", expected 83 ('S')";
        return ENOSYS;
    }
    switch (static_cast<std::int32_t>(getLittle(record + 4, 4))) {
        case -1:
            command.direction = Direction::None;
            break;
        case -2:
            command.direction = Direction::Out;
            break;
        case -3:
            command.direction = Direction::In;
            break;
        case -4:
            command.direction = Direction::Both;
            break;
        default:
            reason = "direction " + std::to_string(static_cast<std::int32_t>(getLittle(record + 4, 4))) +
                     ", expected -1 to -4";
            return EINVAL;
    }
    std::size_t const length = record[8];
    if (length < 6 || length > 16) {
        reason = "a command block of " + std::to_string(length) + " bytes, expected 6 to 16";
        return EMSGSIZE;
    }
    if (getLittle(record + 10, 2) != 0) {
        reason = "an iovec list, which this node doesn't take";
        return EINVAL;
    }
    auto const* block = static_cast<std::uint8_t const*>(pointerAt(record + 24));
    if (block == nullptr) {
        reason = "no command block";
        return EFAULT;
    }
    command.block.assign(block, block + length);
    command.bufferSize = getLittle(record + 12, 4);
    command.timeoutMilliseconds = getLittle(record + 40, 4);
    return takeData(command, pointerAt(record + 16), reason);
}

int decodePassThrough(Request request, std::uint8_t const* record, Command& command, std::string& reason) {
    command.carrier = Carrier::PassThrough;
    std::copy_n(record, 8, command.address.begin());
    std::size_t const length = record[8];
    if (length == 0 || length > 16) {
        reason = "a command block of " + std::to_string(length) + " bytes, expected 1 to 16";
        return EINVAL;
    }
    command.block.assign(record + 12, record + 12 + length);
    unsigned const type = record[9];
    command.message = (type & 7) == 1;
    command.attribute = static_cast<std::uint8_t>(type >> 3 & 7);
    if ((type & 7) > 1 || type >> 6 == 3) {
        reason = "type byte " + std::to_string(type) + ": request type 0 or 1 and direction 0 to 2 expected";
        return EINVAL;
    }
    command.direction = type >> 6 == 2 ? Direction::In : type >> 6 == 1 ? Direction::Out : Direction::None;
    command.timeoutMilliseconds = getLittle(record + 10, 2) * 1000;
    if (request == Request::PassThrough) {
        command.bufferSize = getLittle(record + 76, 2);
        return takeData(command, pointerAt(record + 80), reason);
    }
    command.bufferSize = getLittle(record + 80, 4);
    std::uint64_t const chunk = getLittle(record + 76, 4);
    if (chunk == 0 || (command.bufferSize + chunk - 1) / chunk > MOST_CHUNKS) {
        reason = "chunks of " + std::to_string(chunk) + " bytes for " + std::to_string(command.bufferSize) +
                 ": at most " + std::to_string(MOST_CHUNKS) + " chunks are taken";
        return EINVAL;
    }
    return takeData(command, pointerAt(record + 88), reason);
}

void encodeScsiGeneric(std::uint8_t* record, Reply const& reply, std::size_t residual) {
    // The command status of the pass-through has no place here: a command that failed without a SCSI status
    // shows as a host error (DID_ERROR).
    bool const failed = reply.scsiStatus == 0 && !reply.good();
    bool const checked = reply.scsiStatus == CHECK_CONDITION;
    record[64] = reply.scsiStatus;
    record[65] = static_cast<std::uint8_t>(reply.scsiStatus >> 1 & 0x1F);
    record[66] = 0;
    record[67] = 0;
    putLittle(record + 68, 2, failed ? 7 : 0);
    putLittle(record + 70, 2, checked ? 8 : 0);
    putLittle(record + 72, 4, residual);
    putLittle(record + 76, 4, reply.microseconds / 1000);
    putLittle(record + 80, 4, failed || reply.scsiStatus != 0 ? 1 : 0);
    void* sense = pointerAt(record + 32);
    if (!checked || sense == nullptr) return;
    std::uint8_t bytes[SENSE_SIZE];
    putSense(bytes, reply.sense);
    record[67] = static_cast<std::uint8_t>(std::min<std::size_t>(record[9], SENSE_SIZE));
    std::memcpy(sense, bytes, record[67]);
}

void encodePassThrough(std::uint8_t* record, Reply const& reply, std::size_t residual) {
    std::memset(record + 28, 0, 48);
    record[28] = reply.scsiStatus;
    putLittle(record + 30, 2, reply.commandStatus);
    putLittle(record + 32, 4, residual);
    if (reply.scsiStatus != CHECK_CONDITION) return;
    record[29] = SENSE_SIZE;
    putSense(record + 44, reply.sense);
}

}  // namespace

Request requestOf(unsigned long number) {
    auto const* const end = std::end(REQUESTS);
    auto const* const row = std::find_if(REQUESTS, end, [&](NamedRequest const& named) {
        return named.number == static_cast<std::uint32_t>(number);
    });
    if (row != end) return row->request;
    return csmiName(static_cast<std::uint32_t>(number)) != nullptr ? Request::Csmi : Request::Unknown;
}

std::string requestName(unsigned long number) {
    auto const value = static_cast<std::uint32_t>(number);
    for (NamedRequest const& named : REQUESTS)
        if (named.number == value) return named.name;
    if (char const* const name = csmiName(value)) return name;
    if (value >> 16 != 0xCC77) return "unknown";
    char text[32];
    std::snprintf(text, sizeof text, "CSMI 0x%08X", value);
    return text;
}

int decodeRecord(Request request, void const* record, Command& command, std::string& reason) {
    if (record == nullptr) {
        reason = "no record";
        return EFAULT;
    }
    auto const* bytes = static_cast<std::uint8_t const*>(record);
    return request == Request::ScsiGeneric ? decodeScsiGeneric(bytes, command, reason)
                                           : decodePassThrough(request, bytes, command, reason);
}

void encodeReply(Request request, void* record, Command const& command, Reply const& reply) {
    auto* bytes = static_cast<std::uint8_t*>(record);
    std::size_t const pointer = request == Request::ScsiGeneric   ? 16
                                : request == Request::PassThrough ? 80
                                                                  : 88;
    std::size_t const moved = std::min(reply.data.size(), command.room());
    if (moved != 0) std::memcpy(pointerAt(bytes + pointer), reply.data.data(), moved);
    std::size_t const residual = command.room() - moved;
    if (request == Request::ScsiGeneric)
        encodeScsiGeneric(bytes, reply, residual);
    else
        encodePassThrough(bytes, reply, residual);
}

}  // namespace simulator
