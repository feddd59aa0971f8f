// SCSI, ATA and CSMI commands.

#include <gtest/gtest.h>

#include "command/ata_command.h"
#include "command/csmi_command.h"
#include "command/scsi_command.h"
#include "fakes.h"

namespace {

using namespace command_test;

class PlainScsiCommand : public ScsiCommand {
  protected:
    bool sendCommand(SCSIDevice& device, SCSIRequest& request) override {
        return device.sendSCSICommand(request);
    }
};

TEST(ScsiCommand, IsSentOnceEvenOnAUnitAttention) {
    FakeClock clock;
    FakeSCSIDevice device({checkCondition(6, 0x29, 0x01), Answer{}});
    PlainScsiCommand command;
    EXPECT_FALSE(command(device));
    EXPECT_EQ(device.sent.size(), 1U);
    EXPECT_TRUE(clock.waits().empty());
    EXPECT_EQ(command.bScsiStatus(), 2);
    EXPECT_EQ(command.bSenseKey(), 6);
    EXPECT_EQ(command.bASC(), 0x29);
    EXPECT_EQ(command.bASCQ(), 0x01);
}

TEST(ScsiCommand, OverrunIsSuccessAndATransportFailureIsNot) {
    FakeSCSIDevice device({{.commandStatus = 3}, {.sent = false, .lowLevelStatus = 6}});
    PlainScsiCommand command;
    EXPECT_TRUE(command(device));
    EXPECT_EQ(command.wCommandStatus(), 3);
    EXPECT_FALSE(command(device));
    EXPECT_FALSE(command.isDelivered());
    EXPECT_EQ(command.i32LowLevelStatus(), 6);
}

TEST(ScsiCommand, FlagsAndTimeoutTravelInTheRequest) {
    FakeSCSIDevice device;
    PlainScsiCommand command;
    command.PassThrough(true);
    command.SetTimeout(600);
    command(device);
    ASSERT_EQ(device.sent.size(), 1U);
    EXPECT_EQ(device.sent[0].passThrough, 1);
    EXPECT_EQ(device.sent[0].noCache, 0);
    EXPECT_EQ(device.sent[0].timeout, 600U);
    EXPECT_EQ(device.sent[0].senseLength, 32U);
}

class FakeATADevice : public ATADevice {
  public:
    bool sendATACommand(ATARequest& request) const override {
        EXPECT_EQ(request.resultLength, 8U);
        for (unsigned i = 0; i < 8; ++i)
            EXPECT_EQ(request.resultRegisters[i], 0) << "left from the last run";
        unsigned char const registers[8] = {0x50, 0x01, 0xAB, 0x00, 0xCD, 0xEF, 0x40, 0x04};
        std::memcpy(request.resultRegisters, registers, sizeof(registers));
        return succeeds;
    }
    bool succeeds = true;
};

class CountingATACommand : public ATACommand {
  public:
    unsigned postProcessed = 0;

  protected:
    void PostProcessCommand() override { ++postProcessed; }
    bool sendCommand(ATADevice& device, ATARequest& request) override {
        return device.sendATACommand(request);
    }
};

TEST(ATACommand, ShowsItsResultRegistersAndPostProcessesOnlySuccess) {
    FakeATADevice device;
    CountingATACommand command;
    EXPECT_STREQ(command.ResultRegisters().c_str(), "00 00 00 00 00 00 00 00");
    EXPECT_TRUE(command(device));
    EXPECT_STREQ(command.ResultRegisters().c_str(), "50 01 AB 00 CD EF 40 04");
    EXPECT_EQ(command.postProcessed, 1U);
    device.succeeds = false;
    EXPECT_FALSE(command(device));
    EXPECT_EQ(command.postProcessed, 1U);
    EXPECT_STREQ(command.ResultRegisters().c_str(), "50 01 AB 00 CD EF 40 04");
}

class FakeCSMIDevice : public CSMIDevice {
  public:
    bool sendCSMICommand(CSMIRequest& request) const override {
        activities.push_back(request.pauseActivity);
        return request.pauseActivity == 1;
    }
    mutable std::vector<unsigned> activities;
};

TEST(CSMICommand, PausesAndResumesAndReturnsWhatTheDeviceSaid) {
    FakeCSMIDevice device;
    EXPECT_TRUE(CSMIPauseResumeActivity{true}(device));
    EXPECT_FALSE(CSMIPauseResumeActivity{false}(device));
    EXPECT_EQ(device.activities, (std::vector<unsigned>{1, 0}));
}

}  // namespace
