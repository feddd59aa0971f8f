#include "sysmod/csmi_adapter.h"

#include <cerrno>
#include <cstdio>
#include <string>

#include "common/string.h"
#include "sysmod/command_handlers.h"
#include "sysmod/device_handle.h"
#include "sysmod/pci_function.h"

namespace Core::SysMod {
namespace {

constexpr unsigned CONTROLLER_NUMBERS = 256;
constexpr char CSMI_NODE[] = "/dev/mpt2ctl:";

// Offsets in the CSMI replies, header included.
constexpr unsigned CONFIG_BOARD_ID = 32;
constexpr unsigned CONFIG_SLOT_NUMBER = 36;
constexpr unsigned CONFIG_PCI_BUS = 40;
constexpr unsigned CONFIG_SERIAL_NUMBER = 72;
constexpr unsigned CONFIG_SERIAL_NUMBER_SIZE = 81;
constexpr unsigned CONFIG_FIRMWARE_REVISION = 154;
constexpr unsigned CONFIG_ROM_REVISION = 162;
constexpr unsigned DRIVER_REVISION = 182;
constexpr unsigned STATUS_WORD = 20;

constexpr std::uint16_t NO_SLOT = 0xFFFF;

struct StatusText {
    std::uint32_t code;
    char const* text;
};

constexpr StatusText STATUS_TEXTS[] = {{1, "OK"}, {2, "FAILED"}, {3, "OFFLINE"}, {4, "POWEROFF"}};

std::uint16_t word(unsigned char const* reply, unsigned offset) {
    return static_cast<std::uint16_t>(reply[offset] | reply[offset + 1] << 8);
}

std::uint32_t dword(unsigned char const* reply, unsigned offset) {
    return word(reply, offset) | static_cast<std::uint32_t>(word(reply, offset + 2)) << 16;
}

/// Four numbers joined with dots.
Common::string revision(unsigned char const* reply, unsigned offset) {
    char text[32];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", static_cast<unsigned>(word(reply, offset)),
                  static_cast<unsigned>(word(reply, offset + 2)),
                  static_cast<unsigned>(word(reply, offset + 4)),
                  static_cast<unsigned>(word(reply, offset + 6)));
    return text;
}

/// A text that may fill its whole field. What can't be printed would break the handle's texts apart.
Common::string printableText(unsigned char const* reply, unsigned offset, unsigned size) {
    std::string text;
    for (unsigned i = offset; i < offset + size && reply[i] != 0; ++i) {
        text += reply[i] >= ' ' && reply[i] < 0x7F ? static_cast<char>(reply[i]) : ' ';
    }
    return Common::string(text.c_str()).Trim();
}

Common::string adapterStatus(OpenDeviceNode const& node) {
    CSMICommandHandler handler(false);
    std::uint32_t returnCode = 0;
    if (handler.SendControllerStatusCommand(node, returnCode) && returnCode == 0) {
        std::uint32_t const status = dword(handler.reply(), STATUS_WORD);
        for (StatusText const& row : STATUS_TEXTS) {
            if (row.code == status) {
                return row.text;
            }
        }
    }
    return "UNKNOWN";
}

Common::string driverVersion(OpenDeviceNode const& node) {
    CSMICommandHandler handler(false);
    std::uint32_t returnCode = 0;
    return handler.SendDriverInfoCommand(node, returnCode) && returnCode == 0
               ? revision(handler.reply(), DRIVER_REVISION)
               : Common::string("UNKNOWN");
}

/// What sysfs knows of the function behind the adapter, or what the board identifier tells.
void fillIdentity(unsigned char const* reply, Common::string (&table)[PROPERTY_COUNT]) {
    char location[16];
    std::snprintf(
        location, sizeof location, "0000:%02x:%02x.%x", static_cast<unsigned>(reply[CONFIG_PCI_BUS]),
        static_cast<unsigned>(reply[CONFIG_PCI_BUS + 1]), static_cast<unsigned>(reply[CONFIG_PCI_BUS + 2]));
    table[UniqueKey] = pciKey(location).c_str();
    table[PciLocation] = location;
    table[PciLocationAgain] = location;
    if (auto const function = readPciFunction(std::string("/sys/bus/pci/devices/") + location)) {
        table[PciIdentity] = function->identity.c_str();
        table[SubsystemIdentity] = function->subsystem.c_str();
        table[PciClass] = function->classText.c_str();
        table[AdapterName] = function->driver.c_str();
    } else {
        // Board identifier: subsystem device in the high half, subsystem vendor in the low half.
        std::uint32_t const board = dword(reply, CONFIG_BOARD_ID);
        char digits[16];
        std::snprintf(digits, sizeof digits, "%04X%04X", board & 0xFFFF, board >> 16);
        table[SubsystemIdentity] = digits;
    }
}

}  // namespace

void discoverCsmiAdapters(Interface::SysMod::Discovery::HandleList& adapters) {
    for (unsigned number = 0; number < CONTROLLER_NUMBERS; ++number) {
        char path[32];
        std::snprintf(path, sizeof path, "%s%u", CSMI_NODE, number);
        OpenDeviceNode const node{Common::string(path), false};
        if (node.openError() == ENOENT) {
            return;  // one node serves all numbers
        }
        CSMICommandHandler handler(false);
        std::uint32_t returnCode = 0;
        if (!node.isOpen() || !handler.SendHBAControllerConfigCommand(node, returnCode) || returnCode != 0) {
            continue;
        }
        unsigned char const* const reply = handler.reply();
        PropertyTable table;
        fillIdentity(reply, table);
        table[NodePath] = path;
        std::uint16_t const slot = word(reply, CONFIG_SLOT_NUMBER);
        table[AdapterSlot] = "UNKNOWN";
        if (slot != NO_SLOT) {
            char text[16];
            std::snprintf(text, sizeof text, "S:%u", static_cast<unsigned>(slot));
            table[AdapterSlot] = text;
        }
        table[SerialNumber] = printableText(reply, CONFIG_SERIAL_NUMBER, CONFIG_SERIAL_NUMBER_SIZE);
        table[FirmwareVersion] = revision(reply, CONFIG_FIRMWARE_REVISION);
        table[RomVersion] = revision(reply, CONFIG_ROM_REVISION);
        table[AdapterStatus] = adapterStatus(node);
        table[DriverVersion] = driverVersion(node);
        table[FastPath] = "NO";
        table[Description] = Interface::SysMod::Discovery::GetDeviceDescription(table[PciIdentity]);
        table[DescriptionAgain] = table[Description];
        table[DeviceType] = "CSMI_HBA";
        adapters.push_back(toDeviceInfo(table));
    }
}

}  // namespace Core::SysMod
