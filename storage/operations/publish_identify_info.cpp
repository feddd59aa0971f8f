#include <algorithm>
#include <cstddef>

#include "storage/operations/controller_common.h"
#include "storage/operations/identify_flags.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using Records::IDENTIFY_CONTROLLER;

#define KSL_END(member) KSL_MEMBER_END(IDENTIFY_CONTROLLER, member)
#define KSL_IDENTIFY_FLAG(member, bit, attribute) \
    {KSL_FACT(attribute), [](auto& r) { return (fromWire(r.member) >> (bit)&1) != 0; }, KSL_END(member)},

constexpr PublishRow<IDENTIFY_CONTROLLER> IDENTIFY_ROWS[] = {
    {Names::ATTR_NAME_HARDWARE_REVISION, [](auto& r) { return decimalText(r.bHardwareRevision); }},
    {Names::ATTR_NAME_CPU_REVISION, [](auto& r) { return decimalText(r.bCPURev); }},
    {Names::ATTR_NAME_CPLD_REVISION, [](auto& r) { return decimalText(r.bCPLDRevision); }},
    {Names::ATTR_NAME_INACTIVE_FIRMWARE_REVISION, [](auto& r) { return memberText(r.sROMInactiveRev); }},
    {Names::ATTR_NAME_FIRMWARE_BUILD, [](auto& r) { return decimalText(fromWire(r.wFirmwareBuildNumber)); }},
    {Names::ATTR_NAME_LOGICAL_DRIVE_COUNT, [](auto& r) { return decimalText(r.bConfiguredLogicalDrives); }},
    {Names::ATTR_NAME_MAX_LOGICAL_VOLUMES,
     [](auto& r) { return decimalText(fromWire(r.wMaximumLogicalDevicesSupported)); }},
    {Names::ATTR_NAME_MAX_DRIVES_PER_ARRAY,
     [](auto& r) { return decimalText(r.wMaximumPhysicalDrivesPerLogicalUnit); }},
    {Names::ATTR_NAME_DRIVES_PER_PORT, [](auto& r) { return decimalText(r.bDrivesPerBus); }},
    {Names::ATTR_NAME_CONTROLLER_MEMORY_SIZE,
     [](auto& r) { return decimalText(r.wTotalAvailableMemorySize); }},
    {Names::ATTR_NAME_MAX_SAFE_FULL_STRIPE_SIZE,
     [](auto& r) { return decimalText(fromWire(r.dwMaximumSafeFullStripeSizeMB)); }},
    {Names::ATTR_NAME_VENDOR_ID, [](auto& r) { return memberText(r.sVendorID); }},
    {Names::ATTR_NAME_PRODUCT_ID, [](auto& r) { return memberText(r.sProductID); }},
    // "0" is firmware that doesn't defer the update of drives; the attribute is absent then.
    {Names::ATTR_NAME_DDFF_VERSION,
     [](auto& r) {
         Common::string const version = memberText(r.sDDFFVersion);
         return version == "1"   ? Common::string(Names::ATTR_VALUE_DDFF_VERSION_SAS_ONLY)
                : version == "2" ? Common::string(Names::ATTR_VALUE_DDFF_VERSION_SAS_AND_SATA)
                                 : Common::string();
     }},
    {Names::ATTR_NAME_FIRMWARE_COMPILE_STAMP, [](auto& r) { return memberText(r.sFirmwareCompileTimeStamp); },
     KSL_END(sFirmwareCompileTimeStamp)},
    {Names::ATTR_NAME_OPTION_ROM_VERSION, [](auto& r) { return memberText(r.sOptionRomFWRev); },
     KSL_END(sOptionRomFWRev)},
    {Names::ATTR_NAME_PCIE_GEN, [](auto& r) { return decimalText(r.bPCIEGeneration); },
     KSL_END(bPCIEGeneration)},
    {Names::ATTR_NAME_PCIE_WIDTH, [](auto& r) { return decimalText(r.bPCIEWidth); }, KSL_END(bPCIEWidth)},
};

constexpr FlagRow<IDENTIFY_CONTROLLER> CONTROLLER_FLAGS[] = {
    KSL_CONTROLLER_FLAGS(KSL_IDENTIFY_FLAG)
    // What isn't one bit.
    {Names::ATTR_NAME_ADG_ENABLER_STATUS, Names::ATTR_VALUE_ADG_ENABLER_STATUS_PRESENT,
     Names::ATTR_VALUE_ADG_ENABLER_STATUS_NOT_PRESENT,
     [](auto& r) { return (r.bADGSupport & IdentifyFlags::ADG_ENABLER) != 0; }},
    {KSL_FACT(MULTI_PATH_SUPPORTED), [](auto& r) { return r.bMaximumDevicePaths > 1; }},
    {KSL_FACT(HAS_SWAPPED_CABLE_FLAGS),
     [](auto& r) {
         return r.bSwappedCableFlags != 0 || r.bMoreSwappedCableFlags != 0 ||
                r.wYetMoreSwappedCableFlags != 0;
     }},
};

constexpr FlagRow<IDENTIFY_CONTROLLER> MODE_FLAGS[] = {
    KSL_MODE_FLAGS(KSL_IDENTIFY_FLAG)
    // What it runs as after the next restart.
    {KSL_SETTING(HBA_MODE),
     [](auto& r) { return (fromWire(r.dwExtraControllerFlags) & IdentifyFlags::HBA_MODE_PENDING) != 0; },
     KSL_END(dwExtraControllerFlags)},
    {KSL_FACT(CONTROLLER_ZMR_MODE),
     [](auto& r) { return (fromWire(r.dwEvenMoreControllerFlags) & IdentifyFlags::ZMR_MODE) != 0; },
     KSL_END(dwEvenMoreControllerFlags)},
    {KSL_FACT(MIXED_MODE_ENABLED), [](auto& r) { return r.bControllerMode == IdentifyFlags::MODE_MIXED; },
     KSL_END(bControllerMode)},
};

constexpr FlagRow<IDENTIFY_CONTROLLER> CEDAR_FLAGS[] = {KSL_CEDAR_FLAGS(KSL_IDENTIFY_FLAG)};

constexpr PublishRow<IDENTIFY_CONTROLLER> CEDAR_ROWS[] = {
    {Names::ATTR_NAME_CEDAR_OPTION_ROM_FW_REVISION, [](auto& r) { return memberText(r.sOptionRomFWRev); },
     KSL_END(sOptionRomFWRev)},
    {Names::ATTR_NAME_CEDAR_OPTION_ROM_FW_BUILD, [](auto& r) { return decimalText(r.wOptionRomFWBuild); },
     KSL_END(wOptionRomFWBuild)},
};

constexpr FlagRow<IDENTIFY_CONTROLLER> ENCRYPTION_FLAGS[] = {
    KSL_ENCRYPTION_FLAGS(KSL_IDENTIFY_FLAG)
#define KSL_FAILURE(bits, attribute)                                                             \
    {                                                                                            \
        Names::ATTR_NAME_##attribute, Names::ATTR_VALUE_##attribute##_FAILED,                    \
            Names::ATTR_VALUE_##attribute##_OK,                                                  \
            [](auto& r) { return (fromWire(r.dwEncryptionStatus) & IdentifyFlags::bits) != 0; }, \
            KSL_END(dwEncryptionStatus)                                                          \
    }
        KSL_FAILURE(SELF_TEST_FAILED, ENCRYPTION_SELFTEST_STATUS),
    KSL_FAILURE(CSP_NVRAM_FAILED, ENCRYPTION_CSP_NVRAM_STATUS),
    KSL_FAILURE(RTC_SRAM_FAILED, ENCRYPTION_RTC_SRAM_STATUS),
#undef KSL_FAILURE
};

/// Why the configuration can't be changed, as bExpandDisableCode tells it.
constexpr CodeRow DISABLED_CONFIG_STATUSES[] = {
    {0, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_NOT_DISABLED},
    {1, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_NO_CACHE_BOARD},
    {2, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_CACHE_DISABLED},
    {3, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_CACHE_TOO_SMALL},
    {4, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_BATTERY_NOT_CHARGED},
    {5, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_DRIVE_REBUILDING},
    {6, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_EXPANSION_IN_PROGRESS},
    {7, Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_REDUNDANCY_FAILED},
};

/// Every record has the members up to the one that tells its length.
unsigned reachOf(IDENTIFY_CONTROLLER const& identify) {
    return std::max<unsigned>(fromWire(identify.dwFixedStructureLength), KSL_END(dwFixedStructureLength));
}

}  // namespace

void publishIdentifyInfo(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify) {
    unsigned const reach = reachOf(identify);
    publishRows(controller, IDENTIFY_ROWS, identify, reach);
    publishRows(controller, CONTROLLER_FLAGS, identify, reach);
    if (controller.hasAttributeAndIs(Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY,
                                     Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_CEDAR)) {
        publishRows(controller, CEDAR_ROWS, identify, reach);
        publishRows(controller, CEDAR_FLAGS, identify, reach);
    }
    if (controller.hasAttributeAndIs(Names::ATTR_NAME_ENCRYPTION_SUPPORTED,
                                     Names::ATTR_VALUE_ENCRYPTION_SUPPORTED_TRUE)) {
        publishRows(controller, ENCRYPTION_FLAGS, identify, reach);
    }
}

void publishControllerAndHBAModeInfo(Schema::ArrayController& controller,
                                     IDENTIFY_CONTROLLER const& identify) {
    publishRows(controller, MODE_FLAGS, identify, reachOf(identify));
}

void publishDisabledConfigInfo(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify) {
    publish(controller, Names::ATTR_NAME_CONTROLLER_DISABLED_CONFIG_STATUS,
            valueOf(DISABLED_CONFIG_STATUSES, identify.bExpandDisableCode,
                    Names::ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_UNKNOWN));
}

}  // namespace Operations
