#include "simulator/journal.h"

#include <fstream>
#include <sstream>

#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

using Journal = MachineTest;

TEST_F(Journal, AnExchangeTellsAllThatAReaderNeeds) {
    make(twoControllers());
    machine->sleep(2'500'000);
    Bytes data(5, 0x61);
    send(ONE, chunk(1, 1, data));
    std::ifstream file(place() / "journal.jsonl");
    std::string line;
    std::vector<std::string> lines;
    while (std::getline(file, line))
        lines.push_back(line);
    ASSERT_EQ(3U, lines.size());
    EXPECT_EQ(json::parse(R"({"seq": 1, "time": 0.0, "event": "machine", "text": "virtual machine"})"),
              json::parse(lines[0]));
    EXPECT_EQ(json::parse(R"({"seq": 2, "time": 0.0, "event": "sleep", "text": "2.500 s"})"),
              json::parse(lines[1]));
    EXPECT_EQ(json::parse(R"({"seq": 3, "time": 2.5, "event": "exchange", "exchange": 1, "device": "one",
                              "node": "/dev/xqrth/c0d0", "request": "pass-through", "number": "0x0000",
                              "block": "27 00 00 00 01 01 d2 00 05 00", "command": "COLLECT BUFFER",
                              "direction": "out", "length": 5, "timeout_ms": 30000, "outcome": "good",
                              "scsi_status": 0, "command_status": 0,
                              "data": {"length": 5, "crc32": "0xEEAC93B9", "first": "61 61 61 61 61"}})"),
              json::parse(lines[2]));
}

TEST_F(Journal, NumbersAndTimeGoOnInLaterRuns) {
    make(twoControllers());
    send(ONE, order(PAUSE));
    reopen();
    send(ONE, order(RESUME));
    std::vector<simulator::JournalEntry> const entries = machine->journal();
    ASSERT_EQ(3U, entries.size());
    EXPECT_EQ(3U, entries[2].sequence);
    EXPECT_EQ(1U, entries[2].exchange) << "the run's own count begins again";
    EXPECT_EQ(1000U, entries[2].microseconds);
}

TEST_F(Journal, EventsOfAnUpdateAreThere) {
    make(twoControllers());
    update(ONE, simulator::makeImage("DOGWOOD", "6.72", 20000, 5));
    machine->powerCycle();
    std::vector<std::string> events;
    for (simulator::JournalEntry const& entry : machine->journal())
        if (entry.event == "firmware" || entry.event == "power-cycle")
            events.push_back(entry.device + ": " + entry.text);
    EXPECT_EQ((std::vector<std::string>{
                  "one: firmware 6.72 (20000 bytes) stored in the active ROM, 6.40 is the inactive one",
                  ": power off and on", "one: firmware 6.72 runs after a restart, before it 6.40"}),
              events);
}

TEST_F(Journal, WhatIsReadBackIsWhatWasWritten) {
    simulator::JournalEntry entry;
    entry.event = "exchange";
    entry.sequence = 12;
    entry.microseconds = 20'123'000;
    entry.exchange = 4;
    entry.device = "one";
    entry.request = "SG_IO";
    entry.number = 0x2285;
    entry.block = {0x12, 1, 0xB0, 0, 96, 0};
    entry.command = "INQUIRY";
    entry.direction = "in";
    entry.length = 96;
    entry.timeoutMilliseconds = 5001;
    entry.outcome = "status 2 sense 5/24/00";
    entry.scsiStatus = 2;
    entry.commandStatus = 1;
    entry.senseKey = 5;
    entry.asc = 0x24;
    entry.ascq = 7;
    entry.dataLength = 3;
    entry.dataCrc = 0x89ABCDEF;
    entry.dataFirst = {1, 2, 3};
    entry.fault = "{}";
    entry.errors = {"an error"};
    entry.notes = {"a note"};
    simulator::JournalEntry const again = simulator::toEntry(simulator::toJson(entry));
    EXPECT_EQ(simulator::toJson(entry), simulator::toJson(again));
    EXPECT_EQ(7, again.ascq);
    EXPECT_EQ(20'123'000U, again.microseconds);
    EXPECT_EQ(entry.block, again.block);
}

TEST_F(Journal, LinesForPeopleAreAligned) {
    make(twoControllers());
    send(ONE, order(FLASH));
    std::ostringstream text;
    simulator::printJournal(machine->journal(), text);
    EXPECT_EQ(
        "     1       0.000          machine: virtual machine\n"
        "     2       0.000  one     FLASH CONTROLLER FIRMWARE  none       0  status 2 sense 5/24/00  "
        "[pass-through 27 00 00 00 00 00 f7 00 00 00]\n"
        "        ERROR: protocol: flash with nothing collected, expected a whole image\n",
        text.str());
}

TEST_F(Journal, ALineThatWasCutOffDoesNotHideTheOthers) {
    make(twoControllers());
    std::ofstream(place() / "journal.jsonl", std::ios::app) << "{\"seq\": 2, \"ti\n";
    send(ONE, order(PAUSE));
    std::vector<simulator::JournalEntry> const entries = machine->journal();
    ASSERT_EQ(3U, entries.size());
    EXPECT_EQ("unreadable", entries[1].event);
    EXPECT_EQ("PAUSE BACKGROUND ACTIVITY", entries[2].command);
}

}  // namespace
}  // namespace simulator_test
