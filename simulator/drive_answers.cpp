/// What a drive tells of itself beside INQUIRY: capacity, log pages, and as ATA its identity and its logs.

#include <algorithm>

#include "simulator/drive.h"

namespace simulator {

namespace {

constexpr std::size_t SECTOR = 512;
constexpr std::uint8_t WORKLOAD_PAGE = 0x36;  ///< of the vendor
constexpr std::uint8_t EXCEPTIONS_PAGE = 0x2F;
constexpr unsigned WORN_OUT = 100;  ///< percent

void addParameter(Bytes& page, unsigned code, unsigned size, std::uint64_t value) {
    std::size_t const at = page.size();
    page.resize(at + 4 + size);
    putBig(&page[at], 2, code);
    page[at + 2] = 0x03;  // a binary list parameter
    page[at + 3] = static_cast<std::uint8_t>(size);
    putBig(&page[at + 4], size, value);
}

/// ATA text: words with their first character in the high byte.
void putAtaText(Bytes& data, std::size_t word, std::size_t words, std::string const& text) {
    putText(&data[2 * word], 2 * words, text);
    for (std::size_t i = 0; i < words; ++i)
        std::swap(data[2 * (word + i)], data[2 * (word + i) + 1]);
}

void putWord(Bytes& data, std::size_t word, std::uint64_t value) {
    putLittle(&data[2 * word], 2, value);
}

/// An entry of the device statistics (ACS): supported and valid in its highest byte.
void putStatistic(Bytes& page, std::size_t offset, std::uint64_t value) {
    putLittle(&page[offset], 8, value);
    page[offset + 7] = 0xC0;
}

}  // namespace

Reply Drive::capacity(Command const& command) const {
    bool const isLong = command.block[0] == 0x9E;
    if (command.block.size() < (isLong ? 16U : 10U) || (isLong && (command.block[1] & 0x1F) != 0x10))
        return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    std::uint64_t const last = m_setup.blocks - 1;
    Reply reply;
    reply.data.resize(isLong ? 32 : 8);
    if (isLong)
        putBig(reply.data.data(), 8, last);
    else
        putBig(reply.data.data(), 4, std::min<std::uint64_t>(last, 0xFFFFFFFF));
    putBig(&reply.data[isLong ? 8 : 4], 4, m_setup.blockSize);
    return reply;
}

Reply Drive::logSense(Command const& command) const {
    Bytes const& block = command.block;
    if (block.size() != 10) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    std::uint8_t const code = block[2] & 0x3F;
    unsigned const first = static_cast<unsigned>(getBig(&block[5], 2));
    bool const tellsWear = isSolidState() && !isSata();
    Bytes page(4);
    if (block[3] != 0) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    if (code == 0) {
        page.resize(tellsWear ? 7 : 6);  // itself first
        page[5] = EXCEPTIONS_PAGE;
        if (tellsWear) page[6] = WORKLOAD_PAGE;
    } else if (code == EXCEPTIONS_PAGE) {
        bool const wornOut = m_setup.wear.percent >= WORN_OUT;
        std::uint64_t const cause = m_setup.state == DriveState::Failing ? 0x5D10  // hardware, general
                                    : wornOut                            ? 0x5D73  // endurance limit met
                                                                         : 0;
        if (first == 0) addParameter(page, 0, 4, cause << 16 | 35U << 8);
        if (first <= 4) addParameter(page, 4, 4, std::min(m_setup.wear.percent, 255U));
    } else if (code == WORKLOAD_PAGE && tellsWear) {
        addParameter(page, 1, 4, m_setup.wear.percent);
        addParameter(page, 2, 4, m_setup.wear.powerOnHours);
        addParameter(page, 3, 4, m_setup.wear.remainingDays);
        addParameter(page, 4, 4, m_setup.wear.powerCycles);
        addParameter(page, 5, 1, m_setup.wear.flags);
    } else {
        return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    }
    page[0] = code;
    putBig(&page[2], 2, page.size() - 4);
    Reply reply;
    reply.data = std::move(page);
    std::size_t const allocation = getBig(&block[7], 2);
    if (reply.data.size() > allocation) reply.data.resize(allocation);
    return reply;
}

Bytes Drive::ataIdentity() const {
    Bytes data(SECTOR);
    putAtaText(data, 10, 10, m_identity.serial);
    putAtaText(data, 23, 4, m_firmware.running());
    putAtaText(data, 27, 20, m_identity.product);
    putWord(data, 47, 0x8010);
    putWord(data, 49, 0x0F00);
    putWord(data, 53, 0x0006);
    putLittle(&data[2 * 60], 4, std::min<std::uint64_t>(m_setup.blocks, 0x0FFFFFFF));
    putWord(data, 76, 0x000E);  // SATA, up to 6 Gb/s
    putWord(data, 80, 0x01FC);
    putWord(data, 83, 0x7401);  // 48-bit addresses, DOWNLOAD MICROCODE
    putWord(data, 84, 0x4023);  // general purpose logs, SMART
    putWord(data, 86, 0x7401);
    putWord(data, 87, 0x4023);
    putLittle(&data[2 * 100], 8, m_setup.blocks);
    for (std::size_t i = 0; i < 4; ++i)
        putWord(data, 108 + i, m_identity.worldWideName >> (48 - 16 * i) & 0xFFFF);
    putWord(data, 119, 0x4010);  // DOWNLOAD MICROCODE with offsets
    putWord(data, 120, 0x4010);
    putWord(data, 217, m_setup.rotation);
    putWord(data, 222, 0x1040);
    putWord(data, 234, 1);
    putWord(data, 235, 64);  // sectors of a chunk
    data[510] = 0xA5;
    unsigned sum = 0;
    for (std::size_t i = 0; i < 511; ++i)
        sum += data[i];
    data[511] = static_cast<std::uint8_t>(0U - sum);
    return data;
}

std::optional<Bytes> Drive::ataLog(std::uint8_t log, std::uint8_t page) const {
    Bytes data(SECTOR);
    if (log == 0x00 && page == 0) {  // the directory: a word of pages for each log
        putLittle(data.data(), 2, 1);
        putLittle(&data[2 * 0x04], 2, 8);
        return data;
    }
    if (log != 0x04 || page > 7) return std::nullopt;
    putLittle(data.data(), 2, 1);
    data[2] = page;
    if (page == 0) {
        data[8] = static_cast<std::uint8_t>(isSolidState() ? 3 : 2);
        data[9] = 0;
        data[10] = 1;
        if (isSolidState()) data[11] = 7;
    } else if (page == 1) {
        putStatistic(data, 8, m_setup.wear.powerCycles);
        putStatistic(data, 16, m_setup.wear.powerOnHours);
    } else if (page == 7 && isSolidState()) {
        putStatistic(data, 8, m_setup.wear.percent);
    } else {
        data[2] = 0;
        data[0] = 0;  // a page without statistics
    }
    return data;
}

}  // namespace simulator
