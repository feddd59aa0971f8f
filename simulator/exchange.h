#pragma once

/// One command as it reached a device and what came of it, whatever carried it there.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/bytes.h"

namespace simulator {

enum class Direction { None, In, Out, Both };

/// What brought a command: the SCSI generic interface, the controller's own pass-through, or CSMI.
enum class Carrier { ScsiGeneric, PassThrough, Csmi };

struct Command {
    Carrier carrier = Carrier::ScsiGeneric;
    Bytes block;  ///< SCSI command block, 1 to 16 bytes, or an SMP request frame
    Direction direction = Direction::None;
    Bytes dataOut;               ///< what was sent; empty unless the direction is Out or Both
    std::size_t bufferSize = 0;  ///< size of the caller's buffer, also when the direction is None
    std::uint64_t timeoutMilliseconds = 0;
    std::uint64_t now = 0;  ///< virtual time at which it arrives, microseconds; the machine sets it

    /// Logical unit address (all zero is the controller), or SAS address by CSMI.
    std::array<std::uint8_t, 8> address{};

    // Pass-through only
    bool message = false;        ///< a task management message, not a command
    std::uint8_t attribute = 4;  ///< task attribute; 4 is simple

    // CSMI only
    std::uint32_t csmi = 0;  ///< request number
    std::uint8_t phy = 0;    ///< that the caller names as the way to the address

    /// Bytes that a reply can have.
    std::size_t room() const {
        return direction == Direction::In || direction == Direction::Both ? bufferSize : 0;
    }
};

struct Sense {
    std::uint8_t key = 0;
    std::uint8_t asc = 0;
    std::uint8_t ascq = 0;
};

/// Command status values of the pass-through.
inline constexpr std::uint16_t COMMAND_DONE = 0;
inline constexpr std::uint16_t COMMAND_TARGET_STATUS = 1;  ///< see the SCSI status byte
inline constexpr std::uint16_t COMMAND_UNDERRUN = 2;       ///< fewer bytes than asked for
inline constexpr std::uint16_t COMMAND_INVALID = 4;

inline constexpr std::uint8_t CHECK_CONDITION = 2;

struct Reply {
    int error = 0;  ///< errno when the command didn't reach the device
    std::uint8_t scsiStatus = 0;
    std::uint16_t commandStatus = COMMAND_DONE;
    Sense sense;                     ///< valid with CHECK_CONDITION
    Bytes data;                      ///< for the caller; a device may give more than there is room for
    std::uint64_t microseconds = 0;  ///< virtual time that the command took

    std::vector<std::string> errors;  ///< what was out of protocol
    std::vector<std::string> notes;
    std::vector<std::string> events;  ///< what changed in the device's firmware

    bool good() const {
        return error == 0 && scsiStatus == 0 &&
               (commandStatus == COMMAND_DONE || commandStatus == COMMAND_UNDERRUN);
    }
};

/// CHECK CONDITION with a sense key, an additional sense code and a qualifier of 0.
inline Reply checkCondition(std::uint8_t key, std::uint8_t asc) {
    Reply reply;
    reply.scsiStatus = CHECK_CONDITION;
    reply.commandStatus = COMMAND_TARGET_STATUS;
    reply.sense = {key, asc, 0};
    return reply;
}

/// CHECK CONDITION with an entry in the list of errors.
inline Reply protocolError(std::uint8_t asc, std::string text) {
    Reply reply = checkCondition(5, asc);
    reply.errors.push_back(std::move(text));
    return reply;
}

inline constexpr std::uint8_t ASC_INVALID_OPERATION_CODE = 0x20;
inline constexpr std::uint8_t ASC_INVALID_FIELD_IN_COMMAND_BLOCK = 0x24;
inline constexpr std::uint8_t ASC_INVALID_FIELD_IN_PARAMETER_LIST = 0x26;

}  // namespace simulator
