#include <cerrno>

#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

using simulator::makeImage;

using Faults = MachineTest;

json rule(char const* match, char const* action) {
    return json::array({{{"match", json::parse(match)}, {"action", json::parse(action)}}});
}

struct RefusalCase {
    char const* name;
    char const* action;
    char const* outcome;
};

class Refusal : public MachineTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(Refusal, KeepsTheCommandFromTheDevice) {
    make(twoControllers());
    machine->addFaults(rule(R"({"command": "TOGGLE ACTIVE ROM"})", GetParam().action), "test");
    EXPECT_EQ(GetParam().outcome, outcome(send(ONE, order(TOGGLE))));
    EXPECT_EQ("6.40 6.40 6.28", firmware("one").substr(0, 14)) << "nothing was switched";
    EXPECT_EQ("good", outcome(send(TWO, sense(IDENTIFY, 512)))) << "another command";
    simulator::JournalEntry faulty;
    for (simulator::JournalEntry const& entry : machine->journal())
        if (!entry.fault.empty()) faulty = entry;
    EXPECT_EQ("TOGGLE ACTIVE ROM", faulty.command);
    EXPECT_NE(std::string::npos, faulty.fault.find("action"));
}

INSTANTIATE_TEST_SUITE_P(
    All, Refusal,
    ::testing::Values(RefusalCase{"ErrnoByName", R"({"errno": "EIO"})", "errno 5"},
                      RefusalCase{"ErrnoByNumber", R"({"errno": 110})", "errno 110"},
                      RefusalCase{"Status", R"({"scsi_status": 2, "sense": [6, 41, 3]})", "6/29/3"},
                      RefusalCase{"CommandStatus", R"({"command_status": 4})", "command status 4"},
                      RefusalCase{"Vanish", R"({"vanish": true})", "errno 19"}),
    [](auto const& each) { return each.param.name; });

struct MatchCase {
    char const* name;
    char const* rules;
    char const* struck;  ///< one letter for each of six exchanges: x struck, . not
};

class Match : public MachineTest, public ::testing::WithParamInterface<MatchCase> {};

/// One after another: identify one, subsystem one, identify two, identify one, pause two, identify one.
TEST_P(Match, StrikesTheExchangesThatItNames) {
    make(twoControllers());
    machine->addFaults(json::parse(GetParam().rules), "test");
    std::pair<char const*, Command> const exchanges[] = {{ONE, sense(0x11, 512)}, {ONE, sense(0x66, 1600)},
                                                         {TWO, sense(0x11, 512)}, {ONE, sense(0x11, 512)},
                                                         {TWO, order(PAUSE)},     {ONE, sense(0x11, 512)}};
    std::string struck;
    for (auto const& [node, command] : exchanges)
        struck += send(node, command).error == EIO ? 'x' : '.';
    EXPECT_EQ(GetParam().struck, struck);
    EXPECT_EQ(6U, machine->exchangeCount());
}

#define EIO_ACTION R"("action": {"errno": "EIO"})"
INSTANTIATE_TEST_SUITE_P(
    All, Match,
    ::testing::Values(
        MatchCase{"Everything", "[{" EIO_ACTION "}]", "xxxxxx"},
        MatchCase{"Device", R"([{"match": {"device": "two"}, )" EIO_ACTION "}]", "..x.x."},
        MatchCase{"Opcode", R"([{"match": {"command": "0x11"}, )" EIO_ACTION "}]", "x.xx.x"},
        MatchCase{"OpcodeAsNumber", R"([{"match": {"command": 152}, )" EIO_ACTION "}]", "....x."},
        MatchCase{"Name", R"([{"match": {"command": "SENSE SUBSYSTEM INFORMATION"}, )" EIO_ACTION "}]",
                  ".x...."},
        MatchCase{"DeviceAndOpcode", R"([{"match": {"device": "one", "command": 17}, )" EIO_ACTION "}]",
                  "x..x.x"},
        MatchCase{"Second", R"([{"match": {"command": 17, "nth": 2}, )" EIO_ACTION "}]", "..x..."},
        MatchCase{"SecondAndThird", R"([{"match": {"command": 17, "nth": 2}, "times": 2, )" EIO_ACTION "}]",
                  "..xx.."},
        MatchCase{"FirstTwo", R"([{"times": 2, )" EIO_ACTION "}]", "xx...."},
        MatchCase{"Exchange", R"([{"match": {"exchange": 5}, )" EIO_ACTION "}]", "....x."},
        MatchCase{"ExchangeThree", R"([{"match": {"exchange": 3}, "times": 3, )" EIO_ACTION "}]", "..xxx."},
        MatchCase{"ExchangeOfAnotherDevice",
                  R"([{"match": {"exchange": 5, "device": "one"}, )" EIO_ACTION "}]", "......"},
        MatchCase{
            "FirstRuleDecides",
            R"([{"match": {"device": "one", "command": 17}, "times": 1, "action": {"command_status": 4}},
                      {"match": {"device": "one"}, )" EIO_ACTION "}]",
            ".x.x.x"}),
    [](auto const& each) { return each.param.name; });

TEST_F(Faults, TruncatedRepliesAreUnderruns) {
    make(twoControllers());
    machine->addFaults(rule(R"({"nth": 1})", R"({"truncate": 100})"), "test");
    machine->addFaults(rule(R"({"nth": 2})", R"({"truncate": 0.25})"), "test");
    machine->addFaults(rule(R"({"nth": 3})", R"({"truncate": 5000})"), "test");
    Reply const bytes = send(ONE, sense(IDENTIFY, 512));
    EXPECT_EQ("command status 2", outcome(bytes));
    EXPECT_EQ(100U, bytes.data.size());
    EXPECT_EQ(128U, send(ONE, sense(IDENTIFY, 512)).data.size());
    EXPECT_EQ(512U, send(ONE, sense(IDENTIFY, 512)).data.size());
    EXPECT_EQ(std::vector<std::string>{"nothing to truncate"}, last().notes);
}

TEST_F(Faults, TruncationDoesNothingToACommandWithoutReply) {
    make(twoControllers());
    machine->addFaults(rule("{}", R"({"truncate": 0})"), "test");
    EXPECT_EQ("good", outcome(send(ONE, order(TOGGLE))));
    EXPECT_EQ("6.28", device("one").stored) << "the device did it";
    EXPECT_EQ(std::vector<std::string>{"nothing to truncate"}, last().notes);
}

TEST_F(Faults, CorruptionChangesTheReplyAndNothingElse) {
    make(twoControllers());
    Bytes const sound = send(ONE, sense(0x66, 1600)).data;
    machine->addFaults(rule("{}", R"({"corrupt": 7})"), "test");
    Reply const spoilt = send(ONE, sense(0x66, 1600));
    EXPECT_EQ("good", outcome(spoilt));
    ASSERT_EQ(sound.size(), spoilt.data.size());
    EXPECT_NE(sound, spoilt.data);
    EXPECT_EQ(spoilt.data, send(ONE, sense(0x66, 1600)).data) << "the seed determines it";
    reopen();
    EXPECT_EQ(sound, send(ONE, sense(0x66, 1600)).data);
}

TEST_F(Faults, CorruptionOnTheWayToTheDeviceShowsInTheImage) {
    make(twoControllers());
    machine->addFaults(rule(R"({"command": "COLLECT BUFFER", "nth": 2})", R"({"corrupt": 1})"), "test");
    EXPECT_EQ("5/26/0", outcome(update(ONE, makeImage("DOGWOOD", "6.64", 40000, 1))));
    EXPECT_EQ("6.40", device("one").stored);
}

TEST_F(Faults, RandomRepliesAreAsLongAsAskedFor) {
    make(twoControllers());
    machine->addFaults(rule("{}", R"({"random_reply": 99})"), "test");
    Reply const reply = send(ONE, sense(IDENTIFY, 700));
    EXPECT_EQ("good", outcome(reply));
    EXPECT_EQ(700U, reply.data.size());
    EXPECT_NE(Bytes(100, 0), Bytes(reply.data.begin() + 600, reply.data.end()));
}

TEST_F(Faults, ADelayTakesVirtualTimeOnly) {
    make(twoControllers());
    machine->addFaults(rule("{}", R"({"delay": 45.5})"), "test");
    std::uint64_t const before = machine->now();
    EXPECT_EQ("good", outcome(send(ONE, sense(IDENTIFY, 512))));
    EXPECT_EQ(45'501'000U, machine->now() - before);
    ASSERT_EQ(1U, last().notes.size());
    EXPECT_EQ("took 45501 ms, the time-out was 30000 ms", last().notes[0]);
}

TEST_F(Faults, AVanishedDeviceIsBackAfterAPowerCycle) {
    make(twoControllers());
    machine->addFaults(rule(R"({"device": "one", "nth": 2})", R"({"vanish": true})"), "test");
    EXPECT_EQ(0, machine->openNode(ONE));
    EXPECT_EQ("good", outcome(send(ONE, order(PAUSE))));
    EXPECT_EQ("errno 19", outcome(send(ONE, order(TOGGLE))));
    EXPECT_EQ("errno 19", outcome(send(ONE, sense(IDENTIFY, 512)))) << "also through a node that is open";
    EXPECT_EQ(ENODEV, machine->openNode(ONE));
    EXPECT_EQ("errno ENODEV", last("open").outcome);
    reopen();
    EXPECT_EQ(ENODEV, machine->openNode(ONE)) << "for a later program too";
    EXPECT_EQ("6.40 6.40 6.28 paused, vanished", firmware("one"));
    EXPECT_EQ(0, machine->openNode(TWO));
    machine->powerCycle();
    EXPECT_EQ(0, machine->openNode(ONE));
    EXPECT_EQ("6.40 6.40 6.28 ok", firmware("one"));
}

TEST_F(Faults, ScenarioRulesCountAfreshInEachRun) {
    json scenario = twoControllers();
    scenario["faults"] = rule(R"({"exchange": 2})", R"({"errno": "EIO"})");
    make(scenario);
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ("good", outcome(send(ONE, sense(IDENTIFY, 512))));
        EXPECT_EQ("errno 5", outcome(send(ONE, sense(IDENTIFY, 512))));
        EXPECT_EQ("good", outcome(send(ONE, sense(IDENTIFY, 512))));
        reopen();
    }
}

TEST_F(Faults, ProcessesOfOneRunCountTogether) {
    make(twoControllers());
    json const rules = rule(R"({"exchange": 3})", R"({"errno": "EIO"})");
    std::string struck;
    for (int process = 0; process < 2; ++process) {
        reopen();
        machine->addFaults(rules, "test");
        machine->shareRun(directory.path() / "counters");
        for (int i = 0; i < 2; ++i)
            struck += send(ONE, sense(IDENTIFY, 512)).error == EIO ? 'x' : '.';
    }
    EXPECT_EQ("..x.", struck);
}

}  // namespace
}  // namespace simulator_test
