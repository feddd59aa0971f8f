#include <algorithm>
#include <cstring>
#include <memory>

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

// Flags of the CSMI SSP pass-through.
constexpr std::uint32_t SSP_READ = 1;
constexpr std::uint32_t SSP_WRITE = 2;
constexpr std::uint32_t SSP_UNSPECIFIED = 4;

std::uint32_t sspFlags(EnTransferType transferType) {
    switch (transferType) {
        case EnTransferType::In:
            return SSP_READ;
        case EnTransferType::Out:
            return SSP_WRITE;
        case EnTransferType::MessageIn:
        case EnTransferType::MessageOut:
            return 0;
        default:
            return SSP_UNSPECIFIED;
    }
}

constexpr std::uint8_t IGNORE_PORT = 0xFF;
constexpr std::uint8_t SENSE_DATA_PRESENT = 2;
constexpr std::size_t SPARE_BYTES = 20;

}  // namespace

bool CSMICommandHandler::SendQRTHPassthruCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                                 EnTransferType transferType, DataSpan block,
                                                 std::uint32_t timeout, DataSpan data, DataSpan sense,
                                                 PassthruStatus& status) {
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
        // It stays there: drivers in the field expect the small record up to it. What the record can't tell
        // is at least told here.
        Common::DebugLogger::LogCommand("Pass-through of %u bytes: the record's buffer size holds at most %u",
                                        static_cast<unsigned>(data.size), static_cast<unsigned>(UINT16_MAX));
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

bool CSMICommandHandler::SendQRTHPassthruMessage(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                                 EnTransferType transferType, DataSpan block,
                                                 std::uint32_t timeout, std::uint16_t& commandStatus) {
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
    unsigned char data[1] = {};
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

bool CSMICommandHandler::SendCSMISSPPassthruCommand(OpenDeviceNode const& node, CSMIAddress const& address,
                                                    EnTransferType transferType, DataSpan block,
                                                    DataSpan data, std::uint32_t& dataLength, DataSpan sense,
                                                    std::uint8_t& scsiStatus) {
    bool const isOut = transferType == EnTransferType::Out || transferType == EnTransferType::InOut;
    bool const isIn = transferType == EnTransferType::In || transferType == EnTransferType::InOut;
    std::uint32_t const size = CSMI_SSP_FIXED_SIZE + data.size;
    auto const record = std::make_unique<unsigned char[]>(size + SPARE_BYTES);
    CsmiSspPassthru fixed = {};
    fixed.phyIdentifier = address.phy;
    fixed.portIdentifier = IGNORE_PORT;
    std::memcpy(fixed.destination, address.sasAddress, sizeof fixed.destination);
    std::uint32_t const blockLength = std::min<std::uint32_t>(block.size, sizeof fixed.block);
    fixed.blockLength = static_cast<std::uint8_t>(blockLength);
    if (block.bytes != nullptr) {
        std::memcpy(fixed.block, block.bytes, blockLength);
    }
    fixed.flags = sspFlags(transferType);
    fixed.dataLength = data.size;
    fixed.header.direction = isOut ? 1 : 0;
    std::memcpy(record.get(), &fixed, sizeof fixed);
    if (isOut && data.bytes != nullptr) {
        std::memcpy(record.get() + CSMI_SSP_FIXED_SIZE, data.bytes, data.size);
    }

    std::uint32_t returnCode = 0;
    if (!SendCSMICommand(node, CSMI_SSP_PASSTHRU, record.get(), size, returnCode)) {
        return false;
    }
    std::memcpy(&fixed, record.get(), sizeof fixed);
    scsiStatus = fixed.scsiStatus;
    if (returnCode != 0) {
        Common::DebugLogger::LogCommand("CSMIPT Failed. Code 0x%08X", static_cast<unsigned>(returnCode));
        return false;
    }
    if (isIn && data.bytes != nullptr) {
        std::memcpy(data.bytes, record.get() + CSMI_SSP_FIXED_SIZE, std::min(data.size, fixed.dataBytes));
    }
    dataLength = fixed.dataBytes;
    Common::DebugLogger::LogCommand("BSSPStatus = 0x%02X", static_cast<unsigned>(fixed.sspStatus));
    if (fixed.dataPresent == SENSE_DATA_PRESENT && sense.bytes != nullptr) {
        std::size_t const length =
            static_cast<std::size_t>(fixed.responseLength[0]) << 8 | fixed.responseLength[1];
        std::memcpy(sense.bytes, fixed.response,
                    std::min({length, static_cast<std::size_t>(sense.size), sizeof fixed.response}));
    }
    return true;
}

bool CSMICommandHandler::SendPauseBackgroundActivityCommand(OpenDeviceNode const& node,
                                                            CSMIAddress const& address, bool pause) {
    auto const record = std::make_unique<unsigned char[]>(CSMI_PAUSE_RECORD_SIZE);
    std::memcpy(record.get() + sizeof(CsmiHeader), address.sasAddress, sizeof address.sasAddress);
    std::uint32_t returnCode = 0;
    return SendCSMICommand(node, pause ? CSMI_PAUSE_ACTIVITY : CSMI_RESUME_ACTIVITY, record.get(),
                           CSMI_PAUSE_RECORD_SIZE, returnCode);
}

bool CSMICommandHandler::SendCSMICommand(OpenDeviceNode const& node, unsigned long request,
                                         unsigned char* record, std::uint32_t size,
                                         std::uint32_t& returnCode) {
    auto const opcode = static_cast<unsigned>(request);
    if (!node.isOpen()) {
        m_lowLevelError = node.openError();
        Common::DebugLogger::Log(CommandLog::CSMI, "CSMI(Opcode: 0x%08X) Failed. LLError: 0x%08X", opcode,
                                 static_cast<unsigned>(m_lowLevelError));
        return false;
    }
    m_lowLevelError = 0;
    Common::DebugLogger::Log(CommandLog::CSMI, "CSMI(Opcode: 0x%08X) BS:%d", opcode, static_cast<int>(size));
    CsmiHeader header;
    std::memcpy(&header, record, sizeof header);
    header.controllerNumber = static_cast<std::uint32_t>(node.controllerNumber());
    header.length = size;
    header.timeout = CSMI_TIMEOUT;
    std::memcpy(record, &header, sizeof header);
    bool const sent = SCSICommandHandler::SendIOCTL(node.descriptor(), request, record, m_lowLevelError);
    std::memcpy(&header, record, sizeof header);
    returnCode = header.returnCode;
    Common::DebugLogger::Log(
        CommandLog::CSMI, "CSMI(Opcode: 0x%08X) Status: %s, ReturnCode: 0x%08X, LLError: 0x%08X", opcode,
        sent ? "OK" : "Failed", static_cast<unsigned>(returnCode), static_cast<unsigned>(m_lowLevelError));
    return sent;
}

bool CSMICommandHandler::sendReplyRequest(OpenDeviceNode const& node, unsigned long request,
                                          std::uint32_t size, std::uint32_t& returnCode) {
    std::memset(m_reply, 0, sizeof m_reply);
    return SendCSMICommand(node, request, m_reply, size, returnCode);
}

bool CSMICommandHandler::SendHBAControllerConfigCommand(OpenDeviceNode const& node,
                                                        std::uint32_t& returnCode) {
    return sendReplyRequest(node, CSMI_GET_CNTLR_CONFIG, CSMI_CNTLR_CONFIG_SIZE, returnCode);
}

bool CSMICommandHandler::SendDriverInfoCommand(OpenDeviceNode const& node, std::uint32_t& returnCode) {
    return sendReplyRequest(node, CSMI_GET_DRIVER_INFO, CSMI_DRIVER_INFO_SIZE, returnCode);
}

bool CSMICommandHandler::SendControllerStatusCommand(OpenDeviceNode const& node, std::uint32_t& returnCode) {
    return sendReplyRequest(node, CSMI_GET_CNTLR_STATUS, CSMI_CNTLR_STATUS_SIZE, returnCode);
}

bool CSMICommandHandler::SendSAControllerConfigCommand(OpenDeviceNode const&, std::uint32_t&) {
    constexpr std::size_t CONFIGURATION_SIZE = 188;
    std::memset(m_reply, 0, CONFIGURATION_SIZE);
    return false;
}

}  // namespace Core::SysMod
