#include <algorithm>

#include "common/conversion.h"
#include "common/debug_logger.h"
#include "sysmod/device_discovery.h"
#include "sysmod/device_handle.h"
#include "sysmod/lun_report.h"

namespace Interface::SysMod::Discovery {
namespace {

using namespace Core::SysMod;

/// Byte 3 of a logical unit address: its two high bits say how the unit is addressed.
constexpr std::size_t MODE_BYTE = 3;
constexpr std::uint8_t MODE_BITS = 0xC0;
constexpr std::uint8_t MODE_MASKED = 0xC0;
/// Of a volume's address: the bus that it is on, 0 for the controller's own arrays.
constexpr std::size_t VOLUME_BUS_BYTE = 2;

constexpr std::size_t SAS_ADDRESS = 8;
constexpr std::size_t PARENT_ADDRESS = 16;
constexpr std::size_t INDEX = 24;
constexpr std::size_t TYPE = 26;
constexpr std::size_t PARENT_PHY = 28;
constexpr std::size_t ADDRESS_SIZE = 8;
constexpr std::size_t IDENTITY = 8;
constexpr std::size_t IDENTITY_SIZE = 16;

Common::string hexText(LunEntry const& entry, std::size_t at, std::size_t size) {
    return Conversion::arrayToString(&entry[at], static_cast<unsigned>(size), "");
}

bool isZero(LunEntry const& entry, std::size_t at, std::size_t size) {
    auto const start = entry.begin() + static_cast<std::ptrdiff_t>(at);
    return std::all_of(start, start + static_cast<std::ptrdiff_t>(size),
                       [](std::uint8_t byte) { return byte == 0; });
}

/// Text of a field, empty when it is zero.
Common::string textUnlessZero(LunEntry const& entry, std::size_t at, std::size_t size) {
    return isZero(entry, at, size) ? Common::string() : hexText(entry, at, size);
}

/// The report's entries that are masked or aren't. The all-zero address is the controller itself.
template <typename Fill>
unsigned discover(Common::string const& handle, LunReport const& report, bool masked, HandleMap& devices,
                  Fill fill) {
    PropertyTable adapter;
    toPropertyTable(handle, adapter);
    unsigned count = 0;
    for (LunEntry const& entry : readLunReport(handle, report)) {
        if (((entry[MODE_BYTE] & MODE_BITS) == MODE_MASKED) != masked || isZero(entry, 0, ADDRESS_SIZE)) {
            continue;
        }
        PropertyTable table;
        table[UniqueKey] = adapter[UniqueKey];
        table[NodePath] = adapter[NodePath];
        Common::string const address = hexText(entry, 0, ADDRESS_SIZE);
        table[Route] = Common::string("QRTH:") + address;
        fill(entry, table);
        devices.insert(Common::pair<Common::string, Common::string>(address, toDeviceInfo(table)));
        ++count;
    }
    return count;
}

void fillPhysical(LunEntry const& entry, PropertyTable& table) {
    table[DeviceIndex] = Conversion::toString(static_cast<unsigned>(entry[INDEX] << 8 | entry[INDEX + 1]));
    table[DeviceType] = toText(static_cast<EnDeviceType>(entry[TYPE]));
    table[IdentityBytes] = textUnlessZero(entry, SAS_ADDRESS, ADDRESS_SIZE);
    if (!isZero(entry, PARENT_ADDRESS, ADDRESS_SIZE)) {
        table[ParentRoute] = Common::string("CSMI:") +
                             Conversion::toString(static_cast<unsigned>(entry[PARENT_PHY])) + ":" +
                             hexText(entry, PARENT_ADDRESS, ADDRESS_SIZE);
    }
}

/// A volume's number stands in the first two bytes of its address, low byte first.
Common::string volumeNumber(LunEntry const& entry) {
    return Conversion::toString(static_cast<unsigned>(entry[0] | entry[1] << 8));
}

void fillLogical(LunEntry const& entry, PropertyTable& table) {
    table[DeviceIndex] = volumeNumber(entry);
    table[DeviceType] = entry[VOLUME_BUS_BYTE] == 0 ? "LOCAL_LOGICAL_DEVICE" : "EXTERNAL_LOGICAL_DEVICE";
    table[IdentityBytes] = textUnlessZero(entry, IDENTITY, IDENTITY_SIZE);
}

void fillMaskedLogical(LunEntry const& entry, PropertyTable& table) {
    fillLogical(entry, table);
    table[DeviceType] = "LOCAL_LOGICAL_DRIVE";
    table[Route] = Common::string("BMIC:") + volumeNumber(entry);
}

}  // namespace

void DiscoverUnmaskedPhysicalDevices(Common::string const& handle, HandleMap& devices) {
    Common::DebugLogger::LogCommand("Entered DiscoverUnmaskedPhysicalDevices");
    unsigned const count = discover(handle, REPORT_PHYSICAL_LUNS, false, devices, fillPhysical);
    Common::DebugLogger::LogCommand("DiscoverUnmaskedPhysicalDevices discovered %d devices",
                                    static_cast<int>(count));
}

void DiscoverMaskedPhysicalDevice(Common::string const& handle, HandleMap& devices) {
    discover(handle, REPORT_PHYSICAL_LUNS, true, devices, fillPhysical);
}

void DiscoverUnmaskedLogicalDevices(Common::string const& handle, HandleMap& devices) {
    Common::DebugLogger::LogCommand("Entered DiscoverUnmaskedLogicalDevices");
    unsigned const count = discover(handle, REPORT_LOGICAL_LUNS, false, devices, fillLogical);
    Common::DebugLogger::LogCommand("DiscoverUnmaskedLogicalDevices discovered %d devices",
                                    static_cast<int>(count));
}

void DiscoverMaskedLogicalDevice(Common::string const& handle, HandleMap& devices) {
    discover(handle, REPORT_LOGICAL_LUNS, true, devices, fillMaskedLogical);
}

}  // namespace Interface::SysMod::Discovery
