#include "sysmod/command_handlers.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include "common/debug_logger.h"
#include "sysmod/command_log.h"
#include "sysmod/system_calls.h"

namespace Core::SysMod {

using Interface::SysMod::Command::ATARequest;
using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::DATA_UNDERRUN;
using Interface::SysMod::Command::EnTransferType;

namespace {

// Direction codes of SG_IO.
constexpr std::int32_t SG_NONE = -1;
constexpr std::int32_t SG_TO_DEVICE = -2;
constexpr std::int32_t SG_FROM_DEVICE = -3;
constexpr std::int32_t SG_BOTH = -4;

std::int32_t sgDirection(EnTransferType transferType) {
    switch (transferType) {
        case EnTransferType::In:
            return SG_FROM_DEVICE;
        case EnTransferType::Out:
            return SG_TO_DEVICE;
        case EnTransferType::InOut:
            return SG_BOTH;
        default:
            return SG_NONE;
    }
}

constexpr unsigned char BMIC_READ = 0x26;
constexpr unsigned char BMIC_WRITE = 0x27;

}  // namespace

bool SCSICommandHandler::SendIOCTL(int descriptor, unsigned long request, void* argument,
                                   int& lowLevelError) {
    if (systemCalls().ioctl(descriptor, request, argument) < 0) {
        lowLevelError = errno;
        return false;
    }
    return true;
}

bool SCSICommandHandler::SendSCSICommand(OpenDeviceNode const& node, EnTransferType transferType,
                                         DataSpan block, std::uint32_t timeout, DataSpan data,
                                         DataSpan sense) {
    if (!node.isOpen()) {
        m_lowLevelError = node.openError();
        return false;
    }
    constexpr std::uint32_t BYTE_LIMIT = std::numeric_limits<std::uint8_t>::max();
    constexpr std::uint64_t TIMEOUT_LIMIT = std::numeric_limits<std::uint32_t>::max();
    SgIoRecord<unsigned char*> record = {};
    record.interfaceId = 'S';
    record.direction = sgDirection(transferType);
    record.blockLength = static_cast<std::uint8_t>(std::min(block.size, BYTE_LIMIT));
    record.senseSize = static_cast<std::uint8_t>(std::min(sense.size, BYTE_LIMIT));
    record.dataLength = data.size;
    record.data = data.bytes;
    record.block = block.bytes;
    record.sense = sense.bytes;
    record.timeout = static_cast<std::uint32_t>(std::min(std::uint64_t{timeout} * 1000 + 1, TIMEOUT_LIMIT));
    m_lowLevelError = 0;
    return SendIOCTL(node.descriptor(), SG_IO_REQUEST, &record, m_lowLevelError);
}

bool BMICCommandHandler::SendBMICCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                         BMICRequest& request) {
    std::uint32_t const length =
        request.cdbLengthOverride != 0 ? request.cdbLengthOverride : request.dataLength;
    unsigned char block[10] = {
        request.transferType == EnTransferType::In ? BMIC_READ : BMIC_WRITE,
        static_cast<unsigned char>(request.unit & 0xFF),
        static_cast<unsigned char>(request.details >> 24),
        static_cast<unsigned char>(request.details >> 16),
        static_cast<unsigned char>(request.details >> 8),
        static_cast<unsigned char>(request.details),
        request.commandByte,
        static_cast<unsigned char>(length >> 8),
        static_cast<unsigned char>(length),
        static_cast<unsigned char>(request.unit >> 8),
    };
    CSMICommandHandler passthru(true);
    PassthruStatus status;
    bool const sent = passthru.SendQRTHPassthruCommand(
        node, address, request.transferType, {block, sizeof block}, request.timeout,
        {request.dataBuffer, request.dataLength}, {request.senseBuffer, request.senseLength}, status);
    m_lowLevelError = passthru.lowLevelError();
    if (sent) {
        request.scsiStatus = status.scsiStatus;
        request.commandStatus = status.commandStatus;
        if (request.transferType == EnTransferType::In && status.commandStatus == DATA_UNDERRUN) {
            request.dataLength -= std::min(status.residual, request.dataLength);
        }
    }
    return sent;
}

bool ATACommandHandler::SendATACommand(OpenDeviceNode const& node, ATARequest&) {
    m_lowLevelError = node.isOpen() ? 0 : node.openError();
    return false;
}

bool ATACommandHandler::ConvertToSCSIRequest(ATARequest const& request, DataSpan block) {
    if (block.size != BLOCK_SIZE || block.bytes == nullptr) {
        return false;
    }
    // Protocol in bits 1 to 4: 4 PIO data in, 5 PIO data out, 3 no data.
    constexpr unsigned char PIO_IN = 8;
    constexpr unsigned char PIO_OUT = 10;
    constexpr unsigned char NO_DATA = 6;
    bool const isIn = request.transferType == EnTransferType::In;
    bool const isOut =
        request.transferType == EnTransferType::Out || request.transferType == EnTransferType::InOut;
    constexpr std::uint32_t SECTOR_SIZE = 512;
    constexpr std::uint32_t MOST_SECTORS = 255;  // the count has one byte here
    if (request.sectorCount == 0 && request.dataLength / SECTOR_SIZE > MOST_SECTORS) {
        Common::DebugLogger::LogCommand("ATA command of %u sectors refused: at most %u expected",
                                        static_cast<unsigned>(request.dataLength / SECTOR_SIZE),
                                        static_cast<unsigned>(MOST_SECTORS));
        return false;
    }
    std::memset(block.bytes, 0, block.size);
    block.bytes[0] = 0x85;
    block.bytes[1] = isIn ? PIO_IN : isOut ? PIO_OUT : NO_DATA;
    block.bytes[2] = isIn ? 14 : 6;
    block.bytes[4] = request.features;
    block.bytes[6] = request.sectorCount != 0 ? request.sectorCount
                                              : static_cast<unsigned char>(request.dataLength / SECTOR_SIZE);
    block.bytes[8] = request.lbaLow;
    block.bytes[10] = request.lbaMid;
    block.bytes[12] = request.lbaHigh;
    block.bytes[13] = request.device;
    block.bytes[14] = request.command;
    return true;
}

void ATACommandHandler::TakeResultRegisters(DataSpan sense, ATARequest& request) {
    constexpr std::uint32_t HEADER = 8;
    constexpr unsigned char DESCRIPTOR_FORMAT = 0x72;
    constexpr unsigned char ATA_STATUS_RETURN = 0x09;
    constexpr std::uint32_t DESCRIPTOR_SIZE = 14;
    // Error, count, LBA low, mid and high, device, status.
    constexpr std::uint8_t PLACES[] = {3, 5, 7, 9, 11, 12, 13};
    if (sense.bytes == nullptr || request.resultRegisters == nullptr || sense.size < HEADER ||
        sense.bytes[0] != DESCRIPTOR_FORMAT) {
        return;
    }
    std::uint32_t const end = std::min(sense.size, HEADER + sense.bytes[7]);
    for (std::uint32_t at = HEADER; at + 2 <= end; at += 2U + sense.bytes[at + 1]) {
        unsigned char const* const descriptor = sense.bytes + at;
        if (descriptor[0] != ATA_STATUS_RETURN || descriptor[1] != DESCRIPTOR_SIZE - 2 ||
            end - at < DESCRIPTOR_SIZE) {
            continue;
        }
        std::uint32_t const count = std::min<std::uint32_t>(request.resultLength, std::size(PLACES));
        for (std::uint32_t i = 0; i < count; ++i) {
            request.resultRegisters[i] = descriptor[PLACES[i]];
        }
        request.ataStatus = descriptor[PLACES[std::size(PLACES) - 1]];
        return;
    }
}

}  // namespace Core::SysMod
