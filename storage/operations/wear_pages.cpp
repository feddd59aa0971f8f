#include "storage/operations/wear_pages.h"

#include <algorithm>

#include "command/endian.h"
#include "common/debug_logger.h"

namespace Operations {
namespace {

constexpr std::size_t PAGE_HEADER = 4;
constexpr std::size_t PARAMETER_HEADER = 4;
constexpr std::size_t LARGEST_NUMBER = 8;

}  // namespace

std::span<unsigned char const> logParameterBytes(std::span<unsigned char const> page, unsigned code) {
    if (page.size() < PAGE_HEADER) return {};
    std::size_t const end =
        std::min(page.size(), PAGE_HEADER + readBigEndian<std::uint16_t>(page.data() + 2));
    // Each parameter takes its header at least: zero lengths don't stop the walk.
    for (std::size_t at = PAGE_HEADER; at + PARAMETER_HEADER <= end;) {
        std::size_t const length = page[at + 3];
        std::size_t const value = at + PARAMETER_HEADER;
        if (length > end - value) {
            Common::DebugLogger::LogCommand(
                "Log parameter of %zu bytes at %zu refused: its page 0x%02X ends at %zu", length, at,
                static_cast<unsigned>(page[0]), end);
            return {};
        }
        if (readBigEndian<std::uint16_t>(page.data() + at) == code && length != 0) {
            return page.subspan(value, length);
        }
        at = value + length;
    }
    return {};
}

std::optional<std::uint64_t> logParameter(std::span<unsigned char const> page, unsigned code) {
    std::span<unsigned char const> const bytes = logParameterBytes(page, code);
    if (bytes.empty() || bytes.size() > LARGEST_NUMBER) return std::nullopt;
    std::uint64_t number = 0;
    for (unsigned char const byte : bytes)
        number = number << 8 | byte;
    return number;
}

std::optional<std::uint32_t> deviceStatistic(std::span<unsigned char const> page, unsigned number,
                                             unsigned offset) {
    constexpr std::size_t ENTRY = 8;
    constexpr std::size_t PAGE_NUMBER = 2;
    constexpr unsigned char SUPPORTED_AND_VALID = 0xC0;
    if (offset > page.size() || page.size() - offset < ENTRY || page[PAGE_NUMBER] != number) {
        return std::nullopt;
    }
    std::span<unsigned char const> const entry = page.subspan(offset, ENTRY);
    if ((entry[ENTRY - 1] & SUPPORTED_AND_VALID) != SUPPORTED_AND_VALID) return std::nullopt;
    return std::uint32_t{entry[0]} | std::uint32_t{entry[1]} << 8 | std::uint32_t{entry[2]} << 16 |
           std::uint32_t{entry[3]} << 24;
}

}  // namespace Operations
