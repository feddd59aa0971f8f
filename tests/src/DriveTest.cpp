#include "src/drives.h"

#include <gtest/gtest.h>

#include <sstream>

#include "src/flashRun.h"
#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

class DriveTest : public RunTest {
  protected:
    static Fake drive(char const* id, char const* interface) {
        return Fake("ATTR_VALUE_TYPE_PHYSICAL_DRIVE", id,
                    {{"ATTR_NAME_SERIAL_NUMBER", id},
                     {"ATTR_NAME_DRIVE_MODEL", "MODEL"},
                     {"ATTR_NAME_CARRIER_APPLICATION_VERSION", "11.6"},
                     {"ATTR_NAME_INTERFACE", interface}});
    }
};

TEST_F(DriveTest, SolidStateDrivesAreToldByTheirInterface) {
    struct {
        char const* interface;
        int result;
    } const cases[] = {{"ATTR_VALUE_INTERFACE_SAS", 0},
                       {"ATTR_VALUE_INTERFACE_SAS_SSD", 1},
                       {"SSD", 1},
                       {"ssd", 0},
                       {"", 0}};
    for (auto const& one : cases) {
        EXPECT_EQ(CheckPhysicalDrive(drive("d", one.interface)), one.result) << one.interface;
    }
    ASSERT_EQ(hDDList.size(), 5u) << "each is listed, whatever it is";
    EXPECT_EQ(hDDList[1].serialNum, "d");
    EXPECT_EQ(hDDList[1].modelNum, "MODEL");
    EXPECT_EQ(hDDList[1].scfwRev, "11.6");
    EXPECT_EQ(hDDList[1].type, "ATTR_VALUE_INTERFACE_SAS_SSD");
}

TEST_F(DriveTest, DriveThatTellsNothingIsListedEmpty) {
    EXPECT_EQ(CheckPhysicalDrive(Fake("ATTR_VALUE_TYPE_PHYSICAL_DRIVE", "d")), 0);
    ASSERT_EQ(hDDList.size(), 1u);
    EXPECT_EQ(hDDList[0].serialNum + hDDList[0].modelNum + hDDList[0].scfwRev + hDDList[0].type, "");
}

TEST_F(DriveTest, DrivesBehindAControllerAreCountedIntoItsRow) {
    struct {
        std::vector<Fake> drives;
        int result, solidState, all;
    } const cases[] = {
        {{}, -1, 0, 0},
        {{drive("a", "SAS"), drive("b", "SAS_SSD"), drive("c", "SATA_SSD")}, 0, 2, 3},
        {{drive("a", "SATA_SSD"), drive("b", "SAS")}, 0, 1, 2},
    };
    int number = 0;
    for (auto const& one : cases) {
        Fake controller = fakeController();
        Fake cage("ATTR_VALUE_TYPE_DRIVE_CAGE", "cage");
        controller.add(cage);
        for (Fake const& each : one.drives) {
            cage.add(each);
        }
        Device_Info const& info = row("LD" + std::to_string(++number), false, "SERIAL1");
        EXPECT_EQ(CheckArrayForPhysicalDrives(controller, "LD63i"), one.result);
        EXPECT_EQ(info.numSSD, one.solidState);
        EXPECT_EQ(info.numPhyDrives, one.all);
        EXPECT_TRUE(info.drivesDiscovered);
    }
    EXPECT_TRUE(verboseLogHas("   Finding Harddrives\n   Found 0 Harddrives\nAdding drives 0:0 SERIAL1\n"));
    EXPECT_EQ(hDDList.size(), 5u) << "the list grows with every look";
}

TEST_F(DriveTest, DriveThatTellsNoInterfaceIsCountedAsARotatingOneAndTold) {
    Fake controller = fakeController();
    controller.add(drive("a", "")).add(drive("b", "SAS")).add(drive("c", "SAS_SSD"));
    controller.add(Fake("ATTR_VALUE_TYPE_PHYSICAL_DRIVE", "d", {{"ATTR_NAME_DEVICE_NUMBER", "7"}}));
    Device_Info const& info = row("LD1", false, "SERIAL1");
    EXPECT_EQ(CheckArrayForPhysicalDrives(controller, "LD63i"), 0);
    EXPECT_EQ(info.numSSD, 1);
    EXPECT_EQ(info.numPhyDrives, 4);
    std::istringstream log(takeVerboseLog());
    std::string told;
    for (std::string line; std::getline(log, line);) {
        if (line.find("rotating") != std::string::npos) told += line + "\n";
    }
    EXPECT_EQ(told,
              "Drive with serial number a tells no interface: counted as a rotating one\n"
              "Drive with device number 7 tells no interface: counted as a rotating one\n");
}

TEST_F(DriveTest, ListingGivesEachCarrierARowAndAnElement) {
    hDDList = {{"S1", "MODEL1", "11.6", ""}, {"S2", "MODEL2", "0", ""}};
    begin(discovery);
    EXPECT_EQ(printDriveInformation(), 0);
    ASSERT_EQ(discoveredDeviceCount, 2);
    EXPECT_STREQ(deviceInfoCltn[1].deviceType, "LD63i");
    EXPECT_STREQ(deviceInfoCltn[1].deviceId, "LD63i");
    EXPECT_STREQ(deviceInfoCltn[1].deviceMarketingName, "LD63i");
    EXPECT_STREQ(deviceInfoCltn[1].serialNum, "S2");
    EXPECT_EQ(deviceInfoCltn[1].slot, "TMK");
    EXPECT_EQ(
        document(),
        "<device>\n<device_id value=\"MODEL1\"/>\n<product_id value=\"TTALLYMARK\"/>\n<fw_item>\n"
        "<type value=\"Controller ROM\"/>\n<version value=\"0.00\"/>\n<active_version value=\"11.6\"/>\n"
        "<action value=\"downgrade\"/>\n<duration value=\"900\"/>\n<shared value=\"no\"/>\n</fw_item>\n"
        "</device>\n<device>\n<device_id value=\"MODEL2\"/>\n<product_id value=\"TTALLYMARK\"/>\n"
        "<fw_item>\n<type value=\"Controller ROM\"/>\n<version value=\"0.00\"/>\n"
        "<active_version value=\"0\"/>\n<action value=\"rewrite\"/>\n<duration value=\"900\"/>\n"
        "<shared value=\"no\"/>\n</fw_item>\n</device>\n");
}

}  // namespace
