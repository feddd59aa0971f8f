#include <cctype>
#include <cstring>
#include <sstream>
#include <string>

#include "sysmod/discovery.h"
#include "sysmod/system_calls.h"

namespace Interface::SysMod::Discovery {
namespace {

constexpr char const* IDENTIFIER_FILES[] = {"/usr/share/hwdata/pci.ids", "/usr/share/pci.ids"};
constexpr std::size_t FILE_LIMIT = 16U << 20;
constexpr std::size_t DIGITS = 4;

bool startsWithDigits(std::string const& line, std::size_t at, std::string const& digits) {
    return line.size() > at + DIGITS && strncasecmp(line.c_str() + at, digits.c_str(), DIGITS) == 0;
}

std::string textBehind(std::string const& line, std::size_t at) {
    std::size_t const start = line.find_first_not_of(" \t", at);
    return start == std::string::npos ? std::string() : line.substr(start);
}

/// A line without indentation opens a vendor, one tab a device of it, two tabs a subsystem.
std::string descriptionIn(std::string const& contents, std::string const& vendor, std::string const& device) {
    std::istringstream lines(contents);
    std::string line;
    bool inVendor = false;
    while (std::getline(lines, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (line[0] != '\t') {
            inVendor = startsWithDigits(line, 0, vendor);
        } else if (inVendor && line.size() > 1 && line[1] != '\t' && startsWithDigits(line, 1, device)) {
            return textBehind(line, 1 + DIGITS);
        }
    }
    return std::string();
}

}  // namespace

Common::string GetDeviceDescription(Common::string const& id) {
    if (id.size() < 2 * DIGITS) {
        return Common::string();
    }
    std::string const text(id.c_str());
    for (char const* path : IDENTIFIER_FILES) {
        std::string contents;
        if (!Core::SysMod::systemCalls().readFile(path, contents, FILE_LIMIT)) {
            continue;
        }
        std::string const description =
            descriptionIn(contents, text.substr(0, DIGITS), text.substr(DIGITS, DIGITS));
        if (!description.empty()) {
            return Common::string("Adapter: ") + description.c_str();
        }
    }
    return Common::string();
}

}  // namespace Interface::SysMod::Discovery
