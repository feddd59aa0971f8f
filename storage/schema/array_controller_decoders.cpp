#include "storage/schema/array_controller.h"
#include "storage/schema/code_table.h"
#include "storage/vocabulary/array_controller_codes.h"

namespace Schema {
namespace {

using namespace Interface::StorageMod::ArrayController;

constexpr CodeRow CACHE_DISABLE_CODES[] = {
    {0, ATTR_VALUE_CACHE_DISABLE_CODE_NONE},
    {1, ATTR_VALUE_CACHE_DISABLE_CODE_NOT_INSTALLED},
    {2, ATTR_VALUE_CACHE_DISABLE_CODE_NOT_CONFIGURED},
    {3, ATTR_VALUE_CACHE_DISABLE_CODE_BATTERY_LOW},
    {4, ATTR_VALUE_CACHE_DISABLE_CODE_BATTERY_FAILED},
    {5, ATTR_VALUE_CACHE_DISABLE_CODE_CONFIGURATION_MISMATCH},
    {6, ATTR_VALUE_CACHE_DISABLE_CODE_MEMORY_TEST_FAILED},
    {7, ATTR_VALUE_CACHE_DISABLE_CODE_PARITY_ERRORS},
    {8, ATTR_VALUE_CACHE_DISABLE_CODE_BACKUP_FAILED},
    {9, ATTR_VALUE_CACHE_DISABLE_CODE_RESTORE_FAILED},
    {10, ATTR_VALUE_CACHE_DISABLE_CODE_OVERHEATED},
    {11, ATTR_VALUE_CACHE_DISABLE_CODE_DISABLED_BY_USER},
};

constexpr CodeRow PATH_SELECTION_METHODS[] = {
    {0, ATTR_VALUE_DEVICE_PATH_SELECTION_METHOD_AUTOMATIC},
    {1, ATTR_VALUE_DEVICE_PATH_SELECTION_METHOD_ROUND_ROBIN},
    {2, ATTR_VALUE_DEVICE_PATH_SELECTION_METHOD_PREFERRED_PATH},
};

constexpr CodeRow EXPAND_PRIORITIES[] = {
    {3, ATTR_VALUE_EXPAND_PRIORITY_LOW},
    {6, ATTR_VALUE_EXPAND_PRIORITY_MEDIUM},
    {9, ATTR_VALUE_EXPAND_PRIORITY_HIGH},
};

constexpr CodeRow REBUILD_PRIORITIES[] = {
    {3, ATTR_VALUE_REBUILD_PRIORITY_LOW},
    {6, ATTR_VALUE_REBUILD_PRIORITY_MEDIUM},
    {9, ATTR_VALUE_REBUILD_PRIORITY_HIGH},
};

/// Of controllers that can rebuild rapidly: a finer scale, with one more step at the top.
constexpr CodeRow RAPID_REBUILD_PRIORITIES[] = {
    {3, ATTR_VALUE_REBUILD_PRIORITY_LOW},         {6, ATTR_VALUE_REBUILD_PRIORITY_MEDIUM},
    {8, ATTR_VALUE_REBUILD_PRIORITY_MEDIUM_HIGH}, {9, ATTR_VALUE_REBUILD_PRIORITY_HIGH},
    {12, ATTR_VALUE_REBUILD_PRIORITY_RAPID},
};

constexpr CodeRow ANALYSIS_PRIORITIES[] = {
    {0, ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_DISABLED},
    {1, ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_IDLE},
    {2, ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_LOW},
    {3, ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_HIGH},
};

constexpr CodeRow TRANSFER_MODES[] = {
    {0, ATTR_VALUE_FORCED_TRANSFER_MODE_NONE},     {1, ATTR_VALUE_FORCED_TRANSFER_MODE_ASYNCHRONOUS},
    {2, ATTR_VALUE_FORCED_TRANSFER_MODE_FAST},     {3, ATTR_VALUE_FORCED_TRANSFER_MODE_ULTRA},
    {4, ATTR_VALUE_FORCED_TRANSFER_MODE_ULTRA2},   {5, ATTR_VALUE_FORCED_TRANSFER_MODE_ULTRA3},
    {6, ATTR_VALUE_FORCED_TRANSFER_MODE_ULTRA320},
};

constexpr CodeRow TRANSFER_WIDTHS[] = {
    {0, ATTR_VALUE_FORCED_TRANSFER_WIDTH_NONE},
    {1, ATTR_VALUE_FORCED_TRANSFER_WIDTH_NARROW},
    {2, ATTR_VALUE_FORCED_TRANSFER_WIDTH_WIDE},
};

constexpr CodeRow REDUNDANCY_FAIL_REASONS[] = {
    {0, ATTR_VALUE_REDUNDANCY_STATE_OK},
    {1, ATTR_VALUE_REDUNDANCY_STATE_NO_PARTNER},
    {2, ATTR_VALUE_REDUNDANCY_STATE_DIFFERENT_MODEL},
    {3, ATTR_VALUE_REDUNDANCY_STATE_DIFFERENT_FIRMWARE},
    {4, ATTR_VALUE_REDUNDANCY_STATE_DIFFERENT_CACHE_SIZE},
    {5, ATTR_VALUE_REDUNDANCY_STATE_NO_COMMON_DRIVES},
    {6, ATTR_VALUE_REDUNDANCY_STATE_LINK_FAILED},
    {7, ATTR_VALUE_REDUNDANCY_STATE_PARTNER_FAILED},
    {8, ATTR_VALUE_REDUNDANCY_STATE_UNSUPPORTED_CONFIGURATION},
};

// Bits of the identify record's task flags: the firmware runs the task at a pace of its own, and the
// priority in its parameters means nothing.
constexpr unsigned EXPAND_PRIORITY_FIXED = 1U << 0;
constexpr unsigned REBUILD_PRIORITY_FIXED = 1U << 1;

}  // namespace

Common::string ArrayController::cacheDisableCode(unsigned short const& code) {
    return valueOf(CACHE_DISABLE_CODES, code, ATTR_VALUE_CACHE_DISABLE_CODE_UNKNOWN);
}

Common::string ArrayController::devicePathSelectionMethod(unsigned char const& method) {
    return valueOf(PATH_SELECTION_METHODS, method, ATTR_VALUE_DEVICE_PATH_SELECTION_METHOD_UNKNOWN);
}

Common::string ArrayController::expandPriority(unsigned short const& taskFlags,
                                               unsigned char const& priority) {
    if ((taskFlags & EXPAND_PRIORITY_FIXED) != 0) return Common::string();
    return valueOf(EXPAND_PRIORITIES, priority, ATTR_VALUE_EXPAND_PRIORITY_UNKNOWN);
}

Common::string ArrayController::forcedTransferMode(unsigned char const& mode) {
    return valueOf(TRANSFER_MODES, mode, ATTR_VALUE_FORCED_TRANSFER_MODE_UNKNOWN);
}

Common::string ArrayController::forcedTransferWidth(unsigned char const& width) {
    return valueOf(TRANSFER_WIDTHS, width, ATTR_VALUE_FORCED_TRANSFER_WIDTH_UNKNOWN);
}

Common::string ArrayController::rebuildPriority(bool isRapidRebuildSupported, unsigned short const& taskFlags,
                                                unsigned char const& priority) {
    if ((taskFlags & REBUILD_PRIORITY_FIXED) != 0) return Common::string();
    return isRapidRebuildSupported
               ? valueOf(RAPID_REBUILD_PRIORITIES, priority, ATTR_VALUE_REBUILD_PRIORITY_UNKNOWN)
               : valueOf(REBUILD_PRIORITIES, priority, ATTR_VALUE_REBUILD_PRIORITY_UNKNOWN);
}

Common::string ArrayController::redundancyFailReason(unsigned char const& reason) {
    return valueOf(REDUNDANCY_FAIL_REASONS, reason, ATTR_VALUE_REDUNDANCY_STATE_UNKNOWN);
}

Common::string ArrayController::surfaceAnalysisPriority(unsigned char const& priority) {
    return valueOf(ANALYSIS_PRIORITIES, priority, ATTR_VALUE_SURFACE_ANALYSIS_PRIORITY_UNKNOWN);
}

}  // namespace Schema
