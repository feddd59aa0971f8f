#include "src/deviceCollection.h"

#include <gtest/gtest.h>

#include "tests/src/RunFixture.h"

namespace {

class DeviceCollectionTest : public RunTest {
  protected:
    static int add(std::string const& id, std::string const& serial = "S") {
        return addToDeviceCollection("ARRAY CONTROLLER", id, "Name", "6.40", 0, "3", serial);
    }
    static std::string marks() {
        std::string text;
        for (int i = 0; i < discoveredDeviceCount; ++i) {
            text += deviceInfoCltn[i].flash ? 'x' : '.';
        }
        return text;
    }
};

TEST_F(DeviceCollectionTest, RowHoldsWhatWasToldOfTheDevice) {
    deviceInfoCltn[0].flash = deviceInfoCltn[0].alreadyFlashed = deviceInfoCltn[0].sepsDiscovered = true;
    deviceInfoCltn[0].numSSD = 7;
    EXPECT_EQ(addToDeviceCollection("FWBC", "ID", "NA", "1.25", 1, "9", "SERIAL"), 1);
    Device_Info const& row = deviceInfoCltn[0];
    EXPECT_STREQ(row.deviceType, "FWBC");
    EXPECT_STREQ(row.deviceId, "ID");
    EXPECT_STREQ(row.deviceMarketingName, "ID") << "\"NA\" isn't a name";
    EXPECT_STREQ(row.serialNum, "SERIAL");
    EXPECT_EQ(row.deviceVersion, 1.25F);
    EXPECT_EQ(row.type, 1);
    EXPECT_EQ(row.slot, "9");
    EXPECT_EQ(row.status, notApplicable);
    EXPECT_FALSE(row.flash || row.alreadyFlashed || row.sepsDiscovered || row.drivesDiscovered);
    EXPECT_EQ(row.numSSD + row.numPhyDrives + row.numSeps, 0);
    EXPECT_EQ(takeVerboseLog(), "addToDeviceCollection. discoveredDeviceCount:1\n");
    add("ID");
    EXPECT_STREQ(deviceInfoCltn[1].deviceMarketingName, "Name");
}

TEST_F(DeviceCollectionTest, OnlyAnEmptyIdCountsAsADuplicate) {
    struct {
        char const* id;
        int count;
    } const cases[] = {{"", 1}, {"", 1}, {"TR56", 2}, {"TR56", 3}, {"", 3}, {"TR56", 4}};
    for (auto const& one : cases) {
        EXPECT_EQ(add(one.id), one.count) << one.id;
        EXPECT_EQ(discoveredDeviceCount, one.count);
    }
}

TEST_F(DeviceCollectionTest, LongTextsAreCut) {
    std::string const digits(3000, '7');
    addToDeviceCollection(digits, digits, digits, "1.00", 0, digits, digits);
    Device_Info const& row = deviceInfoCltn[0];
    EXPECT_EQ(std::string(row.serialNum), std::string(255, '7')) << "though the field is longer";
    EXPECT_EQ(std::string(row.deviceType), std::string(254, '7'));
    EXPECT_EQ(std::string(row.deviceId), std::string(511, '7'));
    EXPECT_EQ(std::string(row.deviceMarketingName), std::string(1023, '7'));
    EXPECT_EQ(getDeviceInfo(std::string(255, '7')), &row);
    EXPECT_EQ(getDeviceInfo(digits), nullptr);
}

TEST_F(DeviceCollectionTest, StatusGoesToEveryRowOfAnIdAndTheAnswerComesFromTheFirst) {
    add("TR56", "A");
    add("TR58", "B");
    add("TR56", "C");
    setUpdateStatusToDeviceCollection("TR56", upgrade);
    setUpdateStatusToDeviceCollection("TR58", downgrade);
    setUpdateStatusToDeviceCollection("TR5", reflash);
    setFlashToDeviceCollection(reflash);
    EXPECT_EQ(marks(), "...");
    setFlashToDeviceCollection(upgrade);
    EXPECT_EQ(marks(), "x.x");
    setFlashToDeviceCollection(downgrade);
    EXPECT_EQ(marks(), "xxx") << "marks stay";
    deviceInfoCltn[0].flash = false;
    takeVerboseLog();
    EXPECT_FALSE(isApplicableToFlash("TR56"));
    EXPECT_EQ(takeVerboseLog(), "Inside the strcmp of isApplicableToFlash: TR56\n");
    EXPECT_TRUE(isApplicableToFlash("TR58"));
    takeVerboseLog();
    for (char const* unknown : {"TR5", "TR566", "tr56", ""}) {
        EXPECT_FALSE(isApplicableToFlash(unknown)) << unknown;
    }
    EXPECT_EQ(takeVerboseLog(), "");
    EXPECT_EQ(getDeviceInfo("C"), &deviceInfoCltn[2]);
    EXPECT_EQ(getDeviceInfo("D"), nullptr);
    add("TR58", "C");
    EXPECT_EQ(getDeviceInfo("C"), &deviceInfoCltn[2]) << "the first of a serial number";
}

TEST_F(DeviceCollectionTest, RowsBeyondTheTableAreRefusedAndNothingIsLost) {
    for (int i = 1; i <= 1024; ++i) {
        ASSERT_EQ(add("ID" + std::to_string(i), "S" + std::to_string(i)), i);
    }
    takeVerboseLog();
    EXPECT_EQ(add("LATE", "S9"), 1024);
    EXPECT_EQ(takeVerboseLog(),
              "addToDeviceCollection: LATE (serial number S9) refused: the table's 1024 rows are taken\n");
    setUpdateStatusToDeviceCollection("LATE", upgrade);
    setFlashToDeviceCollection(upgrade);
    EXPECT_FALSE(isApplicableToFlash("LATE"));
    EXPECT_STREQ(deviceInfoCltn[0].deviceId, "ID1");
    EXPECT_STREQ(deviceInfoCltn[1023].deviceId, "ID1024");
}

TEST_F(DeviceCollectionTest, CountsGoToEveryRowThatHasNone) {
    add("A", "1");
    addSepInformation("other", 2);
    add("B", "2");
    addSepInformation("1", 3);
    addHddInformation("1", 4, 5);
    addHddInformation("2", 6, 7);
    add("C", "3");
    addSepInformation("3", 0);
    addSepInformation("3", 8);
    struct {
        int seps, solidState, drives;
    } const rows[] = {{2, 4, 5}, {3, 4, 5}, {0, 0, 0}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(deviceInfoCltn[i].numSeps, rows[i].seps) << i;
        EXPECT_EQ(deviceInfoCltn[i].numSSD, rows[i].solidState) << i;
        EXPECT_EQ(deviceInfoCltn[i].numPhyDrives, rows[i].drives) << i;
        EXPECT_TRUE(deviceInfoCltn[i].sepsDiscovered);
        EXPECT_EQ(deviceInfoCltn[i].drivesDiscovered, i < 2);
    }
    EXPECT_TRUE(verboseLogHas("Adding seps 2 other\n"));
    EXPECT_TRUE(verboseLogHas("Adding drives 4:5 1\n"));
}

TEST_F(DeviceCollectionTest, VersionExtremesAreTextsAndOfTheTwoKindsApart) {
    setMinMaxFWVersion("9.90");
    EXPECT_EQ(gblMinFWVer + " " + gblMaxFWVer, "9.90 9.90") << "the first replaces \"0000\"";
    for (char const* version : {"10.00", "9.95", "9.91"}) {
        setMinMaxFWVersion(version);
    }
    EXPECT_EQ(gblMinFWVer + " " + gblMaxFWVer, "10.00 9.95");
    EXPECT_EQ(gblExpMinFWVer + " " + gblExpMaxFWVer, "0000 0000");
    setExpMinMaxFWVersion("1.20");
    setExpMinMaxFWVersion("");
    EXPECT_EQ(gblExpMinFWVer + " " + gblExpMaxFWVer, " 1.20");
}

}  // namespace
