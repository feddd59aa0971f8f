#include <algorithm>
#include <cstring>

#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/command_log.h"

namespace Core::SysMod {

using Interface::SysMod::Command::EnTransferType;

namespace {

// Type byte of the pass-through: request type in bits 0 to 2, simple attribute (4) in bits 3 to 5, direction
// in bits 6 and 7.
constexpr unsigned char DIRECTION_NONE = 0;
constexpr unsigned char DIRECTION_WRITE = 1;
constexpr unsigned char DIRECTION_READ = 2;
constexpr unsigned char COMMAND_SIMPLE = 0x20;
constexpr unsigned char MESSAGE_READ = 0xA1;
constexpr unsigned char MESSAGE_WRITE = 0x61;
constexpr unsigned char MESSAGE_NONE = 0x21;

constexpr std::uint32_t MESSAGE_DATA_SIZE = 1;

constexpr std::uint32_t TIMEOUT_FLOOR = 30;
constexpr std::uint32_t TIMEOUT_CEILING = 600;

/// From this size on the small record's 16-bit buffer size must not be used.
constexpr std::uint32_t BIG_TRANSFER = 128000;
constexpr std::uint32_t CHUNKS = 31;
constexpr std::uint32_t CHUNK_UNIT = 1024;

unsigned char directionOf(EnTransferType transferType) {
    switch (transferType) {
        case EnTransferType::Out:
        case EnTransferType::InOut:
            return DIRECTION_WRITE;
        case EnTransferType::In:
            return DIRECTION_READ;
        default:
            return DIRECTION_NONE;
    }
}

std::uint32_t chunkSizeFor(std::uint32_t size) {
    std::uint32_t const share = size / CHUNKS;
    std::uint32_t const units = share / CHUNK_UNIT + (share % CHUNK_UNIT != 0 ? 1 : 0);
    return std::max<std::uint32_t>(units, 1) * CHUNK_UNIT;
}

void fillCommand(XqrthCommand& command, std::uint8_t const (&address)[8], DataSpan block, unsigned char type,
                 std::uint32_t timeout) {
    std::memcpy(command.address, address, sizeof command.address);
    std::uint32_t const length = std::min<std::uint32_t>(block.size, sizeof command.block);
    command.blockLength = static_cast<std::uint8_t>(length);
    command.type = type;
    command.timeout = static_cast<std::uint16_t>(std::clamp(timeout, TIMEOUT_FLOOR, TIMEOUT_CEILING));
    if (block.bytes != nullptr) {
        std::memcpy(command.block, block.bytes, length);
    }
}

void takeReply(XqrthCommand const& command, DataSpan sense, PassthruStatus& status) {
    status.scsiStatus = command.scsiStatus;
    status.commandStatus = command.commandStatus;
    status.residual = command.residual;
    if (sense.bytes != nullptr) {
        std::memcpy(sense.bytes, command.sense, std::min<std::size_t>(sense.size, sizeof command.sense));
    }
}

}  // namespace

bool CSMICommandHandler::SendQRTHPassthruCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                                 EnTransferType transferType, DataSpan block,
                                                 std::uint32_t timeout, DataSpan data, DataSpan sense,
                                                 PassthruStatus& status) {
    CommandLog::PassthruLines const lines(block, transferType, data.size, sense.size);
    bool const sent = carryCommand(node, address, transferType, block, timeout, data, sense, status);
    lines.end(sent, status.scsiStatus, m_lowLevelError);
    return sent;
}

bool CSMICommandHandler::SendQRTHPassthruMessage(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                                 EnTransferType transferType, DataSpan block,
                                                 std::uint32_t timeout, std::uint16_t& commandStatus) {
    CommandLog::PassthruLines const lines(block, transferType, MESSAGE_DATA_SIZE, 0);
    bool const sent = carryMessage(node, address, transferType, block, timeout, commandStatus);
    lines.end(sent, 0, m_lowLevelError);
    return sent;
}

bool CSMICommandHandler::carryCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                      EnTransferType transferType, DataSpan block, std::uint32_t timeout,
                                      DataSpan data, DataSpan sense, PassthruStatus& status) {
    if (!node.isOpen()) {
        m_lowLevelError = node.openError();
        return false;
    }
    m_lowLevelError = 0;
    unsigned char direction = directionOf(transferType);
    if (data.size >= BIG_TRANSFER) {
        XqrthBigPassthru<unsigned char*> record = {};
        fillCommand(record.command, address, block,
                    static_cast<unsigned char>(direction << 6 | COMMAND_SIMPLE), timeout);
        record.chunkSize = chunkSizeFor(data.size);
        record.bufferSize = data.size;
        record.buffer = data.bytes;
        if (!SCSICommandHandler::SendIOCTL(node.descriptor(), XQRTH_BIG_PASSTHRU<unsigned char*>, &record,
                                           m_lowLevelError)) {
            return false;
        }
        takeReply(record.command, sense, status);
        return true;
    }
    if (data.size > UINT16_MAX) {
        // The border between the two records lies at 128,000 bytes although the small one counts in 16 bits.
        // It stays there: drivers in the field expect the small record up to it. A read then gets a part of
        // what it asked for, which the log tells; a write isn't sent, as its part would pass for the whole.
        Common::DebugLogger::LogCommand("Pass-through of %u bytes: the record's buffer size holds at most %u",
                                        static_cast<unsigned>(data.size), static_cast<unsigned>(UINT16_MAX));
        if (transferType != EnTransferType::In) {
            m_lowLevelError = EMSGSIZE;
            return false;
        }
    }
    if (data.size == 0) {
        direction = DIRECTION_NONE;
    }
    XqrthPassthru<unsigned char*> record = {};
    fillCommand(record.command, address, block, static_cast<unsigned char>(direction << 6 | COMMAND_SIMPLE),
                timeout);
    record.bufferSize = static_cast<std::uint16_t>(data.size);
    record.buffer = data.bytes;
    if (!SCSICommandHandler::SendIOCTL(node.descriptor(), XQRTH_PASSTHRU<unsigned char*>, &record,
                                       m_lowLevelError)) {
        return false;
    }
    takeReply(record.command, sense, status);
    return true;
}

bool CSMICommandHandler::carryMessage(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                      EnTransferType transferType, DataSpan block, std::uint32_t timeout,
                                      std::uint16_t& commandStatus) {
    if (!node.isOpen()) {
        m_lowLevelError = node.openError();
        return false;
    }
    m_lowLevelError = 0;
    unsigned char type = MESSAGE_NONE;
    if (transferType == EnTransferType::MessageIn) {
        type = MESSAGE_READ;
    } else if (transferType == EnTransferType::MessageOut) {
        type = MESSAGE_WRITE;
    }
    unsigned char data[MESSAGE_DATA_SIZE] = {};
    XqrthPassthru<unsigned char*> record = {};
    fillCommand(record.command, address, block, type, timeout);
    record.bufferSize = sizeof data;
    record.buffer = data;
    if (!SCSICommandHandler::SendIOCTL(node.descriptor(), XQRTH_PASSTHRU<unsigned char*>, &record,
                                       m_lowLevelError)) {
        return false;
    }
    commandStatus = record.command.commandStatus;
    return true;
}

}  // namespace Core::SysMod
