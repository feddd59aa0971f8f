#pragma once

#include "command/logical_drive_command.h"
#include "command/passing_condition.h"
#include "common/debug_logger.h"
#include "storage/operations/controller_common.h"

namespace Operations {

using SenseConfiguration = SenseLogicalDriveCommand<SenseLogicalDriveConfigurationTrait>;

/// Reads the configuration of each configured logical unit, by number, until as many have been seen as the
/// identify record tells; `visit(unit, command)` answers whether to go on. A unit without drives isn't
/// configured. The walk ends when the controller isn't reached, or kept asking for a moment for as long as a
/// command is repeated: the other units would take as long and end the same way.
template <class Visit>
void forEachConfiguredUnit(BMICDevice& controller, Records::IDENTIFY_CONTROLLER const& identify,
                           Visit visit) {
    unsigned seen = 0;
    for (std::uint16_t unit = 0;
         seen < identify.bConfiguredLogicalDrives && unit < controller.maxLogicalUnits(); ++unit) {
        SenseConfiguration configuration(unit);
        if (!configuration(controller)) {
            if (!configuration.isDelivered() ||
                isPassingCondition(configuration.bSenseKey(), configuration.bASC())) {
                Common::DebugLogger::LogCommand(
                    "Configuration of unit %u not read (status %d, sense key %u); ending the scan",
                    static_cast<unsigned>(unit), static_cast<int>(configuration.i32LowLevelStatus()),
                    static_cast<unsigned>(configuration.bSenseKey()));
                return;
            }
            continue;
        }
        if (!holdsWhole(configuration, "Logical drive configuration")) continue;
        if (configuration.record().wAssignedDrives == 0) continue;
        ++seen;
        if (!visit(unit, configuration)) return;
    }
}

}  // namespace Operations
