#include "sysmod/device_handle.h"

#include <gtest/gtest.h>

using namespace Core::SysMod;

namespace {

Common::string handleWith(Property place, char const* text, char const* deviceType = "") {
    PropertyTable table;
    table[UniqueKey] = "00000B0000";
    table[place] = text;
    table[DeviceType] = deviceType;
    return toDeviceInfo(table);
}

TEST(DeviceHandle, HasAllTwentyFiveTextsAndSurvivesTheWayBack) {
    PropertyTable table;
    table[PciIdentity] = "1E5C3239";
    table[NodePath] = "/dev/sg3";
    table[24] = "last";
    Common::string const handle = toDeviceInfo(table);
    unsigned separators = 0;
    for (unsigned at = handle.find("\r\n"); at != Common::string::npos; at = handle.find("\r\n", at + 2)) {
        ++separators;
    }
    EXPECT_EQ(separators, 24U);
    PropertyTable back;
    back[7] = "left over from before";
    toPropertyTable(handle, back);
    for (unsigned i = 0; i < PROPERTY_COUNT; ++i) {
        EXPECT_STREQ(back[i].c_str(), table[i].c_str()) << i;
    }
}

TEST(DeviceHandle, TextsBeyondTheTwentyFifthAreRefused) {
    PropertyTable table;
    table[24] = "last";
    PropertyTable back;
    toPropertyTable(toDeviceInfo(table) + "\r\none more\r\nand more", back);
    EXPECT_STREQ(back[24].c_str(), "last");
    toPropertyTable("", back);
    EXPECT_TRUE(back[0].empty());
    EXPECT_TRUE(back[24].empty());
}

TEST(DeviceHandle, RoutesGiveTheirAddresses) {
    struct Row {
        char const* route;
        char const* sasAddress;
        unsigned phy;
    };
    static Row const rows[] = {
        {"", "", 0},
        {"QRTH:0102030405060708", "0102030405060708", 0},
        {"CSMI:13:5000C50012345678", "5000C50012345678", 13},
        {"CSMI:13", "", 13},
        {"BMIC:300", "", 0},
        {"XXXX:0102030405060708", "", 0},
    };
    for (Row const& row : rows) {
        EXPECT_STREQ(getSasAddress(handleWith(Route, row.route)).c_str(), row.sasAddress) << row.route;
        EXPECT_EQ(getPhyIdentifier(handleWith(Route, row.route)), row.phy) << row.route;
        EXPECT_STREQ(getParentSasAddress(handleWith(ParentRoute, row.route)).c_str(), row.sasAddress);
        EXPECT_EQ(getParentPhyIdentifier(handleWith(ParentRoute, row.route)), row.phy);
    }
    std::uint8_t bytes[8];
    getSasAddress(handleWith(Route, "CSMI:1:5000C500123456EF"), bytes);
    EXPECT_EQ(bytes[0], 0x50);
    EXPECT_EQ(bytes[7], 0xEF);
    getSasAddress(handleWith(Route, "QRTH:12"), bytes);
    EXPECT_EQ(bytes[0], 0);
}

TEST(DeviceHandle, LogicalUnitAddresses) {
    std::uint8_t address[8];
    EXPECT_TRUE(parseLogicalUnitAddress("BMIC:513", address));
    std::uint8_t const expected[8] = {0x01, 0x02, 0x00, 0x40, 0, 0, 0, 0};
    EXPECT_EQ(0, memcmp(address, expected, 8));
    EXPECT_TRUE(parseLogicalUnitAddress("QRTH:00112233445566ff", address));
    EXPECT_EQ(address[7], 0xFF);
    for (char const* bad :
         {"", "QRTH:", "QRTH:001122334455667", "QRTH:00112233445566zz", "CSMI:1:0011223344556677"}) {
        EXPECT_FALSE(parseLogicalUnitAddress(bad, address)) << bad;
    }
}

TEST(DeviceHandle, BusIndexDependsOnTheDeviceType) {
    char const* const route = "QRTH:00000907FF000000";
    EXPECT_EQ(getDeviceBusIndex(handleWith(Route, "QRTH:000009C700000000", "PHYSICAL_DRIVE")), 0x07);
    EXPECT_EQ(getDeviceBusIndex(handleWith(Route, route, "LOCAL_LOGICAL_DEVICE")), 0x09);
    EXPECT_EQ(getDeviceBusIndex(handleWith(Route, route, "EXTERNAL_LOGICAL_DEVICE")), 0x09);
    EXPECT_EQ(getDeviceBusIndex(handleWith(Route, "BMIC:9", "LOCAL_LOGICAL_DEVICE")), 0);
}

TEST(DeviceHandle, TypesHaveCodes) {
    struct Row {
        char const* type;
        unsigned code;
    };
    static Row const rows[] = {{"PHYSICAL_DRIVE", 0},   {"TAPE_DRIVE", 1},
                               {"EXPANDER", 5},         {"SEP", 6},
                               {"ARRAY_CONTROLLER", 8}, {"", 8}};
    for (Row const& row : rows) {
        EXPECT_EQ(static_cast<unsigned>(getDeviceType(handleWith(Route, "", row.type))), row.code)
            << row.type;
    }
}

TEST(DeviceHandle, SameDeviceMeansSameAdapterAndSameRoute) {
    EXPECT_TRUE(isSameDevice(handleWith(Route, "BMIC:1"), handleWith(Route, "BMIC:1", "SEP")));
    EXPECT_FALSE(isSameDevice(handleWith(Route, "BMIC:1"), handleWith(Route, "BMIC:2")));
    EXPECT_EQ(getDeviceIndex(handleWith(DeviceIndex, "40000")), 40000);
}

}  // namespace
