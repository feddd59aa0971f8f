#include "command/scsi/report_luns.h"

#include <algorithm>

#include "command/endian.h"
#include "common/debug_logger.h"

namespace {

constexpr std::size_t SMALL_LIMIT = 0xFFFF;
constexpr std::size_t BIG_MINIMUM = 128000;

void logCutHeader(std::size_t received) {
    Common::DebugLogger::LogCommand("List of units refused: %zu bytes came, at least %zu expected", received,
                                    ReportLuns::HEADER_SIZE);
}

}  // namespace

bool ReportLuns::sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
    resize(HEADER_SIZE);
    setNumber(6, 4, HEADER_SIZE);
    if (!ScsiBlockCommand::sendCommand(device, request)) {
        resize(HEADER_SIZE);
        return false;
    }
    if (receivedLength() < HEADER_SIZE) {
        logCutHeader(receivedLength());
        return true;
    }
    std::uint32_t const announced = readBigEndian<std::uint32_t>(data().data());
    if (announced == 0) return true;
    if (announced > LIST_LIMIT) {
        Common::DebugLogger::LogCommand("List of units: %u bytes announced, at most %u expected", announced,
                                        LIST_LIMIT);
    }
    std::size_t size = HEADER_SIZE + std::min(announced, LIST_LIMIT);
    // No record of the pass-through carries a size between these two whole.
    if (size > SMALL_LIMIT && size < BIG_MINIMUM) size = BIG_MINIMUM;
    resize(size);
    setNumber(6, 4, size);
    if (!ScsiBlockCommand::sendCommand(device, request)) {
        resize(HEADER_SIZE);
        return false;
    }
    if (receivedLength() < HEADER_SIZE) {
        logCutHeader(receivedLength());
        resize(HEADER_SIZE);
        return true;
    }
    // The list may have become shorter meanwhile, or was cut, and entries of zeros would be the controller
    // itself.
    truncateTo(std::min<std::size_t>(receivedLength(),
                                     HEADER_SIZE + std::size_t{readBigEndian<std::uint32_t>(data().data())}));
    return true;
}
