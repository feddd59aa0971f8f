/// What runs and what is stored in a controller, through flashes, resets, switches and power cycles.

#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

using simulator::makeImage;
using simulator::Rom;

Bytes const NEW = makeImage("DOGWOOD", "6.72", 20000, 5);

using RomLife = MachineTest;

TEST_F(RomLife, ANewMachineRunsWhatItsScenarioSays) {
    make(twoControllers());
    EXPECT_EQ("6.40 6.40 6.28 ok", firmware("one"));
    EXPECT_EQ("6.64 6.64 - ok", firmware("two"));
}

TEST_F(RomLife, AFlashStoresAndAPowerCycleRuns) {
    make(twoControllers());
    EXPECT_EQ("good", outcome(update(ONE, NEW)));
    EXPECT_EQ("6.40 6.72 6.40 restart needed", firmware("one"));
    reopen();
    EXPECT_EQ("6.40 6.72 6.40 restart needed", firmware("one")) << "as a later program finds it";
    machine->powerCycle();
    EXPECT_EQ("6.72 6.72 6.40 ok", firmware("one"));
    EXPECT_EQ("6.64 6.64 - ok", firmware("two")) << "the other controller has nothing to do with it";
}

TEST_F(RomLife, TheIdentifyRecordTellsTheThreeVersions) {
    make(twoControllers());
    update(ONE, NEW);
    Bytes const record = send(ONE, sense(IDENTIFY, 512)).data;
    ASSERT_EQ(512U, record.size());
    EXPECT_EQ("6.40", std::string(record.begin() + 5, record.begin() + 9)) << "running";
    EXPECT_EQ("6.72", std::string(record.begin() + 9, record.begin() + 13)) << "active ROM";
    EXPECT_EQ("6.40", std::string(record.begin() + 129, record.begin() + 133)) << "inactive ROM";
}

TEST_F(RomLife, TwoFlashesInARowFillBothRoms) {
    make(twoControllers());
    update(ONE, NEW);
    update(ONE, NEW);
    EXPECT_EQ("6.40 6.72 6.72 restart needed", firmware("one"));
    EXPECT_EQ(NEW, machine->romImage("one", Rom::Active));
    EXPECT_EQ(NEW, machine->romImage("one", Rom::Inactive));
}

TEST_F(RomLife, AnotherBuildOfTheSameVersionNeedsARestartToo) {
    make(twoControllers());
    Bytes const rebuilt = makeImage("DOGWOOD", "6.40", 9000, 99);
    update(ONE, rebuilt);
    EXPECT_EQ("6.40 6.40 6.40 restart needed", firmware("one"));
    machine->powerCycle();
    update(ONE, rebuilt);
    EXPECT_EQ("6.40 6.40 6.40 ok", firmware("one")) << "the very image that runs";
}

TEST_F(RomLife, SoftResetRunsTheActiveRomAndForgetsTheRest) {
    make(twoControllers());
    update(ONE, NEW);
    send(ONE, order(PAUSE));
    send(ONE, chunk(1, 3, Bytes(16384, 1)));
    EXPECT_EQ("6.40 6.72 6.40 restart needed, paused", firmware("one"));
    EXPECT_EQ("good", outcome(send(ONE, order(SOFT_RESET))));
    EXPECT_EQ("6.72 6.72 6.40 ok", firmware("one"));
    EXPECT_EQ("good", outcome(send(ONE, chunk(1, 3, Bytes(16384, 1))))) << "the collection is gone";
}

TEST_F(RomLife, ToggleSwitchesTheRoms) {
    make(twoControllers());
    EXPECT_EQ("good", outcome(send(ONE, order(TOGGLE))));
    EXPECT_EQ("6.40 6.28 6.40 restart needed", firmware("one"));
    EXPECT_EQ("good", outcome(send(ONE, order(TOGGLE))));
    EXPECT_EQ("6.40 6.40 6.28 ok", firmware("one"));
    EXPECT_EQ("5/24/0", outcome(send(TWO, order(TOGGLE)))) << "its inactive ROM is empty";
    EXPECT_EQ("6.64 6.64 - ok", firmware("two"));
}

TEST_F(RomLife, UpdateWithoutDowntimeRunsAtOnceWhereItIsSupported) {
    make(twoControllers());
    EXPECT_EQ("good", outcome(update(TWO, NEW, 2)));
    EXPECT_EQ("6.72 6.72 6.64 ok", firmware("two"));
    EXPECT_EQ("good", outcome(update(ONE, NEW, 2)));
    EXPECT_EQ("6.40 6.72 6.40 restart needed", firmware("one"));
    bool noted = false;
    for (simulator::JournalEntry const& entry : machine->journal())
        for (std::string const& note : entry.notes)
            noted |= note.find("no update without downtime") == 0;
    EXPECT_TRUE(noted);
}

TEST_F(RomLife, AFactoryImageIsAnImageLikeAnyOther) {
    make(twoControllers());
    simulator::ImageInfo info;
    EXPECT_EQ("", simulator::checkImage(machine->romImage("one", Rom::Inactive), info));
    EXPECT_EQ("6.28", info.version);
    EXPECT_TRUE(machine->romImage("two", Rom::Inactive).empty());
}

TEST_F(RomLife, AFailedFlashLeavesBothRoms) {
    make(twoControllers());
    Bytes bad = NEW;
    bad[15000] ^= 1;
    EXPECT_EQ("5/26/0", outcome(update(ONE, bad)));
    EXPECT_EQ("6.40 6.40 6.28 ok", firmware("one"));
}

}  // namespace
}  // namespace simulator_test
