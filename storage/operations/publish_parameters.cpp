#include <algorithm>
#include <cstddef>

#include "common/compound_list.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using Records::CONTROLLER_PARAMETERS;
using Records::REDUNDANT_CONTROLLER_PARAMETERS;

#define KSL_END(member) KSL_MEMBER_END(CONTROLLER_PARAMETERS, member)
#define KSL_PARAMETER(member, bit, attribute)                                                       \
    {                                                                                               \
        KSL_SETTING(attribute), [](auto& r) { return (r.member >> (bit)&1) != 0; }, KSL_END(member) \
    }

constexpr PublishRow<CONTROLLER_PARAMETERS> PARAMETER_ROWS[] = {
    {Names::ATTR_NAME_QUEUE_DEPTH, [](auto& r) { return decimalText(r.wQueueDepth); }},
    {Names::ATTR_NAME_POST_PROMPT_TIMEOUT, [](auto& r) { return decimalText(r.bPOSTPromptTimeout); }},
    {Names::ATTR_NAME_BOOT_VOLUME_PRIMARY, [](auto& r) { return memberText(r.sPrimaryBootLUN); }},
    {Names::ATTR_NAME_BOOT_VOLUME_SECONDARY, [](auto& r) { return memberText(r.sSecondaryBootLUN); }},
    {Names::ATTR_NAME_FORCED_TRANSFER_MODE,
     [](auto& r) { return Schema::ArrayController::forcedTransferMode(r.bForcedTransferMode); }},
    {Names::ATTR_NAME_FORCED_TRANSFER_WIDTH,
     [](auto& r) { return Schema::ArrayController::forcedTransferWidth(r.bForcedTransferWidth); }},
    {Names::ATTR_NAME_DEVICE_PATH_SELECTION_METHOD,
     [](auto& r) {
         return Schema::ArrayController::devicePathSelectionMethod(r.bDevicePathSelectionMethod);
     }},
    {Names::ATTR_NAME_FLEXIBLE_LATENCY_SCHEDULER_SETTING,
     [](auto& r) { return decimalText(r.bElevatorLatencySetting); }, KSL_END(bElevatorLatencySetting)},
};

constexpr FlagRow<CONTROLLER_PARAMETERS> PARAMETER_FLAGS[] = {
    {KSL_SETTING(ELEVATOR_SORT), [](auto& r) { return r.bElevatorState != 0; }},
    {KSL_SETTING(FIRMWARE_REQUEST_COALESCING), [](auto& r) { return r.bMaxCoalesceCommands != 0; }},
    KSL_PARAMETER(bDriveConfigurationFlags, 0, DRIVE_WRITE_CACHE),
    KSL_PARAMETER(bDriveConfigurationFlags, 1, FAIL_DRIVES_WITH_SMART_ERRORS),
    KSL_PARAMETER(bDriveConfigurationFlags, 2, PREDICTIVE_SPARE_REBUILD),
    KSL_PARAMETER(dwMoreConfigFlags, 0, DEGRADED_PERFORMANCE_OPTIMIZATION),
    KSL_PARAMETER(dwMoreConfigFlags, 1, INCONSISTENCY_REPAIR_POLICY),
    KSL_PARAMETER(dwMoreConfigFlags, 2, WAIT_FOR_CACHE_ROOM),
    KSL_PARAMETER(dwMoreConfigFlags, 3, SURFACE_ANALYSIS_INCONSISTENCY_EVENT_NOTIFICATION),
    KSL_PARAMETER(dwMoreConfigFlags, 4, RAID1_WRITE_BUFFERING),
};

/// Of the blade families.
constexpr FlagRow<CONTROLLER_PARAMETERS> QBX_FLAGS[] = {
    KSL_PARAMETER(bControllerConfigurationFlags, 0, ALTERNATE_QBX_CACHE_ALGORITHM),
    KSL_PARAMETER(bControllerConfigurationFlags, 1, ALTERNATE_QBX_SURFACE_DELAY_ALGORITHM),
    KSL_PARAMETER(bControllerConfigurationFlags, 2, ALTERNATE_QBX_PREFERRED_PATH_ALGORITHM),
};

/// How two controllers share their drives. The code of a mode is also its bit in the map of those supported.
constexpr CodeRow REDUNDANCY_MODES[] = {
    {0, Names::ATTR_VALUE_REDUNDANCY_MODE_NOT_REDUNDANT},
    {1, Names::ATTR_VALUE_REDUNDANCY_MODE_ACTIVE_STANDBY},
    {2, Names::ATTR_VALUE_REDUNDANCY_MODE_ACTIVE_ACTIVE},
};

constexpr CodeRow REDUNDANCY_STATUSES[] = {
    {0, Names::ATTR_VALUE_REDUNDANCY_STATUS_NOT_CONFIGURED},
    {1, Names::ATTR_VALUE_REDUNDANCY_STATUS_OK},
    {2, Names::ATTR_VALUE_REDUNDANCY_STATUS_FAILED},
};
constexpr unsigned REDUNDANCY_OK = 1;

Common::string supportedModes(std::uint8_t map) {
    Common::CompoundList modes(false);
    for (CodeRow const& mode : REDUNDANCY_MODES) {
        if ((map >> mode.code & 1) != 0) {
            modes.Add(mode.value);
        }
    }
    return modes.toString();
}

constexpr PublishRow<REDUNDANT_CONTROLLER_PARAMETERS> REDUNDANCY_ROWS[] = {
    {Names::ATTR_NAME_REDUNDANCY_MODE,
     [](auto& r) {
         return Common::string(
             valueOf(REDUNDANCY_MODES, r.bCurrentControllerMode, Names::ATTR_VALUE_REDUNDANCY_MODE_UNKNOWN));
     }},
    {Names::ATTR_NAME_REDUNDANCY_MODES_SUPPORTED,
     [](auto& r) { return supportedModes(r.bSupportedControllerModes); }},
    {Names::ATTR_NAME_REDUNDANCY_STATUS,
     [](auto& r) {
         return Common::string(
             valueOf(REDUNDANCY_STATUSES, r.bControllerStatus, Names::ATTR_VALUE_REDUNDANCY_STATUS_UNKNOWN));
     }},
    {Names::ATTR_NAME_REDUNDANCY_STATE,
     [](auto& r) { return Schema::ArrayController::redundancyFailReason(r.bRedundantFailureReason); }},
};

constexpr FlagRow<REDUNDANT_CONTROLLER_PARAMETERS> REDUNDANCY_FLAGS[] = {
    {KSL_FACT(REDUNDANT_STATE), [](auto& r) { return r.bControllerStatus == REDUNDANCY_OK; }},
};

constexpr PublishRow<Records::SURFACE_STATUS> SURFACE_ROWS[] = {
    {Names::ATTR_NAME_SURFACE_ANALYSIS_DELAY, [](auto& r) { return decimalText(r.wScanDelay); }},
    {Names::ATTR_NAME_SURFACE_ANALYSIS_PRIORITY,
     [](auto& r) { return Schema::ArrayController::surfaceAnalysisPriority(r.bAnalysisPriority); }},
};

constexpr std::uint8_t AGGRESSIVE_SCAN = 1U << 1;

constexpr FlagRow<Records::SURFACE_STATUS> SURFACE_FLAGS[] = {
    {KSL_FACT(SURFACE_ANALYSIS_MODE_AGGRESSIVE),
     [](auto& r) { return (r.bScanState & AGGRESSIVE_SCAN) != 0; }},
};

constexpr PublishRow<Records::MNP_STATUS> MNP_ROWS[] = {
    {Names::ATTR_NAME_MNP_DELAY, [](auto& r) { return decimalText(r.wDelayMinutes); }},
};

}  // namespace

void publishRedundantControllerParameters(Schema::ArrayController& controller,
                                          REDUNDANT_CONTROLLER_PARAMETERS const& parameters) {
    publishRows(controller, REDUNDANCY_ROWS, parameters);
    publishRows(controller, REDUNDANCY_FLAGS, parameters);
}

void publishParameterInfo(Schema::ArrayController& controller, CONTROLLER_PARAMETERS const& parameters,
                          unsigned short taskFlags) {
    // Every record has the members up to the one that tells its length.
    unsigned const reach =
        std::max<unsigned>(parameters.dwTotalStructureLength, KSL_END(dwTotalStructureLength));
    publishRows(controller, PARAMETER_ROWS, parameters, reach);
    publishRows(controller, PARAMETER_FLAGS, parameters, reach);
    bool const isRapid = controller.hasAttributeAndIs(Names::ATTR_NAME_RAPID_REBUILD_SUPPORTED,
                                                      Names::ATTR_VALUE_RAPID_REBUILD_SUPPORTED_TRUE);
    publishOrClear(controller, Names::ATTR_NAME_EXPAND_PRIORITY,
                   Schema::ArrayController::expandPriority(taskFlags, parameters.bExpandPriority));
    publishOrClear(controller, Names::ATTR_NAME_REBUILD_PRIORITY,
                   Schema::ArrayController::rebuildPriority(isRapid, taskFlags, parameters.bRebuildPriority));
    Common::string const family = controller.getValueFor(Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY);
    if (family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR ||
        family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_HARRIER) {
        publishRows(controller, QBX_FLAGS, parameters, reach);
    }
}

void publishSurfaceStatusInfo(Schema::ArrayController& controller, Records::SURFACE_STATUS const& surface) {
    publishRows(controller, SURFACE_ROWS, surface);
    publishRows(controller, SURFACE_FLAGS, surface);
}

void publishMNPStatusInfo(Schema::ArrayController& controller, Records::MNP_STATUS const& status) {
    publishRows(controller, MNP_ROWS, status);
}

}  // namespace Operations
