#include "command/scsi/flash_commands.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "command/endian.h"
#include "common/debug_logger.h"
#include "common/process_mutex.h"
#include "common/scoped_mutex_lock.h"
#include "common/sleep.h"

using Interface::SysMod::Command::DATA_OVERRUN;
using Interface::SysMod::Command::DATA_UNDERRUN;
using Interface::SysMod::Command::EnTransferType;
using Interface::SysMod::Command::SCSIRequest;
using Interface::SysMod::Command::SENSE_BUFFER_SIZE;
using Interface::SysMod::Command::TARGET_STATUS;

namespace {

constexpr unsigned char WRITE_BUFFER = 0x3B;
constexpr std::size_t LENGTH_BITS = 0xFFFFFF;

/// WRITE BUFFER: mode, offset and length, high bytes first.
struct WriteBufferBlock {
    WriteBufferBlock(unsigned char mode, std::size_t offset, std::size_t length)
        : bytes{WRITE_BUFFER,
                mode,
                0,
                static_cast<unsigned char>(offset >> 16),
                static_cast<unsigned char>(offset >> 8),
                static_cast<unsigned char>(offset),
                static_cast<unsigned char>(length >> 16),
                static_cast<unsigned char>(length >> 8),
                static_cast<unsigned char>(length)} {}

    unsigned char bytes[10];
};

bool send(SCSIDevice& device, SCSIRequest& request, unsigned char* block, std::uint32_t blockLength,
          unsigned char const* data, std::size_t size) {
    request.transferType = size != 0 ? EnTransferType::Out : EnTransferType::None;
    request.cdb = block;
    request.cdbLength = blockLength;
    // The record has one pointer for both directions; data that goes out is only read.
    request.dataBuffer = size != 0 ? const_cast<unsigned char*>(data) : nullptr;
    request.dataLength = static_cast<std::uint32_t>(size);
    bool const sent = device.sendSCSICommand(request);
    // A controller also refuses by its own status, with a good SCSI status beside it: the next chunk must not
    // cover that up.
    bool const isRun = request.commandStatus == DATA_UNDERRUN || request.commandStatus == DATA_OVERRUN;
    if (!sent && isRun) {
        // The device refused it; the length of what was moved makes no success of that.
        request.commandStatus = TARGET_STATUS;
    }
    return sent && (request.commandStatus == 0 || isRun);
}

/// Calls `sendChunk(offset, size)` for each chunk until one fails; the last may be shorter.
template <class SendChunk>
bool inChunks(std::size_t size, std::size_t chunkSize, SendChunk sendChunk) {
    for (std::size_t offset = 0; offset < size; offset += chunkSize) {
        if (!sendChunk(offset, std::min(chunkSize, size - offset))) return false;
    }
    return true;
}

/// Whether a command can tell where an image of this size ends. Beyond, its fields would begin anew at 0 and
/// write over what the device has. An image that is too large is an outcome of our own.
bool canTell(ImageSpan image, std::size_t largest, SCSIRequest& request) {
    if (image.size <= largest) return true;
    Common::DebugLogger::LogCommand("Image of %zu bytes refused: its command takes %zu", image.size, largest);
    request.lowLevelStatus = EINVAL;
    return false;
}

}  // namespace

bool FlashPhysicalDriveFirmware::sendCommand(SCSIDevice& device, SCSIRequest& request) {
    unsigned char const mode = m_type == eChunks ? 7 : 5;
    if (!canTell(m_image, m_type == eWhole ? LENGTH_BITS : LENGTH_BITS + 1, request)) return false;
    std::size_t const chunkSize = m_type == eChunks ? CHUNK_SIZE : std::max<std::size_t>(m_image.size, 1);
    return inChunks(m_image.size, chunkSize, [&](std::size_t offset, std::size_t size) {
        WriteBufferBlock block(mode, offset, size);
        return send(device, request, block.bytes, sizeof block.bytes, m_image.bytes + offset, size);
    });
}

bool SCSIATADownloadMicrocode::sendCommand(SCSIDevice& device, SCSIRequest& request) {
    constexpr std::size_t SECTOR = 512;
    constexpr std::size_t OFFSETS = SECTOR << 16;
    if (!canTell(m_image, OFFSETS, request)) return false;
    // A drive takes whole sectors: behind the image's end come zeros.
    std::vector<unsigned char> chunk(FlashPhysicalDriveFirmware::CHUNK_SIZE);
    return inChunks(m_image.size, chunk.size(), [&](std::size_t offset, std::size_t size) {
        std::size_t const sectors = (size + SECTOR - 1) / SECTOR;
        std::memcpy(chunk.data(), m_image.bytes + offset, size);
        std::fill(chunk.begin() + static_cast<std::ptrdiff_t>(size), chunk.end(), 0);
        unsigned char block[16] = {0x85,
                                   0x0A,  // protocol: PIO data out
                                   0x06,  // length in sectors, in the sector count
                                   0,
                                   3,  // features: download with offsets
                                   0,    static_cast<unsigned char>(sectors),
                                   0,    static_cast<unsigned char>(sectors >> 8),
                                   0,    static_cast<unsigned char>(offset >> 9),
                                   0,    static_cast<unsigned char>(offset >> 17),
                                   0,    0x92};  // DOWNLOAD MICROCODE
        return send(device, request, block, sizeof block, chunk.data(), sectors * SECTOR);
    });
}

namespace {

/// Only one WRITE BUFFER to a processor is in flight in the process, whichever thread sends it.
Common::Synchronization::ProcessMutex& SEPFlashMutex() {
    static Common::Synchronization::ProcessMutex mutex;
    return mutex;
}

constexpr unsigned int PAUSE_MILLISECONDS = 50;
constexpr unsigned int UNIT_ATTENTION_RETRIES = 10;
constexpr unsigned int QUEUE_FULL_RETRIES = 12000;
constexpr unsigned char QUEUE_FULL = 0x28;
constexpr unsigned char CHECK_CONDITION = 2;
constexpr unsigned char UNIT_ATTENTION = 6;
/// Where the additional status stands in sense data.
constexpr std::size_t ADDITIONAL_STATUS = 3;

/// S-record lines are sent together once they make so many bytes.
constexpr std::size_t BATCH_SIZE = 11264;

unsigned char modeOf(FlashSEPFirmware::EnFlashType type) {
    switch (type) {
        case FlashSEPFirmware::eMode7Chunks:
        case FlashSEPFirmware::eMode7SRecords:
            return 7;
        case FlashSEPFirmware::eMode14SRecords:
        case FlashSEPFirmware::eMode14Chunks:
            return 14;
        case FlashSEPFirmware::eActivate:
            return 15;
        default:
            return 5;
    }
}

int hexDigit(unsigned char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    return -1;
}

/// How many of at most two line-end characters stand at `at`.
std::size_t lineEnd(ImageSpan image, std::size_t at) {
    std::size_t count = 0;
    while (count < 2 && at + count < image.size &&
           (image.bytes[at + count] == '\r' || image.bytes[at + count] == '\n')) {
        ++count;
    }
    return count;
}

/// Length of the S-record line at `at`, its line end included: 0 when none stands there whole.
std::size_t lineLength(ImageSpan image, std::size_t at) {
    constexpr std::size_t HEAD = 4;  // "S", type and two digits that count the bytes behind them
    if (image.size - at < HEAD || image.bytes[at] != 'S') return 0;
    int const high = hexDigit(image.bytes[at + 2]);
    int const low = hexDigit(image.bytes[at + 3]);
    if (high < 0 || low < 0) return 0;
    std::size_t const length = HEAD + 2 * static_cast<std::size_t>(high * 16 + low);
    return length <= image.size - at ? length + lineEnd(image, at + length) : 0;
}

/// Nothing but what pads a file stands from `at` on.
bool isPadding(ImageSpan image, std::size_t at) {
    constexpr unsigned char END_OF_TEXT = 0x1A;
    return std::all_of(image.bytes + at, image.bytes + image.size, [](unsigned char byte) {
        return byte == 0 || byte == 0xFF || byte == END_OF_TEXT || byte == ' ' || byte == '\r' ||
               byte == '\n';
    });
}

}  // namespace

bool FlashSEPFirmware::sendCommand(SCSIDevice& device, SCSIRequest& request) {
    m_additionalStatus = 0;
    switch (m_type) {
        case eMode7Chunks:
        case eMode14Chunks:
            return sendChunks(device, request);
        case eMode7SRecords:
        case eMode14SRecords:
            return sendSRecords(device, request);
        default:
            return sendLocked(device, request, 0, m_image.size);
    }
}

bool FlashSEPFirmware::sendChunks(SCSIDevice& device, SCSIRequest& request) {
    return inChunks(m_image.size, std::max<std::size_t>(m_chunkSize, 1),
                    [&](std::size_t offset, std::size_t size) {
                        if (!sendLocked(device, request, offset, size)) return false;
                        if (size == m_chunkSize) Common::Synchronization::Sleep(PAUSE_MILLISECONDS);
                        return true;
                    });
}

bool FlashSEPFirmware::sendSRecords(SCSIDevice& device, SCSIRequest& request) {
    std::size_t at = lineEnd(m_image, 0);
    bool hasSent = m_image.size == 0;
    while (at < m_image.size) {
        std::size_t const start = at;
        std::size_t length = 0;
        while (at - start < BATCH_SIZE && at < m_image.size && (length = lineLength(m_image, at)) != 0) {
            at += length;
        }
        if (at != start && !sendLocked(device, request, start, at - start)) return false;
        hasSent = hasSent || at != start;
        if (length != 0 || at == m_image.size) continue;
        if (hasSent && isPadding(m_image, at)) return true;
        // The device has a part of its firmware then, or none, and nobody may call that a success.
        Common::DebugLogger::LogCommand("No whole S-record at byte %zu of %zu: found 0x%02X, expected 'S'",
                                        at, m_image.size, static_cast<unsigned>(m_image.bytes[at]));
        request.lowLevelStatus = EINVAL;
        return false;
    }
    if (hasSent) return true;
    Common::DebugLogger::LogCommand("No S-record in %zu bytes of line ends", m_image.size);
    request.lowLevelStatus = EINVAL;
    return false;
}

bool FlashSEPFirmware::sendLocked(SCSIDevice& device, SCSIRequest& request, std::size_t offset,
                                  std::size_t size) {
    Common::Synchronization::ScopedMutexLock<Common::Synchronization::ProcessMutex> const lock(
        SEPFlashMutex());
    return sendBuffer(device, request, offset, size);
}

bool FlashSEPFirmware::sendBuffer(SCSIDevice& device, SCSIRequest& request, std::size_t offset,
                                  std::size_t size) {
    // The command block takes 24 bits, and only those are sent.
    std::size_t const length = size & LENGTH_BITS;
    WriteBufferBlock block(modeOf(m_type), m_type == eMode14Chunks ? offset : 0, length);
    unsigned int attentions = 0;
    unsigned int fullQueues = 0;
    for (;;) {
        request.lowLevelStatus = 0;
        request.commandStatus = 0;
        request.scsiStatus = 0;
        request.senseLength = SENSE_BUFFER_SIZE;
        std::memset(request.senseBuffer, 0, SENSE_BUFFER_SIZE);
        if (send(device, request, block.bytes, sizeof block.bytes, m_image.bytes + offset, length)) {
            return true;
        }
        bool const delivered = request.lowLevelStatus == 0;
        if (delivered && request.scsiStatus == CHECK_CONDITION &&
            (request.senseBuffer[2] & 0x0F) == UNIT_ATTENTION && attentions < UNIT_ATTENTION_RETRIES) {
            Common::DebugLogger::LogCommand("Unit Attention %u Retrying Command\n", ++attentions);
        } else if (delivered && request.scsiStatus == QUEUE_FULL && fullQueues < QUEUE_FULL_RETRIES) {
            Common::DebugLogger::LogCommand("Queue Full %u Retrying Command\n", ++fullQueues);
            Common::Synchronization::Sleep(PAUSE_MILLISECONDS);
        } else {
            m_additionalStatus = readBigEndian<std::uint32_t>(request.senseBuffer + ADDITIONAL_STATUS);
            return false;
        }
    }
}
