/// What an array controller takes and refuses of the sequence that carries firmware to it.

#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

using simulator::makeImage;

Bytes const IMAGE = makeImage("DOGWOOD", "6.64", 40000, 1);  // 16384, 16384, 7232

Bytes part(unsigned number) {
    return Bytes(IMAGE.begin() + 16384 * (number - 1),
                 number == 3 ? IMAGE.end() : IMAGE.begin() + 16384 * number);
}

struct Sequence {
    char const* name;
    std::vector<Command> before;  ///< all of them good
    Command refused;
    char const* outcome;
    char const* words;  ///< in the journal's error
};

class FlashJudge : public MachineTest, public ::testing::WithParamInterface<Sequence> {};

TEST_P(FlashJudge, RefusesWhatIsOutOfProtocol) {
    make(twoControllers());
    for (Command const& command : GetParam().before)
        ASSERT_EQ("good", outcome(send(ONE, command)));
    EXPECT_EQ(GetParam().outcome, outcome(send(ONE, GetParam().refused)));
    simulator::JournalEntry const entry = last();
    ASSERT_EQ(1U, entry.errors.size());
    EXPECT_NE(std::string::npos, entry.errors[0].find(GetParam().words)) << entry.errors[0];
    EXPECT_EQ("6.40 6.40 6.28", firmware("one").substr(0, 14));
}

Command wrongLength() {
    Command command = chunk(1, 3, part(1));
    command.block[7] = 0x3F;
    return command;
}

Command asRead() {
    Command command = order(FLASH);
    command.block[0] = 0x26;
    return command;
}

Command withData() {
    Command command = management(FLASH, Direction::Out, 512, 0, Bytes(512, 0));
    return command;
}

Command withDirection() {
    Command command = order(PAUSE);
    command.direction = Direction::In;
    return command;
}

Command collectFromDevice() {
    Command command = chunk(1, 3, part(1));
    command.direction = Direction::In;
    return command;
}

Command queued() {
    Command command = order(FREE);
    command.attribute = 6;
    return command;
}

Command sixBytes() {
    Command command = order(FREE);
    command.block.resize(8);
    return command;
}

INSTANTIATE_TEST_SUITE_P(
    Collect, FlashJudge,
    ::testing::Values(
        Sequence{"SecondChunkFirst", {}, chunk(2, 3, part(2)), "5/24/0", "out of order: expected chunk 1"},
        Sequence{"ChunkLeftOut", {chunk(1, 3, part(1))}, chunk(3, 3, part(3)), "5/24/0", "expected chunk 2"},
        Sequence{"ChunkTwice",
                 {chunk(1, 3, part(1)), chunk(2, 3, part(2))},
                 chunk(2, 3, part(2)),
                 "5/24/0",
                 "expected chunk 3"},
        Sequence{
            "StaleCollection", {chunk(1, 3, part(1))}, chunk(1, 3, part(1)), "5/24/0", "must be freed first"},
        Sequence{"CountChanged",
                 {chunk(1, 3, part(1))},
                 chunk(2, 4, part(2)),
                 "5/24/0",
                 "began with a count of 3"},
        Sequence{"ChunkZero", {}, chunk(0, 3, part(1)), "5/24/0", "numbers go from 1"},
        Sequence{"CountZero", {}, chunk(1, 0, part(1)), "5/24/0", "at least one chunk"},
        Sequence{"BeyondCount", {}, chunk(4, 3, part(1)), "5/24/0", "numbers go from 1"},
        Sequence{"ShortChunkInTheMiddle",
                 {},
                 chunk(1, 3, Bytes(16383, 0)),
                 "5/24/0",
                 "has 16383 bytes, expected 16384"},
        Sequence{"LongLastChunk", {}, chunk(1, 1, Bytes(16385, 0)), "5/24/0", "expected 1 to 16384"},
        Sequence{"EmptyChunk", {}, chunk(1, 1, {}), "5/24/0", "has 0 bytes"},
        Sequence{"MoreThanTheBuffer", {}, chunk(1, 4097, part(1)), "5/24/0", "the buffer has 67108864"},
        Sequence{"LengthField", {}, wrongLength(), "5/24/0", "length field 16128, the buffer has 16384"},
        Sequence{"Direction", {}, collectFromDevice(), "5/24/0", "arrived with direction in, expected out"}),
    [](auto const& each) { return each.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Flash, FlashJudge,
    ::testing::Values(
        Sequence{"Nothing", {order(PAUSE)}, order(FLASH), "5/24/0", "flash with nothing collected"},
        Sequence{"Incomplete",
                 {order(PAUSE), chunk(1, 3, part(1)), chunk(2, 3, part(2))},
                 order(FLASH),
                 "5/24/0",
                 "flash with 2 of 3 chunks collected"},
        Sequence{"AddressOne", {order(PAUSE)}, order(FLASH, 1), "5/24/0", "address field 1, expected 0 or 2"},
        Sequence{"ReadForm", {order(PAUSE)}, asRead(), "5/24/0", "arrived as 0x26, expected 0x27"},
        Sequence{
            "WithData", {order(PAUSE)}, withData(), "5/24/0", "arrived with direction out, expected none"},
        Sequence{"PauseAddress", {}, order(PAUSE, 2), "5/24/0", "address field 2, expected 0 or 1"},
        Sequence{
            "BadImage", {order(PAUSE), chunk(1, 1, Bytes(100, 0x5A))}, order(FLASH), "5/26/0", "image magic"},
        Sequence{"OtherFamily",
                 {order(PAUSE), chunk(1, 1, makeImage("ALDER", "9.99", 900, 1))},
                 order(FLASH),
                 "5/26/0",
                 "image for the family \"ALDER\""},
        Sequence{"CutImage",
                 {order(PAUSE), chunk(1, 2, part(1)), chunk(2, 2, part(2))},
                 order(FLASH),
                 "5/26/0",
                 "image payload length 39936, received 32704"}),
    [](auto const& each) { return each.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Form, FlashJudge,
    ::testing::Values(
        Sequence{"Attribute", {}, queued(), "5/24/0", "task attribute 6, expected 4"},
        Sequence{"BlockLength", {}, sixBytes(), "5/24/0", "a command block of 8 bytes, expected 10"}),
    [](auto const& each) { return each.param.name; });

using FlashSequence = MachineTest;

TEST_F(FlashSequence, DirectionBitsOfAnEmptyTransferAreAnError) {
    make(twoControllers());
    EXPECT_EQ("5/24/0", outcome(send(ONE, withDirection())));
}

TEST_F(FlashSequence, ARefusedChunkLeavesTheCollectionAsItWas) {
    make(twoControllers());
    send(ONE, order(PAUSE));
    send(ONE, chunk(1, 3, part(1)));
    send(ONE, chunk(3, 3, part(3)));
    EXPECT_EQ("good", outcome(send(ONE, chunk(2, 3, part(2)))));
    EXPECT_EQ("good", outcome(send(ONE, chunk(3, 3, part(3)))));
    EXPECT_EQ("good", outcome(send(ONE, order(FLASH))));
    EXPECT_EQ(IMAGE, machine->romImage("one", simulator::Rom::Active));
}

TEST_F(FlashSequence, ACollectionSurvivesTheProgramThatBeganIt) {
    make(twoControllers());
    send(ONE, chunk(1, 3, part(1)));
    reopen();
    EXPECT_EQ("good", outcome(send(ONE, chunk(2, 3, part(2)))));
}

TEST_F(FlashSequence, NumbersBeyond255UseTheHighBytes) {
    make(twoControllers());
    Bytes const image = makeImage("DOGWOOD", "7.00", 16384 * 256 + 5, 3);
    EXPECT_EQ("good", outcome(update(ONE, image)));
    EXPECT_EQ(image, machine->romImage("one", simulator::Rom::Active));
    // Count 257 and number 257: 01 01 01 01 in bytes 2 to 5; number 1 of 257: 01 00 01 01.
    std::vector<std::string> fields;
    for (simulator::JournalEntry const& entry : machine->journal())
        if (entry.command == "COLLECT BUFFER")
            fields.push_back(simulator::toHex(std::span(entry.block).subspan(2, 4)));
    ASSERT_EQ(257U, fields.size());
    EXPECT_EQ("01000101", fields.front());
    EXPECT_EQ("01010101", fields.back());
}

TEST_F(FlashSequence, WithoutPauseIsAnErrorThatIsLetPass) {
    make(twoControllers());
    collect(ONE, IMAGE);
    EXPECT_EQ("good", outcome(send(ONE, order(FLASH))));
    simulator::JournalEntry const entry = last();
    ASSERT_EQ(1U, entry.errors.size());
    EXPECT_EQ("protocol: flash while background activity isn't paused", entry.errors[0]);
    EXPECT_EQ("6.40 6.64 6.40 restart needed", firmware("one"));
}

TEST_F(FlashSequence, AFlashEmptiesTheCollection) {
    make(twoControllers());
    update(ONE, IMAGE);
    send(ONE, order(PAUSE));
    EXPECT_EQ("5/24/0", outcome(send(ONE, order(FLASH))));
    EXPECT_EQ("good", outcome(send(ONE, chunk(1, 3, part(1))))) << "nothing is left to free";
}

TEST_F(FlashSequence, CommandsToAnotherAddressReachNobody) {
    make(twoControllers());
    Command command = order(PAUSE);
    command.address[3] = 0x40;
    EXPECT_EQ("command status 4", outcome(send(ONE, command)));
    EXPECT_EQ("ok", device("one").state);
}

}  // namespace
}  // namespace simulator_test
