// Devices on a handle, down to the bytes that the kernel is given.

#include "command/concrete_devices.h"

#include <gtest/gtest.h>

#include "command/bmic_forward_device.h"
#include "command/cache.h"
#include "command/commandmod.h"
#include "command/controller_command.h"
#include "command/qrth_scan.h"
#include "fakes.h"

namespace {

using namespace command_test;

TEST(ConcreteBMICDevice, PutsACommandIntoTheControllersCommandBlock) {
    FakeKernel kernel;
    ConcreteBMICDevice device(handleOf("K", "/dev/xqrth/c3d0"), false, 32, 128);
    SensePhysicalDriveCommand<IdentifyPhysicalDriveTrait, true> identify(0xA1B2);
    EXPECT_TRUE(identify(device));
    SetControllerCommand<CollectBufferTrait> collect;
    unsigned char const chunk[0x0102] = {};
    collect.SetBuffer(chunk, sizeof(chunk));
    collect.SetDetails(0x89ABCDEF);
    collect.SetTimeout(99);
    EXPECT_TRUE(collect(device));
    NoTransferControllerCommand<SoftResetControllerTrait> reset;
    reset.SetCdbLengthOverride(0x7654);
    EXPECT_TRUE(reset(device));

    ASSERT_EQ(kernel.exchanges.size(), 3U);
    EXPECT_EQ(kernel.exchanges[0].node, "/dev/xqrth/c3d0");
    EXPECT_EQ(kernel.exchanges[0].request, FakeKernel::PASSTHRU);
    EXPECT_EQ(kernel.exchanges[0].block(), (Bytes{0x26, 0, 0xB2, 0, 0, 0, 0x15, 0x08, 0x00, 0xA1}));
    EXPECT_EQ(kernel.exchanges[0].typeByte(), 0xA0U);
    EXPECT_EQ(kernel.exchanges[0].bufferSize(), 2048U);
    EXPECT_EQ(kernel.exchanges[1].block(), (Bytes{0x27, 0, 0x89, 0xAB, 0xCD, 0xEF, 0xD2, 0x01, 0x02, 0}));
    EXPECT_EQ(kernel.exchanges[1].typeByte(), 0x60U);
    EXPECT_EQ(kernel.exchanges[1].timeout(), 99U);
    EXPECT_EQ(kernel.exchanges[2].block(), (Bytes{0x27, 0, 0, 0, 0, 0, 0x40, 0x76, 0x54, 0}));
    EXPECT_EQ(kernel.exchanges[2].typeByte(), 0x20U);
    EXPECT_EQ(kernel.exchanges[2].timeout(), 30U);
}

TEST(ConcreteBMICDevice, RemembersSizesAndSaysWhatItWasTold) {
    ConcreteBMICDevice device(handleOf("K"), true, 0x89AB, 0xCDEF);
    EXPECT_TRUE(device.isRemote());
    EXPECT_EQ(device.maxLogicalUnits(), 0x89AB);
    EXPECT_EQ(device.maxPhysicalUnits(), 0xCDEF);
    EXPECT_EQ(device.readSizeFromCacheFor(0x11), 0U);
    device.WriteSizeToCacheFor(0x11, 1000);
    device.WriteSizeToCacheFor(0x11, 2000);
    EXPECT_EQ(device.readSizeFromCacheFor(0x11), 2000U);
    EXPECT_EQ(device.readSizeFromCacheFor(0x12), 0U);
}

TEST(ConcreteDevices, ADeliveredCommandWithABadScsiStatusIsNotSent) {
    FakeKernel kernel;
    kernel.answer = [](KernelExchange const&) { return FakeKernel::Reply{.scsiStatus = 8}; };
    unsigned char sense[32], cdb[6] = {};
    BMICRequest bmic;
    bmic.senseBuffer = sense;
    bmic.senseLength = sizeof(sense);
    EXPECT_FALSE(ConcreteBMICDevice(handleOf("K"), false, 32, 128).sendBMICCommand(bmic));
    SCSIRequest scsi;
    scsi.cdb = cdb;
    scsi.cdbLength = sizeof(cdb);
    EXPECT_FALSE(ConcreteSCSIDevice(handleOf("K")).sendSCSICommand(scsi));
    EXPECT_EQ(scsi.scsiStatus, 8);
    EXPECT_EQ(kernel.exchanges.size(), 2U);
}

TEST(ConcreteSCSIDevice, RescanAsksTheDriverAndThenTheController) {
    FakeKernel kernel;
    ConcreteSCSIDevice const device(handleOf("K", "/dev/xqrth/c1d0"));
    EXPECT_TRUE(device.rescanScsiBus());
    ASSERT_EQ(kernel.exchanges.size(), 2U);
    EXPECT_EQ(kernel.exchanges[0].request, FakeKernel::REGISTER_NEW_DISKS);
    EXPECT_TRUE(kernel.exchanges[0].record.empty());
    EXPECT_EQ(kernel.exchanges[1].node, "/dev/xqrth/c1d0");
    EXPECT_EQ(kernel.exchanges[1].typeByte(), 0x61U);
    EXPECT_EQ(kernel.exchanges[1].block(), (Bytes{2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));

    kernel.exchanges.clear();
    kernel.answer = [](KernelExchange const&) { return FakeKernel::Reply{.error = 25}; };
    EXPECT_FALSE(device.rescanScsiBus());
    EXPECT_EQ(kernel.exchanges.size(), 1U);
}

TEST(ConcreteDevices, AnUpdatedHandleIsUsed) {
    FakeKernel kernel;
    ConcreteSCSIDevice device(handleOf("K", "/dev/old"));
    device.UpdateHandle(handleOf("K", "/dev/new"));
    QRTHScan{}(device);
    ASSERT_EQ(kernel.exchanges.size(), 1U);
    EXPECT_EQ(kernel.exchanges[0].node, "/dev/new");
    EXPECT_EQ(device.bufferSizeLimit(), 0U);
    ConcreteATADevice ata(handleOf("K", "/dev/old"));
    ata.UpdateHandle(handleOf("K", "/dev/new"));
    EXPECT_TRUE(ata.Handle() == handleOf("K", "/dev/new"));
}

TEST(Profiling, EveryCommandLogsItsTime) {
    FakeKernel kernel;
    Interface::CommandMod::InitializeModule(true);
    unsigned char cdb[6] = {0xA7};
    BMICRequest bmic;
    bmic.commandByte = 0xD2;
    SCSIRequest scsi;
    scsi.cdb = cdb;
    scsi.cdbLength = sizeof(cdb);
    ATARequest ata;
    CSMIRequest csmi;
    auto const runAll = [&] {
        ConcreteBMICDevice(handleOf("K"), false, 32, 128).sendBMICCommand(bmic);
        ConcreteSCSIDevice(handleOf("K")).sendSCSICommand(scsi);
        ConcreteATADevice(handleOf("K")).sendATACommand(ata);
        ConcreteCSMIDevice(handleOf("K")).sendCSMICommand(csmi);
    };
    {
        LogCapture bmicLevel(16);
        runAll();
        EXPECT_EQ(bmicLevel.count("BMIC Opcode 0xD2 took 0."), 1U) << bmicLevel.text();
        EXPECT_EQ(bmicLevel.count("SCSI Command"), 0U);
    }
    {
        LogCapture commandLevel(1);
        runAll();
        EXPECT_EQ(commandLevel.count("SCSI Command 0xA7 took 0."), 1U) << commandLevel.text();
        EXPECT_EQ(commandLevel.count("ATA Command took 0."), 1U);
        EXPECT_EQ(commandLevel.count("CSMI Command took 0."), 1U);
        EXPECT_EQ(commandLevel.count("BMIC Opcode"), 0U);
    }
    Interface::CommandMod::ForgetModule();
    LogCapture silent(0xFF);
    runAll();
    EXPECT_EQ(silent.count("took"), 0U);
}

class Forwarder : public BMICForwardDevice {
  public:
    BMICDevice* target = nullptr;

  protected:
    BMICDevice* forwardTarget() const override { return target; }
};

TEST(BMICForwardDevice, PassesEverythingOnOrAnswersNothing) {
    FakeBMICDevice controller({Answer{.scsiStatus = 4}});
    controller.remote = true;
    controller.logicalUnits = 0x1234;
    controller.physicalUnits = 0x5678;
    Forwarder drive;
    unsigned char sense[32];
    BMICRequest request;
    request.senseBuffer = sense;
    request.senseLength = sizeof(sense);
    EXPECT_FALSE(drive.sendBMICCommand(request));
    drive.WriteSizeToCacheFor(0x11, 700);
    EXPECT_EQ(drive.readSizeFromCacheFor(0x11), 0U);
    EXPECT_FALSE(drive.isRemote());
    EXPECT_EQ(drive.maxLogicalUnits(), 0);
    EXPECT_EQ(drive.maxPhysicalUnits(), 0);

    drive.target = &controller;
    EXPECT_TRUE(drive.sendBMICCommand(request));
    EXPECT_EQ(request.scsiStatus, 4);
    drive.WriteSizeToCacheFor(0x11, 700);
    EXPECT_EQ(controller.memo[0x11], 700U);
    EXPECT_EQ(drive.readSizeFromCacheFor(0x11), 700U);
    EXPECT_TRUE(drive.isRemote());
    EXPECT_EQ(drive.maxLogicalUnits(), 0x1234);
    EXPECT_EQ(drive.maxPhysicalUnits(), 0x5678);
}

}  // namespace
