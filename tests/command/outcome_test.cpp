// Status descriptions, and how outcomes are filed in an operation's result.

#include <gtest/gtest.h>

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "fakes.h"

namespace {

using namespace command_test;

constexpr char const* SUCCESS = "ATTR_VALUE_STATUS_SUCCESS";
constexpr char const* FAILURE = "ATTR_VALUE_STATUS_FAILURE";
constexpr char const* COMMUNICATION_ERROR = "ATTR_VALUE_STATUS_COMMUNICATION_ERROR";

class Outcome : public SCSIStatus {
  public:
    Outcome(int lowLevelStatus, unsigned commandStatus, unsigned scsiStatus, unsigned key, unsigned asc,
            unsigned ascq) {
        unsigned char sense[32] = {};
        BMICRequest request;
        request.senseBuffer = sense;
        request.senseLength = sizeof(sense);
        Answer{.lowLevelStatus = lowLevelStatus,
               .commandStatus = commandStatus,
               .scsiStatus = scsiStatus,
               .sense = senseOf(key, asc, ascq)}
            .to(request);
        TakeStatus(request, true);
    }
};

class StatusDescriptions : public testing::Test {
  protected:
    void SetUp() override { SCSIStatus::ForgetStatusDescriptions(); }
    void TearDown() override { SCSIStatus::ForgetStatusDescriptions(); }
};

struct DescriptionRow {
    Outcome outcome;
    bool described;
    char const* text;
};

TEST_F(StatusDescriptions, Defaults) {
    for (DescriptionRow const& row : {
             DescriptionRow{{0, 0, 0, 0, 0, 0}, true, SUCCESS},
             DescriptionRow{{0, 2, 0, 0, 0, 0}, true, SUCCESS},
             DescriptionRow{{0, 3, 2, 5, 0x24, 1}, true, SUCCESS},
             DescriptionRow{{0, 4, 0, 0, 0, 0}, true, FAILURE},
             DescriptionRow{{0, 1, 2, 5, 0x24, 0}, false, FAILURE},
             DescriptionRow{{0, 0, 2, 5, 0x24, 0}, false, FAILURE},
             DescriptionRow{{5, 0, 0, 0, 0, 0}, true, COMMUNICATION_ERROR},
         }) {
        EXPECT_EQ(row.outcome.hasStatusDescription(), row.described) << row.outcome.wCommandStatus();
        EXPECT_STREQ(row.outcome.statusDescription().c_str(), row.text) << row.outcome.wCommandStatus();
    }
}

// Two modules enter rows with a command status of 0x00FF. Taking that for a wildcard would give every check
// condition of the controller a text that it never had.
TEST_F(StatusDescriptions, ACommandStatusOfTwoHundredFiftyFiveIsNoWildcard) {
    SCSIStatus::AddStatusDescription(0x00FF, 2, 5, 0x24, 0xFF, "NARROW");
    EXPECT_FALSE(Outcome(0, 1, 2, 5, 0x24, 0).hasStatusDescription());
    EXPECT_STREQ(Outcome(0, 255, 2, 5, 0x24, 0x99).statusDescription().c_str(), "NARROW");
    SCSIStatus::AddStatusDescription(0xFFFF, 2, 5, 0x26, 0xFF, "WIDE");
    EXPECT_STREQ(Outcome(0, 1, 2, 5, 0x26, 0x99).statusDescription().c_str(), "WIDE");
}

TEST_F(StatusDescriptions, TheFirstMatchInOrderOfAdditionCountsAndReplacingMovesToTheEnd) {
    SCSIStatus::AddStatusDescription(0xFFFF, 8, 0xFF, 0xFF, 0xFF, "FIRST");
    SCSIStatus::AddStatusDescription(7, 8, 0xFF, 0xFF, 0xFF, "SECOND");
    EXPECT_STREQ(Outcome(0, 7, 8, 0, 0, 0).statusDescription().c_str(), "FIRST");
    SCSIStatus::AddStatusDescription(0xFFFF, 8, 0xFF, 0xFF, 0xFF, "AGAIN");
    EXPECT_STREQ(Outcome(0, 7, 8, 0, 0, 0).statusDescription().c_str(), "SECOND");
    EXPECT_STREQ(Outcome(0, 9, 8, 0, 0, 0).statusDescription().c_str(), "AGAIN");
}

TEST_F(StatusDescriptions, LowLevelTexts) {
    SCSIStatus::AddLowLevelStatusDescription(19, "NO DEVICE");
    SCSIStatus::AddLowLevelStatusDescription(19, "GONE");
    EXPECT_STREQ(Outcome(19, 0, 0, 0, 0, 0).statusDescription().c_str(), "GONE");
    EXPECT_STREQ(Outcome(20, 0, 0, 0, 0, 0).statusDescription().c_str(), COMMUNICATION_ERROR);
}

using Identify = SenseControllerCommand<SenseMNPStatusTrait>;

std::string valueOf(Core::OperationReturn const& result, char const* name) {
    return result.hasAttribute(name) ? result.getValueFor(name).c_str() : "(none)";
}

class ExecuteCommand : public StatusDescriptions {
  protected:
    bool run(Answer const& answer) {
        FakeBMICDevice device({answer});
        Identify command;
        return DeviceCommandReturn::executeCommand(command, device, result);
    }
    std::string value(char const* name) const { return valueOf(result, name); }

    Core::OperationReturn result;
};

TEST_F(ExecuteCommand, SuccessFilesNothing) {
    EXPECT_TRUE(run({}));
    EXPECT_TRUE(run({.commandStatus = 2}));
    EXPECT_TRUE(static_cast<bool>(result));
    EXPECT_EQ(value("ATTR_NAME_SCSI_COMMAND_STATUS"), "(none)");
}

TEST_F(ExecuteCommand, ADeviceErrorFilesItsFiveValuesInDecimal) {
    EXPECT_FALSE(run(checkCondition(5, 0x24, 0xC7)));
    EXPECT_FALSE(static_cast<bool>(result));
    EXPECT_EQ(value("ATTR_NAME_STATUS"), FAILURE);
    EXPECT_EQ(value("ATTR_NAME_SCSI_COMMAND_STATUS"), "1");
    EXPECT_EQ(value("ATTR_NAME_SCSI_STATUS"), "2");
    EXPECT_EQ(value("ATTR_NAME_SCSI_SENSE_KEY"), "5");
    EXPECT_EQ(value("ATTR_NAME_SCSI_ASC"), "36");
    EXPECT_EQ(value("ATTR_NAME_SCSI_ASCQ"), "199");
    EXPECT_EQ(value("ATTR_NAME_LOW_LEVEL_STATUS"), "(none)");
}

TEST_F(ExecuteCommand, ATransportErrorFilesItsCode) {
    EXPECT_FALSE(run({.sent = false, .lowLevelStatus = -19}));
    EXPECT_EQ(value("ATTR_NAME_STATUS"), COMMUNICATION_ERROR);
    EXPECT_EQ(value("ATTR_NAME_LOW_LEVEL_STATUS"), "-19");
    EXPECT_EQ(value("ATTR_NAME_SCSI_STATUS"), "(none)");
}

TEST_F(ExecuteCommand, ADescriptionReplacesTheFailureTextAndSuccessTextIsSuccess) {
    SCSIStatus::AddStatusDescription(1, 2, 5, 0x24, 0xFF, "ATTR_VALUE_STATUS_INVALID_FIELD_IN_CDB");
    EXPECT_FALSE(run(checkCondition(5, 0x24)));
    EXPECT_EQ(value("ATTR_NAME_STATUS"), "ATTR_VALUE_STATUS_INVALID_FIELD_IN_CDB");

    result = Core::OperationReturn();
    SCSIStatus::AddStatusDescription(1, 2, 5, 0x20, 0xFF, SUCCESS);
    EXPECT_TRUE(run(checkCondition(5, 0x20)));
    EXPECT_TRUE(static_cast<bool>(result));
    EXPECT_EQ(value("ATTR_NAME_SCSI_ASC"), "32");
}

TEST_F(ExecuteCommand, AfterAFailureNothingIsSentAndTheFirstFailureStays) {
    EXPECT_FALSE(run(checkCondition(5, 0x24, 0x01)));
    FakeBMICDevice device({{.sent = false, .lowLevelStatus = 5}});
    Identify command;
    EXPECT_TRUE(DeviceCommandReturn::executeCommand(command, device, result));
    EXPECT_TRUE(device.sent.empty());
    EXPECT_EQ(value("ATTR_NAME_STATUS"), FAILURE);
    EXPECT_EQ(value("ATTR_NAME_LOW_LEVEL_STATUS"), "(none)");
}

TEST_F(ExecuteCommand, ArgumentProblemNamesTheArgument) {
    DeviceCommandReturn::ArgumentProblem("ATTR_VALUE_STATUS_ARGUMENT_MISSING", "ATTR_NAME_BUFFER_SIZE",
                                         result);
    EXPECT_FALSE(static_cast<bool>(result));
    EXPECT_EQ(value("ATTR_NAME_STATUS"), "ATTR_VALUE_STATUS_ARGUMENT_MISSING");
    EXPECT_EQ(value("ATTR_NAME_ARGUMENT_NAME"), "ATTR_NAME_BUFFER_SIZE");
}

}  // namespace
