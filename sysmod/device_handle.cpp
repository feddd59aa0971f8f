#include "sysmod/device_handle.h"

#include <cctype>

#include "common/conversion.h"
#include "common/debug_logger.h"

namespace Core::SysMod {
namespace {

constexpr char SEPARATOR[] = "\r\n";
constexpr unsigned SEPARATOR_LENGTH = 2;
constexpr unsigned ROUTE_PREFIX_LENGTH = 5;
constexpr unsigned ADDRESS_DIGITS = 16;

struct DeviceTypeText {
    char const* text;
    EnDeviceType code;
};

constexpr DeviceTypeText DEVICE_TYPES[] = {
    {"PHYSICAL_DRIVE", EnDeviceType::PhysicalDrive},
    {"TAPE_DRIVE", EnDeviceType::TapeDrive},
    {"EXPANDER", EnDeviceType::Expander},
    {"SEP", EnDeviceType::Sep},
};

Common::string property(Common::string const& handle, Property place) {
    PropertyTable table;
    toPropertyTable(handle, table);
    return table[place];
}

bool hasPrefix(Common::string const& route, char const* prefix) {
    return route.size() >= ROUTE_PREFIX_LENGTH && route.substr(0, ROUTE_PREFIX_LENGTH) == prefix;
}

/// The text behind the last ":" of a "CSMI:" or "QRTH:" route.
Common::string addressText(Common::string const& route) {
    if (hasPrefix(route, "QRTH:")) {
        return route.substr(ROUTE_PREFIX_LENGTH, route.size() - ROUTE_PREFIX_LENGTH);
    }
    if (hasPrefix(route, "CSMI:")) {
        unsigned const colon = route.find(":", ROUTE_PREFIX_LENGTH);
        return colon == Common::string::npos ? Common::string()
                                             : route.substr(colon + 1, route.size() - colon - 1);
    }
    return Common::string();
}

bool toAddressBytes(Common::string const& digits, std::uint8_t (&bytes)[8]) {
    if (digits.size() < ADDRESS_DIGITS) {
        return false;
    }
    for (unsigned i = 0; i < ADDRESS_DIGITS; ++i) {
        if (std::isxdigit(static_cast<unsigned char>(digits[i])) == 0) {
            return false;
        }
    }
    Conversion::stringToArray<unsigned char>(digits, bytes, sizeof bytes);
    return true;
}

/// A decimal number of digits alone; false for anything else and from `limit` on.
bool toNumberBelow(Common::string const& text, unsigned limit, unsigned& number) {
    number = 0;
    for (unsigned i = 0; i < text.size(); ++i) {
        unsigned const digit = static_cast<unsigned char>(text[i]) - static_cast<unsigned>('0');
        if (digit > 9 || (number = number * 10 + digit) >= limit) {
            return false;
        }
    }
    return !text.empty();
}

std::uint8_t phyOf(Common::string const& route) {
    if (!hasPrefix(route, "CSMI:")) {
        return 0;
    }
    return Conversion::toNumber<unsigned char>(
        route.substr(ROUTE_PREFIX_LENGTH, route.size() - ROUTE_PREFIX_LENGTH));
}

}  // namespace

Common::string toDeviceInfo(Common::string const (&table)[PROPERTY_COUNT]) {
    Common::string handle = table[0];
    for (unsigned i = 1; i < PROPERTY_COUNT; ++i) {
        handle += SEPARATOR;
        handle += table[i];
    }
    return handle;
}

void toPropertyTable(Common::string const& handle, Common::string (&table)[PROPERTY_COUNT]) {
    for (Common::string& text : table) {
        text.clear();
    }
    unsigned place = 0;
    unsigned start = 0;
    for (;;) {
        unsigned const end = handle.find(SEPARATOR, start);
        if (place == PROPERTY_COUNT) {
            Common::DebugLogger::LogCommand("Device handle has more than %u texts; the rest is refused",
                                            PROPERTY_COUNT);
            return;
        }
        bool const isLast = end == Common::string::npos;
        table[place++] = handle.substr(start, (isLast ? handle.size() : end) - start);
        if (isLast) {
            return;
        }
        start = end + SEPARATOR_LENGTH;
    }
}

Common::string getDeviceUniqueKey(Common::string const& handle) {
    return property(handle, UniqueKey);
}

std::uint16_t getDeviceIndex(Common::string const& handle) {
    return Conversion::toNumber<unsigned short>(property(handle, DeviceIndex));
}

bool isSameDevice(Common::string const& left, Common::string const& right) {
    PropertyTable leftTable;
    PropertyTable rightTable;
    toPropertyTable(left, leftTable);
    toPropertyTable(right, rightTable);
    return leftTable[UniqueKey] == rightTable[UniqueKey] && leftTable[Route] == rightTable[Route];
}

std::uint8_t getDeviceBusIndex(Common::string const& handle) {
    PropertyTable table;
    toPropertyTable(handle, table);
    std::uint8_t address[8] = {};
    if (!hasPrefix(table[Route], "QRTH:") || !toAddressBytes(addressText(table[Route]), address)) {
        return 0;
    }
    bool const isLogical =
        table[DeviceType] == "EXTERNAL_LOGICAL_DEVICE" || table[DeviceType] == "LOCAL_LOGICAL_DEVICE";
    return isLogical ? address[2] : static_cast<std::uint8_t>(address[3] & 0x3F);
}

Common::string getSasAddress(Common::string const& handle) {
    return addressText(property(handle, Route));
}

void getSasAddress(Common::string const& handle, std::uint8_t (&bytes)[8]) {
    for (std::uint8_t& byte : bytes) {
        byte = 0;
    }
    toAddressBytes(getSasAddress(handle), bytes);
}

std::uint8_t getPhyIdentifier(Common::string const& handle) {
    return phyOf(property(handle, Route));
}

Common::string getParentSasAddress(Common::string const& handle) {
    return addressText(property(handle, ParentRoute));
}

std::uint8_t getParentPhyIdentifier(Common::string const& handle) {
    return phyOf(property(handle, ParentRoute));
}

EnDeviceType getDeviceType(Common::string const& handle) {
    Common::string const text = property(handle, DeviceType);
    for (DeviceTypeText const& row : DEVICE_TYPES) {
        if (text == row.text) {
            return row.code;
        }
    }
    return EnDeviceType::Other;
}

char const* toText(EnDeviceType code) {
    for (DeviceTypeText const& row : DEVICE_TYPES) {
        if (code == row.code) {
            return row.text;
        }
    }
    return "UNKNOWN";
}

bool isCellBasedSystem() {
    return false;
}

bool parseLogicalUnitAddress(Common::string const& route, std::uint8_t (&address)[8]) {
    for (std::uint8_t& byte : address) {
        byte = 0;
    }
    if (hasPrefix(route, "QRTH:")) {
        return toAddressBytes(addressText(route), address);
    }
    if (hasPrefix(route, "BMIC:")) {
        unsigned number = 0;
        if (!toNumberBelow(route.substr(ROUTE_PREFIX_LENGTH, route.size() - ROUTE_PREFIX_LENGTH), 0x10000,
                           number)) {
            return false;
        }
        address[0] = static_cast<std::uint8_t>(number & 0xFF);
        address[1] = static_cast<std::uint8_t>(number >> 8);
        address[3] = 0x40;
        return true;
    }
    return false;
}

bool parseCSMIAddress(Common::string const& route, CSMIAddress& address) {
    address = CSMIAddress();
    if (!hasPrefix(route, "CSMI:")) {
        return false;
    }
    Common::string const rest = route.substr(ROUTE_PREFIX_LENGTH, route.size() - ROUTE_PREFIX_LENGTH);
    unsigned phy = 0;
    unsigned digits = 0;
    while (digits < rest.size() && rest[digits] != ':')
        ++digits;
    if (!toNumberBelow(rest.substr(0, digits), 0x100, phy)) {
        return false;
    }
    address.phy = static_cast<std::uint8_t>(phy);
    return toAddressBytes(addressText(route), address.sasAddress);
}

}  // namespace Core::SysMod
