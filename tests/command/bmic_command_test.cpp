#include "command/bmic_command.h"

#include <gtest/gtest.h>

#include "command/controller_command.h"
#include "fakes.h"

namespace {

using namespace command_test;

// A command that counts its stages.
class StagedCommand : public BmicCommand {
  public:
    std::string stages;

  protected:
    void PreProcessCommand() override { stages += "pre "; }
    bool sendCommand(BMICDevice& device, BMICRequest& request) override {
        stages += "send ";
        return device.sendBMICCommand(request);
    }
    void PostProcessCommand() override { stages += "post"; }
};

struct RetryRow {
    char const* what;
    Answer answer;
    bool retried;
};

RetryRow const RETRIES[] = {
    {"unit attention", checkCondition(6, 0x29), true},
    {"unit attention, any ASC", checkCondition(6, 0x00), true},
    {"not ready, becoming ready", checkCondition(2, 4), true},
    {"not ready, medium absent", checkCondition(2, 0x3A), false},
    {"illegal request, ASC 4", checkCondition(5, 4), true},
    {"illegal request, invalid field", checkCondition(5, 0x24), false},
    {"aborted command, ASC 4", checkCondition(0xB, 4), false},
    {"unit attention sense under busy status", {.scsiStatus = 8, .sense = senseOf(6, 0x29, 0)}, false},
    {"transport failure", {.sent = false, .lowLevelStatus = 5}, false},
    {"good", {}, false},
};

TEST(BmicCommand, RetriesOnlyWhatADeviceGetsOverByItself) {
    for (RetryRow const& row : RETRIES) {
        FakeClock clock;
        FakeBMICDevice device({row.answer, Answer{}});
        StagedCommand command;
        command(device);
        EXPECT_EQ(device.sent.size(), row.retried ? 2U : 1U) << row.what;
        EXPECT_EQ(clock.waits().size(), row.retried ? 1U : 0U) << row.what;
    }
}

TEST(BmicCommand, WaitsTwoSecondsAtEachOfSixtyOneTriesAndGivesUp) {
    FakeClock clock;
    LogCapture log(1);
    FakeBMICDevice device({checkCondition(6, 0x29, 0x02)});
    StagedCommand command;
    EXPECT_FALSE(command(device));
    EXPECT_EQ(device.sent.size(), 61U);
    EXPECT_EQ(clock.waits(), std::vector<unsigned>(61, 2000000));
    EXPECT_EQ(log.count("BMIC COMMAND RETRY"), 61U);
    EXPECT_EQ(command.bSenseKey(), 6);
    EXPECT_EQ(command.bASC(), 0x29);
    EXPECT_EQ(command.bASCQ(), 0x02);
}

TEST(BmicCommand, SendsAsOftenAsTheMaximumSays) {
    for (unsigned const maxRetries : {0U, 1U, 5U, 255U}) {
        FakeClock clock;
        LogCapture log(1);
        FakeBMICDevice device({checkCondition(2, 4)});
        StagedCommand command;
        command.SetNumMaxRetries(static_cast<unsigned char>(maxRetries));
        EXPECT_FALSE(command(device));
        EXPECT_EQ(device.sent.size(), maxRetries + 1);
        // Without retries there is nothing to wait for, and nothing to log.
        unsigned const waits = maxRetries == 0 ? 0 : maxRetries + 1;
        EXPECT_EQ(clock.waits().size(), waits);
        EXPECT_EQ(log.count("BMIC COMMAND RETRY"), waits);
    }
}

TEST(BmicCommand, PreAndPostProcessingRunOnceWhateverHappens) {
    FakeClock clock;
    FakeBMICDevice device({checkCondition(6, 0x29), {.sent = false, .lowLevelStatus = 19}});
    StagedCommand command;
    EXPECT_FALSE(command(device));
    EXPECT_EQ(command.stages, "pre send send post");
}

struct OutcomeRow {
    char const* what;
    Answer answer;
    bool succeeded, delivered;
    int lowLevelStatus;
    unsigned commandStatus, scsiStatus, key, asc, ascq;
};

OutcomeRow const OUTCOMES[] = {
    {"good", {}, true, true, 0, 0, 0, 0, 0, 0},
    {"refused without a status", {.sent = false}, false, true, 0, 0, 0, 0, 0, 0},
    {"underrun", {.commandStatus = 2}, true, true, 0, 2, 0, 0, 0, 0},
    {"overrun", {.commandStatus = 3}, true, true, 0, 3, 0, 0, 0, 0},
    {"underrun though the device said no", {.sent = false, .commandStatus = 2}, true, true, 0, 2, 0, 0, 0, 0},
    {"invalid command", {.commandStatus = 4}, false, true, 0, 4, 0, 0, 0, 0},
    {"command status above a byte", {.commandStatus = 0x102}, false, true, 0, 0x102, 0, 0, 0, 0},
    {"check condition", checkCondition(5, 0x24, 0x07), false, true, 0, 1, 2, 5, 0x24, 0x07},
    {"transport failure", {.sent = false, .lowLevelStatus = -19}, false, false, -19, 0, 0, 0, 0, 0},
    // The transport's word goes over all that it may have left in the request.
    {"transport failure with a stale status",
     {.sent = true, .lowLevelStatus = 5, .commandStatus = 3, .scsiStatus = 2, .sense = senseOf(5, 1, 1)},
     false,
     false,
     5,
     0,
     0,
     0,
     0,
     0},
};

template <class Command, class Device>
void expectOutcomes(Command makeCommand(), Device) {
    for (OutcomeRow const& row : OUTCOMES) {
        Device device({row.answer});
        Command command = makeCommand();
        EXPECT_EQ(command(device), row.succeeded) << row.what;
        EXPECT_EQ(command.isDelivered(), row.delivered) << row.what;
        EXPECT_EQ(command.i32LowLevelStatus(), row.lowLevelStatus) << row.what;
        EXPECT_EQ(command.wCommandStatus(), row.commandStatus) << row.what;
        EXPECT_EQ(command.bScsiStatus(), row.scsiStatus) << row.what;
        EXPECT_EQ(command.bSenseKey(), row.key) << row.what;
        EXPECT_EQ(command.bASC(), row.asc) << row.what;
        EXPECT_EQ(command.bASCQ(), row.ascq) << row.what;
        EXPECT_EQ(device.sent.size(), 1U) << row.what;
    }
}

TEST(BmicCommand, OutcomeIsWhatTheRequestBroughtBack) {
    expectOutcomes<StagedCommand>([] { return StagedCommand(); }, FakeBMICDevice());
}

TEST(BmicCommand, ASecondRunStartsFromAGoodOutcome) {
    FakeBMICDevice device({{.sent = false, .lowLevelStatus = 5}, checkCondition(5, 0x24), Answer{}});
    StagedCommand command;
    EXPECT_FALSE(command(device));
    EXPECT_FALSE(command(device));
    EXPECT_TRUE(command.isDelivered());
    EXPECT_TRUE(command(device));
    EXPECT_EQ(command.wCommandStatus(), 0);
    EXPECT_EQ(command.bSenseKey(), 0);
}

// A unit attention that a silent failure follows once looked like a unit attention still.
TEST(BmicCommand, AnAnswerLeavesNothingBehindForTheNextTry) {
    FakeClock clock;
    class ForgetfulDevice : public FakeBMICDevice {
      public:
        bool sendBMICCommand(BMICRequest& request) const override {
            if (!sent.empty()) {
                sent.push_back({request, {}, Bytes(request.senseBuffer, request.senseBuffer + 32)});
                return false;
            }
            return FakeBMICDevice::sendBMICCommand(request);
        }
    } device;
    device.script = Script({checkCondition(6, 0x29)});
    StagedCommand command;
    EXPECT_FALSE(command(device));
    ASSERT_EQ(device.sent.size(), 2U);
    EXPECT_EQ(device.sent[1].sense, Bytes(32));
    EXPECT_EQ(command.bScsiStatus(), 0);
}

TEST(BmicCommand, FlagsAndTimeoutTravelInTheRequest) {
    FakeBMICDevice device;
    StagedCommand command;
    command(device);
    command.NoCache(true);
    command.SetTimeout(0x89AB);
    command(device);
    command.NoCache(false);
    command.PassThrough(true);
    command(device);
    command.PassThrough(false);
    command.SelectiveCache(true);
    command(device);
    ASSERT_EQ(device.sent.size(), 4U);
    unsigned const flags[][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (std::size_t i = 0; i < device.sent.size(); ++i) {
        BMICRequest const& request = device.sent[i].request;
        EXPECT_EQ(request.noCache, flags[i][0]);
        EXPECT_EQ(request.passThrough, flags[i][1]);
        EXPECT_EQ(request.selectiveCache, flags[i][2]);
        EXPECT_EQ(request.timeout, i == 0 ? 0U : 0x89ABU);
    }
}

}  // namespace
