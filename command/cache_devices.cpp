#include "command/cache.h"
#include "command/cache_device_lists.h"
#include "sysmod/device_handle.h"

namespace Discovery = Interface::SysMod::Discovery;

void ProcessPhysicalDeviceIterator(Common::string const& handle, Discovery::HandleMap& devices) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    ProcessDeviceList(handle, &CACHE_STATE::physicalDevices,
                      table[Core::SysMod::DeviceType] == "CSMI_HBA"
                          ? Discovery::DiscoverCSMIPhysicalDevices
                          : Discovery::DiscoverUnmaskedPhysicalDevices,
                      devices);
}

void ProcessLogicalDeviceIterator(Common::string const& handle, Discovery::HandleMap& devices) {
    ProcessDeviceList(handle, &CACHE_STATE::logicalDevices, Discovery::DiscoverUnmaskedLogicalDevices,
                      devices);
}

void ProcessMaskedPhysicalDevice(Common::string const& handle, Discovery::HandleMap& devices) {
    ProcessDeviceList(handle, &CACHE_STATE::maskedPhysicalDevices, Discovery::DiscoverMaskedPhysicalDevice,
                      devices);
}

void ProcessMaskedLogicalDevice(Common::string const& handle, Discovery::HandleMap& devices) {
    ProcessDeviceList(handle, &CACHE_STATE::maskedLogicalDevices, Discovery::DiscoverMaskedLogicalDevice,
                      devices);
}

void ProcessStorageVolumeIterator(Common::string const& handle, Discovery::HandleList& volumes) {
    ProcessVolumeList(handle, Discovery::DiscoverStorageVolumes, volumes);
}
