#include "storage/operations/subcomponent_versions.h"

#include <span>
#include <vector>

#include "command/scsi/enclosure_commands.h"
#include "storage/operations/publish.h"
#include "storage/operations/sep_models.h"
#include "storage/operations/sep_utils.h"
#include "storage/vocabulary/sep.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::SEP;
using Bytes = std::span<unsigned char const>;

/// The parts in the order of the texts of the older enclosures' block.
constexpr char const* BLOCK_PARTS[] = {
    Names::ATTR_NAME_BPM_VERSION,   Names::ATTR_NAME_FCM_VERSION,
    Names::ATTR_NAME_HMM_VERSION,   Names::ATTR_NAME_7_SEGMENT_LED_DISPLAY_VERSION,
    Names::ATTR_NAME_ISMIC_VERSION, Names::ATTR_NAME_POWER_SUPPLY_VERSION,
};
/// The block: a head, then texts of one size.
constexpr std::size_t BLOCK_HEAD = 4;
constexpr std::size_t BLOCK_TEXT = 16;

/// The parts in the order of the newer enclosures' elements.
constexpr char const* ELEMENT_PARTS[] = {
    Names::ATTR_NAME_DRIVE_BAY_VERSION,
    Names::ATTR_NAME_DRIVE_BAY_CONNECTOR_VERSION,
    Names::ATTR_NAME_ENCLOSURE_VERSION,
    Names::ATTR_NAME_FAN_MODULE_1_VERSION,
    Names::ATTR_NAME_FAN_MODULE_2_VERSION,
    Names::ATTR_NAME_PORT_A_ENCLOSURE_LINK_MODULE_VERSION,
    Names::ATTR_NAME_PORT_A1_SAS_EXTERNAL_CONNECTOR_VERSION,
    Names::ATTR_NAME_PORT_A2_SAS_EXTERNAL_CONNECTOR_VERSION,
    Names::ATTR_NAME_PORT_A_SAS_EXPANDER_VERSION,
    Names::ATTR_NAME_PORT_A_ALPHANUMERIC_DISPLAY_VERSION,
    Names::ATTR_NAME_PORT_A_TEMPERATURE_SENSOR_VERSION,
    Names::ATTR_NAME_PORT_B_ENCLOSURE_LINK_MODULE_VERSION,
    Names::ATTR_NAME_PORT_B1_SAS_EXTERNAL_CONNECTOR_VERSION,
    Names::ATTR_NAME_PORT_B2_SAS_EXTERNAL_CONNECTOR_VERSION,
    Names::ATTR_NAME_PORT_B_SAS_EXPANDER_VERSION,
    Names::ATTR_NAME_PORT_B_ALPHANUMERIC_DISPLAY_VERSION,
    Names::ATTR_NAME_PORT_B_TEMPERATURE_SENSOR_VERSION,
    Names::ATTR_NAME_MIDPLANE_LOGIC_VERSION,
    Names::ATTR_NAME_LED_CONTROL_PSOC_VERSION,
    Names::ATTR_NAME_MIDPLANE_TEMPERATURE_SENSOR_VERSION,
    Names::ATTR_NAME_POWER_CONVERTER_BOX_VERSION,
};

// SES pages: bytes 2 and 3 tell how many bytes follow the first four; the descriptors begin at byte 8.
constexpr std::size_t PAGE_LENGTH = 2;
constexpr std::size_t PAGE_LENGTH_FROM = 4;
constexpr std::size_t DESCRIPTORS = 8;
// An enclosure descriptor: byte 2 the number of its type descriptor headers, byte 3 the bytes that follow.
constexpr std::size_t TYPE_COUNT = 2;
constexpr std::size_t DESCRIPTOR_LENGTH = 3;
constexpr std::size_t DESCRIPTOR_HEAD = 4;
constexpr std::size_t REVISION = 36;
constexpr std::size_t REVISION_SIZE = 4;
// A type descriptor header: byte 1 the number of its elements.
constexpr std::size_t TYPE_HEADER = 4;
constexpr std::size_t ELEMENT_COUNT = 1;

std::size_t wordAt(Bytes page, std::size_t at) {
    return at + 2 <= page.size() ? static_cast<std::size_t>(page[at] << 8 | page[at + 1]) : 0;
}

/// As much of a page as it says that it has, or as came.
Bytes wholePage(Bytes data, unsigned char code) {
    if (data.size() < DESCRIPTORS || data[0] != code) return {};
    return data.first(std::min(data.size(), PAGE_LENGTH_FROM + wordAt(data, PAGE_LENGTH)));
}

/// Empty where the text doesn't lie within the page: half a version would pass for an older one.
Common::string textAt(Bytes data, std::size_t at, std::size_t size) {
    Common::string text;
    if (at + size > data.size()) return text;
    for (std::size_t i = at; i < at + size && data[i] != 0; ++i) {
        char const character[] = {static_cast<char>(data[i]), '\0'};
        text += character;
    }
    return text.Trim();
}

/// The numbers of elements of each type, in the order in which both pages list them. Type descriptor headers
/// stand behind all enclosure descriptors.
std::vector<unsigned> elementCounts(Bytes configuration) {
    std::vector<unsigned> counts;
    if (configuration.size() < DESCRIPTORS) return counts;
    unsigned types = 0;
    std::size_t at = DESCRIPTORS;
    for (unsigned enclosure = 0; enclosure <= configuration[1]; ++enclosure) {
        if (at + DESCRIPTOR_HEAD > configuration.size()) return counts;
        types += configuration[at + TYPE_COUNT];
        at += DESCRIPTOR_HEAD + configuration[at + DESCRIPTOR_LENGTH];
    }
    for (; types != 0 && at + TYPE_HEADER <= configuration.size(); --types, at += TYPE_HEADER) {
        counts.push_back(configuration[at + ELEMENT_COUNT]);
    }
    return counts;
}

/// The texts of all elements, without those of whole types. Two bytes, the length (2), the text.
std::vector<Common::string> elementTexts(Bytes page, std::vector<unsigned> const& counts) {
    std::vector<Common::string> texts;
    std::size_t at = DESCRIPTORS;
    for (unsigned const count : counts) {
        for (unsigned element = 0; element <= count; ++element) {
            if (at + DESCRIPTOR_HEAD > page.size()) return texts;
            std::size_t const length = wordAt(page, at + 2);
            std::size_t const there = std::min(length, page.size() - at - DESCRIPTOR_HEAD);
            // In a page that came whole the length is wrong, and its text ends with the page.
            if (there < length && PAGE_LENGTH_FROM + wordAt(page, PAGE_LENGTH) > page.size()) return texts;
            if (element != 0) texts.push_back(textAt(page, at + DESCRIPTOR_HEAD, there));
            at += DESCRIPTOR_HEAD + length;
        }
    }
    return texts;
}

/// Past the reply cache: its key has too little of a command block and of an address to tell one processor's
/// page from another's.
bool readPast(ScsiCommand& command, SCSIDevice& device) {
    command.PassThrough(true);
    return command(device);
}

void publishBlock(Core::Device& sep, SCSIDevice& device) {
    ReadEnclosureSubcomponentVersions block;
    if (!readPast(block, device)) return;
    std::size_t at = BLOCK_HEAD;
    for (char const* const part : BLOCK_PARTS) {
        if (at + BLOCK_TEXT > block.received().size()) return;
        publish(sep, part, textAt(block.received(), at, BLOCK_TEXT));
        at += BLOCK_TEXT;
    }
}

void publishSepRevision(Core::Device& sep, SCSIDevice& device) {
    ReadEnclosureConfigurationDiagnosticPage page;
    if (!readPast(page, device)) return;
    Common::string const revision =
        textAt(wholePage(page.received(), 1), DESCRIPTORS + REVISION, REVISION_SIZE);
    if (!revision.empty()) publish(sep, Names::ATTR_NAME_SEP_VERSION, "(1) " + revision);
}

void publishDescriptors(Core::Device& sep, SCSIDevice& device) {
    ReadEnclosureConfigurationDiagnosticPage configuration;
    ReadEnclosureSubcomponentVersions2 descriptors;
    if (!readPast(configuration, device) || !readPast(descriptors, device)) return;
    auto const texts = elementTexts(wholePage(descriptors.received(), 7),
                                    elementCounts(wholePage(configuration.received(), 1)));
    std::size_t number = 0;
    for (char const* const part : ELEMENT_PARTS) {
        if (number == texts.size()) return;
        publish(sep, part, texts[number++]);
    }
}

}  // namespace

void publishSubcomponentVersionInfo(Common::shared_ptr<Core::Device> const& sep, SCSIDevice& device) {
    SepModelRow const* const model = findSepModel(SepUtils::getProductId(sep));
    switch (model == nullptr ? SubcomponentRoute::None : model->route) {
        case SubcomponentRoute::DiagnosticBlock:
            return publishBlock(*sep, device);
        case SubcomponentRoute::SepRevision:
            return publishSepRevision(*sep, device);
        case SubcomponentRoute::Descriptors:
            return publishDescriptors(*sep, device);
        case SubcomponentRoute::None:
            return;
    }
}

}  // namespace Operations
