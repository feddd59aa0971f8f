// Commands and their buffers: records that grow, payloads, byte order.

#include <gtest/gtest.h>

#include <array>

#include "command/logical_drive_command.h"
#include "fakes.h"

namespace {

using namespace command_test;

using Identify = SenseControllerCommand<IdentifyControllerTrait>;  // 512 bytes, total length at 196
using LogicalStatus = SenseLogicalDriveCommand<SenseLogicalDriveStatusTrait>;  // 1536 bytes, at 1020

Bytes announcing(unsigned total, unsigned offset, unsigned size, unsigned char fill) {
    Bytes reply(size, fill);
    for (unsigned i = 0; i < 4; ++i)
        reply[offset + i] = static_cast<unsigned char>(total >> 8 * i);
    return reply;
}

struct SizeRow {
    char const* what;
    unsigned announced;
    std::vector<unsigned> lengths;  // of the sends of a first read, then of a second one
    unsigned memo;
};

SizeRow const SIZE_ROWS[] = {
    {"nothing announced", 0, {512, 512}, 512},
    {"the default size", 512, {512, 512}, 512},
    {"one byte more", 513, {512, 513, 513}, 513},
    {"much more", 0xFFFF, {512, 0xFFFF, 0xFFFF}, 0xFFFF},
    {"less: the buffer stays", 200, {512, 512}, 200},
    {"more than a command block can ask for", 0x10000, {512, 512}, 512},
    {"nonsense", 0xFFFFFFFF, {512, 512}, 512},
};

TEST(SelfSizingCommand, AsksAgainOnlyWhenTheReplyHasGrownAndOnlyOnce) {
    for (SizeRow const& row : SIZE_ROWS) {
        FakeBMICDevice device({Answer{.data = announcing(row.announced, 196, 512, 0)}});
        Identify first, second;
        EXPECT_TRUE(first(device)) << row.what;
        EXPECT_TRUE(second(device)) << row.what;
        std::vector<unsigned> lengths;
        for (SentBmic const& sent : device.sent)
            lengths.push_back(sent.request.dataLength);
        EXPECT_EQ(lengths, row.lengths) << row.what;
        EXPECT_EQ(device.memo[0x11], row.memo) << row.what;
        EXPECT_EQ(second.buffer().size(), row.lengths.back()) << row.what;
    }
}

TEST(SelfSizingCommand, LogsARefusedLengthWithWhatWasExpected) {
    LogCapture log(1);
    FakeBMICDevice device({Answer{.data = announcing(0x01020304, 196, 512, 0)}});
    Identify{}(device);
    EXPECT_EQ(
        log.count("BMIC Opcode 0x11: reply size 16909060 refused, at most 65535 expected; going on with 512"),
        1U)
        << log.text();
}

TEST(SelfSizingCommand, TheGrownBufferStartsWithTheFirstReply) {
    FakeBMICDevice device(
        {Answer{.data = announcing(600, 196, 512, 0x77)}, Answer{.data = announcing(600, 196, 600, 0x99)}});
    Identify command;
    EXPECT_TRUE(command(device));
    ASSERT_EQ(device.sent.size(), 2U);
    Bytes expected = announcing(600, 196, 512, 0x77);
    expected.resize(600);
    EXPECT_EQ(device.sent[1].data, expected);
    EXPECT_EQ(command.buffer()[599], 0x99);
    EXPECT_EQ(command.record().bHardwareRevision, 0x99);
}

// The first outcome decides for the life of the memo, even a failed one: the device is not probed again.
TEST(SelfSizingCommand, AFailedProbeLeavesTheDefaultSizeForGood) {
    FakeBMICDevice device({{.sent = false, .lowLevelStatus = 5, .data = announcing(600, 196, 512, 0)},
                           Answer{.data = announcing(600, 196, 512, 0)}});
    EXPECT_FALSE(Identify{}(device));
    EXPECT_EQ(device.memo[0x11], 512U);
    EXPECT_TRUE(Identify{}(device));
    EXPECT_EQ(device.sent.size(), 2U);
}

TEST(SelfSizingCommand, TheProbeCarriesNoLengthOverride) {
    FakeBMICDevice device({Answer{.data = announcing(600, 196, 512, 0)}});
    Identify command;
    command.SetCdbLengthOverride(0x4321);
    command(device);
    ASSERT_EQ(device.sent.size(), 2U);
    EXPECT_EQ(device.sent[0].request.cdbLengthOverride, 0U);
    EXPECT_EQ(device.sent[1].request.cdbLengthOverride, 0x4321U);
}

TEST(SelfSizingCommand, WritesNeitherReadNorWriteTheMemo) {
    FakeBMICDevice device({Answer{.data = announcing(600, 268, 512, 0)}});
    SetControllerCommand<SetMaintenanceTrait> command;
    command(device);
    EXPECT_EQ(device.sent.size(), 1U);
    EXPECT_TRUE(device.memo.empty());
}

struct LimitRow {
    unsigned short logicalUnits, physicalUnits;
    bool probes;
};

TEST(SelfSizingCommand, LogicalDriveCommandsProbeLargeControllersOnly) {
    for (LimitRow const& row : {LimitRow{32, 128, false}, LimitRow{33, 128, true}, LimitRow{32, 129, true},
                                LimitRow{0, 0, false}, LimitRow{65535, 0, true}}) {
        FakeBMICDevice device({Answer{.data = announcing(2000, 1020, 1536, 0)}});
        device.logicalUnits = row.logicalUnits;
        device.physicalUnits = row.physicalUnits;
        EXPECT_TRUE(LogicalStatus{5}(device));
        EXPECT_EQ(device.sent.size(), row.probes ? 2U : 1U) << row.logicalUnits << " " << row.physicalUnits;
        EXPECT_EQ(device.sent.back().request.dataLength, row.probes ? 2000U : 1536U);
        EXPECT_EQ(device.memo[0x12], row.probes ? 2000U : 1536U);
    }
}

TEST(FixedSizeCommand, TakesTheMemosSizeWhenThatIsMore) {
    FakeBMICDevice device;
    device.memo[0x72] = 700;
    SenseControllerCommand<SenseMNPStatusTrait>{}(device);
    device.memo[0x72] = 100;
    SenseControllerCommand<SenseMNPStatusTrait>{}(device);
    device.memo[0x72] = 0x10000;
    SenseControllerCommand<SenseMNPStatusTrait>{}(device);
    ASSERT_EQ(device.sent.size(), 3U);
    EXPECT_EQ(device.sent[0].request.dataLength, 700U);
    EXPECT_EQ(device.sent[1].request.dataLength, 512U);
    EXPECT_EQ(device.sent[2].request.dataLength, 512U);
}

TEST(CommandBuffer, AShortPayloadIsSentAsLongAsItIs) {
    unsigned char const chunk[] = {0xDE, 0xAD, 0xBE};
    FakeBMICDevice device;
    SetControllerCommand<CollectBufferTrait> command;
    command.SetBuffer(chunk, sizeof(chunk));
    EXPECT_TRUE(command(device));
    ASSERT_EQ(device.sent.size(), 1U);
    EXPECT_EQ(device.sent[0].data, (Bytes{0xDE, 0xAD, 0xBE}));
    EXPECT_EQ(command.record().pbData[2], 0xBE);
    EXPECT_EQ(command.record().pbData[16383], 0);
}

TEST(CommandBuffer, IsZeroUntilAReplyComesAndCopiesAreDeep) {
    Identify command;
    for (unsigned char const byte : command.buffer())
        ASSERT_EQ(byte, 0);
    Identify copy = command;
    copy.record().bHardwareRevision = 0x5C;
    EXPECT_EQ(command.record().bHardwareRevision, 0);
    auto const kept = copy.recordCopy();
    copy.record().bHardwareRevision = 0;
    EXPECT_EQ(kept->bHardwareRevision, 0x5C);
}

// (The plus signs make copies: a packed member takes no reference.)
// Distinct bytes through the wire layout: a member read at another's place or in another order shows.
TEST(CommandBuffer, RepliesReadAsLittleEndianMembers) {
    Bytes reply(512);
    for (unsigned i = 0; i < 512; ++i)
        reply[i] = static_cast<unsigned char>(i);
    std::fill(reply.begin() + 196, reply.begin() + 200, 0);
    FakeBMICDevice device({Answer{.data = reply}});
    Identify command;
    ASSERT_TRUE(command(device));
    EXPECT_EQ(+command.record().dwConfigurationSignature, 0x04030201U);
    EXPECT_EQ(+command.record().dwBoardID, 0x1D1C1B1AU);
    EXPECT_EQ(+command.record().wTotalAvailableMemorySize, 0x908F);
    EXPECT_EQ(command.record().sProductID[0], static_cast<char>(0xD0));
}

using Spots = std::vector<std::array<unsigned, 3>>;  // offset, width, count

template <class Trait>
Spots spotsOf() {
    Spots spots;
    for (MemberSpot const& spot : Trait::convertedMembers()) {
        spots.push_back({spot.offset, spot.width, spot.count});
    }
    return spots;
}

TEST(ByteOrder, EachTraitTurnsTheMembersThatItsUsersExpect) {
    EXPECT_EQ(spotsOf<IdentifyControllerTrait>(), (Spots{{1, 4, 1},
                                                         {18, 4, 1},
                                                         {22, 4, 1},
                                                         {26, 4, 1},
                                                         {31, 4, 1},
                                                         {45, 4, 1},
                                                         {49, 4, 1},
                                                         {102, 2, 1},
                                                         {143, 2, 1},
                                                         {158, 2, 1},
                                                         {272, 2, 1},
                                                         {274, 2, 1},
                                                         {280, 2, 1}}));
    EXPECT_EQ(spotsOf<SenseBusParametersTrait>(), (Spots{{128, 2, 1}}));
    EXPECT_EQ(spotsOf<IdentifyPhysicalDriveTrait>(), (Spots{{2, 2, 1},
                                                            {4, 4, 1},
                                                            {8, 4, 1},
                                                            {108, 4, 1},
                                                            {116, 4, 1},
                                                            {122, 8, 1},
                                                            {130, 8, 1},
                                                            {138, 4, 1},
                                                            {194, 2, 1},
                                                            {1796, 2, 1},
                                                            {1858, 2, 1},
                                                            {1860, 2, 1}}));
    // All of them elsewhere, arrays and the members of records within the record included.
    EXPECT_EQ(
        spotsOf<IdentifyLogicalDriveTrait>(),
        (Spots{{0, 2, 1}, {2, 4, 1}, {6, 2, 1}, {11, 2, 1}, {15, 2, 1}, {18, 2, 1}, {26, 4, 1}, {94, 8, 1}}));
    EXPECT_EQ(spotsOf<SenseMaintenanceTrait>(),
              (Spots{{0, 4, 1}, {4, 4, 1}, {264, 2, 1}, {266, 2, 1}, {268, 4, 1}, {272, 4, 1}}));
    EXPECT_EQ(spotsOf<CollectBufferTrait>(), Spots{});
    Spots const status = spotsOf<SenseLogicalDriveStatusTrait>();
    EXPECT_EQ(status[1], (std::array<unsigned, 3>{5, 2, 32}));
}

TEST(ByteOrder, BigEndianHostsTurnAndLittleEndianHostsDoNot) {
    EXPECT_EQ((ConvertLittleEndianToValue<std::uint32_t, std::endian::big>(0x89ABCDEF)), 0xEFCDAB89U);
    EXPECT_EQ((ConvertValueToLittleEndian<std::uint16_t, std::endian::big>(0x89AB)), 0xAB89);
    EXPECT_EQ((ConvertValueToLittleEndian<std::uint64_t, std::endian::big>(0x0123456789ABCDEF)),
              0xEFCDAB8967452301ULL);
    EXPECT_EQ((ConvertLittleEndianToValue<std::uint32_t, std::endian::little>(0x89ABCDEF)), 0x89ABCDEFU);
    EXPECT_EQ(reverseBytes(std::uint8_t{0x5A}), 0x5A);
    unsigned char const wire[] = {0xFF, 0xEF, 0xCD, 0xAB, 0x89};
    EXPECT_EQ(readLittleEndian<std::uint32_t>(wire + 1), 0x89ABCDEFU);
}

TEST(ByteOrder, AMemberBehindTheRecordIsRefusedAndTheOthersGoOn) {
    LogCapture log(1);
    unsigned char record[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    MemberSpot const spots[] = {{6, 4, 1}, {0xFFFFFFFE, 8, 0xFFFFFFFF}, {4, 4, 1}};
    ProcessMembers(record, sizeof(record), spots, EnTransferType::In);
    EXPECT_EQ(log.count("refused: it ends at 10 in a record of 8 bytes"), 1U) << log.text();
    EXPECT_EQ(log.count("refused"), 2U);
}

}  // namespace
