/// What an enclosure processor tells of its box: the pages of SES and the blocks of READ BUFFER.

#include <algorithm>

#include "simulator/enclosure_processor.h"

namespace simulator {

namespace {

constexpr std::uint8_t ELEMENT_ENCLOSURE = 0x0E;
constexpr std::size_t PAGE_HEAD = 8;  ///< code, count, length of the rest (2), generation (4)

void finishPage(Bytes& page) {
    putBig(&page[2], 2, page.size() - 4);
}

}  // namespace

/// Configuration page: one enclosure descriptor and one type descriptor header.
Bytes EnclosureProcessor::configurationPage() const {
    Bytes page(PAGE_HEAD + 40 + 4);
    page[0] = 1;
    std::uint8_t* const enclosure = &page[PAGE_HEAD];
    enclosure[0] = 0x11;  // process 1 of 1
    enclosure[2] = 1;     // type descriptor headers
    enclosure[3] = 36;    // bytes that follow
    putBig(enclosure + 4, 8, m_identity.worldWideName);
    putText(enclosure + 12, 8, m_identity.vendor);
    putText(enclosure + 20, 16, m_identity.product);
    putText(enclosure + 36, 4, m_identity.revision);
    page[PAGE_HEAD + 40] = ELEMENT_ENCLOSURE;
    page[PAGE_HEAD + 41] = static_cast<std::uint8_t>(std::min<std::size_t>(m_setup.descriptors.size(), 255));
    finishPage(page);
    return page;
}

/// Element descriptor page: an overall descriptor without text, then one per element.
Bytes EnclosureProcessor::descriptorPage() const {
    Bytes page(PAGE_HEAD + 4);
    page[0] = 7;
    for (std::string const& text : m_setup.descriptors) {
        page.insert(page.end(), {0, 0, 0, static_cast<std::uint8_t>(text.size())});
        page.insert(page.end(), text.begin(), text.end());
    }
    finishPage(page);
    return page;
}

Reply EnclosureProcessor::diagnostic(Command const& command) const {
    Bytes const& block = command.block;
    if (block.size() < 6 || (block[1] & 1) == 0 || (block[2] != 1 && block[2] != 7))
        return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    Reply reply;
    reply.data = block[2] == 1 ? configurationPage() : descriptorPage();
    std::size_t const allocation = getBig(&block[3], 2);
    if (reply.data.size() > allocation) reply.data.resize(allocation);
    return reply;
}

Reply EnclosureProcessor::readBuffer(Command const& command) const {
    Bytes const& block = command.block;
    if (block.size() != 10) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    Reply reply;
    if (block[1] == 5) {
        reply.data = m_firmware.contents(Rom::Active);
    } else if (block[1] == 1) {
        reply.data = m_setup.subcomponents;
    } else {
        return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    }
    std::size_t const allocation = getBig(&block[6], 3);
    if (reply.data.size() > allocation) reply.data.resize(allocation);
    return reply;
}

}  // namespace simulator
