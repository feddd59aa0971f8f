#include <numeric>

#include "core/capability_finder.h"
#include "flash/progress.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/identity.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

using ControllerFirmware = FlashTest;

constexpr char PAUSE[] = "27000000000098000000 none 0";
constexpr char FREE[] = "270000000000d3000000 none 0";
constexpr char FLASH[] = "270000000000f7000000 none 0";
constexpr char RESUME[] = "27000000000099000000 none 0";

TEST_F(ControllerFirmware, ChunksAndTheirNumbers) {
    struct Row {
        std::size_t size;
        bool isImage;  ///< what is too short to be an image is collected and then refused by the controller
        Strings chunks;
    };
    // Bytes 2 to 5: chunks high, number high, chunks low, number low; bytes 7 and 8: size.
    static Row const rows[] = {
        {1, false, {"270000000101d2000100 out 1"}},
        {63, false, {"270000000101d2003f00 out 63"}},
        {64, true, {"270000000101d2004000 out 64"}},
        {16383, true, {"270000000101d23fff00 out 16383"}},
        {16384, true, {"270000000101d2400000 out 16384"}},
        {16385, true, {"270000000201d2400000 out 16384", "270000000202d2000100 out 1"}},
        {32768, true, {"270000000201d2400000 out 16384", "270000000202d2400000 out 16384"}},
        {49151,
         true,
         {"270000000301d2400000 out 16384", "270000000302d2400000 out 16384",
          "270000000303d23fff00 out 16383"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.size);
        discover(oneController());
        Bytes image(row.size, 0xA5);
        if (row.isImage) image = simulator::makeImage("DOGWOOD", "6.64", row.size, row.size);
        auto const result = flash(image);
        Strings expected = {PAUSE, FREE};
        expected.insert(expected.end(), row.chunks.begin(), row.chunks.end());
        expected.push_back(FLASH);
        if (row.isImage) expected.push_back(RESUME);
        EXPECT_EQ(expected, sentLines());
        EXPECT_EQ(row.isImage, static_cast<bool>(result));
        EXPECT_EQ(row.isImage ? image : Bytes{},
                  row.isImage ? machine->romImage("one", simulator::Rom::Active) : Bytes{});
        EXPECT_EQ(row.isImage ? "6.40 6.64 6.40 restart needed" : "6.40 6.40 6.28 paused", firmware("one"));
        for (auto const& entry : machine->journal())
            EXPECT_EQ(!row.isImage && entry.command == "FLASH CONTROLLER FIRMWARE", !entry.errors.empty())
                << entry.command;
    }
}

TEST_F(ControllerFirmware, MoreThan255ChunksUseTheHighBytes) {
    discover(oneController());
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 256 * 16384 + 5, 1);
    EXPECT_TRUE(flash(image));
    Strings const lines = sentLines();
    ASSERT_EQ(2U + 257 + 2, lines.size());
    EXPECT_EQ("270001000101d2400000 out 16384", lines[2]);
    EXPECT_EQ("270001000102d2400000 out 16384", lines[3]);
    EXPECT_EQ("2700010001ffd2400000 out 16384", lines[256]);
    EXPECT_EQ("270001010100d2400000 out 16384", lines[257]);
    EXPECT_EQ("270001010101d2000500 out 5", lines[258]);
    EXPECT_EQ(FLASH, lines[259]);
    EXPECT_EQ(image, machine->romImage("one", simulator::Rom::Active));
}

TEST_F(ControllerFirmware, ExactlyTheLastChunkNumbersOfOneByte) {
    discover(oneController());
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 255 * 16384, 1);
    EXPECT_TRUE(flash(image));
    EXPECT_EQ("27000000ff01d2400000 out 16384", sentLines().at(2));
    EXPECT_EQ("27000000ffffd2400000 out 16384", sentLines().at(256));
    EXPECT_EQ(255U + 4, sentLines().size());
    EXPECT_EQ(image, machine->romImage("one", simulator::Rom::Active));
}

/// A failed chunk k sends no chunk k + 1, doesn't activate, and leaves background activity paused.
TEST_F(ControllerFirmware, AFailureEndsTheSequenceWhereItIs) {
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 3 * 16384 + 1, 7);
    Strings const complete = {PAUSE,
                              FREE,
                              "270000000401d2400000 out 16384",
                              "270000000402d2400000 out 16384",
                              "270000000403d2400000 out 16384",
                              "270000000404d2000100 out 1",
                              FLASH,
                              RESUME};
    struct Row {
        char const* command;
        unsigned nth;
        std::size_t sent;  ///< exchanges up to the one that fails; all for one that isn't looked at
        bool good;
    };
    static Row const rows[] = {
        {"0x98", 1, 8, true},  {"0xD3", 1, 8, true},  {"0xD2", 1, 3, false}, {"0xD2", 2, 4, false},
        {"0xD2", 3, 5, false}, {"0xD2", 4, 6, false}, {"0xF7", 1, 7, false}, {"0x99", 1, 8, true},
    };
    struct Action {
        char const* action;
        char const* attributeName;
        char const* value;
    };
    static Action const actions[] = {
        {R"({"errno": "EIO"})", "ATTR_NAME_LOW_LEVEL_STATUS", "5"},
        {R"({"scsi_status": 2, "sense": [5, 36, 0]})", "ATTR_NAME_SCSI_ASC", "36"},
        {R"({"scsi_status": 8})", "ATTR_NAME_SCSI_STATUS", "8"},
        {R"({"command_status": 4})", "ATTR_NAME_SCSI_COMMAND_STATUS", "4"},
    };
    for (Row const& row : rows) {
        for (Action const& action : actions) {
            SCOPED_TRACE(std::string(row.command) + " " + std::to_string(row.nth) + " " + action.action);
            discover(oneController({{"pci", {{"driver", "xqrth"}}}}));
            machine->addFaults({{{"match", {{"command", row.command}, {"nth", row.nth}}},
                                 {"action", json::parse(action.action)}}},
                               "test");
            auto const result = flash(image);
            EXPECT_EQ(Strings(complete.begin(), complete.begin() + static_cast<std::ptrdiff_t>(row.sent)),
                      sentLines());
            EXPECT_EQ(row.good, static_cast<bool>(result));
            if (row.good) {
                EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", status(result));
                continue;
            }
            EXPECT_EQ(action.value, attribute(result, action.attributeName));
            EXPECT_EQ("6.40 6.40 6.28 paused", firmware("one"));
        }
    }
}

/// After a failure the next flash starts afresh: what was collected before is dropped.
TEST_F(ControllerFirmware, AFlashAfterAFailedOneSucceeds) {
    discover(oneController());
    addFault(R"({"match": {"command": "0xD2", "nth": 2}, "action": {"errno": "EIO"}})");
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 40000, 7);
    EXPECT_FALSE(flash(image));
    EXPECT_TRUE(flash(image));
    EXPECT_EQ(image, machine->romImage("one", simulator::Rom::Active));
    EXPECT_EQ("6.40 6.64 6.40 restart needed", firmware("one"));
    machine->powerCycle();
    EXPECT_EQ("6.64 6.64 6.40 ok", firmware("one"));
}

/// A controller that needs a moment is asked again.
TEST_F(ControllerFirmware, AUnitAttentionIsNoFailure) {
    discover(oneController());
    addFault(
        R"({"match": {"command": "0xD2", "nth": 2}, "action": {"scsi_status": 2, "sense": [6, 41, 0]}})");
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 40000, 7);
    EXPECT_TRUE(flash(image));
    EXPECT_EQ(image, machine->romImage("one", simulator::Rom::Active));
}

TEST_F(ControllerFirmware, TheArgumentAloneDecidesHowItIsActivated) {
    struct Row {
        char const* subsystemDevice;
        char const* tofu;  ///< null: not given
        char const* flash;
    };
    static constexpr char AT_ONCE[] = "270000000002f7000000 none 0";
    static Row const rows[] = {
        {"0x3354", nullptr, FLASH},
        {"0x3354", "ATTR_VALUE_TOFU_ENABLE", AT_ONCE},  // though its capability has no such argument
        {"0x3354", "ATTR_VALUE_TOFU_DISABLE", FLASH},
        {"0x3354", "", FLASH},
        {"0x33C1", "ATTR_VALUE_TOFU_ENABLE", AT_ONCE},
        {"0x33C1", nullptr, FLASH},
    };
    for (Row const& row : rows) {
        discover(oneController({{"supports_tofu", true}}, row.subsystemDevice));
        Arguments arguments;
        if (row.tofu != nullptr) arguments.emplace_back("ATTR_NAME_TOFU", row.tofu);
        Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 100, 7);
        EXPECT_TRUE(flash(image, arguments));
        EXPECT_EQ(row.flash, sentLines().at(3));
        EXPECT_EQ(row.flash == std::string(FLASH) ? "6.40 6.64 6.40 restart needed" : "6.64 6.64 6.40 ok",
                  firmware("one"));
    }
}

TEST_F(ControllerFirmware, BadArgumentsSendNothing) {
    static unsigned char const byte = 0;
    std::string const somewhere = std::to_string(reinterpret_cast<std::uintptr_t>(&byte));
    struct Row {
        Arguments arguments;
        char const* status;
        char const* argument;
    };
    Row const rows[] = {
        {{}, "ATTR_VALUE_STATUS_SUCCESS", ABSENT},
        {{{"ATTR_NAME_BUFFER_ADDRESS", somewhere}}, "ATTR_VALUE_STATUS_SUCCESS", ABSENT},
        {{{"ATTR_NAME_BUFFER_ADDRESS", somewhere}, {"ATTR_NAME_BUFFER_SIZE", "0"}},
         "ATTR_VALUE_STATUS_SUCCESS",
         ABSENT},
        {{{"ATTR_NAME_BUFFER_SIZE", "100"}},
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_BUFFER_ADDRESS"},
        {{{"ATTR_NAME_BUFFER_ADDRESS", "0"}, {"ATTR_NAME_BUFFER_SIZE", "100"}},
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_BUFFER_ADDRESS"},
        // 65,535 chunks have numbers; one byte more has none.
        {{{"ATTR_NAME_BUFFER_ADDRESS", somewhere}, {"ATTR_NAME_BUFFER_SIZE", "1073725441"}},
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_BUFFER_SIZE"},
        {{{"ATTR_NAME_BUFFER_ADDRESS", somewhere}, {"ATTR_NAME_BUFFER_SIZE", "4294967295"}},
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_BUFFER_SIZE"},
    };
    discover(oneController());
    for (Row const& row : rows) {
        auto const result = perform("OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE", row.arguments);
        EXPECT_EQ(row.status, status(result));
        EXPECT_EQ(row.argument, attribute(result, "ATTR_NAME_ARGUMENT_NAME"));
        EXPECT_EQ(Strings{}, sentLines());
    }
}

std::vector<std::pair<unsigned, unsigned>> reported;

TEST_F(ControllerFirmware, ProgressIsToldForEachChunkThatWasTaken) {
    discover(oneController());
    addFault(R"({"match": {"command": "0xD2", "nth": 6}, "action": {"errno": "EIO"}})");
    reported.clear();
    Interface::FlashMod::SetProgressObserver(
        [](unsigned done, unsigned total) { reported.emplace_back(done, total); });
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 40000, 7);
    EXPECT_TRUE(flash(image));
    EXPECT_EQ((std::vector<std::pair<unsigned, unsigned>>{{1, 3}, {2, 3}, {3, 3}}), reported);
    EXPECT_FALSE(flash(image));
    EXPECT_EQ((std::vector<std::pair<unsigned, unsigned>>{{1, 3}, {2, 3}, {3, 3}, {1, 3}, {2, 3}}), reported);
    Interface::FlashMod::SetProgressObserver(nullptr);
}

TEST_F(ControllerFirmware, TheCapabilityOffersWhatTheControllerCan) {
    struct Row {
        char const* subsystemDevice;
        bool flag;  ///< the identify record says that it can
        bool offered;
    };
    static Row const rows[] = {
        {"0x33C1", true, true},  {"0x33C2", true, true},  {"0x33C3", true, false}, {"0x33C1", false, false},
        {"0x3354", true, false}, {"0x33B1", true, false}, {"0x7777", true, false},
    };
    auto const find = [](Common::shared_ptr<Core::Capability> const& root, char const* name) {
        Core::CapabilityFinder finder(root);
        finder.Add(Common::pair<Common::string, Core::AttributeValue>("ATTR_NAME_ATTRIBUTE_NAME", name));
        return finder.find();
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.subsystemDevice);
        discover(oneController({{"identify", {{"dwEvenMoreControllerFlags", row.flag ? 0x400 : 0}}}},
                               row.subsystemDevice));
        OperationPointer const operation =
            only().getOperation("OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE");
        ASSERT_TRUE(operation);
        auto const capability = operation->getCapabilityPtr(controllers().front());
        auto const file = find(capability, "ATTR_NAME_FIRMWARE_FILE_NAME");
        ASSERT_TRUE(file);
        EXPECT_EQ("ATTR_VALUE_INSTANCE_TYPE_FILE", attribute(*file, "ATTR_NAME_INSTANCE_TYPE"));
        EXPECT_EQ("ATTR_VALUE_CARDINALITY_SINGLE", attribute(*file, "ATTR_NAME_CARDINALITY"));
        EXPECT_EQ("ATTR_VALUE_ACTION_ABSOLUTE", attribute(*file, "ATTR_NAME_ACTION"));
        EXPECT_EQ("ATTR_VALUE_INSTANCE_RANGE_OPEN", attribute(*file, "ATTR_NAME_INSTANCE_RANGE"));
        auto const tofu = find(capability, "ATTR_NAME_TOFU");
        ASSERT_EQ(row.offered, static_cast<bool>(tofu));
        if (!tofu) continue;
        EXPECT_EQ("ATTR_VALUE_INSTANCE_TYPE_STRING", attribute(*tofu, "ATTR_NAME_INSTANCE_TYPE"));
        EXPECT_EQ("ATTR_VALUE_INSTANCE_RANGE_CLOSED", attribute(*tofu, "ATTR_NAME_INSTANCE_RANGE"));
        Strings values;
        for (auto child = tofu->beginChild(); child != tofu->endChild(); ++child)
            values.push_back(attribute(**child, "ATTR_NAME_TOFU"));
        EXPECT_EQ((Strings{"ATTR_VALUE_TOFU_ENABLE", "ATTR_VALUE_TOFU_DISABLE"}), values);
    }
}

/// Firmware is what mends a controller, so its state doesn't stand in the way.
TEST_F(ControllerFirmware, AControllerThatIsNotOkTakesFirmware) {
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 100, 7);
    for (json const& device :
         {json::object(), json{{"identify", {{"bControllerMode", 3}}}}, json{{"firmware", "2.04"}}}) {
        discover(oneController(device, device.contains("firmware") ? "0x3329" : "0x7777"));
        EXPECT_EQ("ATTR_VALUE_STATUS_NOT_OK", attribute(only(), "ATTR_NAME_STATUS"));
        EXPECT_TRUE(flash(image));
        EXPECT_EQ(image, machine->romImage("one", simulator::Rom::Active));
    }
}

}  // namespace
}  // namespace flash_test
