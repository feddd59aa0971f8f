#include <gtest/gtest.h>

#include <cerrno>

#include "tests/simulator/machine_fixture.h"

namespace {

using namespace simulator_test;

constexpr char NODE[] = "/dev/mpt2ctl";
constexpr std::uint32_t STATUS = 0xCC770003;
constexpr std::uint32_t SSP = 0xCC770018;
constexpr std::uint32_t PAUSE_DEVICE = 0xCC770031;
constexpr std::uint32_t RESUME_DEVICE = 0xCC770032;

class Csmi : public MachineTest {
  protected:
    void SetUp() override {
        make(json::parse(R"({"devices": [
            {"name": "hba", "kind": "csmi_adapter", "status": 3,
             "pci": {"address": "0000:0d:00.0", "driver": "mpt2sas"},
             "phys": [{"kind": "drive", "sas_address": "5000C50000000001"}]}]})"));
    }

    /// A record with a good header.
    static Bytes record(std::size_t size) {
        Bytes bytes(size);
        simulator::putLittle(&bytes[4], 4, size);
        simulator::putLittle(&bytes[12], 4, 60);
        return bytes;
    }
    static Bytes inquiry() {
        Bytes bytes = record(360 + 96);
        simulator::putBig(&bytes[24], 8, 0x5000C50000000001);
        bytes[40] = 6;
        bytes[44] = 0x12;
        bytes[48] = 96;
        bytes[60] = 1;
        bytes[88] = 96;
        return bytes;
    }
};

TEST_F(Csmi, RecordsOutOfFormAreRefusedAndSayWhy) {
    struct Row {
        std::uint32_t number;
        Bytes record;
        std::size_t offset;
        std::uint8_t value;
        int error;
        char const* note;
    };
    for (Row const& row : {
             Row{STATUS, record(56), 0, 0, 0, ""},
             Row{STATUS, record(56), 0, 1, ENODEV, ""},  // no such controller: nobody's exchange
             Row{STATUS, record(56), 4, 55, EINVAL,
                 "a record length of 55, expected 56 and at most 16777216"},
             Row{STATUS, record(56), 12, 30, EINVAL, "a time-out of 30, expected 60"},
             Row{STATUS, record(56), 16, 1, EINVAL, "direction 1, expected 0"},
             Row{SSP, inquiry(), 0, 0, 0, ""},
             Row{SSP, inquiry(), 88, 95, EINVAL, "a record length of 456, expected 455 and at most 16777216"},
             Row{SSP, inquiry(), 60, 2, EINVAL, "direction 0, expected 1"},
             Row{SSP, inquiry(), 60, 3, EINVAL, "flags 3, expected 0, 1, 2 or 4"},
             Row{SSP, inquiry(), 40, 17, EINVAL, "a command block of 17 bytes, expected 1 to 16"},
             Row{0xCC770017, record(2084), 32, 3, EINVAL,
                 "an SMP frame of 3 bytes and type 0, expected 4 to 1020 bytes and type 64"},
             Row{0xCC770004, record(56), 0, 0, ENODEV, ""},
         }) {
        Bytes bytes = row.record;
        bytes[row.offset] = row.value;
        EXPECT_EQ(row.error, machine->ioctl(NODE, row.number, bytes.data())) << row.note;
        std::string const note = last().notes.empty() ? "" : last().notes[0];
        EXPECT_TRUE(row.error == ENODEV || note == row.note) << note;
    }
}

TEST_F(Csmi, RepliesStandAtTheirPlaces) {
    Bytes status = record(56);
    ASSERT_EQ(0, machine->ioctl(NODE, STATUS, status.data()));
    EXPECT_EQ(3, status[20]);
    EXPECT_EQ("CSMI CONTROLLER STATUS", last().command);

    Bytes reply = inquiry();
    ASSERT_EQ(0, machine->ioctl(NODE, SSP, reply.data()));
    EXPECT_EQ(96, reply[356]);
    EXPECT_EQ("VIRTUAL DRIVE", std::string(&reply[376], &reply[389]));
    EXPECT_EQ("INQUIRY", last().command);
    EXPECT_EQ("CSMI SSP PASS-THROUGH", last().request);

    reply = inquiry();
    reply[44] = 0x5A;  // nobody here answers it
    ASSERT_EQ(0, machine->ioctl(NODE, SSP, reply.data()));
    EXPECT_EQ((Bytes{2, 2, 0, 18, 0x70, 0, 5}), Bytes(&reply[96], &reply[103]));
    EXPECT_EQ(0x20, reply[112]);

    reply = inquiry();
    reply[31] = 9;
    ASSERT_EQ(0, machine->ioctl(NODE, SSP, reply.data()));
    EXPECT_NE(0, reply[8]) << "nothing is at that address";
}

TEST_F(Csmi, PausesOutliveARunAndEndWithThePower) {
    Bytes bytes = record(92);
    simulator::putBig(&bytes[20], 8, 0x5000C50000000001);
    ASSERT_EQ(0, machine->ioctl(NODE, PAUSE_DEVICE, bytes.data()));
    reopen();
    EXPECT_EQ("paused", device("hba").state);
    ASSERT_EQ(0, machine->ioctl(NODE, RESUME_DEVICE, bytes.data()));
    EXPECT_EQ("ok", device("hba").state);
    ASSERT_EQ(0, machine->ioctl(NODE, RESUME_DEVICE, bytes.data()));
    EXPECT_EQ("background activity of 5000c50000000001 wasn't paused", last().notes.at(0));
    machine->ioctl(NODE, PAUSE_DEVICE, bytes.data());
    machine->powerCycle();
    EXPECT_EQ("ok", device("hba").state);
}

TEST_F(Csmi, ScenariosOutOfFormAreRefused) {
    struct Row {
        char const* key;
        char const* value;
        char const* message;
    };
    for (Row const& row : {
             Row{"phys", R"([{"kind": "drive", "sas_address": "12"}])",
                 "devices[0].phys[0].sas_address: found \"12\", expected an address of sixteen hexadecimal "
                 "digits"},
             Row{"phys", R"([{"same_as": "5000C50000000001"}])",
                 "expected the address of a device on an earlier phy"},
             Row{"rom_version", "[1, 2]", "expected four numbers"},
             Row{"instance", "256", "255"},
         }) {
        json scenario = json::parse(R"({"devices": [{"name": "hba", "kind": "csmi_adapter",
            "pci": {"address": "0000:0d:00.0", "driver": "mpt2sas"}}]})");
        scenario["devices"][0][row.key] = json::parse(row.value);
        try {
            make(scenario);
            ADD_FAILURE() << row.key << " was taken";
        } catch (simulator::ScenarioError const& error) {
            EXPECT_NE(std::string::npos, std::string(error.what()).find(row.message)) << error.what();
        }
    }
}

}  // namespace
