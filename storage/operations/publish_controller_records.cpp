#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/device_types.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;

/// What a board without a serial number tells.
constexpr char NO_SERIAL_NUMBER[] = "0000000000000000";

Common::string serialNumber(Common::string const& text) {
    return text == NO_SERIAL_NUMBER ? Common::string() : text;
}

constexpr PublishRow<Records::SUBSYSTEM_PARAMETERS> SUBSYSTEM_ROWS[] = {
    {Names::ATTR_NAME_CONTROLLER_SERIAL_NUMBER,
     [](auto& r) { return serialNumber(memberText(r.sControllerSerialNumber)); }},
    {Names::ATTR_NAME_CONTROLLER_CACHE_SERIAL_NUMBER,
     [](auto& r) { return serialNumber(memberText(r.sCacheSerialNumber)); }},
    {Names::ATTR_NAME_PORTS_INTERNAL, [](auto& r) { return decimalText(r.bInternalPortCount); }},
    {Names::ATTR_NAME_PORTS_EXTERNAL, [](auto& r) { return decimalText(r.bExternalPortCount); }},
    {Names::ATTR_NAME_PORTS,
     [](auto& r) { return decimalText(unsigned{r.bInternalPortCount} + r.bExternalPortCount); }},
};

constexpr PublishRow<Records::SUBSYSTEM_PARAMETERS> CEDAR_ROWS[] = {
    {Names::ATTR_NAME_CEDAR_HBA_FIRMWARE_REV, [](auto& r) { return memberText(r.sHBAFirmwareRev); }},
    {Names::ATTR_NAME_CEDAR_HBA_MODE_OPTION_ROM_REV,
     [](auto& r) { return memberText(r.sHBAModeOptionROMRev); }},
};

constexpr PublishRow<Records::CACHE_CONFIG_STATUS> CACHE_ROWS[] = {
    {Names::ATTR_NAME_CACHE_SIZE_READ, [](auto& r) { return decimalText(r.wReadCacheSize); }},
    {Names::ATTR_NAME_CACHE_SIZE_WRITE, [](auto& r) { return decimalText(r.wWriteCacheSize); }},
    {Names::ATTR_NAME_CACHE_PARITY_READ_ERRORS, [](auto& r) { return decimalText(r.wParityReadErrors); }},
    {Names::ATTR_NAME_CACHE_PARITY_WRITE_ERRORS, [](auto& r) { return decimalText(r.wParityWriteErrors); }},
    {Names::ATTR_NAME_BATTERY_PACK_COUNT, [](auto& r) { return decimalText(r.wBatteryCount); }},
    {Names::ATTR_NAME_CACHE_RATIO_READ_PERCENT, [](auto& r) { return decimalText(r.bPercentReadCache); }},
    {Names::ATTR_NAME_CACHE_AUTO_REVISION, [](auto& r) { return decimalText(r.bCacheAutoRev); }},
};

constexpr PublishRow<Records::CACHE_CONFIG_STATUS> CACHE_SIZE_ROWS[] = {
    {Names::ATTR_NAME_CACHE_SIZE_TOTAL, [](auto& r) { return decimalText(r.wTotalMemorySize); }},
    {Names::ATTR_NAME_CACHE_SIZE_TOTAL_NON_BBBWC,
     [](auto& r) { return decimalText(r.wNonBatteryBackedMemorySize); }},
    {Names::ATTR_NAME_CACHE_SIZE_TOTAL_BBBWC,
     [](auto& r) {
         return decimalText(r.wTotalMemorySize > r.wNonBatteryBackedMemorySize
                                ? r.wTotalMemorySize - r.wNonBatteryBackedMemorySize
                                : 0);
     }},
};

constexpr PublishRow<Records::CONTROLLER_PARAMETERS> PARAMETER_ROWS[] = {
    {Names::ATTR_NAME_QUEUE_DEPTH, [](auto& r) { return decimalText(r.wQueueDepth); }},
    {Names::ATTR_NAME_POST_PROMPT_TIMEOUT, [](auto& r) { return decimalText(r.bPOSTPromptTimeout); }},
};

constexpr PublishRow<Records::SURFACE_STATUS> SURFACE_ROWS[] = {
    {Names::ATTR_NAME_SURFACE_ANALYSIS_DELAY, [](auto& r) { return decimalText(r.wScanDelay); }},
};

constexpr PublishRow<Records::MNP_STATUS> MNP_ROWS[] = {
    {Names::ATTR_NAME_MNP_DELAY, [](auto& r) { return decimalText(r.wDelayMinutes); }},
};

}  // namespace

void publishSubsystemSystemInfo(Schema::ArrayController& controller,
                                Records::SUBSYSTEM_PARAMETERS const& subsystem) {
    publishRows(controller, SUBSYSTEM_ROWS, subsystem);
    Common::string const family = controller.getValueFor(Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY);
    bool const isCedar = family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_CEDAR;
    if (isCedar) {
        publishRows(controller, CEDAR_ROWS, subsystem);
    }
    if (isCedar || family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD) {
        publish(controller, Names::ATTR_NAME_CONTROLLER_TEMPERATURE,
                decimalText(subsystem.bControllerTemperature));
    }
}

void publishRedundantControllerParameters(Schema::ArrayController& controller,
                                          Records::REDUNDANT_CONTROLLER_PARAMETERS const& parameters) {
    publish(controller, Names::ATTR_NAME_REDUNDANCY_MODE, decimalText(parameters.bCurrentControllerMode));
}

void publishAcceleratorInfo(Schema::ArrayController& controller, Records::CACHE_CONFIG_STATUS const& cache) {
    publishRows(controller, CACHE_ROWS, cache);
    publishCacheSizeInfo(controller, cache);
}

void publishCacheSizeInfo(Schema::ArrayController& controller, Records::CACHE_CONFIG_STATUS const& cache) {
    publishRows(controller, CACHE_SIZE_ROWS, cache);
}

void publishParameterInfo(Schema::ArrayController& controller,
                          Records::CONTROLLER_PARAMETERS const& parameters) {
    publishRows(controller, PARAMETER_ROWS, parameters);
}

void publishSurfaceStatusInfo(Schema::ArrayController& controller, Records::SURFACE_STATUS const& surface) {
    publishRows(controller, SURFACE_ROWS, surface);
}

void publishMNPStatusInfo(Schema::ArrayController& controller, Records::MNP_STATUS const& status) {
    publishRows(controller, MNP_ROWS, status);
}

void publishDriveTypeCounts(Schema::ArrayController& controller) {
    Core::DeviceFinder finder(controller.getDevicePtr());
    finder.AddAttribute(Common::pair<Common::string, Core::AttributeValue>(
        Interface::TOLKMod::Device::ATTR_NAME_TYPE,
        Interface::StorageMod::PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE));
    Common::list<Common::shared_ptr<Core::Device>> drives;
    finder.find(drives, Core::DeviceFinder::eDownward);
    publish(controller, Names::ATTR_NAME_PHYSICAL_DRIVE_COUNT, decimalText(drives.size()));
}

}  // namespace Operations
