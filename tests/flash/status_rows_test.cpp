#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "storage/schema/drives.h"
#include "tests/command/fakes.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

/// The texts that the modules add stand for a command status of exactly 255.
TEST_F(FlashTest, StatusesOfTheModulesStandForOneCommandStatus) {
    struct Row {
        unsigned commandStatus;
        unsigned asc;
        char const* status;
    };
    static constexpr char FAILURE[] = "ATTR_VALUE_STATUS_FAILURE";
    static Row const rows[] = {
        {255, 0x24, "ATTR_VALUE_STATUS_INVALID_FIELD_IN_CDB"},
        {255, 0x26, "ATTR_VALUE_STATUS_INVALID_FIELD_IN_PARAMETER_LIST"},
        {255, 0x2C, "ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR"},
        {255, 0x25, FAILURE},
        {1, 0x24, FAILURE},
        {1, 0x26, FAILURE},
        {1, 0x2C, FAILURE},
    };
    for (Row const& row : rows) {
        command_test::Answer answer = command_test::checkCondition(5, row.asc);
        answer.commandStatus = row.commandStatus;
        command_test::FakeBMICDevice device({answer});
        NoTransferControllerCommand<FlashControllerFirmwareTrait> command;
        Core::OperationReturn result;
        EXPECT_FALSE(DeviceCommandReturn::executeCommand(command, device, result));
        EXPECT_EQ(row.status, status(result)) << row.commandStatus << " " << row.asc;
    }
}

/// What never reached a device is no success, though all its statuses are zero.
TEST_F(FlashTest, ADriveWithoutAControllerTellsOfAFailure) {
    Schema::PhysicalDrive drive("", 1, Schema::PhysicalDrive::eData);
    SenseControllerCommand<IdentifyControllerTrait> command;
    Core::OperationReturn result;
    EXPECT_FALSE(DeviceCommandReturn::executeCommand(command, static_cast<BMICDevice&>(drive), result));
    EXPECT_FALSE(result);
    EXPECT_EQ("-1", attribute(result, "ATTR_NAME_LOW_LEVEL_STATUS"));
}

}  // namespace
}  // namespace flash_test
