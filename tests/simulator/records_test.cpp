/// The controller's replies and the tables that name their members.

#include "simulator/fields.h"
#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

using simulator::RecordLayout;

struct LayoutCase {
    RecordLayout const* layout;
    std::size_t size;
    std::size_t rows;
};

class Layout : public ::testing::TestWithParam<LayoutCase> {};

TEST_P(Layout, CoversItsRecordWithoutGapsOrOverlaps) {
    RecordLayout const& layout = *GetParam().layout;
    EXPECT_EQ(GetParam().size, layout.size);
    EXPECT_EQ(GetParam().rows, layout.fields.size());
    std::size_t expected = 0;
    for (simulator::Field const& field : layout.fields) {
        EXPECT_EQ(expected, field.offset) << field.name;
        expected = field.offset + field.size;
        EXPECT_EQ(&field, simulator::findField(layout, field.name)) << field.name << " is there twice";
        if (field.kind == simulator::FieldKind::Record) {
            ASSERT_NE(nullptr, field.element) << field.name;
            EXPECT_EQ(0U, field.size % field.element->size) << field.name;
        }
    }
    EXPECT_EQ(layout.size, expected);
}

INSTANTIATE_TEST_SUITE_P(All, Layout,
                         ::testing::Values(LayoutCase{&simulator::IDENTIFY_CONTROLLER, 512, 95},
                                           LayoutCase{&simulator::IDENTIFY_LOGICAL_DRIVE, 512, 12},
                                           LayoutCase{&simulator::LOGICAL_DRIVE_CONFIGURATION, 512, 70},
                                           LayoutCase{&simulator::LOGICAL_DRIVE_GEOMETRY, 16, 12},
                                           LayoutCase{&simulator::SUBSYSTEM_INFORMATION, 1600, 39},
                                           LayoutCase{&simulator::PHYSICAL_PORT, 12, 3},
                                           LayoutCase{&simulator::ADDITIONAL_PHYSICAL_PORT, 32, 2},
                                           LayoutCase{&simulator::MANAGED_CABLE, 40, 5},
                                           LayoutCase{&simulator::CACHE_CONFIGURATION, 512, 41},
                                           LayoutCase{&simulator::CONTROLLER_PARAMETERS, 512, 43},
                                           LayoutCase{&simulator::REDUNDANT_PARAMETERS, 512, 30}),
                         [](auto const& each) {
                             std::string name(each.param.layout->name);
                             for (char& c : name)
                                 if (c == ' ') c = '_';
                             return name;
                         });

/// A member set through the scenario, and where its bytes must appear in the reply.
struct MemberCase {
    char const* name;
    std::uint8_t code;
    std::uint8_t unit;
    std::size_t size;
    char const* key;
    char const* values;
    std::size_t offset;
    char const* bytes;
};

class Member : public MachineTest, public ::testing::WithParamInterface<MemberCase> {};

TEST_P(Member, AppearsAtItsOffset) {
    MemberCase const& each = GetParam();
    json scenario = twoControllers();
    scenario["devices"][0][each.key] = json::parse(each.values);
    make(scenario);
    Command command = sense(each.code, each.size);
    command.block[1] = each.unit;
    Reply const reply = send(ONE, command);
    ASSERT_EQ("good", outcome(reply));
    Bytes expected;
    ASSERT_TRUE(simulator::fromHex(each.bytes, expected));
    ASSERT_GE(reply.data.size(), each.offset + expected.size());
    EXPECT_EQ(simulator::toHex(expected, " "),
              simulator::toHex(std::span(reply.data).subspan(each.offset, expected.size()), " "));
}

INSTANTIATE_TEST_SUITE_P(
    All, Member,
    ::testing::Values(
        MemberCase{"BoardId", 0x11, 0, 512, "identify", R"({"dwBoardID": "0x89ABCDEF"})", 26, "ef cd ab 89"},
        MemberCase{"ControllerMode", 0x11, 0, 512, "identify", R"({"bControllerMode": 165})", 292, "a5"},
        MemberCase{"ShortVersion", 0x11, 0, 512, "identify", R"({"sRAMFirmwareRev": "1.2"})", 5,
                   "31 2e 32 20"},
        MemberCase{"DriveMap", 0x11, 0, 512, "identify", R"({"pbBigDrivePresentMap": "0102"})", 54,
                   "01 02 00"},
        MemberCase{"Raw", 0x11, 0, 512, "identify", R"({"sVendorID": {"hex": "00 ff"}})", 200,
                   "00 ff 00 00 00 00 00 00"},
        MemberCase{"ByOffset", 0x11, 0, 512, "identify", R"({"@300": "c0ffee"})", 300, "c0 ff ee"},
        MemberCase{"Grown", 0x11, 0, 600, "identify", R"({"dwTotalStructureLength": 600, "@598": "5a"})", 598,
                   "5a 00"},
        MemberCase{"Serial", 0x66, 0, 1600, "subsystem", R"({"sControllerSerialNumber": "ABC"})", 44,
                   "41 42 43 20"},
        MemberCase{"Port", 0x66, 0, 1600, "subsystem",
                   R"({"internalPortInfo": [{}, {"sPhysicalPort": "7E"}]})", 516, "37 45"},
        MemberCase{"Cable", 0x66, 0, 1600, "subsystem",
                   R"({"managedCableInfo": [{}, {"wCableLength": 4660}]})", 1338, "34 12"},
        MemberCase{"Quadword", 0x50, 0, 512, "logical_drives",
                   R"([{"configuration": {"qwBigBlocksInLogicalDrive": "0x0123456789ABCDEF"}}])", 16,
                   "ef cd ab 89 67 45 23 01"},
        MemberCase{"SecondDrive", 0x50, 1, 512, "logical_drives",
                   R"([{}, {"configuration": {"bConfigModMajorVer": 17}}])", 82, "11"},
        MemberCase{"NoDrive", 0x50, 2, 512, "logical_drives", R"([{}, {}])", 8, "00 00 00 00"},
        MemberCase{"Geometry", 0x10, 0, 512, "logical_drives",
                   R"([{"identify": {"logicalDriveParamTable": {"wMaxCylinders": 513}}}])", 6, "01 02"},
        MemberCase{"CachePage", 0xC1, 0, 512, "cache", R"({"wBatteryCount": 258})", 40, "02 01"},
        MemberCase{"CacheModulePage", 0xC1, 1, 512, "cache_module", R"({"bBoardPresent": 1})", 210, "01"},
        MemberCase{"Parameters", 0x64, 0, 512, "controller_parameters", R"({"dwMoreConfigFlags": 16909060})",
                   196, "04 03 02 01"},
        MemberCase{"Redundant", 0x82, 0, 512, "redundant_parameters", R"({"bControllerStatus": 3})", 2, "03"},
        MemberCase{"Surface", 0x70, 0, 1536, "surface_status", R"({"@3": "77"})", 3, "77"},
        MemberCase{"SurfaceLength", 0x70, 0, 1536, "surface_status", "{}", 1422, "00 06 00 00"},
        MemberCase{"Mnp", 0x72, 0, 512, "mnp_status", R"({"@511": "99"})", 511, "99"}),
    [](auto const& each) { return each.param.name; });

using Records = MachineTest;

TEST_F(Records, IdentifyDefaultsFollowFromTheScenario) {
    make(twoControllers());
    Bytes const record = send(ONE, sense(IDENTIFY, 512)).data;
    ASSERT_EQ(512U, record.size());
    EXPECT_EQ("5c 1e 54 33", simulator::toHex(std::span(record).subspan(26, 4), " ")) << "board id";
    EXPECT_EQ("00 02 00 00", simulator::toHex(std::span(record).subspan(196, 4), " ")) << "total length 512";
    EXPECT_EQ("25 01 00 00", simulator::toHex(std::span(record).subspan(240, 4), " ")) << "fixed length 293";
    EXPECT_EQ("VQ      MODEL ONE       ", std::string(record.begin() + 200, record.begin() + 224));
}

TEST_F(Records, ShorterThanAskedIsAnUnderrunAndLongerIsCut) {
    make(twoControllers());
    Reply const shorter = send(ONE, sense(IDENTIFY, 700));
    EXPECT_EQ("command status 2", outcome(shorter));
    EXPECT_EQ(512U, shorter.data.size());
    EXPECT_EQ("underrun, 512 of 700", last().outcome);
    Reply const longer = send(ONE, sense(0x66, 100));
    EXPECT_EQ("good", outcome(longer));
    EXPECT_EQ(100U, longer.data.size());
}

TEST_F(Records, EncryptionPagesAreZerosUnlessTheScenarioSetsThem) {
    json scenario = twoControllers();
    scenario["devices"][1]["encryption"] = {{"7", {{"@4", "abcd"}}}};
    make(scenario);
    EXPECT_EQ(Bytes(512, 0), send(ONE, sense(0x1E, 512, 7)).data);
    Bytes const page = send(TWO, sense(0x1E, 512, 7)).data;
    EXPECT_EQ((Bytes{0, 0xAB, 0xCD, 0}), Bytes(page.begin() + 3, page.begin() + 7));
    EXPECT_EQ("5/24/0", outcome(send(ONE, sense(0x1E, 512, 2)))) << "no such page";
}

/// Commands to a controller's NVRAM, one after the other: each has sixteen bytes.
TEST_F(Records, NvramIsReadWrittenJudgedAndKept) {
    json scenario = twoControllers();
    scenario["devices"][0]["nvram"] = {{"0", "0xA1"}, {"0x7FD", 2}, {"2047", 9}};
    make(scenario);
    struct {
        char const* block;
        Direction direction;
        std::size_t size;
        Bytes data;
        char const* outcome;
        char const* error;
    } const rows[] = {
        {"27 00 fd 07 02 00 42 00 d4 01 00 00 00 00 00 00", Direction::Out, 2, {0, 0xFE}, "good", ""},
        {"27 00 ff 07 02 00 42 00 d4 01 00 00 00 00 00 00",
         Direction::Out,
         2,
         {3, 4},
         "5/24/0",
         "offset 2047 and count 2, there are 2048 bytes"},
        {"27 00 00 00 02 00 42 00 d4 01 00 00 00 00 00 00",
         Direction::Out,
         1,
         {3},
         "5/24/0",
         "count 2, the buffer has 1"},
        {"27 00 00 00 00 00 42 00 d4 01 00 00 00 00 00 00",
         Direction::None,
         0,
         {},
         "5/24/0",
         "a write whose direction isn't out"},
        {"27 00 00 00 01 00 42 00 d4 02 00 00 00 00 00 00",
         Direction::Out,
         1,
         {3},
         "5/24/0",
         "byte 9 of the command block is 2, expected 1"},
        {"27 00 00 00 01 00 42 00 d4 01",
         Direction::Out,
         1,
         {3},
         "5/24/0",
         "a command block of 10 bytes, expected 16"},
        {"26 00 00 00 00 00 42 00 d4 01 00 00 00 00 00 00",
         Direction::In,
         512,
         {},
         "5/24/0",
         "a buffer of 512 bytes for a read, expected 2048"},
        {"26 00 fd 07 00 00 42 00 d4 01 00 00 00 00 00 00",
         Direction::In,
         2048,
         {},
         "5/24/0",
         "offset 2045 and count 0 of a read, expected 0 and 0"},
        {"26 00 00 00 00 00 42 00 d4 01 00 00 00 00 00 00", Direction::In, 2048, {}, "good", ""},
    };
    Bytes read;
    for (auto const& row : rows) {
        Command command;
        command.carrier = Carrier::PassThrough;
        ASSERT_TRUE(simulator::fromHex(row.block, command.block));
        command.direction = row.direction;
        command.bufferSize = row.size;
        command.dataOut = row.data;
        Reply const reply = send(ONE, command);
        EXPECT_EQ(row.outcome, outcome(reply)) << row.block;
        EXPECT_EQ(row.error, reply.errors.empty() ? "" : reply.errors.front()) << row.block;
        read = reply.data;
    }
    ASSERT_EQ(2048U, read.size());
    EXPECT_EQ("a1 00", simulator::toHex(std::span(read).first(2), " "));
    EXPECT_EQ("00 fe 09", simulator::toHex(std::span(read).last(3), " "));
    machine->powerCycle();
    std::map<unsigned, unsigned> const kept = {{0, 0xA1}, {2046, 0xFE}, {2047, 9}};
    reopen();
    EXPECT_EQ(kept, device("one").nvram);
    EXPECT_TRUE(device("two").nvram.empty());
}

TEST_F(Records, UnsupportedCommandsAreIllegalRequests) {
    make(twoControllers());
    EXPECT_EQ("5/20/0", outcome(send(ONE, sense(0x17, 512)))) << "known by name";
    EXPECT_EQ("SENSE MAINTENANCE", last().command);
    EXPECT_EQ("5/20/0", outcome(send(ONE, sense(0xBE, 512)))) << "unknown";
    Command generic = sense(IDENTIFY, 512);
    generic.carrier = Carrier::ScsiGeneric;
    EXPECT_EQ("5/20/0", outcome(send(ONE, generic))) << "management only goes through the pass-through";
}

struct ScsiCase {
    char const* name;
    char const* block;
    std::size_t room;
    char const* outcome;
    char const* reply;  ///< its first bytes
};

class Scsi : public MachineTest, public ::testing::WithParamInterface<ScsiCase> {};

TEST_P(Scsi, IsAnswered) {
    make(twoControllers());
    Command command;
    ASSERT_TRUE(simulator::fromHex(GetParam().block, command.block));
    command.direction = GetParam().room != 0 ? Direction::In : Direction::None;
    command.bufferSize = GetParam().room;
    Reply const reply = send(TWO, command);
    EXPECT_EQ(GetParam().outcome, outcome(reply));
    Bytes expected;
    simulator::fromHex(GetParam().reply, expected);
    ASSERT_GE(reply.data.size(), expected.size());
    EXPECT_EQ(simulator::toHex(expected), simulator::toHex(std::span(reply.data).first(expected.size())));
}

INSTANTIATE_TEST_SUITE_P(
    All, Scsi,
    ::testing::Values(
        ScsiCase{"TestUnitReady", "00 00 00 00 00 00", 0, "good", ""},
        ScsiCase{
            "Inquiry", "12 00 00 00 24 00", 36, "good",
            "0c 00 06 02 5b 00 00 02 56 51 20 20 20 20 20 20 4d 4f 44 45 4c 20 54 57 4f 20 20 20 20 20 20 20 "
            "36 2e 36 34"},
        ScsiCase{"InquiryPages", "12 01 00 00 ff 00", 255, "command status 2", "0c 00 00 03 00 80 83"},
        ScsiCase{"InquirySerial", "12 01 80 00 ff 00", 255, "command status 2", "0c 80 00 04 53 45 52 32"},
        ScsiCase{"InquiryIdentity", "12 01 83 00 ff 00", 255, "command status 2",
                 "0c 83 00 0c 01 03 00 08 51 e5 c0"},
        ScsiCase{"InquiryNoSuchPage", "12 01 b0 00 ff 00", 255, "5/24/0", ""},
        ScsiCase{"ReportLogical", "c2 00 00 00 00 00 00 00 00 08 00 00", 8, "good",
                 "00 00 00 00 00 00 00 00"},
        ScsiCase{"ReportPhysical", "c3 02 00 00 00 00 00 00 00 08 00 00", 8, "good",
                 "00 00 00 00 02 00 00 00"},
        ScsiCase{"ReadBuffer", "3c 00 00 00 00 00 00 00 00 00", 0, "5/20/0", ""}),
    [](auto const& each) { return each.param.name; });

}  // namespace
}  // namespace simulator_test
