#include "command/scsi/report_luns.h"

#include <algorithm>

#include "command/endian.h"
#include "common/debug_logger.h"

bool ReportLuns::sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
    resize(HEADER_SIZE);
    setNumber(6, 4, HEADER_SIZE);
    if (!ScsiBlockCommand::sendCommand(device, request)) {
        resize(HEADER_SIZE);
        return false;
    }
    std::uint32_t const announced = readBigEndian<std::uint32_t>(data().data());
    if (announced == 0) return true;
    if (announced > LIST_LIMIT) {
        Common::DebugLogger::LogCommand("List of units: %u bytes announced, at most %u expected", announced,
                                        LIST_LIMIT);
    }
    std::size_t const size = HEADER_SIZE + std::min(announced, LIST_LIMIT);
    resize(size);
    setNumber(6, 4, size);
    if (ScsiBlockCommand::sendCommand(device, request)) return true;
    resize(HEADER_SIZE);
    return false;
}
