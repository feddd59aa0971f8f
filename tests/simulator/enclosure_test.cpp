/// Boxes and enclosure processors: what is told of them, and how they take firmware.

#include <gtest/gtest.h>

#include "simulator/s_record.h"
#include "tests/simulator/machine_fixture.h"

namespace {

using namespace simulator_test;
using simulator::makeImage;

constexpr std::uint64_t SECOND = 1'000'000;

Bytes bytesOf(std::string const& text) {
    return {text.begin(), text.end()};
}

std::string textAt(Bytes const& data, std::size_t offset, std::size_t size) {
    return {data.begin() + static_cast<std::ptrdiff_t>(offset),
            data.begin() + static_cast<std::ptrdiff_t>(offset + size)};
}

class Enclosures : public MachineTest {
  protected:
    void SetUp() override { make(scenario()); }

    static json scenario() {
        json all = twoControllers();
        all["devices"][0]["boxes"] = json::parse(R"([
          {"bus": 8, "target": 1, "number": 3, "bays": 25, "product": "STRONGBX", "serial": "CHASSIS7",
           "paths": [{"bus": 9, "target": 2, "number": 4, "failed": true}], "active_path": 1, "drives": [9],
           "bus_parameters": {"alarmData": {"bTempStatus": 2}},
           "seps": [{"name": "a", "index": 17, "product": "ENCL 05 SEP", "revision": "1.90", "sep_type": 5,
                     "sas_address": "500A0B0C0D0E0F01"},
                    {"name": "b", "index": 18, "product": "ENCL 05 SEP", "revision": "1.90"},
                    {"name": "records", "index": 19, "product": "ENCL 11 SEP", "revision": "1.42",
                     "sas_address": "500A0B0C0D0E0FF9", "descriptors": ["MIDPLANE 1.02"]},
                    {"name": "serial", "index": 20, "product": "ENCL 01 SEP", "revision": "1.04"},
                    {"name": "small", "index": 21, "product": "ENCL 12 SEP", "revision": "0.30"}],
           "expanders": [{"index": 300, "product": "EXPANDER 25", "revision": "2.00"}]}])");
        return all;
    }

    /// Sends an image in chunks; the first failure, or the last reply. Mode 7 has no offsets.
    Reply flash(std::uint8_t index, std::uint8_t mode, std::size_t chunk, Bytes const& data) {
        Reply reply;
        for (std::size_t at = 0; at < data.size() && reply.good(); at += chunk) {
            auto const begin = data.begin() + static_cast<std::ptrdiff_t>(at);
            auto const end = data.begin() + static_cast<std::ptrdiff_t>(std::min(at + chunk, data.size()));
            reply = send(ONE, writeBuffer(index, mode, mode == 14 ? at : 0, Bytes(begin, end)));
        }
        return reply;
    }
    /// S-records in batches of 100 lines, 78 characters each but for the header's.
    Reply flashRecords(std::uint8_t index, std::string text) {
        Reply reply;
        while (!text.empty() && reply.good()) {
            std::size_t end = 0;
            for (int line = 0; line < 100 && end < text.size(); ++line)
                end = text.find('\n', end) + 1;
            reply = send(ONE, writeBuffer(index, 14, 0, bytesOf(text.substr(0, end))));
            text.erase(0, end);
        }
        return reply;
    }
    std::string product(std::uint8_t index) {
        Reply const reply = send(ONE, toMember(index, {0x12, 0, 0, 0, 96, 0}, Direction::In, 96));
        return reply.good() ? textAt(reply.data, 16, 20) : outcome(reply);
    }
    std::uint64_t worldWideName(unsigned index) {
        Reply const reply = send(ONE, toIndex(0x15, 2048, 128 + index));
        return reply.good() ? simulator::getBig(&reply.data[142], 8) : 0;
    }
};

TEST_F(Enclosures, ABoxIsToldAtEachOfItsPaths) {
    Reply const identify = send(ONE, sense(IDENTIFY, 512));
    EXPECT_EQ(0x02, identify.data[176]) << "external port 1, target 1";
    EXPECT_EQ(0x04, identify.data[177]) << "external port 2, target 2";
    EXPECT_EQ(0x3E, identify.data[86 + 2]) << "devices 17 to 21 are no drives";
    EXPECT_EQ(0x02, identify.data[70 + 1]) << "drive 9 is external";
    EXPECT_EQ(1, identify.data[160]);

    struct Row {
        std::uint32_t place;
        char const* port;
        int number;
        int target;
    };
    for (Row const& row : {Row{0x0801U << 16, "1E", 3, 1}, Row{0x0902U << 16, "2E", 4, 2}}) {
        Reply const reply = send(ONE, sense(0x65, 1024, row.place));
        ASSERT_EQ(1024U, reply.data.size());
        EXPECT_EQ("VQ      STRONGBX        1.00", textAt(reply.data, 8, 28));
        EXPECT_EQ(1, reply.data[36]);
        EXPECT_EQ(row.number, reply.data[105]);
        EXPECT_EQ(2, reply.data[108]) << "what the scenario sets by name";
        EXPECT_EQ(row.target, reply.data[213]);
        EXPECT_EQ(row.port, textAt(reply.data, 214, 2));
        EXPECT_EQ((Bytes{0x00, 0x02}), Bytes(&reply.data[216], &reply.data[218])) << "drive 9";
        EXPECT_EQ(25, reply.data[266]);
        EXPECT_EQ("CHASSIS7 ", textAt(reply.data, 268, 9));
        EXPECT_EQ((Bytes{5, 5, 1}), Bytes(&reply.data[324], &reply.data[327])) << "count and types";
        EXPECT_EQ((Bytes{17, 0, 18, 0}), Bytes(&reply.data[341], &reply.data[345]));
        EXPECT_EQ((Bytes{0x2C, 0x01}), Bytes(&reply.data[373], &reply.data[375])) << "expander 300";
        EXPECT_EQ((Bytes{3, 2, 1}), Bytes(&reply.data[423], &reply.data[426])) << "paths";
        EXPECT_EQ("1E2E", textAt(reply.data, 426, 4));
        EXPECT_EQ((Bytes{3, 4}), Bytes(&reply.data[442], &reply.data[444]));
    }
    EXPECT_EQ("5/24/0", outcome(send(ONE, sense(0x65, 1024, 0x0800U << 16)))) << "no box there";
}

TEST_F(Enclosures, ProcessorsAndExpandersAreIdentified) {
    Reply reply = send(ONE, toIndex(0x15, 2048, 128 + 17));
    EXPECT_EQ("ENCL 05 SEP ", textAt(reply.data, 12, 12));
    EXPECT_EQ("1.90    ", textAt(reply.data, 92, 8));
    EXPECT_EQ("1E", textAt(reply.data, 112, 2));
    EXPECT_EQ(3, reply.data[114]);
    EXPECT_EQ(6, reply.data[120]);
    EXPECT_EQ(0x500A0B0C0D0E0F01U, simulator::getBig(&reply.data[142], 8));
    EXPECT_EQ(0x91, reply.data[1220]) << "bus 8, target 1";
    EXPECT_EQ((Bytes{3, 2, 1, '1', 'E', '2', 'E'}), Bytes(&reply.data[1736], &reply.data[1743]));
    EXPECT_EQ((Bytes{3, 4}), Bytes(&reply.data[1755], &reply.data[1757]));

    reply = send(ONE, toIndex(0x92, 802, 300));
    EXPECT_EQ("VQ      EXPANDER 25     2.00", textAt(reply.data, 22, 28));
    EXPECT_EQ("5/24/0", outcome(send(ONE, toIndex(0x92, 802, 44)))) << "low byte of 300 alone";

    Command report;
    report.block = {0xC3, 2, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0};
    report.direction = Direction::In;
    report.bufferSize = 1024;
    reply = send(ONE, report);
    ASSERT_EQ(8U + 6 * 32, reply.data.size());
    EXPECT_EQ((Bytes{0, 17, 6}), Bytes(&reply.data[8 + 24], &reply.data[8 + 27]));
    EXPECT_EQ((Bytes{1, 44, 5}), Bytes(&reply.data[8 + 160 + 24], &reply.data[8 + 160 + 27]));

    reply = send(ONE, toMember(19, {0x1C, 1, 7, 4, 8, 0}, Direction::In, 1032));
    EXPECT_EQ("MIDPLANE 1.02", textAt(reply.data, 16, 13));
    reply = send(ONE, toMember(19, {0x1C, 1, 1, 4, 12, 0}, Direction::In, 1032));
    EXPECT_EQ("ENCL 11 SEP     1.42", textAt(reply.data, 28, 20));
    reply = send(ONE, toMember(19, {8, 0, 0, 0x93, 32, 0}, Direction::In, 32));
    EXPECT_EQ("CHASSIS7", textAt(reply.data, 0, 8));
    send(ONE, toMember(19, {0x27, 0, 3, 0, 0, 0, 0x10, 0, 2, 0}, Direction::Out, 0, {0, 0}));
    reply = send(ONE, toMember(19, {0x26, 0, 0, 0, 0, 0, 0x11, 0, 2, 0}, Direction::In, 2));
    EXPECT_EQ((Bytes{0, 3}), reply.data);
}

TEST_F(Enclosures, EachWayOfTakingFirmwareRunsItInItsTime) {
    // Mode 7 runs it at once.
    EXPECT_EQ("good", outcome(flash(20, 7, 4096, makeImage("ENCL 01 SEP", "1.20", 10000, 1))));
    EXPECT_EQ("1.20 1.20 1.04 ok", firmware("one/serial"));

    // Chunks with offsets wait for the power.
    EXPECT_EQ("good", outcome(flash(21, 14, 256, makeImage("ENCL 12 SEP", "0.40", 1000, 1))));
    EXPECT_EQ("0.30 0.40 0.30 restart needed", firmware("one/small"));
    reopen();
    machine->powerCycle();
    EXPECT_EQ("0.40 0.40 0.30 ok", firmware("one/small"));

    // Or for the activation: one image reaches both, they are away, and come back as another product.
    Bytes const image = makeImage("ENCL 06 SEP", "2.10", 8192, 1);
    EXPECT_EQ("good", outcome(flash(17, 14, 4096, image)));
    EXPECT_EQ("1.90 2.10 1.90 restart needed", firmware("one/b"));
    EXPECT_EQ("good", outcome(send(ONE, writeBuffer(17, 15, 0, {}))));
    EXPECT_EQ("2.10 2.10 1.90 away", firmware("one/a"));
    machine->sleep(119 * SECOND);
    EXPECT_EQ("command status 4", product(18));
    EXPECT_EQ(0U, worldWideName(18));
    machine->sleep(SECOND);
    EXPECT_EQ("ENCL 06 SEP     2.10", product(18));
    EXPECT_EQ(image, machine->romImage("one/b", simulator::Rom::Active));

    // S-records; this model's address moves in its last byte.
    Bytes const records = makeImage("ENCL 11 SEP", "1.50", 8000, 1);
    EXPECT_EQ("good", outcome(flashRecords(19, simulator::makeSRecords(records, "X"))));
    EXPECT_EQ(records, machine->romImage("one/records", simulator::Rom::Active));
    EXPECT_EQ(0x500A0B0C0D0E0FF9U, worldWideName(19));
    send(ONE, writeBuffer(19, 15, 0, {}));
    machine->sleep(360 * SECOND);
    EXPECT_EQ(0x500A0B0C0D0E0F01U, worldWideName(19));
    for (simulator::JournalEntry const& entry : machine->journal())
        EXPECT_TRUE(entry.errors.empty()) << entry.errors[0];
}

TEST_F(Enclosures, WhatIsOutOfProtocolIsRefusedAndSaid) {
    Bytes const image = makeImage("ENCL 05 SEP", "2.00", 8192, 1);
    Bytes const first(image.begin(), image.begin() + 4096);
    Bytes damaged = image;
    damaged[5000] ^= 1;
    auto const head = [](char const* family) { return makeImage(family, "2.00", 100, 1); };
    std::string const good = "S00600004844521B\r\n";
    struct Row {
        Command command;
        char const* outcome;
        char const* error;
    };
    for (Row const& row : {
             Row{writeBuffer(17, 14, 4096, first), "5/26/0", "chunk at offset 4096, expected 0"},
             Row{writeBuffer(17, 14, 0, Bytes(100)), "5/26/0",
                 "the first chunk doesn't begin with an image's head"},
             Row{writeBuffer(17, 14, 0, Bytes(image.begin(), image.begin() + 100)), "5/26/0",
                 "chunk at offset 0 has 100 bytes, expected 4096"},
             Row{writeBuffer(17, 7, 0, first), "5/24/0", "WRITE BUFFER mode 7, ENCL 05 SEP takes mode 14"},
             Row{writeBuffer(20, 7, 4096, first), "5/24/0", "offset 4096 where none is due"},
             Row{writeBuffer(20, 15, 0, {}), "5/24/0", "WRITE BUFFER mode 15, ENCL 01 SEP takes mode 7"},
             Row{writeBuffer(17, 5, 0, damaged), "5/26/0", "image payload CRC"},
             Row{writeBuffer(17, 5, 0, head("ENCL 03 SEP")), "5/26/0",
                 "image for \"ENCL 03 SEP\", this is \"ENCL 05 SEP\""},
             Row{writeBuffer(19, 14, 0, first), "5/26/0", "line \"KSLROM1\", expected an S-record"},
             Row{writeBuffer(19, 14, 0, bytesOf(good + "S105001000AA40\r\n")), "5/26/0",
                 "data for address 16, expected address 0"},
             Row{writeBuffer(19, 14, 0, bytesOf(good + "S9030000FC\r\nS9030000FC\r\n")), "5/26/0",
                 "a line behind the end record"},
         }) {
        EXPECT_EQ(row.outcome, outcome(send(ONE, row.command))) << row.error;
        std::string const error = last().errors.empty() ? "" : last().errors[0];
        EXPECT_EQ(0U, error.find(row.error)) << error << "\nexpected " << row.error;
        EXPECT_EQ("1.90 1.90 - ok", firmware("one/a"));
    }
    Command lying = writeBuffer(17, 14, 0, first);
    lying.block[8] = 1;
    EXPECT_EQ("5/24/0", outcome(send(ONE, lying)));

    EXPECT_EQ("good", outcome(send(ONE, writeBuffer(17, 14, 0, first))));
    EXPECT_EQ("5/2C/0", outcome(send(ONE, writeBuffer(17, 15, 0, {}))));
    EXPECT_EQ("protocol: activated before the image is whole: 4096 of 8192 bytes", last().errors.at(0));
}

TEST(SRecords, LinesAreCheckedWhole) {
    struct Row {
        char const* line;
        char const* problem;
    };
    for (Row const& row : {
             Row{"S1137AF00A0A0D0000000000000000000000000061", ""},
             Row{"S5030003F9", ""},
             Row{"S30500000000FA", ""},
             Row{"S1137AF00A0A0D0000000000000000000000000062", "checksum 98, computed 97"},
             Row{"S5040003F8", "count 4, found 3 bytes"},
             Row{"S30400000FEC", "count 4, found 4 bytes"},  // no room for an address of four bytes
             Row{"S4030003F9", "no such type of S-record"},
             Row{"S503 0003F9", "not pairs of hexadecimal digits"},
             Row{"S50", "expected an S-record"},
         }) {
        simulator::SRecord record;
        std::string const problem = simulator::parseSRecord(row.line, record);
        if (*row.problem == 0)
            EXPECT_EQ("", problem);
        else
            EXPECT_NE(std::string::npos, problem.find(row.problem)) << problem;
    }
    EXPECT_EQ("S0030000FC\r\nS30800000000AB01FA51\r\nS70500000000FA\r\n",
              simulator::makeSRecords(Bytes{0xAB, 0x01, 0xFA}, ""));
}

TEST_F(Enclosures, FaultsFindAProcessorByItsName) {
    machine->addFaults(json::parse(R"([
        {"match": {"unit": "a", "command": "WRITE BUFFER", "nth": 2}, "action": {"scsi_status": 2, "sense": [6, 41, 0]}},
        {"match": {"unit": "b"}, "action": {"scsi_status": 40}},
        {"match": {"unit": "records"}, "action": {"scsi_status": 8}}])"),
                       "faults");
    Bytes const image = makeImage("ENCL 05 SEP", "2.00", 8192, 1);
    Bytes const second(image.begin() + 4096, image.end());
    EXPECT_EQ("6/29/0", outcome(flash(17, 14, 4096, image)));
    EXPECT_EQ("a", last().unit);
    EXPECT_EQ(0x28, send(ONE, writeBuffer(18, 14, 0, image)).scsiStatus);
    EXPECT_EQ(8, send(ONE, writeBuffer(19, 14, 0, image)).scsiStatus);
    EXPECT_EQ("good", outcome(send(ONE, writeBuffer(17, 14, 4096, second)))) << "a retry goes on";
    EXPECT_EQ("1.90 2.00 1.90 restart needed", firmware("one/a"));
}

TEST_F(Enclosures, AProcessorMayStayAwayOrWaitForAScan) {
    json all = scenario();
    all["devices"][0]["boxes"][0]["seps"][0]["never_returns"] = true;
    all["devices"][0]["boxes"][0]["seps"][0]["product"] = "ENCL 16 SEP";
    all["devices"][0]["boxes"][0]["seps"][1]["needs_scan"] = true;
    make(all);
    send(ONE, writeBuffer(17, 15, 0, {}));
    send(ONE, writeBuffer(18, 15, 0, {}));
    machine->sleep(200 * SECOND);
    Command scan;
    scan.carrier = Carrier::PassThrough;
    scan.message = true;
    scan.block = {2};
    EXPECT_EQ("command status 4", product(18));
    send(ONE, scan);
    EXPECT_EQ("ENCL 05 SEP     1.90", product(18));
    EXPECT_EQ("command status 4", product(17));
    machine->powerCycle();
    EXPECT_EQ("ENCL 16 SEP     1.90", product(17));
}

TEST_F(Enclosures, BadBoxesAreRefused) {
    struct Row {
        char const* path;
        char const* value;
        char const* message;
    };
    for (Row const& row : {
             Row{"/devices/0/boxes/0/seps/1/name", "\"a\"", "found the name \"a\" a second time"},
             Row{"/devices/0/boxes/0/seps/1/name", "\"../a\"", "expected a name of letters"},
             Row{"/devices/0/boxes/0/seps/1/color", "1", "color"},
             Row{"/devices/0/boxes/0/paths/0/target", "16", "15"},
             Row{"/devices/0/boxes/0/paths/0", R"({"bus": 8, "target": 1})", "found a second box at bus 8"},
             Row{"/devices/0/boxes/0/bus_parameters/bNothing", "1", "no such member of bus parameters"},
         }) {
        json all = scenario();
        all[json::json_pointer(row.path)] = json::parse(row.value);
        try {
            make(all);
            ADD_FAILURE() << row.path << " was taken";
        } catch (simulator::ScenarioError const& error) {
            EXPECT_NE(std::string::npos, std::string(error.what()).find(row.message)) << error.what();
        }
    }
}

}  // namespace
