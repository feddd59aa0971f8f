#pragma once

#include "common/string.h"
#include "sysmod/device_discovery.h"
#include "sysmod/discovery.h"
#include "sysmod/requests.h"

// The reply cache between the device interfaces and the transport. Discovery repeats the same reads for each
// family of attributes; with the cache on, a repeated read is answered from memory.
//
// The cache is off when the process starts. It works for a device only when the command cache is on
// (SetCommandCacheState) and the device's own cache is (SetDefaultCacheFlag before its adapter is discovered,
// or SetCacheStateForDevice). Whatever isn't a read empties the device's cache first. No locks.

// Run one command. The results are those of the transport (sysmod/send_command.h).
bool ProcessBMICCommand(Common::string const& handle, Interface::SysMod::Command::BMICRequest& request);
bool ProcessSCSICommand(Common::string const& handle, Interface::SysMod::Command::SCSIRequest& request);
// These two, and ProcessRegNewDisk, don't touch the cache.
bool ProcessATACommand(Common::string const& handle, Interface::SysMod::Command::ATARequest& request);
bool ProcessCSMICommand(Common::string const& handle, Interface::SysMod::Command::CSMIRequest& request);
// Has the controller's driver look for new disks.
bool ProcessRegNewDisk(Common::string const& handle);

// Replaces the three lists by what adapter discovery finds, or found the first time while the cache is on.
void ProcessStorageAdapterIterator(Interface::SysMod::Discovery::HandleList& controllers,
                                   Interface::SysMod::Discovery::HandleList& csmiAdapters,
                                   Interface::SysMod::Discovery::HandleList& plainAdapters);
// Replace the map by what is behind an adapter, or the list by its volumes: what discovery finds, or found
// the first time while the adapter's cache is on. Physical devices of a SAS adapter are those that answer
// CSMI.
void ProcessPhysicalDeviceIterator(Common::string const& handle,
                                   Interface::SysMod::Discovery::HandleMap& devices);
void ProcessLogicalDeviceIterator(Common::string const& handle,
                                  Interface::SysMod::Discovery::HandleMap& devices);
// The same for devices that are hidden from the host.
void ProcessMaskedPhysicalDevice(Common::string const& handle,
                                 Interface::SysMod::Discovery::HandleMap& devices);
void ProcessMaskedLogicalDevice(Common::string const& handle,
                                Interface::SysMod::Discovery::HandleMap& devices);
void ProcessStorageVolumeIterator(Common::string const& handle,
                                  Interface::SysMod::Discovery::HandleList& volumes);
// Forgets what adapter discovery found.
void ClearModRootCache();

// The whole cache. A change discards every device's state. Off also clears the defaults for new devices and
// allows bus rescans in discovery again.
bool GetCommandCacheState();
void SetCommandCacheState(bool enabled);

// Whether a device that discovery finds starts with its cache on.
bool GetDefaultCacheFlag();
void SetDefaultCacheFlag(bool enabled);
bool GetDefaultInheritanceFlag();
void SetDefaultInheritanceFlag(bool inherit);

// Whether discovery may have controllers rescan their buses. On when the process starts.
bool GetDiscoveryRescanOption();
void SetDiscoveryRescanOption(bool enabled);

// One device's cache. All handles of one adapter mean the same device; one without a state reads as off,
// empty and not inherited.
void InsertCacheState(Common::string const& handle);        // if it has none, with the default flag
bool IsValidDeviceHandle(Common::string const& handle);     // it has a state
bool GetCacheStateForDevice(Common::string const& handle);  // on
void SetCacheStateForDevice(Common::string const& handle,
                            bool enabled);  // off also empties; no longer inherited
bool GetInheritanceFlagForDevice(Common::string const& handle);
bool GetCacheHasContentsForDevice(Common::string const& handle);  // replies, that is; lists don't count
// Empties the replies and forgets the lists. The flag is there for callers' sake and isn't read.
void EmptyCacheFor(Common::string const& handle, bool const& flag);
// The same, unless the device's cache is off.
void ClearCacheContentsForDevice(Common::string const& handle, bool flag);
