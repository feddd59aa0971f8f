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

/// Text for a member that only exists if the record reaches behind it.
#define KSL_REACHES(record, member)               \
    (fromWire((record).dwFixedStructureLength) >= \
     offsetof(IDENTIFY_CONTROLLER, member) + sizeof(IDENTIFY_CONTROLLER::member))

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
    {Names::ATTR_NAME_VENDOR_ID, [](auto& r) { return memberText(r.sVendorID); }},
    {Names::ATTR_NAME_PRODUCT_ID, [](auto& r) { return memberText(r.sProductID); }},
    {Names::ATTR_NAME_RECOVERY_ROM_SUPPORTED,
     [](auto& r) {
         return Common::string((r.bActiveROMStatus & IdentifyFlags::RECOVERY_ROM) != 0
                                   ? Names::ATTR_VALUE_RECOVERY_ROM_SUPPORTED_TRUE
                                   : Names::ATTR_VALUE_RECOVERY_ROM_SUPPORTED_FALSE);
     }},
    // Members behind the first fixed length that firmware had.
    {Names::ATTR_NAME_FIRMWARE_COMPILE_STAMP,
     [](auto& r) {
         return KSL_REACHES(r, sFirmwareCompileTimeStamp) ? memberText(r.sFirmwareCompileTimeStamp)
                                                          : Common::string();
     }},
    {Names::ATTR_NAME_ZONING_ENABLED,
     [](auto& r) {
         return !isEvenMoreControllerFlagsValid(r) ? Common::string()
                : (fromWire(r.dwEvenMoreControllerFlags) & IdentifyFlags::ZONING_ENABLED) != 0
                    ? Common::string(Names::ATTR_VALUE_ZONING_ENABLED_TRUE)
                    : Common::string(Names::ATTR_VALUE_ZONING_ENABLED_FALSE);
     }},
    {Names::ATTR_NAME_IS_TOFU_SUPPORTED,
     [](auto& r) {
         return !isEvenMoreControllerFlagsValid(r) ? Common::string()
                : (fromWire(r.dwEvenMoreControllerFlags) & IdentifyFlags::UPDATE_WITHOUT_DOWNTIME) != 0
                    ? Common::string(Names::ATTR_VALUE_IS_TOFU_SUPPORTED_TRUE)
                    : Common::string(Names::ATTR_VALUE_IS_TOFU_SUPPORTED_FALSE);
     }},
    {Names::ATTR_NAME_OPTION_ROM_VERSION,
     [](auto& r) {
         return KSL_REACHES(r, sOptionRomFWRev) ? memberText(r.sOptionRomFWRev) : Common::string();
     }},
    {Names::ATTR_NAME_ENCRYPTION_FW_LOCKED,
     [](auto& r) {
         return !KSL_REACHES(r, dwEncryptionStatus) ? Common::string()
                : (fromWire(r.dwEncryptionStatus) & IdentifyFlags::FIRMWARE_LOCKED) != 0
                    ? Common::string(Names::ATTR_VALUE_ENCRYPTION_FW_LOCKED_TRUE)
                    : Common::string(Names::ATTR_VALUE_ENCRYPTION_FW_LOCKED_FALSE);
     }},
    {Names::ATTR_NAME_ENCRYPTION_CONTROLLER_LOCKED,
     [](auto& r) {
         return !KSL_REACHES(r, dwEncryptionStatus) ? Common::string()
                : (fromWire(r.dwEncryptionStatus) & IdentifyFlags::CONTROLLER_LOCKED) != 0
                    ? Common::string(Names::ATTR_VALUE_ENCRYPTION_CONTROLLER_LOCKED_TRUE)
                    : Common::string(Names::ATTR_VALUE_ENCRYPTION_CONTROLLER_LOCKED_FALSE);
     }},
    {Names::ATTR_NAME_PCIE_GEN,
     [](auto& r) {
         return KSL_REACHES(r, bPCIEGeneration) ? decimalText(r.bPCIEGeneration) : Common::string();
     }},
    {Names::ATTR_NAME_PCIE_WIDTH,
     [](auto& r) { return KSL_REACHES(r, bPCIEWidth) ? decimalText(r.bPCIEWidth) : Common::string(); }},
};

constexpr PublishRow<IDENTIFY_CONTROLLER> MODE_ROWS[] = {
    {Names::ATTR_NAME_HBA_MODE_SUPPORTED,
     [](auto& r) {
         return Common::string((fromWire(r.dwExtraControllerFlags) & IdentifyFlags::HBA_MODE_SUPPORTED) != 0
                                   ? Names::ATTR_VALUE_HBA_MODE_SUPPORTED_TRUE
                                   : Names::ATTR_VALUE_HBA_MODE_SUPPORTED_FALSE);
     }},
    {Names::ATTR_NAME_HBA_MODE_ENABLED,
     [](auto& r) {
         return Common::string((fromWire(r.dwExtraControllerFlags) & IdentifyFlags::HBA_MODE_ENABLED) != 0
                                   ? Names::ATTR_VALUE_HBA_MODE_ENABLED_TRUE
                                   : Names::ATTR_VALUE_HBA_MODE_ENABLED_FALSE);
     }},
};

}  // namespace

void publishIdentifyInfo(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify) {
    publishRows(controller, IDENTIFY_ROWS, identify);
}

void publishControllerAndHBAModeInfo(Schema::ArrayController& controller,
                                     IDENTIFY_CONTROLLER const& identify) {
    if (KSL_REACHES(identify, dwExtraControllerFlags)) {
        publishRows(controller, MODE_ROWS, identify);
    }
}

void publishDisabledConfigInfo(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify) {
    publish(controller, Names::ATTR_NAME_CONTROLLER_DISABLED_CONFIG_STATUS,
            decimalText(identify.bExpandDisableCode));
}

}  // namespace Operations
