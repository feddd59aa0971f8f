#include "storage/operations/adapter_properties.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <string>
#include <vector>

#include "command/cache.h"
#include "common/conversion.h"

namespace Operations {
namespace {

constexpr char SLOT_PREFIX[] = "S:";
constexpr unsigned SLOT_PREFIX_LENGTH = 2;

/// A location text, or nothing when it says that there is none.
Common::string knownText(Common::string const& text) {
    return text == "UNKNOWN" || text == "NA" ? Common::string() : text;
}

Common::string slotText(Common::string const& text) {
    Common::string const known = knownText(text);
    if (known.size() > SLOT_PREFIX_LENGTH && known.substr(0, SLOT_PREFIX_LENGTH) == SLOT_PREFIX) {
        return known.substr(SLOT_PREFIX_LENGTH, known.size() - SLOT_PREFIX_LENGTH);
    }
    return Common::string();
}

Common::string hexText(char const* format, unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

int slotNumber(Common::string const& handle) {
    Common::string const slot = AdapterProperties(handle).slot;
    return slot.empty() || std::isdigit(static_cast<unsigned char>(slot[0])) == 0
               ? INT_MAX
               : Conversion::toNumber<int>(slot);
}

}  // namespace

AdapterProperties::AdapterProperties(Common::string const& adapterHandle)
    : handle(adapterHandle),
      domain(UNKNOWN_PCI_DOMAIN),
      bus(UNKNOWN_PCI_FIELD),
      device(UNKNOWN_PCI_FIELD),
      function(UNKNOWN_PCI_FIELD) {
    using namespace Core::SysMod;
    PropertyTable table;
    toPropertyTable(adapterHandle, table);
    status = table[AdapterStatus];
    kind = table[DeviceType];
    driverName = table[AdapterName];
    driverVersion = table[DriverVersion];
    fastPath = table[FastPath];
    subsystemIdHex = table[SubsystemIdentity];
    deviceIdHex = table[PciIdentity];
    slot = slotText(table[AdapterSlot]);
    firmwareVersion = table[FirmwareVersion];
    romVersion = table[RomVersion];
    serialNumber = table[SerialNumber];
    unsigned numbers[4] = {};
    if (std::sscanf(table[PciLocation].c_str(), "%8x:%2x:%2x.%2x", &numbers[0], &numbers[1], &numbers[2],
                    &numbers[3]) == 4) {
        domain = hexText("%04X", numbers[0]);
        bus = hexText("%02X", numbers[1]);
        device = hexText("%02X", numbers[2]);
        function = hexText("%02X", numbers[3]);
    }
}

bool AdapterProperties::hasPciLocation() const {
    return domain != UNKNOWN_PCI_DOMAIN && bus != UNKNOWN_PCI_FIELD && device != UNKNOWN_PCI_FIELD &&
           function != UNKNOWN_PCI_FIELD;
}

Common::string decimalOfHex(Common::string const& digits) {
    unsigned value = 0;
    return Conversion::xtoi(digits, value) == 0 ? hexText("%u", value) : Common::string();
}

bool slotSortPredicate(Common::string const& left, Common::string const& right) {
    return slotNumber(left) < slotNumber(right);
}

StorageAdapterIterator::StorageAdapterIterator() {
    ProcessStorageAdapterIterator(m_controllers, m_csmiAdapters, m_plainAdapters);
}

StorageAdapterIterator::List StorageAdapterIterator::controllersBySlot() const {
    std::vector<Common::string> handles;
    for (auto handle = m_controllers.begin(); handle != m_controllers.end(); ++handle) {
        handles.push_back(*handle);
    }
    std::stable_sort(handles.begin(), handles.end(), slotSortPredicate);
    List sorted;
    for (Common::string const& handle : handles) {
        sorted.push_back(handle);
    }
    return sorted;
}

}  // namespace Operations
