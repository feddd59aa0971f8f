#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "common/compound_list.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using Records::CACHE_CONFIG_STATUS;
using Records::SUBSYSTEM_PARAMETERS;

#define KSL_END(member) KSL_MEMBER_END(CACHE_CONFIG_STATUS, member)

/// Older controllers whose surface analysis needs newer firmware.
constexpr char const* OLD_SURFACE_ANALYSIS[] = {
    Names::ATTR_VALUE_CONTROLLER_NAME_ELM1,
    Names::ATTR_VALUE_CONTROLLER_NAME_ELM2,
};
constexpr unsigned MENDED_MAJOR = 2;
constexpr unsigned MENDED_MINOR = 8;

constexpr CodeRow BATTERY_STATUSES[] = {
    {0, Names::ATTR_VALUE_BATTERY_STATUS_OK},
    {1, Names::ATTR_VALUE_BATTERY_STATUS_CHARGING},
    {2, Names::ATTR_VALUE_BATTERY_STATUS_FAILED},
    {3, Names::ATTR_VALUE_BATTERY_STATUS_DISCONNECTED},
};

constexpr CodeRow CACHE_STATUSES[] = {
    {0, Names::ATTR_VALUE_CACHE_STATUS_OK},
    {1, Names::ATTR_VALUE_CACHE_STATUS_TEMPORARILY_DISABLED},
    {2, Names::ATTR_VALUE_CACHE_STATUS_PERMANENTLY_DISABLED},
};

constexpr CodeRow CACHE_STATES[] = {
    {0, Names::ATTR_VALUE_CACHE_STATE_READY},
    {1, Names::ATTR_VALUE_CACHE_STATE_INITIALIZING},
    {2, Names::ATTR_VALUE_CACHE_STATE_FLUSHING},
    {3, Names::ATTR_VALUE_CACHE_STATE_FAILED},
};

/// Read percent and write percent; nothing for a controller that tells no ratio.
Common::string ratioText(unsigned readPercent, unsigned writePercent) {
    if (readPercent == 0 && writePercent == 0) {
        return Common::string();
    }
    return decimalText(readPercent) + "/" + decimalText(writePercent);
}

/// The numbers of the set bits, counted from 1.
Common::string numbersIn(std::uint16_t bits) {
    Common::CompoundList numbers(false);
    for (unsigned i = 0; i < 16; ++i) {
        if ((bits >> i & 1) != 0) {
            numbers.Add(decimalText(i + 1));
        }
    }
    return numbers.toString();
}

unsigned backedSize(CACHE_CONFIG_STATUS const& cache) {
    return cache.wTotalMemorySize > cache.wNonBatteryBackedMemorySize
               ? cache.wTotalMemorySize - cache.wNonBatteryBackedMemorySize
               : 0;
}

constexpr PublishRow<CACHE_CONFIG_STATUS> CACHE_ROWS[] = {
    {Names::ATTR_NAME_CACHE_SIZE_READ, [](auto& r) { return decimalText(r.wReadCacheSize); }},
    {Names::ATTR_NAME_CACHE_SIZE_WRITE, [](auto& r) { return decimalText(r.wWriteCacheSize); }},
    {Names::ATTR_NAME_CACHE_STATUS,
     [](auto& r) {
         return Common::string(
             valueOf(CACHE_STATUSES, r.bDisableFlag, Names::ATTR_VALUE_CACHE_STATUS_UNKNOWN));
     }},
    {Names::ATTR_NAME_CACHE_DISABLE_CODE,
     [](auto& r) { return Schema::ArrayController::cacheDisableCode(r.wCacheDisableCode); },
     KSL_END(wCacheDisableCode)},
    {Names::ATTR_NAME_CACHE_PARITY_READ_ERRORS, [](auto& r) { return decimalText(r.wParityReadErrors); },
     KSL_END(wParityReadErrors)},
    {Names::ATTR_NAME_CACHE_PARITY_WRITE_ERRORS, [](auto& r) { return decimalText(r.wParityWriteErrors); },
     KSL_END(wParityWriteErrors)},
    {Names::ATTR_NAME_BATTERY_PACK_COUNT, [](auto& r) { return decimalText(r.wBatteryCount); },
     KSL_END(wBatteryCount)},
    {Names::ATTR_NAME_BATTERY_FAILED_LIST, [](auto& r) { return numbersIn(r.wFailedBatteries); },
     KSL_END(wFailedBatteries)},
    {Names::ATTR_NAME_NVRAM_CHECKSUM_STATUS,
     [](auto& r) {
         return Common::string(r.bNVRAMLoadStatus == 0 ? Names::ATTR_VALUE_NVRAM_CHECKSUM_STATUS_OK
                                                       : Names::ATTR_VALUE_NVRAM_CHECKSUM_STATUS_FAILED);
     },
     KSL_END(bNVRAMLoadStatus)},
    {Names::ATTR_NAME_CACHE_SIZE_SHIFT_FACTOR, [](auto& r) { return decimalText(r.bMemorySizeShiftFactor); },
     KSL_END(bMemorySizeShiftFactor)},
    {Names::ATTR_NAME_CACHE_STATE,
     [](auto& r) {
         return Common::string(valueOf(CACHE_STATES, r.bMemoryState, Names::ATTR_VALUE_CACHE_STATE_UNKNOWN));
     },
     KSL_END(bMemoryState)},
    {Names::ATTR_NAME_CACHE_AUTO_REVISION, [](auto& r) { return decimalText(r.bCacheAutoRev); },
     KSL_END(bCacheAutoRev)},
    {Names::ATTR_NAME_CACHE_RATIO_READ_PERCENT, [](auto& r) { return decimalText(r.bPercentReadCache); },
     KSL_END(bPercentReadCache)},
    {Names::ATTR_NAME_CACHE_RATIO,
     [](auto& r) { return ratioText(r.bPercentReadCache, r.bPercentWriteCache); },
     KSL_END(bPercentWriteCache)},
    {Names::ATTR_NAME_DEFAULT_CACHE_RATIO,
     [](auto& r) { return ratioText(r.bDefaultPercentReadCache, r.bDefaultPercentWriteCache); },
     KSL_END(bDefaultPercentWriteCache)},
};

/// A bit of a member, and its attribute.
#define KSL_CACHE_FLAG(member, bit, attribute)                                                   \
    {                                                                                            \
        KSL_FACT(attribute), [](auto& r) { return (r.member >> (bit)&1) != 0; }, KSL_END(member) \
    }

constexpr FlagRow<CACHE_CONFIG_STATUS> CACHE_FLAGS[] = {
    {KSL_FACT(CACHE_DISABLED), [](auto& r) { return r.bDisableFlag != 0; }},
    KSL_CACHE_FLAG(bCacheConfigurationFlags, 0, SSD_CACHING_NOBATTERY_WARNING),
    KSL_CACHE_FLAG(dwCacheFlags, 0, FLASHLIGHT_INSTALLED),
    KSL_CACHE_FLAG(dwCacheFlags, 1, FLASH_MEMORY_DETACHED),
    KSL_CACHE_FLAG(dwCacheFlags, 2, SPLITCACHE_READ_ALLOCATION_ERROR),
    KSL_CACHE_FLAG(bCacheSupportFlags, 0, FLASHLIGHT_SUPPORTED),
    KSL_CACHE_FLAG(bCacheSupportFlags, 1, HAS_SPLITCACHE),
};

constexpr PublishRow<CACHE_CONFIG_STATUS> CACHE_SIZE_ROWS[] = {
    {Names::ATTR_NAME_CACHE_SIZE_TOTAL, [](auto& r) { return decimalText(r.wTotalMemorySize); },
     KSL_END(wTotalMemorySize)},
    {Names::ATTR_NAME_CACHE_SIZE_TOTAL_NON_BBBWC,
     [](auto& r) { return decimalText(r.wNonBatteryBackedMemorySize); },
     KSL_END(wNonBatteryBackedMemorySize)},
    {Names::ATTR_NAME_CACHE_SIZE_TOTAL_BBBWC, [](auto& r) { return decimalText(backedSize(r)); },
     KSL_END(wNonBatteryBackedMemorySize)},
    {Names::ATTR_NAME_BATTERY_STATUS,
     [](auto& r) {
         return Common::string(r.wBatteryCount == 0 ? Names::ATTR_VALUE_BATTERY_STATUS_NOT_PRESENT
                                                    : valueOf(BATTERY_STATUSES, r.wBatteryStatus,
                                                              Names::ATTR_VALUE_BATTERY_STATUS_UNKNOWN));
     },
     KSL_END(wBatteryStatus)},
};

constexpr FlagRow<CACHE_CONFIG_STATUS> CACHE_SIZE_FLAGS[] = {
    {KSL_FACT(CACHE_HAS_BBWC), [](auto& r) { return backedSize(r) != 0; },
     KSL_END(wNonBatteryBackedMemorySize)},
    {KSL_FACT(CACHE_BOARD_PRESENT), [](auto& r) { return r.bBoardPresent != 0; }, KSL_END(bBoardPresent)},
};

constexpr PublishRow<SUBSYSTEM_PARAMETERS> MODULE_ROWS[] = {
    {Names::ATTR_NAME_CACHE_MODULE_TEMPERATURE,
     [](auto& r) { return decimalText(r.bCacheModuleTemperature); },
     KSL_MEMBER_END(SUBSYSTEM_PARAMETERS, bCacheModuleTemperature)},
    {Names::ATTR_NAME_CACHE_MODULE_MEMORY_DATA_WIDTH,
     [](auto& r) { return decimalText(r.wCacheModuleDataWidth); },
     KSL_MEMBER_END(SUBSYSTEM_PARAMETERS, wCacheModuleDataWidth)},
};

constexpr PublishRow<SUBSYSTEM_PARAMETERS> SUPERCAP_ROWS[] = {
    {Names::ATTR_NAME_SUPERCAP_TEMPERATURE, [](auto& r) { return decimalText(r.bSupercapTemperature); },
     KSL_MEMBER_END(SUBSYSTEM_PARAMETERS, bSupercapTemperature)},
};

bool needsNewerFirmwareForSurfaceAnalysis(Core::Device const& device) {
    Common::string const name = device.getValueFor(Names::ATTR_NAME_CONTROLLER_NAME);
    if (std::none_of(std::begin(OLD_SURFACE_ANALYSIS), std::end(OLD_SURFACE_ANALYSIS),
                     [&](char const* old) { return name == old; })) {
        return false;
    }
    Common::string const version = device.getValueFor(Names::ATTR_NAME_FIRMWARE_VERSION);
    unsigned major = 0;
    unsigned minor = 0;
    return std::sscanf(version.c_str(), "%3u.%3u", &major, &minor) == 2 &&
           (major < MENDED_MAJOR || (major == MENDED_MAJOR && minor < MENDED_MINOR));
}

/// Every record has the members up to the one that tells its length.
unsigned reachOf(CACHE_CONFIG_STATUS const& cache) {
    return std::max<unsigned>(cache.dwFixedStructureLength, KSL_END(dwFixedStructureLength));
}

}  // namespace

void publishAcceleratorInfo(Schema::ArrayController& controller, CACHE_CONFIG_STATUS const& cache,
                            SUBSYSTEM_PARAMETERS const& subsystem) {
    publishRows(controller, CACHE_ROWS, cache, reachOf(cache));
    publishRows(controller, CACHE_FLAGS, cache, reachOf(cache));
    publishCacheSizeInfo(controller, cache, subsystem);
}

void publishCacheSizeInfo(Schema::ArrayController& controller, CACHE_CONFIG_STATUS const& cache,
                          SUBSYSTEM_PARAMETERS const& subsystem) {
    publishRows(controller, CACHE_SIZE_ROWS, cache, reachOf(cache));
    publishRows(controller, CACHE_SIZE_FLAGS, cache, reachOf(cache));
    publishRows(controller, MODULE_ROWS, subsystem, subsystem.dwTotalStructureLength);
    if (controller.hasAttributeAndIs(Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY,
                                     Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_BIRCH)) {
        publishRows(controller, SUPERCAP_ROWS, subsystem, subsystem.dwTotalStructureLength);
    }
    publishOrClear(controller, Names::ATTR_NAME_SURFACE_ANALYSIS_REQUIRES_FW_UPDATE,
                   needsNewerFirmwareForSurfaceAnalysis(controller)
                       ? Names::ATTR_VALUE_SURFACE_ANALYSIS_REQUIRES_FW_UPDATE_TRUE
                       : "");
}

}  // namespace Operations
