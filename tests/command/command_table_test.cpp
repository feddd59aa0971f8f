// Every command against a literal table: what a device receives.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "command/logical_drive_command.h"
#include "command/sense_encryption.h"
#include "fakes.h"

namespace {

using namespace command_test;

struct Row {
    char const* trait;
    unsigned code;
    char const* addressed;
    char const* direction;
    unsigned size;
    int totalLengthAt;
    std::function<void(FakeBMICDevice&)> send;
    EnTransferType transferType;
};

// The command class that a row's columns call for.
template <class T>
void send(FakeBMICDevice& device) {
    if constexpr (T::addressed == EnAddressed::LogicalDrive && T::direction == EnDirection::In) {
        SenseLogicalDriveCommand<T>{0x1234}(device);
    } else if constexpr (T::addressed == EnAddressed::LogicalDrive) {
        SetLogicalDriveCommand<T>{0x1234}(device);
    } else if constexpr (T::direction == EnDirection::In) {
        SenseControllerCommand<T>{}(device);
    } else if constexpr (T::direction == EnDirection::Out) {
        SetControllerCommand<T>{}(device);
    } else {
        NoTransferControllerCommand<T>{}(device);
    }
}

constexpr EnTransferType In = EnTransferType::In, Out = EnTransferType::Out, NoneOrIn = EnTransferType::None;

Row const ROWS[] = {
#define ROW(trait, code, addressed, direction, size, totalLengthAt) \
    {#trait, code, #addressed, #direction, size, totalLengthAt, send<trait>, direction},
#include "command_rows.inc"
#undef ROW
};

TEST(CommandTable, DevicesReceiveEveryCommandAsItsRowSays) {
    EXPECT_EQ(std::size(ROWS), 46U);
    for (Row const& row : ROWS) {
        FakeBMICDevice device;
        row.send(device);
        ASSERT_EQ(device.sent.size(), 1U) << row.trait;
        BMICRequest const& request = device.sent[0].request;
        bool const isLogical = row.addressed == std::string("LogicalDrive");
        bool const hasData = row.transferType != EnTransferType::None;
        EXPECT_EQ(request.commandByte, row.code) << row.trait;
        EXPECT_EQ(request.transferType, row.transferType) << row.trait;
        EXPECT_EQ(request.details, 0U) << row.trait;
        EXPECT_EQ(request.unit, isLogical ? 0x1234 : 0) << row.trait;
        EXPECT_EQ(request.dataLength, hasData ? row.size : 0) << row.trait;
        EXPECT_EQ(request.dataBuffer != nullptr, hasData) << row.trait;
        EXPECT_EQ(request.cdbLengthOverride, 0U) << row.trait;
        EXPECT_EQ(request.senseLength, 32U) << row.trait;
    }
}

// Where a reply tells its total length, a longer one is fetched; elsewhere the same bytes mean nothing.
TEST(CommandTable, OnlySelfSizingReadsFollowTheTotalLengthAtItsOffset) {
    for (Row const& row : ROWS) {
        if (row.transferType != EnTransferType::In) continue;
        bool const grows = row.totalLengthAt >= 0;
        unsigned const announced = row.size + 0x123;
        Bytes reply(row.size, grows ? 0xEE : 0x01);
        if (grows) {
            reply[row.totalLengthAt] = static_cast<unsigned char>(announced);
            reply[row.totalLengthAt + 1] = static_cast<unsigned char>(announced >> 8);
            reply[row.totalLengthAt + 2] = reply[row.totalLengthAt + 3] = 0;
        }
        FakeBMICDevice device({Answer{.data = reply}});
        device.logicalUnits = 33;
        row.send(device);
        ASSERT_EQ(device.sent.size(), grows ? 2U : 1U) << row.trait;
        EXPECT_EQ(device.sent.back().request.dataLength, grows ? announced : row.size) << row.trait;
    }
}

TEST(CommandTable, RunTimeRowsMatch) {
    auto const table = commandTable();
    ASSERT_EQ(table.size(), 46U);
    for (std::size_t i = 0; i < table.size(); ++i) {
        EXPECT_STREQ(table[i].trait, ROWS[i].trait);
        EXPECT_EQ(table[i].code, ROWS[i].code) << ROWS[i].trait;
        EXPECT_EQ(table[i].defaultSize, ROWS[i].size) << ROWS[i].trait;
        EXPECT_EQ(static_cast<int>(table[i].totalLengthOffset), ROWS[i].totalLengthAt) << ROWS[i].trait;
    }
}

template <class Command>
BMICRequest requestOf(Command command, bool remote = false) {
    FakeBMICDevice device;
    device.remote = remote;
    command(device);
    return device.sent.at(0).request;
}

TEST(Addressing, EncryptionStatusPages) {
    EXPECT_EQ(requestOf(SenseEncryptionLocalKEKCacheAttributes{}).details, 1U);
    EXPECT_EQ(requestOf(SenseEncryptionRecoveryParams{}).details, 3U);
    EXPECT_EQ(requestOf(SenseEncryptionBootPasswordStatus{}).details, 6U);
    EXPECT_EQ(requestOf(SenseEncryptionIKEKStatus{}).details, 7U);
    EXPECT_EQ(requestOf(SenseEncryptionBootStatus{}).details, 8U);
    EXPECT_EQ(requestOf(SenseEncryptionPasswordStatus{}).details, 9U);
    EXPECT_EQ(requestOf(SenseEncryptionKeyManagerStatus{}).details, 10U);
}

TEST(Addressing, CacheModulePageIsSelectedByTheLowByteOfTheUnit) {
    BMICRequest const sense = requestOf(SenseControllerCacheConfigStatusBase{});
    EXPECT_EQ(sense.commandByte, 0xC1);
    EXPECT_EQ(sense.unit, 0x0001);
    BMICRequest const set = requestOf(SetSSDCacheConfigBase{});
    EXPECT_EQ(set.commandByte, 0xC0);
    EXPECT_EQ(set.unit, 0x0001);
    EXPECT_EQ(set.transferType, EnTransferType::Out);
}

TEST(Addressing, DetailsAndUnitHighGoWhereTheySay) {
    NoTransferControllerCommand<FlashControllerFirmwareTrait> flash;
    flash.SetDetails(0x89ABCDEF);
    flash.SetUnitHigh(0x7C);
    BMICRequest const request = requestOf(flash);
    EXPECT_EQ(request.details, 0x89ABCDEFU);
    EXPECT_EQ(request.unit, 0x7C00);
}

TEST(Addressing, PhysicalDriveIndexIsSplitOverDetailsAndUnit) {
    BMICRequest const local = requestOf(IdentifyPhysicalDrive{0xA1B2});
    EXPECT_EQ(local.details, 0xB2000000U);
    EXPECT_EQ(local.unit, 0xA100);
    BMICRequest const remote = requestOf(IdentifyPhysicalDrive{0xA1B2}, true);
    EXPECT_EQ(remote.details, 0x000000B2U);
    EXPECT_EQ(remote.unit, 0xA100);
    EXPECT_EQ(requestOf(SenseMNPStatistics{0xA1B2}, true).details, 0xB2000000U);
}

TEST(Addressing, RemoteDriveIndexIsTurnedOnceHoweverOftenItIsSent) {
    FakeClock clock;
    FakeBMICDevice device({checkCondition(6, 0x29), checkCondition(6, 0x29), Answer{}});
    device.remote = true;
    IdentifyPhysicalDrive command(0x00B2);
    EXPECT_TRUE(command(device));
    EXPECT_TRUE(command(device));
    ASSERT_EQ(device.sent.size(), 4U);
    for (SentBmic const& sent : device.sent)
        EXPECT_EQ(sent.request.details, 0x000000B2U);
}

}  // namespace
