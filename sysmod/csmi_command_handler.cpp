#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/command_log.h"

namespace Core::SysMod {

using Interface::SysMod::Command::EnTransferType;

namespace {

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
constexpr std::uint32_t SPARE_BYTES = 20;

}  // namespace

bool CSMICommandHandler::SendCSMISSPPassthruCommand(OpenDeviceNode const& node, CSMIAddress const& address,
                                                    EnTransferType transferType, DataSpan block,
                                                    DataSpan data, std::uint32_t& dataLength, DataSpan sense,
                                                    std::uint8_t& scsiStatus) {
    CommandLog::SspLines const lines(address, transferType, data.size, sense.size);
    bool const sent = carrySSP(node, address, transferType, block, data, dataLength, sense, scsiStatus);
    lines.end(sent, dataLength, scsiStatus, m_lowLevelError);
    return sent;
}

bool CSMICommandHandler::carrySSP(OpenDeviceNode const& node, CSMIAddress const& address,
                                  EnTransferType transferType, DataSpan block, DataSpan data,
                                  std::uint32_t& dataLength, DataSpan sense, std::uint8_t& scsiStatus) {
    bool const isOut = transferType == EnTransferType::Out || transferType == EnTransferType::InOut;
    bool const isIn = transferType == EnTransferType::In || transferType == EnTransferType::InOut;
    if (data.size > UINT32_MAX - CSMI_SSP_FIXED_SIZE - SPARE_BYTES) {
        Common::DebugLogger::LogCommand(
            "SSP pass-through of %u bytes refused: at most %u expected", data.size,
            static_cast<unsigned>(UINT32_MAX - CSMI_SSP_FIXED_SIZE - SPARE_BYTES));
        return false;
    }
    std::uint32_t const size = CSMI_SSP_FIXED_SIZE + data.size;
    std::unique_ptr<unsigned char[]> const record(new (std::nothrow) unsigned char[size + SPARE_BYTES]());
    if (!record) {
        m_lowLevelError = ENOMEM;
        return false;
    }
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

bool CSMICommandHandler::SendPhyInfoCommand(OpenDeviceNode const& node, CsmiPhyInfo& record,
                                            std::uint32_t& returnCode) {
    record = {};
    return SendCSMICommand(node, CSMI_GET_PHY_INFO, reinterpret_cast<unsigned char*>(&record), sizeof record,
                           returnCode);
}

bool CSMICommandHandler::SendSMPPassthruCommand(OpenDeviceNode const& node, CSMIAddress const& address,
                                                DataSpan frame, DataSpan& response,
                                                std::uint32_t& returnCode) {
    CsmiSmpPassthru record = {};
    record.phyIdentifier = address.phy;
    record.portIdentifier = IGNORE_PORT;
    std::memcpy(record.destination, address.sasAddress, sizeof record.destination);
    record.requestLength = std::min<std::uint32_t>(frame.size, CsmiSmpPassthru::FRAME);
    std::memcpy(record.request, frame.bytes, record.requestLength);
    if (!SendCSMICommand(node, CSMI_SMP_PASSTHRU, reinterpret_cast<unsigned char*>(&record), sizeof record,
                         returnCode)) {
        return false;
    }
    std::uint32_t const room = response.size;
    response.size =
        std::min({record.responseBytes, room, static_cast<std::uint32_t>(CsmiSmpPassthru::FRAME)});
    std::memset(response.bytes, 0, room);
    std::memcpy(response.bytes, record.response, response.size);
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
