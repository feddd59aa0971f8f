#include "sysmod/efi_boot.h"

#include <cstdio>

#include "common/debug_logger.h"
#include "sysmod/system_calls.h"

namespace Core::SysMod {
namespace {

constexpr char VARIABLES[] = "/sys/firmware/efi/efivars/";
constexpr char GLOBAL_VARIABLE[] = "-8be4df61-93ca-11d2-aa0d-00e098032b8c";
/// The kernel puts a variable's attributes in front of its contents.
constexpr std::size_t ATTRIBUTES_SIZE = 4;
constexpr std::size_t VARIABLE_LIMIT = 64U << 10;

constexpr std::uint32_t LOAD_OPTION_ACTIVE = 1;
constexpr std::size_t DESCRIPTION_OFFSET = 6;

// Device path nodes: type, subtype, length of the node in two bytes.
constexpr std::size_t NODE_HEADER = 4;
constexpr std::uint8_t HARDWARE_NODE = 0x01;
constexpr std::uint8_t PCI_NODE = 0x01;
constexpr std::size_t PCI_NODE_SIZE = 6;
constexpr std::uint8_t ACPI_NODE = 0x02;
constexpr std::uint8_t ACPI_PLAIN_NODE = 0x01;
constexpr std::size_t ACPI_PLAIN_NODE_SIZE = 12;
constexpr std::uint8_t END_NODE = 0x7F;
/// Compressed names PNP0A03 and PNP0A08: a PCI and a PCI Express root bridge.
constexpr std::uint32_t PCI_ROOT = 0x0A0341D0;
constexpr std::uint32_t PCI_EXPRESS_ROOT = 0x0A0841D0;

std::uint8_t byteAt(std::string const& text, std::size_t at) {
    return static_cast<std::uint8_t>(text[at]);
}

std::uint32_t wordAt(std::string const& text, std::size_t at) {
    return byteAt(text, at) | static_cast<std::uint32_t>(byteAt(text, at + 1)) << 8;
}

std::uint32_t dwordAt(std::string const& text, std::size_t at) {
    return wordAt(text, at) | wordAt(text, at + 2) << 16;
}

/// A variable's contents; nothing when it isn't there or shorter than its attributes.
std::optional<std::string> readVariable(std::string const& name) {
    std::string contents;
    if (!systemCalls().readFile(VARIABLES + name + GLOBAL_VARIABLE, contents, VARIABLE_LIMIT) ||
        contents.size() < ATTRIBUTES_SIZE) {
        return std::nullopt;
    }
    return contents.substr(ATTRIBUTES_SIZE);
}

/// The first path of a list; several can follow one another, and only the first is booted.
std::optional<EfiPciPath> pciPathOf(std::string const& path) {
    EfiPciPath found;
    bool hasRoot = false;
    for (std::size_t at = 0; at + NODE_HEADER <= path.size();) {
        std::uint8_t const type = byteAt(path, at);
        std::uint8_t const subtype = byteAt(path, at + 1);
        std::size_t const length = wordAt(path, at + 2);
        if (type == END_NODE) {
            break;
        }
        if (length < NODE_HEADER || length > path.size() - at) {
            Common::DebugLogger::LogCommand(
                "Boot entry refused: a device path node of %u bytes at %u, the path has %u",
                static_cast<unsigned>(length), static_cast<unsigned>(at), static_cast<unsigned>(path.size()));
            return std::nullopt;
        }
        if (type == ACPI_NODE && subtype == ACPI_PLAIN_NODE && length >= ACPI_PLAIN_NODE_SIZE) {
            std::uint32_t const name = dwordAt(path, at + 4);
            hasRoot = name == PCI_ROOT || name == PCI_EXPRESS_ROOT;
            found.root = dwordAt(path, at + 8);
        } else if (hasRoot && type == HARDWARE_NODE && subtype == PCI_NODE && length >= PCI_NODE_SIZE) {
            found.steps.push_back({byteAt(path, at + 5), byteAt(path, at + 4)});
        }
        at += length;
    }
    return found.steps.empty() ? std::nullopt : std::optional(found);
}

}  // namespace

std::optional<EfiPciPath> pciPathOfLoadOption(std::string const& option) {
    if (option.size() < DESCRIPTION_OFFSET || (dwordAt(option, 0) & LOAD_OPTION_ACTIVE) == 0) {
        return std::nullopt;
    }
    std::size_t const pathLength = wordAt(option, 4);
    std::size_t at = DESCRIPTION_OFFSET;
    // The description: characters of two bytes up to a zero.
    for (; at + 2 <= option.size() && wordAt(option, at) != 0; at += 2) {
    }
    at += 2;
    if (at > option.size() || pathLength > option.size() - at) {
        Common::DebugLogger::LogCommand("Boot entry refused: a device path of %u bytes, the entry has %u",
                                        static_cast<unsigned>(pathLength),
                                        static_cast<unsigned>(option.size()));
        return std::nullopt;
    }
    return pciPathOf(option.substr(at, pathLength));
}

std::optional<EfiPciPath> bootPciPath() {
    std::optional<std::string> const order = readVariable("BootOrder");
    for (std::size_t at = 0; order && at + 2 <= order->size(); at += 2) {
        char name[16];
        std::snprintf(name, sizeof name, "Boot%04X", static_cast<unsigned>(wordAt(*order, at)));
        if (auto const option = readVariable(name)) {
            // Entries that name a medium or a file alone don't tell what it is attached to.
            if (auto path = pciPathOfLoadOption(*option)) {
                return path;
            }
        }
    }
    return std::nullopt;
}

}  // namespace Core::SysMod
