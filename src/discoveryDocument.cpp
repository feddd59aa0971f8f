#include "src/discoveryDocument.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "src/CLI.h"
#include "src/deviceTags.h"

namespace {

struct ActionRow {
    updateState state;
    char const* action;
};

constexpr ActionRow ACTIONS[] = {{upgrade, "upgrade"}, {reflash, "rewrite"}, {downgrade, "downgrade"}};

/// Values go into the document as the device gives them, so that those who read it as text find them; who
/// reads it as XML must hear when that can't be done. Beyond ASCII nothing says that the bytes are UTF-8.
void warnUnlessWellFormed(char const* element, std::string const& value) {
    auto const breaks = [](unsigned char character) {
        return character < 0x20 || character >= 0x7F || std::strchr("<&\"", character) != nullptr;
    };
    auto const found = std::find_if(value.begin(), value.end(), breaks);
    if (!cli.hasDocument() || found == value.end()) return;
    cli.logVerbose(
        "Discovery document isn't well-formed: 0x%02X in %s, expected a character that needs no escape\n",
        static_cast<unsigned char>(*found), element);
}

}  // namespace

void writeDocumentHead() {
    std::string const tags = getTags();
    warnUnlessWellFormed("alt_name", tags);
    cli.PrintXML("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    cli.PrintXML("<vq_rom_discovery version=\"2.0.0.0\">\n");
    if (XMLTypeValue[0] != '\0') {
        cli.PrintXML("<type value=\"%s\"/>\n", XMLTypeValue);
    }
    if (tags.empty()) {
        cli.PrintXML(
            "<alt_name value=\"ROM Flash for VQ Storage Controller, Enclosure and Sep firmware\"/>\n");
    } else {
        cli.PrintXML("<alt_name value=\"ROM Flash for %s Controller, Enclosure and Sep firmware\"/>\n",
                     tags.c_str());
    }
    if (gblOverallVersion[0] != '\0') {
        cli.PrintXML("<version value=\"%s\" />\n", gblOverallVersion);
    }
    cli.PrintXML("<takes_effect value=\"deferred\"/>\n");
    cli.PrintXML("<devices>\n");
}

void writeDocumentTail() {
    cli.PrintXML("</devices>\n");
    cli.PrintXML("</vq_rom_discovery>\n");
}

void writeDocumentDevice(DocumentDevice const& device) {
    warnUnlessWellFormed("device_id", device.deviceId);
    warnUnlessWellFormed("product_id", device.productId);
    warnUnlessWellFormed("active_version", device.activeVersion);
    cli.PrintXML("<device>\n");
    cli.PrintXML("<device_id value=\"%s\"/>\n", device.deviceId.c_str());
    cli.PrintXML("<product_id value=\"%s\"/>\n", device.productId.c_str());
    cli.PrintXML("<fw_item>\n");
    cli.PrintXML("<type value=\"%s\"/>\n", device.kind.c_str());
    cli.PrintXML("<version value=\"%0.2f\"/>\n", static_cast<double>(device.catalogueVersion));
    cli.PrintXML("<active_version value=\"%s\"/>\n", device.activeVersion.c_str());
    for (ActionRow const& row : ACTIONS) {
        if (row.state == device.state) {
            cli.PrintXML("<action value=\"%s\"/>\n", row.action);
        }
    }
    cli.PrintXML("<duration value=\"%u\"/>\n", gblEstimatedFlashTime);
    cli.PrintXML("<shared value=\"no\"/>\n");
    cli.PrintXML("</fw_item>\n");
    cli.PrintXML("</device>\n");
}

std::string versionText(float version) {
    char text[64];
    std::snprintf(text, sizeof text, "%0.2f", static_cast<double>(version));
    return text;
}
