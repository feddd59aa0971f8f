#include "command/controller_command.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using Records::GET_POWER_MODE;
using Records::TOTAL_BOARD_POWER;

constexpr CodeRow CONFIGURED_MODES[] = {
    {0, Names::ATTR_VALUE_POWER_MODE_CONFIGURED_PERFORMANT},
    {1, Names::ATTR_VALUE_POWER_MODE_CONFIGURED_LOW},
    {2, Names::ATTR_VALUE_POWER_MODE_CONFIGURED_LOW_AUTOMATED},
};

constexpr CodeRow OPERATIONAL_MODES[] = {
    {0, Names::ATTR_VALUE_POWER_MODE_OPERATIONAL_PERFORMANT},
    {1, Names::ATTR_VALUE_POWER_MODE_OPERATIONAL_LOW},
    {2, Names::ATTR_VALUE_POWER_MODE_OPERATIONAL_LOW_AUTOMATED},
};

constexpr PublishRow<GET_POWER_MODE> MODE_ROWS[] = {
    {Names::ATTR_NAME_POWER_MODE_CONFIGURED,
     [](auto& r) {
         return Common::string(
             valueOf(CONFIGURED_MODES, r.bPendingPowerMode, Names::ATTR_VALUE_POWER_MODE_CONFIGURED_UNKNOWN));
     }},
    {Names::ATTR_NAME_POWER_MODE_OPERATIONAL,
     [](auto& r) {
         return Common::string(valueOf(OPERATIONAL_MODES, r.bCurrentPowerMode,
                                       Names::ATTR_VALUE_POWER_MODE_OPERATIONAL_UNKNOWN));
     }},
};

#define KSL_POWER_FLAG(member, bit, attribute)                                  \
    {                                                                           \
        KSL_FACT(attribute), [](auto& r) { return (r.member >> (bit)&1) != 0; } \
    }

constexpr FlagRow<GET_POWER_MODE> MODE_FLAGS[] = {
    KSL_POWER_FLAG(bSupportedPowerModes, 0, POWER_MODE_PERFORMANT_SUPPORTED),
    KSL_POWER_FLAG(bSupportedPowerModes, 1, POWER_MODE_LOW_SUPPORTED),
    KSL_POWER_FLAG(bSupportedPowerModes, 2, POWER_MODE_LOW_AUTOMATED_SUPPORTED),
    KSL_POWER_FLAG(bFlags, 0, POWER_MODE_WARNING_TEMPERATURE),
    KSL_POWER_FLAG(bFlags, 1, POWER_MODE_WARNING_CHANGED_MODE),
    KSL_POWER_FLAG(bFlags, 2, POWER_MODE_WARNING_CHANGED_DRIVE),
    KSL_POWER_FLAG(bFlags, 3, POWER_MODE_WARNING_REBOOT),
};

}  // namespace

void readPowerInfo(Schema::ArrayController& controller) {
    if (!controller.hasAttributeAndIs(Names::ATTR_NAME_POWER_MODE_SUPPORTED,
                                      Names::ATTR_VALUE_POWER_MODE_SUPPORTED_TRUE)) {
        return;
    }
    SenseControllerCommand<GetPowerModeTrait> mode;
    if (mode(controller) && mode.receivedLength() >= sizeof(GET_POWER_MODE)) {
        publishRows(controller, MODE_ROWS, mode.record());
        publishRows(controller, MODE_FLAGS, mode.record());
    }
    SenseControllerCommand<GetTotalBoardPowerTrait> power;
    if (power(controller) && power.receivedLength() >= sizeof(Records::TOTAL_BOARD_POWER)) {
        publish(controller, Names::ATTR_NAME_POWER_CONSUMPTION,
                decimalText(power.record().dwTotalBoardPower));
    }
}

}  // namespace Operations
