#pragma once

#include "common/map.h"
#include "common/string.h"
#include "sysmod/discovery.h"

/// What hangs behind an adapter, and the machine's block devices. Every function walks the live system, adds
/// to what its list or map holds already, and passes over what can't be read; an empty answer is no failure.
/// Handles of devices behind an adapter have the adapter's unique key and node (slots 3 and 4).
namespace Interface::SysMod::Discovery {

/// Address text (sixteen upper-case hexadecimal digits) to device handle.
using HandleMap = Common::map<Common::string, Common::string>;

/// Of an "ARRAY_CONTROLLER": its physical devices that the host may address, by logical unit address. Route
/// "QRTH:", index in slot 18, SAS address in slot 17 and parent in slot 22 where the controller tells them.
void DiscoverUnmaskedPhysicalDevices(Common::string const& handle, HandleMap& devices);
/// Its physical devices that are hidden from the host; same keys, same handles.
void DiscoverMaskedPhysicalDevice(Common::string const& handle, HandleMap& devices);

/// Of an "ARRAY_CONTROLLER": its volumes that the host may address, by logical unit address. Types
/// "LOCAL_LOGICAL_DEVICE" and, of another controller's array, "EXTERNAL_LOGICAL_DEVICE"; identity in slot 17.
void DiscoverUnmaskedLogicalDevices(Common::string const& handle, HandleMap& devices);
/// Its logical drives that are hidden from the host: route "BMIC:", type "LOCAL_LOGICAL_DRIVE"; same keys.
void DiscoverMaskedLogicalDevice(Common::string const& handle, HandleMap& devices);

/// Of a "CSMI_HBA": its drives, tapes, enclosure processors and expanders, by SAS address. Route "CSMI:" with
/// the adapter's phy that leads to the device; in slot 22 the route of the expander before it, or the
/// adapter's own phy and address.
void DiscoverCSMIPhysicalDevices(Common::string const& handle, HandleMap& devices);

/// A block device of the machine, as sysfs shows it.
struct StorageVolumeInformation {
    unsigned long long blocks = 0;  ///< of 512 bytes, whatever the device's own block size is
    bool removable = false;
    bool inUse = false;       ///< it or a partition of it is mounted, listed to be mounted, or swap space
    Common::string kind;      ///< transport, as in slot 20
    Common::string uniqueId;  ///< empty where the kernel shows none, as the following
    Common::string vendor;
    Common::string model;
};

/// A partition, in blocks of 512 bytes.
struct StorageExtentInformation {
    unsigned long long firstBlock = 0;
    unsigned long long blocks = 0;
};

/// The disks behind the adapter that `handle` names; with an empty handle, of all adapters. Node in slot 4,
/// identity in slot 17, transport in slot 20, type "UNKNOWN". A volume is reached by its node: no route.
/// Passed over are removable disks and those without a medium.
void DiscoverStorageVolumes(Common::string const& handle, HandleList& volumes);
/// False when the volume is gone or has no size.
bool GetStorageVolumeInformation(Common::string const& volumeHandle, StorageVolumeInformation& information);

/// The partitions of a volume, in the order of their first blocks. As the volume's handle, with the
/// partition's node in slot 4.
void DiscoverStorageExtents(Common::string const& volumeHandle, HandleList& extents);
/// False when the partition is gone.
bool GetStorageExtentInformation(Common::string const& extentHandle, StorageExtentInformation& information);

}  // namespace Interface::SysMod::Discovery
