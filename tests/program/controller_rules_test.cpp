// The options and the models with rules of their own: what each run shows, logs, sends and ends with.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/support/package_run.h"
#include "tests/support/verbose_log.h"

namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

constexpr char TR56[] = "0x3354";
constexpr char TR80[] = "0x3397";
constexpr char TR81[] = "0x3398";
constexpr char ZENO_S8[] = "0x33C1";
constexpr char ZENO_S8C[] = "0x33C3";

constexpr char NOTHING[] = R"({})";
/// Bits 9 and 10 of the even more flags.
constexpr char ZONED[] = R"({"identify": {"dwEvenMoreControllerFlags": 512}})";
constexpr char WITHOUT_DOWNTIME[] =
    R"({"supports_tofu": true, "identify": {"dwEvenMoreControllerFlags": 1024}})";

/// What a pass sends to a controller in array mode; "x3": three in a row.
constexpr char PASS[] = "12x2 66 11x3 66 82 c1 64 70 72 11 c3x2 11x2 ";
/// One flash, with the address field of the flash command.
constexpr char FLASH[] = "98 d3 d2x13 f7 99 ";
constexpr char FLASH_NOW[] = "98 d3 d2x13 f7/2 99 ";

struct Row {
    char const* name;
    char const* subsystem;
    char const* change;  ///< of the controller, in the scenario
    Strings arguments;
    int status;
    std::string output;
    std::string log;      ///< from behind the summary
    std::string journal;  ///< management codes, with the first byte of the address field unless it is 0
    char const* firmware;
    bool hasTranscript = false;  ///< of the verbose log
};

void PrintTo(Row const& row, std::ostream* out) {
    *out << row.name;
}

std::string twice(std::string const& text) {
    return text + text;
}
std::string updated(std::string const& model) {
    return "Updated: " + model +
           " Slot: 7 from 6.40 to 6.64\n\nAs part of the reboot process, you must power cycle the server and "
           "any external array storage devices.\n\n";
}
constexpr char NONE[] = "No devices updated.\n";
constexpr char OLD[] = "only 6.40/6.40 ok";
constexpr char STORED[] = "only 6.40/6.64 restart needed";
constexpr char RUNNING[] = "only 6.64/6.64 ok";

Row const ROWS[] = {
    {"WithoutDowntime",
     ZENO_S8,
     WITHOUT_DOWNTIME,
     {"-s", "-o"},
     1,
     "",
     updated("ZenoS8"),
     twice(PASS) + twice(FLASH_NOW),
     RUNNING,
     true},
    {"WithoutDowntimeNotAskedFor",
     ZENO_S8,
     WITHOUT_DOWNTIME,
     {"-s"},
     1,
     "",
     updated("ZenoS8"),
     twice(PASS) + twice(FLASH),
     STORED},
    {"WithoutDowntimeNotOffered",
     ZENO_S8,
     NOTHING,
     {"-s", "-o"},
     1,
     "",
     updated("ZenoS8"),
     twice(PASS) + twice(FLASH),
     STORED,
     true},
    // The capability is that of one family.
    {"WithoutDowntimeInAnotherFamily",
     TR56,
     WITHOUT_DOWNTIME,
     {"-s", "-o"},
     1,
     "",
     updated("TR56"),
     twice(PASS) + twice(FLASH),
     STORED},
    // It doesn't offer the update without downtime, and is asked for it all the same.
    {"ZenoS8cWithoutDowntime",
     ZENO_S8C,
     WITHOUT_DOWNTIME,
     {"-s", "-o"},
     1,
     "",
     updated("ZenoS8c"),
     twice(PASS) + twice(FLASH_NOW),
     RUNNING,
     true},
    {"ZenoS8cNotAskedFor",
     ZENO_S8C,
     WITHOUT_DOWNTIME,
     {"-s"},
     1,
     "",
     updated("ZenoS8c"),
     twice(PASS) + twice(FLASH),
     STORED},
    {"Zoned", TR56, ZONED, {"-s"}, 1, "", updated("TR56"), twice(PASS) + twice(FLASH), STORED},
    {"ZonedAndLeftAlone", TR56, ZONED, {"-s", "-zx"}, 3, "", NONE, twice(PASS), OLD},
    {"NotZoned", TR56, NOTHING, {"-s", "-zx"}, 1, "", updated("TR56"), twice(PASS) + twice(FLASH), STORED},
    // It takes the next word, which isn't an option any more; as the last word it is unknown.
    {"ZonedTakesTheNextWord", TR56, ZONED, {"-z", "-o", "-s"}, 3, "", NONE, twice(PASS), OLD, true},
    {"ZonedAsTheLastWord",
     TR56,
     ZONED,
     {"-s", "-z"},
     1,
     "",
     updated("TR56"),
     twice(PASS) + twice(FLASH),
     STORED},
    // The code is 7, though the failure word is a critical one.
    {"RequestedFailure", TR56, NOTHING, {"-s", "-x~80000000"}, 7, "", NONE, twice(PASS), OLD, true},
    {"RequestedFailures", TR56, NOTHING, {"-s", "-x~1fff"}, 7, "", NONE, twice(PASS), OLD},
    {"TR80", TR80, NOTHING, {"-s"}, 1, "", updated("TR80"), twice(PASS) + twice(FLASH), STORED, true},
    {"TR81", TR81, NOTHING, {"-s"}, 1, "", updated("TR81"), twice(PASS) + twice(FLASH), STORED},
};

/// Management codes of the exchanges; equal ones in a row are counted.
std::string story(PackageRun const& package) {
    Strings codes;
    std::vector<unsigned> counts;
    for (auto const& entry : package.journal()) {
        if (entry.event != "exchange") {
            continue;
        }
        bool const managed = entry.block.size() == 10 && (entry.block[0] == 0x26 || entry.block[0] == 0x27);
        char text[16];
        std::snprintf(text, sizeof text, "%02x", static_cast<unsigned>(entry.block[managed ? 6 : 0]));
        std::string code = text;
        if (managed && entry.block[5] != 0 && entry.block[6] != 0xD2) {
            code += "/" + std::to_string(entry.block[5]);
        }
        if (codes.empty() || codes.back() != code) {
            codes.push_back(code);
            counts.push_back(0);
        }
        ++counts.back();
    }
    std::string line;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        line += codes[i] + (counts[i] > 1 ? "x" + std::to_string(counts[i]) : "") + " ";
    }
    return line;
}

class ControllerRules : public ::testing::TestWithParam<Row> {};

TEST_P(ControllerRules, StatusScreenLogsAndJournal) {
    Row const& row = GetParam();
    PackageRun const package("two-controllers");
    json machine = json::parse(readText(package.directory() / "machine.json"));
    machine["devices"].erase(1);
    json& device = machine["devices"][0];
    device["name"] = "only";
    device["pci"]["subsystem_device"] = row.subsystem;
    device["pci"]["slot"] = "7";
    device.merge_patch(json::parse(row.change));
    writeText(package.directory() / "machine.json", machine.dump());
    package.resetMachine();
    // Every controller of this maker.
    writeText(
        package.directory() / "dogwood.xml",
        "<ksl_package><sw_keys><sw_keys_and><sw_key name=\"33\"/></sw_keys_and></sw_keys></ksl_package>");
    RunResult const run = package.flash(row.arguments);
    EXPECT_EQ(run.status, row.status);
    EXPECT_EQ(run.output, row.output);
    EXPECT_EQ(run.errors, "");
    std::string const log = package.componentLog();
    EXPECT_EQ(log.substr(std::min(log.find("\n\n"), log.size() - 2) + 2), row.log);
    EXPECT_EQ(story(package), row.journal);
    EXPECT_EQ(package.firmware("only"), row.firmware);
    if (row.hasTranscript) {
        expectVerboseLog(package, row.name);
    }
}

INSTANTIATE_TEST_SUITE_P(Options, ControllerRules, ::testing::ValuesIn(ROWS),
                         [](auto const& row) { return std::string(row.param.name); });

/// A controller that never tells what it is wasn't shown and isn't chosen: a twin's row is no choice for it.
TEST(Twins, AControllerWithoutARowIsNotFlashedForItsTwin) {
    PackageRun const package("two-controllers");
    json machine = json::parse(readText(package.directory() / "machine.json"));
    machine["devices"][1]["pci"]["subsystem_device"] = TR56;
    machine["devices"][1]["firmware"] = "6.40";
    machine["devices"][1]["identify"]["dwEvenMoreControllerFlags"] = 512;  // zoned
    writeText(package.directory() / "machine.json", machine.dump());
    for (char const* action : {R"({"truncate": 260})", R"({"command_status": 4})"}) {
        package.resetMachine();
        RunResult const run = package.flash(
            {"-s", "-zx"}, "",
            {std::string(R"({"match": {"device": "right", "command": "0x11"}, "action": )") + action + "}"});
        EXPECT_EQ(run.status, 1) << action;
        EXPECT_EQ(package.firmware("left"), "left 6.40/6.64 restart needed");
        EXPECT_EQ(package.firmware("right"), "right 6.40/6.40 ok");
    }
}

/// With a component file that fits nothing, a tag of the command line decides: a prefix, in either case, of
/// the key, which is the subsystem's device and vendor.
TEST(Tags, OfTheCommandLineMakeAControllerApplicable) {
    struct {
        Strings arguments;
        int status;
        char const* firmware;
    } const cases[] = {
        {{"-s"}, 3, "left 6.40/6.40 ok"},
        {{"-s", "-t33541E5C"}, 1, "left 6.40/6.64 restart needed"},
        {{"-s", "-t", "3354"}, 1, "left 6.40/6.64 restart needed"},
        {{"-s", "-t33551E5C"}, 2, "left 6.40/6.40 ok"},
        {{"-s", "-t3351", "-t3354"}, 1, "left 6.40/6.64 restart needed"},
        {{"-s", "-t1E5C3354"}, 3, "left 6.40/6.40 ok"},
        {{"-s", "-t33541e5c"}, 1, "left 6.40/6.64 restart needed"},
        {{"-s", "-tTR56"}, 3, "left 6.40/6.40 ok"},
    };
    PackageRun const package("two-controllers");
    writeText(
        package.directory() / "dogwood.xml",
        "<ksl_package><sw_keys><sw_keys_and><sw_key name=\"QBX41\"/></sw_keys_and></sw_keys></ksl_package>");
    for (auto const& one : cases) {
        SCOPED_TRACE(one.arguments.back());
        package.resetMachine();
        EXPECT_EQ(package.flash(one.arguments).status, one.status);
        EXPECT_EQ(package.firmware("left"), one.firmware);
        EXPECT_EQ(package.firmware("right"), "right 6.64/6.64 ok");
    }
}

/// The estimated time of a flash is what the option says, in seconds, by the rules of C numbers.
TEST(FlashTime, IsTheDurationInTheDocument) {
    struct {
        Strings arguments;
        char const* duration;
    } const cases[] = {
        {{"-s", "-d", "out.xml"}, "<duration value=\"900\"/>"},
        {{"-s", "-d", "out.xml", "-xd5400"}, "<duration value=\"5400\"/>"},
        {{"-s", "-xd0x10", "-d", "out.xml"}, "<duration value=\"16\"/>"},
        {{"-s", "-xd010", "-d", "out.xml"}, "<duration value=\"8\"/>"},
        {{"-s", "-xdlong", "-d", "out.xml"}, "<duration value=\"0\"/>"},
    };
    PackageRun const package("two-controllers");
    for (auto const& one : cases) {
        std::filesystem::remove(package.directory() / "out.xml");
        EXPECT_EQ(package.flash(one.arguments).status, 3);
        EXPECT_NE(readText(package.directory() / "out.xml").find(one.duration), std::string::npos)
            << one.duration;
    }
}

}  // namespace
