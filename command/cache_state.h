#pragma once

#include <cstdint>

#include "common/list.h"
#include "common/map.h"
#include "common/string.h"
#include "sysmod/discovery.h"

// What the reply cache keeps. Free of locks, as everything about the cache: one thread at a time.

// Key of a BMIC reply: bits 0 to 7 command byte, 8 to 39 details, 40 to 55 unit.
using BMIC_KEY = unsigned long long;

BMIC_KEY MAKE_BMIC_KEY(std::uint8_t commandByte, std::uint32_t details, std::uint16_t unit);
std::uint8_t GET_BMIC_COMMAND(BMIC_KEY key);
std::uint32_t GET_BMIC_DETAILS(BMIC_KEY key);
std::uint16_t GET_BMIC_LUN(BMIC_KEY key);

// Key of a SCSI reply, compared over all its bytes.
struct SCSI_KEY {
    static constexpr unsigned int SIZE = 25;

    unsigned char bytes[SIZE] = {};

    bool operator==(SCSI_KEY const& other) const;
    bool operator<(SCSI_KEY const& other) const;
};

// The command block, with byte 0 replaced by 83 and byte 1 by the first byte of the device's SAS address.
// Operation code and second byte are thus no part of the key: two command blocks of a device that differ
// only there share an entry. That is how the cache has always behaved, and it stays.
// Of a command block longer than the key the rest is refused with a log line.
void MAKE_SCSI_KEY(SCSI_KEY& key, unsigned char cdbLength, unsigned char const* cdb,
                   unsigned char const* sasAddress, unsigned char sasAddressLength);

struct SCSI_READ_CACHE {
    Common::string data;
    Common::string sense;
    std::uint8_t scsiStatus = 0;
    std::uint16_t commandStatus = 0;
    std::uint32_t received = 0;  // bytes of `data` that came
};

struct BMIC_READ_CACHE : SCSI_READ_CACHE {
    std::uint32_t cdbLengthOverride = 0;
};

// A discovery's answer. Not valid: not asked yet, or forgotten since.
struct DeviceListCache {
    bool valid = false;
    Interface::SysMod::Discovery::HandleList list;
    Common::map<Common::string, Common::string> map;  // device to handle, for discoveries that give one
};

// One device, and all that was read from it. Handles of one adapter share a state.
struct CACHE_STATE {
    bool enabled = false;
    bool inherited = false;
    Common::map<BMIC_KEY, BMIC_READ_CACHE> bmicReplies;
    Common::map<SCSI_KEY, SCSI_READ_CACHE> scsiReplies;
    DeviceListCache logicalDevices;
    DeviceListCache physicalDevices;
    DeviceListCache maskedLogicalDevices;
    DeviceListCache maskedPhysicalDevices;
    DeviceListCache storageVolumes;
};

using CacheStateMap = Common::map<Common::string, CACHE_STATE>;

// By the device's unique key.
CacheStateMap& cacheStates();

// The state of the device that a handle names; null when it has none.
CACHE_STATE* findCacheState(Common::string const& handle);

// The process-wide switches. With the cache off, as the process starts, every command goes to the device.
struct CacheControls {
    bool commandCacheEnabled = false;
    bool defaultCacheFlag = false;  // `enabled` of a device that discovery finds
    bool defaultInheritanceFlag = false;
    bool firstDiscoveryFlag = false;    // the adapters found have their states
    bool discoveryRescanOption = true;  // whether discovery may have controllers rescan their buses
};

CacheControls& cacheControls();

// Adapter discovery's three lists.
struct AdapterListCache {
    bool valid = false;
    Interface::SysMod::Discovery::HandleList controllers;
    Interface::SysMod::Discovery::HandleList csmiAdapters;
    Interface::SysMod::Discovery::HandleList plainAdapters;
};

AdapterListCache& adapterListCache();
