#include "sysmod/lun_report.h"

#include <algorithm>
#include <optional>

#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/device_handle.h"

namespace Core::SysMod {
namespace {

using Interface::SysMod::Command::EnTransferType;

constexpr std::uint8_t LONG_FORM = 2;
constexpr std::uint32_t HEADER_SIZE = 8;
constexpr std::uint32_t TIMEOUT = 30;
/// Room for more units than any controller serves.
constexpr std::uint32_t LIST_LIMIT = 1U << 20;
/// A size between these two fits neither the small pass-through's size field nor the sizes that take the big
/// one, so that the next one up is asked for.
constexpr std::uint32_t SMALL_LIMIT = 0xFFFF;
constexpr std::uint32_t BIG_MINIMUM = 128000;
/// Command status values that come with data.
constexpr std::uint16_t GOOD[] = {Interface::SysMod::Command::COMMAND_DONE,
                                  Interface::SysMod::Command::DATA_UNDERRUN,
                                  Interface::SysMod::Command::DATA_OVERRUN};

std::uint32_t bigEndian(std::vector<std::uint8_t> const& reply) {
    return static_cast<std::uint32_t>(reply[0]) << 24 | static_cast<std::uint32_t>(reply[1]) << 16 |
           static_cast<std::uint32_t>(reply[2]) << 8 | reply[3];
}

/// Sends the report with room for `size` bytes; what came, or nothing when the controller refused.
std::optional<std::vector<std::uint8_t>> ask(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                             LunReport const& report, std::uint32_t size) {
    unsigned char block[12] = {report.operationCode,
                               LONG_FORM,
                               0,
                               0,
                               0,
                               0,
                               static_cast<unsigned char>(size >> 24),
                               static_cast<unsigned char>(size >> 16),
                               static_cast<unsigned char>(size >> 8),
                               static_cast<unsigned char>(size)};
    std::vector<std::uint8_t> reply(size);
    unsigned char sense[Interface::SysMod::Command::SENSE_BUFFER_SIZE] = {};
    PassthruStatus status;
    CSMICommandHandler handler(true);
    bool const sent =
        handler.SendQRTHPassthruCommand(node, address, EnTransferType::In, {block, sizeof block}, TIMEOUT,
                                        {reply.data(), size}, {sense, sizeof sense}, status);
    bool const good = std::find(std::begin(GOOD), std::end(GOOD), status.commandStatus) != std::end(GOOD);
    if (!sent || status.scsiStatus != 0 || !good) {
        Common::DebugLogger::LogCommand(
            "%s failed. Code: 0x%08X, SCSI status: 0x%02X, command status: 0x%04X", report.name,
            static_cast<unsigned>(handler.lowLevelError()), static_cast<unsigned>(status.scsiStatus),
            static_cast<unsigned>(status.commandStatus));
        return std::nullopt;
    }
    if (status.commandStatus == Interface::SysMod::Command::DATA_UNDERRUN) {
        reply.resize(size - std::min(status.residual, size));
    }
    return reply;
}

}  // namespace

std::vector<LunEntry> readLunReport(Common::string const& handle, LunReport const& report) {
    PropertyTable table;
    toPropertyTable(handle, table);
    std::uint8_t address[8];
    if (table[DeviceType] != "ARRAY_CONTROLLER" || !parseLogicalUnitAddress(table[Route], address)) {
        return {};
    }
    OpenDeviceNode const node(table, false);
    auto reply = ask(node, address, report, HEADER_SIZE);
    if (!reply) {
        return {};
    }
    if (reply->size() < HEADER_SIZE) {
        Common::DebugLogger::LogCommand("%s refused: a reply of %u bytes, at least %u expected", report.name,
                                        static_cast<unsigned>(reply->size()), HEADER_SIZE);
        return {};
    }
    std::uint32_t const length = bigEndian(*reply);
    if (length == 0) {
        return {};
    }
    if ((*reply)[4] != LONG_FORM || length > LIST_LIMIT) {
        Common::DebugLogger::LogCommand(
            "%s refused: a list of form %u and %u bytes, form %u and at most %u expected", report.name,
            static_cast<unsigned>((*reply)[4]), static_cast<unsigned>(length),
            static_cast<unsigned>(LONG_FORM), static_cast<unsigned>(LIST_LIMIT));
        return {};
    }
    std::uint32_t const whole = length + HEADER_SIZE;
    reply = ask(node, address, report, whole > SMALL_LIMIT ? std::max(whole, BIG_MINIMUM) : whole);
    if (!reply || reply->size() < HEADER_SIZE) {
        return {};
    }
    // The list may have changed since the first look: its own length counts, as far as the reply goes.
    std::size_t const listed = bigEndian(*reply);
    std::size_t const usable = std::min<std::size_t>(listed, reply->size() - HEADER_SIZE);
    std::size_t const count = usable / report.entrySize;
    if (listed != count * report.entrySize) {
        Common::DebugLogger::LogCommand("%s: a list of %u bytes, %u entries of %u bytes came", report.name,
                                        static_cast<unsigned>(listed), static_cast<unsigned>(count),
                                        static_cast<unsigned>(report.entrySize));
    }
    std::vector<LunEntry> entries;
    for (std::size_t i = 0; i < count; ++i) {
        auto const start = reply->begin() + static_cast<std::ptrdiff_t>(HEADER_SIZE + i * report.entrySize);
        entries.emplace_back(start, start + static_cast<std::ptrdiff_t>(report.entrySize));
    }
    return entries;
}

}  // namespace Core::SysMod
