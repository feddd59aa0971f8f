#include "storage/operations/physical_device_iterator.h"

#include <algorithm>
#include <cstring>

#include "command/cache.h"

namespace Operations {
namespace {

using Core::SysMod::PropertyTable;
using Interface::SysMod::Discovery::HandleMap;

/// Stands behind all indices, which are 16 bits.
constexpr unsigned NO_INDEX = 0x10000;
constexpr std::size_t SAS_ADDRESS_SIZE = 8;
constexpr unsigned SAS_ADDRESS_DIGITS = 16;

struct Entry {
    unsigned index = NO_INDEX;
    Common::string handle;
};

unsigned indexOf(Common::string const& handle) {
    PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    return table[Core::SysMod::DeviceIndex].empty() ? NO_INDEX : Core::SysMod::getDeviceIndex(handle);
}

void append(HandleMap const& devices, std::vector<Entry>& entries) {
    for (auto device = devices.begin(); device != devices.end(); ++device) {
        entries.push_back({indexOf(device->second), device->second});
    }
}

std::vector<Common::string> byIndex(std::vector<Entry>& entries) {
    std::stable_sort(entries.begin(), entries.end(),
                     [](Entry const& left, Entry const& right) { return left.index < right.index; });
    std::vector<Common::string> handles;
    for (Entry const& entry : entries)
        handles.push_back(entry.handle);
    return handles;
}

}  // namespace

HandleRange::const_iterator HandleRange::findIndex(unsigned short index) const {
    return std::find_if(m_handles.begin(), m_handles.end(),
                        [index](Common::string const& handle) { return indexOf(handle) == index; });
}

PhysicalDeviceIterator::PhysicalDeviceIterator(ConcreteSCSIDevice const& adapter) {
    BuildCombinedDeviceList(adapter.handle());
    for (Common::string const& handle : m_handles)
        m_byType[getDeviceType(handle)].push_back(handle);
}

/// Masked and unmasked devices stand in one report, each in one of the two lists: no address comes twice.
void PhysicalDeviceIterator::BuildCombinedDeviceList(Common::string const& adapterHandle) {
    std::vector<Entry> entries;
    HandleMap devices;
    ProcessPhysicalDeviceIterator(adapterHandle, devices);
    append(devices, entries);
    HandleMap masked;
    ProcessMaskedPhysicalDevice(adapterHandle, masked);
    append(masked, entries);
    m_handles = byIndex(entries);
}

PhysicalDeviceIterator::const_iterator PhysicalDeviceIterator::find(unsigned short bmicIndex,
                                                                    unsigned char type) const {
    return std::find_if(begin(type), end(type),
                        [bmicIndex](Common::string const& handle) { return indexOf(handle) == bmicIndex; });
}

PhysicalDeviceIterator::const_iterator PhysicalDeviceIterator::begin(unsigned char type) const {
    return m_byType[type].begin();
}

PhysicalDeviceIterator::const_iterator PhysicalDeviceIterator::end(unsigned char type) const {
    return m_byType[type].end();
}

std::size_t PhysicalDeviceIterator::size(unsigned char type) const {
    return m_byType[type].size();
}

unsigned char PhysicalDeviceIterator::getDeviceType(Common::string const& handle) {
    return static_cast<unsigned char>(Core::SysMod::getDeviceType(handle));
}

/// Behind a controller the route holds a logical unit address; the SAS address is among the identity.
Common::string PhysicalDeviceIterator::getSasAddress(Common::string const& handle) {
    PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    if (table[Core::SysMod::Route].substr(0, 5) == "CSMI:") return Core::SysMod::getSasAddress(handle);
    return table[Core::SysMod::IdentityBytes].size() == SAS_ADDRESS_DIGITS
               ? table[Core::SysMod::IdentityBytes]
               : Common::string();
}

bool PhysicalDeviceIterator::getSasAddress(Common::string const& handle, unsigned char* bytes) {
    std::memset(bytes, 0, SAS_ADDRESS_SIZE);
    Core::SysMod::CSMIAddress address;
    Common::string const text = getSasAddress(handle);
    if (text.empty() || !Core::SysMod::parseCSMIAddress("CSMI:0:" + text, address)) return false;
    std::memcpy(bytes, address.sasAddress, SAS_ADDRESS_SIZE);
    return true;
}

Common::string PhysicalDeviceIterator::getParentSasAddress(Common::string const& handle) {
    return Core::SysMod::getParentSasAddress(handle);
}

unsigned char PhysicalDeviceIterator::getPhyIdentifier(Common::string const& handle) {
    return Core::SysMod::getPhyIdentifier(handle);
}

unsigned char PhysicalDeviceIterator::getParentPhyIdentifier(Common::string const& handle) {
    return Core::SysMod::getParentPhyIdentifier(handle);
}

Common::string PhysicalDeviceIterator::GetDeviceInfo(ConcreteSCSIDevice const& adapter,
                                                     unsigned short bmicIndex, unsigned char type) {
    PhysicalDeviceIterator const devices(adapter);
    auto const found = devices.find(bmicIndex);
    return found != devices.end() && getDeviceType(*found) == type ? *found : Common::string();
}

LogicalDeviceIterator::LogicalDeviceIterator(ConcreteSCSIDevice const& adapter) {
    std::vector<Entry> entries;
    HandleMap devices;
    ProcessLogicalDeviceIterator(adapter.handle(), devices);
    append(devices, entries);
    HandleMap masked;
    ProcessMaskedLogicalDevice(adapter.handle(), masked);
    append(masked, entries);
    m_handles = byIndex(entries);
}

}  // namespace Operations
