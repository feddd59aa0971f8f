#include "command/self_sizing.h"

#include <cstdint>

#include "command/endian.h"
#include "common/debug_logger.h"

using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::EnTransferType;

namespace {

void pointAt(BMICRequest& request, ReplyBuffer& buffer) {
    request.dataBuffer = buffer.data();
    request.dataLength = buffer.length();
}

bool isBelievable(unsigned int size, unsigned char commandByte, unsigned int kept) {
    if (size <= MAX_REPLY_SIZE) return true;
    Common::DebugLogger::LogCommand(
        "BMIC Opcode 0x%02X: reply size %u refused, at most %u expected; going on with %u", commandByte, size,
        MAX_REPLY_SIZE, kept);
    return false;
}

// What the reply says of its length, the default size if it says nothing or nonsense.
unsigned int announcedSize(ReplyBuffer const& buffer, CommandShape const& shape) {
    if (shape.totalLengthOffset + sizeof(std::uint32_t) > buffer.length()) return shape.defaultSize;
    std::uint32_t const size = readLittleEndian<std::uint32_t>(buffer.data() + shape.totalLengthOffset);
    return size != 0 && isBelievable(size, shape.commandByte, shape.defaultSize) ? size : shape.defaultSize;
}

bool sendAtBufferSize(BMICDevice& device, BMICRequest& request, ReplyBuffer& buffer,
                      unsigned int cdbLengthOverride) {
    pointAt(request, buffer);
    request.cdbLengthOverride = cdbLengthOverride;
    return device.sendBMICCommand(request);
}

}  // namespace

bool sendSized(BMICDevice& device, BMICRequest& request, ReplyBuffer& buffer, CommandShape const& shape,
               unsigned int cdbLengthOverride) {
    if (request.transferType == EnTransferType::None) {
        request.cdbLengthOverride = cdbLengthOverride;
        return device.sendBMICCommand(request);
    }
    bool const isSelfSizing = shape.totalLengthOffset != FIXED_SIZE;
    if (isSelfSizing && request.transferType != EnTransferType::In) {
        return sendAtBufferSize(device, request, buffer, cdbLengthOverride);
    }
    unsigned int size = device.readSizeFromCacheFor(shape.commandByte);
    if (isSelfSizing && size == 0) {
        size = shape.defaultSize;
        device.WriteSizeToCacheFor(shape.commandByte, size);
        if (shape.mayHaveGrown) {
            bool const sent = sendAtBufferSize(device, request, buffer, 0);
            if (sent) size = announcedSize(buffer, shape);
            device.WriteSizeToCacheFor(shape.commandByte, size);
            if (buffer.length() >= size) return sent;
        }
    }
    if (isBelievable(size, shape.commandByte, buffer.length())) buffer.Grow(size);
    return sendAtBufferSize(device, request, buffer, cdbLengthOverride);
}
