#include "src/arrayShiftBit.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

using Writes = std::vector<std::pair<unsigned short, int>>;  // offset, value

/// One controller's NVRAM.
class FakeNvram : public NvramAccess {
  public:
    HMGMTOBJECT open(std::string const& serial) override {
        // A controller that can't tell its serial number answers to the empty one.
        return serial == "SERIAL1" || serial.empty() ? static_cast<HMGMTOBJECT>(this) : nullptr;
    }
    std::string serialNumber(HMGMTOBJECT controller) override { return controller == this ? "SERIAL1" : ""; }
    int read(HMGMTOBJECT controller, unsigned char& value) override {
        EXPECT_EQ(controller, this);
        if (stored >= 0) value = static_cast<unsigned char>(stored);
        return readStatus;
    }
    int write(HMGMTOBJECT controller, unsigned char value, unsigned short offset) override {
        EXPECT_EQ(controller, this);
        writes.emplace_back(offset, value);
        return writes.size() == 1 ? firstWriteStatus : secondWriteStatus;
    }

    int stored = 0;  ///< negative: the read gives nothing
    int readStatus = 0;
    int firstWriteStatus = 0;
    int secondWriteStatus = 0;
    Writes writes;
};

class ArrayShiftBitTest : public RunTest {
  protected:
    ArrayShiftBitTest() : controller(fakeController()) {}

    Fake controller;
    FakeNvram nvram;
};

TEST_F(ArrayShiftBitTest, TwoModelsNeedIt) {
    for (char const* model : {"TR57", "TR57i"}) {
        EXPECT_TRUE(checkArrayForSetBit(controller, model)) << model;
    }
    for (char const* model : {"TR5", "TR57ix", "TR80", ""}) {
        EXPECT_FALSE(checkArrayForSetBit(controller, model)) << model;
    }
}

TEST_F(ArrayShiftBitTest, StrapFollowsWhatIsBehindTheController) {
    Writes const small = {{2045, 2}, {2046, 254}};
    Writes const large = {{2045, 0}, {2046, 0}};
    Writes const none;
    struct {
        int solidState, seps, drives;
        int stored;
        Writes writes;
    } const cases[] = {
        {0, 0, 1, 0, small}, {0, 1, 8, 0, small},   {0, 0, 1, 255, small}, {0, 0, 8, -1, small},
        {0, 0, 8, 3, small}, {0, 0, 0, 0, large},   {0, 0, 9, 0, large},   {0, 2, 8, 0, large},
        {1, 0, 8, 0, large}, {0, 0, 9, 255, large}, {0, 0, 8, 2, none},    {0, 0, 9, 2, large},
        {1, 0, 8, 2, large}, {0, 0, 8, 1, none},    {0, 0, 9, 1, none},
    };
    gblNvramAccess = &nvram;
    Device_Info& info = row("TR57", true, "SERIAL1");
    for (auto const& one : cases) {
        info.numSSD = one.solidState;
        info.numSeps = one.seps;
        info.numPhyDrives = one.drives;
        nvram = FakeNvram();
        nvram.stored = one.stored;
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
        EXPECT_EQ(nvram.writes, one.writes)
            << one.solidState << " " << one.seps << " " << one.drives << " " << one.stored;
    }
}

TEST_F(ArrayShiftBitTest, FailuresOfTheReadAndOfTheSecondWriteCount) {
    struct {
        int stored, readStatus, firstWrite, secondWrite;
        int result;
        std::size_t writes;
    } const cases[] = {
        {0, 0, 0, 0, 0, 2},
        {0, 0, 0, -7, 8, 2},
        {0, 0, -7, 0, 0, 2},
        {-1, 5, 0, 0, 8, 2},
        {1, 5, 0, 0, 0, 0},  // the byte that is left as it is makes the failure of its
                             // read good
        {2, 5, 0, 0, 8, 0},
    };
    gblNvramAccess = &nvram;
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    for (auto const& one : cases) {
        nvram = FakeNvram();
        nvram.stored = one.stored;
        nvram.readStatus = one.readStatus;
        nvram.firstWriteStatus = one.firstWrite;
        nvram.secondWriteStatus = one.secondWrite;
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), one.result) << one.stored << " " << one.readStatus;
        EXPECT_EQ(nvram.writes.size(), one.writes);
    }
    std::string const log = takeVerboseLog();
    EXPECT_NE(log.find("ReadNVRAMBootStrap retuns: 5:byteValue 255\n"
                       "pDevInfo.numSSD: 0 pDevInfo.numSeps: 0 pDevInfo.numPhyDrives: 4\n"
                       "writeNVRAMBootStrap retuns: 0:byteValue 2\n"
                       "writeNVRAMBootStrap retuns: 0:byteValue 254\n"),
              std::string::npos)
        << log;
}

// Every controller is flashed twice, and both calls do the work: the mark is set on a copy of the row.
TEST_F(ArrayShiftBitTest, MarkDoesNotReachTheRow) {
    gblNvramAccess = &nvram;
    Device_Info& info = row("TR57", true, "SERIAL1");
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_FALSE(info.alreadyFlashed);
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(nvram.writes.size(), 4u);
    info.alreadyFlashed = true;
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(nvram.writes.size(), 4u);
}

TEST_F(ArrayShiftBitTest, ControllerThatCannotBeReachedIsReported) {
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 10) << "no row";
    row("TR57", true, "SERIAL1");
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 10) << "no management objects";
    EXPECT_TRUE(verboseLogHas("InfoMgrOpenObject failed"));
    gblNvramAccess = &nvram;
    row("TR57", true, "SERIAL2");
    Fake const other = fakeController({{"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", "SERIAL2"}});
    EXPECT_EQ(setArrayShiftBit(other, "TR57"), 10) << "no controller of this serial number";
    // The row of a cache module has an empty serial number: it isn't this controller's.
    row("FBWC", true, "");
    EXPECT_EQ(setArrayShiftBit(fakeController({}), "TR57"), 10);
    EXPECT_TRUE(nvram.writes.empty());
}

TEST_F(ArrayShiftBitTest, NoHandleNoAccess) {
    unsigned char value = 0x5A;
    for (NvramAccess* access : {static_cast<NvramAccess*>(nullptr), static_cast<NvramAccess*>(&nvram)}) {
        gblNvramAccess = access;
        EXPECT_EQ(ReadNVRAMBootStrap(nullptr, value), -1);
        EXPECT_EQ(writeNVRAMBootStrap(nullptr, 2, 2045), -1);
        EXPECT_EQ(SenseSubsystemInformation(nullptr), "");
    }
    EXPECT_EQ(value, 0x5A);
    EXPECT_EQ(SenseSubsystemInformation(getHandle("SERIAL1")), "SERIAL1");
}

}  // namespace
