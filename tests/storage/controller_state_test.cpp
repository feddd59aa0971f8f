#include "storage/operations/filter_controller_status.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/identity.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using ControllerState = StorageTest;

/// State of the only controller: "OK", or what is wrong. The prefix of the state's text is left out.
std::string stateOf(Core::Device const& controller) {
    std::string const prefix = "ATTR_VALUE_CONTROLLER_STATE_";
    std::string const state = attribute(controller, "ATTR_NAME_CONTROLLER_STATE");
    std::string const status = attribute(controller, "ATTR_NAME_STATUS");
    if (status == "ATTR_VALUE_STATUS_OK") return state == ABSENT ? "OK" : "OK, but " + state;
    if (status != "ATTR_VALUE_STATUS_NOT_OK") return "status " + status;
    return state.starts_with(prefix) ? state.substr(prefix.size()) : "state " + state;
}

TEST_F(ControllerState, FromTheIdentifyRecord) {
    struct Row {
        char const* what;
        char const* subsystemDevice;
        json device;
        char const* state;
        char const* mode;  ///< of ATTR_NAME_CONTROLLER_MODE, without its prefix
        bool arrayMode;    ///< the records of an array controller are read
    };
    auto const identify = [](json const& members) { return json{{"identify", members}}; };
    auto const firmware = [](char const* version) { return json{{"firmware", version}}; };
    Row const rows[] = {
        {"array mode", "0x3354", identify({{"bControllerMode", 0}}), "OK", "VAULTLINE", true},
        {"plain adapter", "0x3354", identify({{"bControllerMode", 1}}), "OK", "HBA", false},
        {"mixed", "0x3354", identify({{"bControllerMode", 2}}), "OK", "VAULTLINE", true},
        {"unknown mode", "0x3354", identify({{"bControllerMode", 3}}), "UNSUPPORTED_CONTROLLER_MODE", ABSENT,
         false},
        {"unknown mode", "0x3354", identify({{"bControllerMode", 254}}), "UNSUPPORTED_CONTROLLER_MODE",
         ABSENT, false},
        {"no mode", "0x3354", identify({{"bControllerMode", 255}}), "OK", ABSENT, false},
        // The member ends at 293: a record that is shorter hasn't got it, whatever stands there.
        {"too short for a mode", "0x3354",
         identify({{"bControllerMode", 3}, {"dwFixedStructureLength", 292}}), "OK", ABSENT, true},
        {"just long enough", "0x3354", identify({{"bControllerMode", 1}, {"dwFixedStructureLength", 293}}),
         "OK", "HBA", false},
        {"no lengths at all", "0x3354", identify({{"bControllerMode", 1}, {"dwFixedStructureLength", 0}}),
         "OK", ABSENT, true},
        // Bit 8 of the member that ends at 272.
        {"zone mode", "0x3354", identify({{"dwEvenMoreControllerFlags", 0x100}}), "UNSUPPORTED_ZMR_MODE",
         "VAULTLINE", true},
        {"its neighbours", "0x3354", identify({{"dwEvenMoreControllerFlags", 0xFFFFFEFF}}), "OK", "VAULTLINE",
         true},
        {"zone mode, too short", "0x3354",
         identify({{"dwEvenMoreControllerFlags", 0x100}, {"dwFixedStructureLength", 271}}), "OK", ABSENT,
         true},
        {"zone mode, long enough", "0x3354",
         identify({{"dwEvenMoreControllerFlags", 0x100}, {"dwFixedStructureLength", 272}}),
         "UNSUPPORTED_ZMR_MODE", ABSENT, true},
        {"the mode overrides the zone mode", "0x3354",
         identify({{"dwEvenMoreControllerFlags", 0x100}, {"bControllerMode", 9}}),
         "UNSUPPORTED_CONTROLLER_MODE", ABSENT, false},
        // A defect of three models.
        {"ASPEN", "0x3329", firmware("2.04"), "OUTRIDER_204_FIRMWARE_NEEDS_UPGRADE", "VAULTLINE", true},
        {"BEECH", "0x342A", firmware("2.04"), "OUTRIDER_204_FIRMWARE_NEEDS_UPGRADE", "VAULTLINE", true},
        {"CYPRESS", "0x332B", firmware("2.04"), "OUTRIDER_204_FIRMWARE_NEEDS_UPGRADE", "VAULTLINE", true},
        {"ASPEN, older", "0x3329", firmware("2.03"), "OK", "VAULTLINE", true},
        {"ASPEN, newer", "0x3329", firmware("2.05"), "OK", "VAULTLINE", true},
        {"another of the family", "0x3328", firmware("2.04"), "OK", "VAULTLINE", true},
        {"another family", "0x3354", firmware("2.04"), "OK", "VAULTLINE", true},
        {"unknown model", "0x7777", firmware("2.04"), "CONTROLLER_NOT_RECOGNIZED", "VAULTLINE", true},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        discover(oneController(row.device, row.subsystemDevice));
        ASSERT_EQ(1U, controllers().size());
        EXPECT_EQ(row.state, stateOf(only()));
        std::string const mode = attribute(only(), "ATTR_NAME_CONTROLLER_MODE");
        EXPECT_EQ(
            row.mode == std::string(ABSENT) ? ABSENT : std::string("ATTR_VALUE_CONTROLLER_MODE_") + row.mode,
            mode);
        EXPECT_EQ(row.arrayMode ? 1U : 0U, sent("26000000000070060000")) << "surface analysis";
        EXPECT_EQ(row.arrayMode, only().hasAttribute("ATTR_NAME_CONTROLLER_DISABLED_CONFIG_STATUS"));
        EXPECT_EQ(row.arrayMode, only().hasAttribute("ATTR_NAME_CONTROLLER_SERIAL_NUMBER"));
    }
}

TEST_F(ControllerState, FlagsThatOldRecordsDoNotHave) {
    struct Row {
        char const* member;
        std::uint32_t value;
        unsigned end;  ///< where the member ends in the record
        char const* attributeName;
        char const* expected;
    };
    static Row const rows[] = {
        {"dwEvenMoreControllerFlags", 1U << 9, 272, "ATTR_NAME_ZONING_ENABLED",
         "ATTR_VALUE_ZONING_ENABLED_TRUE"},
        {"dwEvenMoreControllerFlags", ~(1U << 9), 272, "ATTR_NAME_ZONING_ENABLED",
         "ATTR_VALUE_ZONING_ENABLED_FALSE"},
        {"dwEvenMoreControllerFlags", 1U << 10, 272, "ATTR_NAME_IS_TOFU_SUPPORTED",
         "ATTR_VALUE_IS_TOFU_SUPPORTED_TRUE"},
        {"dwEvenMoreControllerFlags", ~(1U << 10), 272, "ATTR_NAME_IS_TOFU_SUPPORTED",
         "ATTR_VALUE_IS_TOFU_SUPPORTED_FALSE"},
        {"dwEncryptionStatus", 1U << 4, 286, "ATTR_NAME_ENCRYPTION_FW_LOCKED",
         "ATTR_VALUE_ENCRYPTION_FW_LOCKED_TRUE"},
        {"dwEncryptionStatus", 1U << 5, 286, "ATTR_NAME_ENCRYPTION_CONTROLLER_LOCKED",
         "ATTR_VALUE_ENCRYPTION_CONTROLLER_LOCKED_TRUE"},
        {"dwEncryptionStatus", 0xFFFFFFCF, 286, "ATTR_NAME_ENCRYPTION_FW_LOCKED",
         "ATTR_VALUE_ENCRYPTION_FW_LOCKED_FALSE"},
        {"dwExtraControllerFlags", 1U << 0, 290, "ATTR_NAME_HBA_MODE_SUPPORTED",
         "ATTR_VALUE_HBA_MODE_SUPPORTED_TRUE"},
        {"dwExtraControllerFlags", 1U << 1, 290, "ATTR_NAME_HBA_MODE_ENABLED",
         "ATTR_VALUE_HBA_MODE_ENABLED_TRUE"},
        {"dwExtraControllerFlags", 1U << 0, 290, "ATTR_NAME_HBA_MODE_ENABLED",
         "ATTR_VALUE_HBA_MODE_ENABLED_FALSE"},
        {"bPCIEGeneration", 9, 291, "ATTR_NAME_PCIE_GEN", "9"},
        {"bPCIEWidth", 16, 292, "ATTR_NAME_PCIE_WIDTH", "16"},
    };
    for (Row const& row : rows) {
        for (unsigned const length : {row.end, row.end - 1}) {
            discover(
                oneController({{"identify", {{row.member, row.value}, {"dwFixedStructureLength", length}}}}));
            EXPECT_EQ(length == row.end ? row.expected : ABSENT, attribute(only(), row.attributeName))
                << row.member << " " << row.value << " in a record of " << length;
        }
    }
}

TEST_F(ControllerState, EncryptionLockoutIsAMatterOfOneModel) {
    struct Row {
        char const* subsystemDevice;
        std::uint32_t status;
        char const* expected;
    };
    static Row const rows[] = {
        {"0x3379", 1, "ATTR_VALUE_ENCRYPTION_CONFIG_LOCKOUT_TRUE"},
        {"0x3479", 0x80000001, "ATTR_VALUE_ENCRYPTION_CONFIG_LOCKOUT_TRUE"},
        {"0x3379", 0xFFFFFFFE, ABSENT},
        {"0x3378", 1, ABSENT},
    };
    for (Row const& row : rows) {
        discover(oneController({{"identify", {{"dwEncryptionStatus", row.status}}}}, row.subsystemDevice));
        EXPECT_EQ(row.expected, attribute(only(), "ATTR_NAME_ENCRYPTION_CONFIG_LOCKOUT")) << row.status;
    }
}

/// A configuration that a newer stack wrote isn't safe in the hands of this one.
TEST_F(ControllerState, ConfigurationVersions) {
    struct Row {
        char const* what;
        std::vector<std::pair<unsigned, unsigned>> drives;  ///< assigned drives, major version
        int configured;                                     ///< what the controller says, or -1
        char const* state;
        std::size_t asked;  ///< drives that were looked at
    };
    static Row const rows[] = {
        {"none", {}, -1, "OK", 0},
        {"known", {{2, 16}}, -1, "OK", 1},
        {"newer", {{2, 17}}, -1, "NEED_UPDATED_STORAGEMOD_VERSION", 1},
        {"much newer", {{1, 255}}, -1, "NEED_UPDATED_STORAGEMOD_VERSION", 1},
        {"the scan stops at the first", {{2, 16}, {2, 17}, {2, 2}}, -1, "NEED_UPDATED_STORAGEMOD_VERSION", 2},
        {"an empty one neither counts nor harms", {{0, 17}, {0x100, 16}}, 1, "OK", 2},
        {"nothing behind the last that is configured", {{2, 16}, {2, 17}}, 1, "OK", 1},
        {"a count beyond all limits", {{2, 16}}, 255, "OK", 5},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        json drives = json::array();
        for (auto const& [assigned, version] : row.drives)
            drives.push_back(
                {{"configuration", {{"wAssignedDrives", assigned}, {"bConfigModMajorVer", version}}}});
        json identify = {{"wMaximumLogicalDevicesSupported", 5}};
        if (row.configured >= 0) identify["bConfiguredLogicalDrives"] = row.configured;
        discover(oneController({{"logical_drives", drives}, {"identify", identify}}));
        EXPECT_EQ(row.state, stateOf(only()));
        EXPECT_EQ(row.asked, sent("50020000 in 512"));
    }
}

/// A unit that refuses is passed over. One that asks for a moment, or a controller that isn't reached, ends
/// the scan: the other units would take as long.
TEST_F(ControllerState, ConfigurationsThatAreNotRead) {
    struct Row {
        char const* action;  ///< of every command for the first unit, or of all
        char const* nth;
        char const* state;
        std::size_t asked;
    };
    static Row const rows[] = {
        {R"({"scsi_status": 2, "sense": [5, 36, 0]})", R"(, "nth": 1)", "NEED_UPDATED_STORAGEMOD_VERSION", 2},
        {R"({"truncate": 100})", R"(, "nth": 1)", "NEED_UPDATED_STORAGEMOD_VERSION", 2},
        {R"({"command_status": 4})", R"(, "nth": 1)", "NEED_UPDATED_STORAGEMOD_VERSION", 2},
        {R"({"errno": "ETIMEDOUT"})", "", "OK", 1},
        {R"({"scsi_status": 2, "sense": [6, 41, 0]})", "", "OK", 61},
        {R"({"scsi_status": 2, "sense": [2, 4, 1]})", "", "OK", 61},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.action);
        start(oneController(
            {{"logical_drives", json::array({{{"configuration", json::object()}},
                                             {{"configuration", {{"bConfigModMajorVer", 17}}}}})}}));
        addFault(
            (R"({"match": {"command": "0x50")" + std::string(row.nth) + R"(}, "action": )" + row.action + "}")
                .c_str());
        discover();
        EXPECT_EQ(row.state, stateOf(only()));
        EXPECT_EQ(row.asked, sent("50020000 in 512"));
    }
}

/// What a controller that isn't local is asked.
TEST_F(ControllerState, ItsLocationDecidesWhatIsRead) {
    struct Row {
        char const* location;
        std::size_t redundancy;
        std::size_t parameters;
    };
    for (Row const& row : {Row{"ATTR_VALUE_LOCATION_LOCAL", 1, 1}, Row{"ATTR_VALUE_LOCATION_REMOTE", 0, 0},
                           Row{"ATTR_VALUE_LOCATION_EXTERNAL", 1, 0}}) {
        discover(oneController());
        Schema::publish(only(), "ATTR_NAME_LOCATION", row.location);
        std::size_t const redundancy = sent("82020000 in 512");
        std::size_t const parameters = sent("64020000 in 512");
        EXPECT_TRUE(only().perform(OperationPointer(new Operations::ReadArrayControllerInfo)));
        EXPECT_EQ(row.redundancy, sent("82020000 in 512") - redundancy) << row.location;
        EXPECT_EQ(row.parameters, sent("64020000 in 512") - parameters) << row.location;
    }
}

TEST_F(ControllerState, SerialNumbers) {
    struct Row {
        char const* text;
        char const* expected;
    };
    static Row const rows[] = {
        {"0000000000000000", ABSENT},
        {"", ABSENT},
        {"000000000000000", "000000000000000"},
        {"00000000000000000", "00000000000000000"},
        {"0000000000000001", "0000000000000001"},
        {"12345678901234567890123456789012", "12345678901234567890123456789012"},
    };
    for (Row const& row : rows) {
        discover(oneController(
            {{"subsystem", {{"sControllerSerialNumber", row.text}, {"sCacheSerialNumber", row.text}}}}));
        EXPECT_EQ(Strings{row.expected}, controllers("ATTR_NAME_CONTROLLER_SERIAL_NUMBER")) << row.text;
        EXPECT_EQ(Strings{row.expected}, controllers("ATTR_NAME_CONTROLLER_CACHE_SERIAL_NUMBER")) << row.text;
    }
}

/// A controller that answers nothing behind its INQUIRY stays in the tree, marked; it is asked no more than
/// who it is.
TEST_F(ControllerState, AControllerThatAnswersNothingStays) {
    struct Row {
        char const* subsystemDevice;
        char const* action;
    };
    static Row const rows[] = {
        {"0x3354", R"({"errno": "EIO"})"},
        {"0x3354", R"({"scsi_status": 2, "sense": [5, 36, 0]})"},
        {"0x3354", R"({"command_status": 4})"},
        // The lost connection is told before the unknown model.
        {"0x7777", R"({"errno": "EIO"})"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.action);
        start(
            oneController({{"logical_drives", {{{"configuration", json::object()}}}}}, row.subsystemDevice));
        for (char const* command : {"0x11", "0x66", "0x50"}) {
            machine->addFaults({{{"match", {{"command", command}}}, {"action", json::parse(row.action)}}},
                               "test");
        }
        discover();
        ASSERT_EQ(1U, controllers().size());
        EXPECT_EQ("CONTROLLER_COMMUNICATION_ERROR", stateOf(only()));
        EXPECT_EQ(ABSENT, attribute(only(), "ATTR_NAME_FIRMWARE_VERSION"));
        EXPECT_EQ("1", attribute(only(), "ATTR_NAME_SLOT"));
        EXPECT_EQ(0U, sent("50020000"));
        EXPECT_EQ(0U, sent("26000000000070060000"));
    }
}

TEST_F(ControllerState, ItGoesWithItsCause) {
    start(oneController());
    addFault(R"({"match": {"command": "0x11"}, "action": {"errno": "EIO"}, "times": 4})");
    discover();
    EXPECT_EQ("CONTROLLER_COMMUNICATION_ERROR", stateOf(only()));
    Core::Device const* const before = &only();
    discover();
    EXPECT_EQ("OK", stateOf(only()));
    EXPECT_EQ("6.40", attribute(only(), "ATTR_NAME_FIRMWARE_VERSION"));
    EXPECT_EQ(before, &only());
}

/// The reads stop at the first that fails, and the operation's result says so; what was read stays.
TEST_F(ControllerState, AFailedReadEndsTheReading) {
    struct Row {
        char const* command;
        std::size_t behind;  ///< reads behind it that aren't sent, of six
    };
    static char const* const COMMANDS[] = {"66064000 in", "82020000 in", "c1020000 in",
                                           "64020000 in", "70060000 in", "72020000 in"};
    static Row const rows[] = {{"0x82", 4}, {"0xC1", 3}, {"0x64", 2}, {"0x70", 1}, {"0x72", 0}};
    for (Row const& row : rows) {
        start(oneController());
        machine->addFaults({{{"match", {{"command", row.command}}}, {"action", {{"errno", "EIO"}}}}}, "test");
        auto const results = discover();
        EXPECT_EQ("OK", stateOf(only())) << row.command;
        std::size_t kinds = 0;
        for (char const* command : COMMANDS)
            kinds += sent(command) != 0 ? 1 : 0;
        EXPECT_EQ(6 - row.behind, kinds) << row.command;
        std::size_t failures = 0;
        for (auto const& result : results) {
            if (result) continue;
            ++failures;
            EXPECT_EQ("OPERATION_READ_ARRAY_CONTROLLER_INFO", attribute(result, "ATTR_NAME_OPERATION_NAME"));
            EXPECT_EQ("5", attribute(result, "ATTR_NAME_LOW_LEVEL_STATUS"));
        }
        EXPECT_EQ(1U, failures) << row.command;
    }
}

// Filters.

enum class Check { Status, StatusWithoutLock, HbaMode };

std::string verdict(Check check, DevicePointer const& device) {
    Common::shared_ptr<Core::Filter> filter;
    switch (check) {
        case Check::Status:
            filter = Common::shared_ptr<Core::Filter>(new Operations::FilterControllerStatus);
            break;
        case Check::StatusWithoutLock:
            filter = Common::shared_ptr<Core::Filter>(
                new Operations::FilterControllerStatusNoEncryptionLockoutCheck);
            break;
        case Check::HbaMode:
            filter = Common::shared_ptr<Core::Filter>(new Operations::FilterControllerStatusHBAMode);
            break;
    }
    Core::FilterReturn const result = filter->apply(device);
    if (result) return "available";
    std::string text = attribute(result, "ATTR_NAME_UNAVAILABLE_REASON");
    std::string const comment = attribute(result, "ATTR_NAME_UNAVAILABLE_REASON_COMMENT");
    return comment == ABSENT ? text : text + ": " + comment;
}

TEST(ControllerFilters, DecideByTheAttributes) {
    static constexpr char NOT_OK[] =
        "ATTR_VALUE_UNAVAILABLE_REASON_CONTROLLER_STATUS_NOT_OK: Controller attr ATTR_NAME_STATUS is not OK, "
        "or "
        "ATTR_NAME_CONTROLLER_STATE is NOT_PRESENT";
    static constexpr char LOCKED[] = "ATTR_VALUE_UNAVAILABLE_REASON_ENCRYPTION_CONTROLLER_LOCKED";
    static constexpr char NOT_READY[] = "ATTR_VALUE_UNAVAILABLE_REASON_CONTROLLER_NOT_READY";
    static constexpr char PLAIN[] =
        "ATTR_VALUE_UNAVAILABLE_REASON_CONTROLLER_IN_HBA_MODE: No controller is in HBA mode, or scheduled to "
        "be in "
        "HBA mode after the next reboot";
    static constexpr char FREE[] = "available";
    struct Row {
        std::vector<std::pair<char const*, char const*>> attributes;
        char const* status;
        char const* statusWithoutLock;
        char const* hbaMode;
    };
    static std::pair<char const*, char const*> const OK = {"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_OK"};
    static std::pair<char const*, char const*> const LOCK = {"ATTR_NAME_ENCRYPTION_CONTROLLER_LOCKED",
                                                             "ATTR_VALUE_ENCRYPTION_CONTROLLER_LOCKED_TRUE"};
    static Row const rows[] = {
        {{}, NOT_READY, NOT_READY, FREE},
        {{OK}, FREE, FREE, FREE},
        {{{"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_NOT_OK"}}, NOT_OK, NOT_OK, FREE},
        {{{"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_FAILED"}}, NOT_OK, NOT_OK, FREE},
        {{OK, {"ATTR_NAME_CONTROLLER_STATE", "ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_NOT_PRESENT"}},
         NOT_OK,
         NOT_OK,
         FREE},
        {{OK, LOCK}, LOCKED, FREE, FREE},
        {{{"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_NOT_OK"}, LOCK}, NOT_OK, NOT_OK, FREE},
        {{OK, {"ATTR_NAME_ENCRYPTION_CONTROLLER_LOCKED", "ATTR_VALUE_ENCRYPTION_CONTROLLER_LOCKED_FALSE"}},
         FREE,
         FREE,
         FREE},
        {{OK, {"ATTR_NAME_HBA_MODE_ENABLED", "ATTR_VALUE_HBA_MODE_ENABLED_TRUE"}}, FREE, FREE, PLAIN},
        {{OK, {"ATTR_NAME_HBA_MODE_ENABLED", "ATTR_VALUE_HBA_MODE_ENABLED_FALSE"}}, FREE, FREE, FREE},
        {{OK, {"ATTR_NAME_CONTROLLER_MODE", "ATTR_VALUE_CONTROLLER_MODE_HBA"}}, FREE, FREE, PLAIN},
        {{OK, {"ATTR_NAME_CONTROLLER_MODE", "ATTR_VALUE_CONTROLLER_MODE_VAULTLINE"}}, FREE, FREE, FREE},
    };
    for (Row const& row : rows) {
        DevicePointer const device(new Schema::ArrayController("", false, 128, 32, "key"));
        for (auto const& [name, value] : row.attributes)
            Schema::publish(*device, name, value);
        std::string const label = std::to_string(&row - rows);
        EXPECT_EQ(row.status, verdict(Check::Status, device)) << label;
        EXPECT_EQ(row.statusWithoutLock, verdict(Check::StatusWithoutLock, device)) << label;
        EXPECT_EQ(row.hbaMode, verdict(Check::HbaMode, device)) << label;
    }
}

TEST_F(ControllerState, AnUnknownModelIsRefusedByTheFilters) {
    discover(oneController(json::object(), "0x7777"));
    EXPECT_EQ("ATTR_VALUE_CONTROLLER_NAME_GENERIC", attribute(only(), "ATTR_NAME_CONTROLLER_NAME"));
    DevicePointer const device = controllers().front();
    EXPECT_NE("available", verdict(Check::Status, device));
    EXPECT_NE("available", verdict(Check::StatusWithoutLock, device));
    EXPECT_EQ("available", verdict(Check::HbaMode, device));
}

}  // namespace
}  // namespace storage_test
