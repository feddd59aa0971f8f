#pragma once

#include "common/list.h"
#include "common/map.h"
#include "common/string.h"

namespace Interface::SysMod::Discovery {

using HandleList = Common::list<Common::string>;

/// What kind of adapter a kernel driver serves.
enum class EnStorageAdapterType { BlockDriverController, GenericDriverController, SasAdapter };

/// Kernel driver name to adapter kind, filled at its first use. Even a look-up writes to it: while threads
/// discover, readPciFunction() alone may use it, which lets in one at a time.
Common::map<Common::string, EnStorageAdapterType>& StorageAdapterDriverWhiteList();

/// Walks the machine and appends a device handle (sysmod/device_handle.h) for each adapter found, by kind:
/// array controllers (slot 21 "ARRAY_CONTROLLER", confirmed or failed), SAS adapters that answer CSMI
/// ("CSMI_HBA"), and functions of a listed driver that show no controller ("DUMB_HBA"). Nothing is
/// remembered between calls; what can't be read is passed over.
void DiscoverStorageAdapters(HandleList& controllers, HandleList& csmiAdapters, HandleList& plainAdapters);

/// "Adapter: " and the description of a PCI device of the identity `id` (vendor and device, eight
/// hexadecimal digits) in the machine's PCI identifiers file; empty when it isn't listed.
Common::string GetDeviceDescription(Common::string const& id);

}  // namespace Interface::SysMod::Discovery
