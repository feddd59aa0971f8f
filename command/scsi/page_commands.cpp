#include "command/scsi/page_commands.h"

#include <algorithm>

#include "command/endian.h"

namespace {

constexpr unsigned char NO_BLOCK_DESCRIPTORS = 0x08;
constexpr unsigned char PAGE_FORMAT = 0x10;
constexpr std::size_t LOG_PAGE_HEADER = 4;
/// Header and a page code for each of 256.
constexpr std::size_t SUPPORTED_PAGES = LOG_PAGE_HEADER + 256;

ScsiBlockCommand::Bytes cutTo(std::size_t limit, ScsiBlockCommand::Bytes bytes) {
    bytes.resize(std::min(bytes.size(), limit));
    return bytes;
}

}  // namespace

SCSIModeSense::SCSIModeSense(unsigned char page, unsigned char subpage, std::uint16_t length)
    : SCSIModeSense(NO_BLOCK_DESCRIPTORS, page, subpage, length) {}

SCSIModeSense::SCSIModeSense(unsigned char flags, unsigned char page, unsigned char subpage,
                             std::uint16_t length)
    : ScsiBlockCommand(10, {0x5A, flags, page, subpage}, Direction::In, length) {
    setNumber(7, 2, length);
}

bool ModeSense10::sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
    resize(FIRST_LENGTH);
    setNumber(7, 2, FIRST_LENGTH);
    if (!SCSIModeSense::sendCommand(device, request)) return false;
    // The mode data length doesn't count itself.
    unsigned const length = readBigEndian<std::uint16_t>(data().data()) + 2U;
    if (length <= FIRST_LENGTH) return true;
    std::uint16_t const whole = static_cast<std::uint16_t>(std::min(length, 0xFFFFU));
    resize(whole);
    setNumber(7, 2, whole);
    return SCSIModeSense::sendCommand(device, request);
}

SCSIModeSelect::SCSIModeSelect(Bytes parameters)
    : ScsiBlockCommand(10, {0x55, PAGE_FORMAT}, Direction::Out, cutTo(0xFFFF, std::move(parameters))) {
    setNumber(7, 2, data().size());
}

ModeSelect6::ModeSelect6(Bytes parameters)
    : ScsiBlockCommand(6, {0x15}, Direction::Out, cutTo(0xFF, std::move(parameters))) {
    setNumber(4, 1, data().size());
}

SCSILogSelect::SCSILogSelect(Bytes parameters)
    : ScsiBlockCommand(10, {0x4C}, Direction::Out, cutTo(0xFFFF, std::move(parameters))) {
    setNumber(7, 2, data().size());
}

ReadSupportedLogPages::ReadSupportedLogPages() : SCSILogSense({0x4D}, SUPPORTED_PAGES) {
    setNumber(7, 2, SUPPORTED_PAGES);
}

ReadSupportedLogPages::Bytes ReadSupportedLogPages::pages() const {
    if (received().size() < LOG_PAGE_HEADER) return {};
    auto const pages = received().subspan(LOG_PAGE_HEADER);
    auto const count = std::min<std::size_t>(readBigEndian<std::uint16_t>(&data()[2]), pages.size());
    return Bytes(pages.begin(), pages.begin() + static_cast<std::ptrdiff_t>(count));
}

bool ReadSupportedLogPages::supports(unsigned char page) const {
    Bytes const all = pages();
    return std::find(all.begin(), all.end(), page) != all.end();
}
