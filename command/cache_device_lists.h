#pragma once

// Inside the cache only: lists of devices behind an adapter, kept in its state.

#include "command/cache_state.h"
#include "sysmod/device_discovery.h"

// What answers when the lists don't. It adds to what it is given.
using DiscoverDevices = void (*)(Common::string const& handle,
                                 Interface::SysMod::Discovery::HandleMap& devices);
using DiscoverVolumes = void (*)(Common::string const& handle,
                                 Interface::SysMod::Discovery::HandleList& volumes);

void ProcessDeviceList(Common::string const& handle, DeviceListCache CACHE_STATE::*kept,
                       DiscoverDevices discover, Interface::SysMod::Discovery::HandleMap& devices);
void ProcessVolumeList(Common::string const& handle, DiscoverVolumes discover,
                       Interface::SysMod::Discovery::HandleList& volumes);
