// Updates of enclosure processors by the program: what the document, the logs and the exit status say, and
// what reached the devices.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/package_run.h"

namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

struct Sep {
    char const* name;
    char const* product;
    char const* revision;
    char const* sasAddress = nullptr;  ///< made from its index without it
};
using Boxes = std::vector<std::vector<Sep>>;
struct Entry {
    char const* product;
    char const* payload;
    char const* version;
};

constexpr char CHUNKED[] = "encl16-3.00.rom";
constexpr char ONE_NAME[] = "51E5C0A000000999";
constexpr char RECORDS[] = "encl03-1.36.s19";

/// "id version active action; " of each device in a discovery document.
std::string devicesIn(std::string const& document) {
    std::string devices;
    std::istringstream in(document);
    for (std::string line; std::getline(in, line);) {
        auto const value = line.find(" value=\"") + 8;
        std::string const element = line.substr(0, line.find(' '));
        bool const isShown = element == "<device_id" || element == "<active_version" ||
                             element == "<action" || (element == "<version" && !devices.empty());
        if (isShown) devices += line.substr(value, line.rfind('"') - value) + " ";
        if (line == "</device>") devices.back() = ';';
        if (line == "</device>") devices += ' ';
    }
    return devices;
}

class Enclosures : public ::testing::Test {
  protected:
    Enclosures() : package("enclosures") {}

    /// Puts boxes of these processors behind the left controller, which stays alone; `change` is merged into
    /// it.
    void place(Boxes const& boxes, char const* change = "{}") {
        json machine = json::parse(readText(package.directory() / "machine.json"));
        json left = machine["devices"][0];
        left["boxes"] = json::array();
        int number = 0;
        int index = 16;
        for (auto const& box : boxes) {
            json seps = json::array();
            for (Sep const& sep : box) {
                seps.push_back({{"name", sep.name}, {"index", index++}});
                seps.back()["product"] = sep.product;
                seps.back()["revision"] = sep.revision;
                if (sep.sasAddress != nullptr) seps.back()["sas_address"] = sep.sasAddress;
            }
            left["boxes"].push_back({{"bus", 8}, {"target", number}, {"number", number + 1}, {"seps", seps}});
            left["boxes"].back()["serial"] = "BOX" + std::to_string(number++);
        }
        left.merge_patch(json::parse(change));
        machine["devices"] = json::array({left});
        writeText(package.directory() / "machine.json", machine.dump());
        package.resetMachine();
    }
    void setCatalogue(std::vector<Entry> const& entries) {
        std::string text = "<Devices>";
        for (Entry const& entry : entries)
            text += std::string("<Device><n>1</n><n>") + entry.product + "</n><n>" + entry.payload +
                    "</n><n>" + entry.version + "</n></Device>";
        writeText(package.directory() / "Config.xml", text + "<cpxml><n>enclosures</n></cpxml></Devices>");
    }
    void setTags(Strings const& tags) {
        std::string text = "<ksl_package><sw_keys><sw_keys_and>";
        for (std::string const& tag : tags)
            text += "<sw_key name=\"" + tag + "\"/>";
        writeText(package.directory() / "enclosures.xml", text + "</sw_keys_and></sw_keys></ksl_package>");
    }

    /// The lines of the log that tell what became of a flash.
    std::string outcomes() const {
        std::string lines;
        std::istringstream in(package.componentLog());
        for (std::string line; std::getline(in, line);) {
            if (line.starts_with("Updated: ") || line.starts_with("Failed: ")) lines += line + "\n";
        }
        return lines;
    }
    /// In one of the two logs.
    bool isLogged(std::string const& line) const {
        return (package.componentLog() + package.verboseLog()).find(line) != std::string::npos;
    }
    /// "name bytes; " of each processor that firmware was sent to.
    std::string written() const {
        std::map<std::string, std::uint64_t> bytes;
        for (auto const& entry : package.journal()) {
            if (entry.command == "WRITE BUFFER") bytes[entry.unit] += entry.length;
        }
        std::string text;
        for (auto const& [unit, count] : bytes)
            text += unit + " " + std::to_string(count) + "; ";
        return text;
    }
    std::string protocolErrors() const {
        std::string text;
        for (auto const& entry : package.journal()) {
            for (std::string const& error : entry.errors)
                text += error + "\n";
        }
        return text;
    }
    /// "name product running/stored state; " of each device.
    std::string machine() const {
        std::string text;
        for (auto const& device : package.devices())
            text += device.name + " " + device.product + " " + device.running + "/" + device.stored + " " +
                    device.state + "; ";
        return text;
    }

    PackageRun package;
};

constexpr char SUMMARY[] = R"(Online flashing of ENCL 12 SEP is not supported
Discovered applicable devices:
	ENCL 08 SEP: 1.30
	ENCL 08 SEP: 1.30
	ENCL 16 SEP: 3.00
	ENCL 01 SEP: 1.04
	ENCL 05 SEP: 1.90
	ENCL 05 SEP: 1.90
	ENCL 03 SEP: 1.30
	ENCL 03 SEP: 1.30
	ENCL 03 SEP: 1.30
	ENCL 03 SEP: 1.36
	ENCL 03 SEP: 1.20
	ENCL 16 SEP: 2.40
	ENCL 16 SEP: 2.40
	ENCL 16 SEP: 2.40
	ENCL 16 SEP: 2.40
	ENCL 11 SEP: 1.50
	ENCL 11 SEP: 1.42
	ENCL 14 SEP: 1.02
	ENCL 14 SEP: 1.02
Applicable devices found:         19 (0 Controller 19 Expander)
Controller Info:
	Oldest firmware version:  0000
	Newest firmware version:  0000
Expander Info:
	Oldest firmware version:  1.02
	Newest firmware version:  3.00
Devices with older firmware:      16
Devices with current firmware:    3
Devices with newer firmware:      0

)";

TEST_F(Enclosures, DiscoveryListsEveryProcessorButTheOneThatIsOnline) {
    EXPECT_EQ(package.flash({"-d", "out.xml", "-s"}).status, 3);
    EXPECT_EQ(package.componentLog(), SUMMARY);
    std::string const document = readText(package.directory() / "out.xml");
    EXPECT_EQ(devicesIn(document),
              "ENCL 08 SEP 1.50 1.30 upgrade; ENCL 08 SEP 1.50 1.30 upgrade; "
              "ENCL 16 SEP 3.00 3.00 rewrite; ENCL 01 SEP 1.20 1.04 upgrade; "
              "ENCL 05 SEP 2.10 1.90 upgrade; ENCL 05 SEP 2.10 1.90 upgrade; "
              "ENCL 03 SEP 1.36 1.30 upgrade; ENCL 03 SEP 1.36 1.30 upgrade; "
              "ENCL 03 SEP 1.36 1.30 upgrade; ENCL 03 SEP 1.36 1.36 rewrite; "
              "ENCL 03 SEP 1.36 1.20 upgrade; ENCL 16 SEP 3.00 2.40 upgrade; "
              "ENCL 16 SEP 3.00 2.40 upgrade; ENCL 16 SEP 3.00 2.40 upgrade; "
              "ENCL 16 SEP 3.00 2.40 upgrade; ENCL 11 SEP 1.50 1.50 rewrite; "
              "ENCL 11 SEP 1.50 1.42 upgrade; ENCL 14 SEP 1.06 1.02 upgrade; "
              "ENCL 14 SEP 1.06 1.02 upgrade; ");
    EXPECT_NE(
        document.find("<alt_name value=\"ROM Flash for ENCL 08 SEP, ENCL 08 SEP, ENCL 12 SEP Controller"),
        std::string::npos);
    EXPECT_NE(document.find("<type value=\"SEP Enclosure ROM\"/>\n"), std::string::npos);
    EXPECT_EQ(written(), "");
}

TEST_F(Enclosures, UpdateThenPowerCycleThenCurrent) {
    EXPECT_EQ(package.flash({"-s"}).status, 1);
    // A product is flashed as a whole, so a processor that was current waits for its restart, too.
    EXPECT_EQ(machine(),
              "left Vaultline TR56 6.64/6.64 ok; left/internal ENCL 01 SEP 1.20/1.20 ok; "
              "left/front-a ENCL 05 SEP 1.90/2.10 restart needed; "
              "left/front-b ENCL 05 SEP 1.90/2.10 restart needed; "
              "left/middle-a ENCL 03 SEP 1.30/1.36 restart needed; "
              "left/middle-b ENCL 03 SEP 1.30/1.36 restart needed; "
              "left/middle-c ENCL 03 SEP 1.30/1.36 restart needed; "
              "left/rear-a ENCL 03 SEP 1.36/1.36 restart needed; "
              "left/rear-b ENCL 03 SEP 1.20/1.36 restart needed; "
              "right Vaultline TR58 6.64/6.64 ok; "
              "right/tower-a ENCL 16 SEP 2.40/3.00 restart needed; "
              "right/tower-b ENCL 16 SEP 2.40/3.00 restart needed; "
              "right/tower-c ENCL 16 SEP 2.40/3.00 restart needed; "
              "right/tower-d ENCL 16 SEP 2.40/3.00 restart needed; "
              "right/shelf-a ENCL 11 SEP 1.50/1.50 restart needed; "
              "right/shelf-b ENCL 11 SEP 1.42/1.50 restart needed; "
              "right/drawer-a ENCL 14 SEP 1.02/1.06 restart needed; "
              "right/drawer-b ENCL 14 SEP 1.02/1.06 restart needed; "
              "adapter SAS adapter 1.0.0.0/1.0.0.0 ok; "
              "adapter/hba-a ENCL 08 SEP 1.30/1.50 restart needed; "
              "adapter/hba-b ENCL 08 SEP 1.30/1.50 restart needed; "
              "adapter/hba-c ENCL 16 SEP 3.00/3.00 ok; adapter/hba-d ENCL 12 SEP 0.30/0.30 ok; ");
    // Under one controller a tagged product goes once, another once for each of its processors that is old;
    // of some models one processor takes the image for all in its box.
    EXPECT_EQ(written(),
              "drawer-a 40000; drawer-b 40000; front-a 40000; hba-a 50060; internal 20000; "
              "middle-a 200240; middle-b 200240; middle-c 200240; rear-a 200240; rear-b 200240; "
              "shelf-a 50060; shelf-b 50060; tower-a 80000; tower-b 80000; tower-c 80000; "
              "tower-d 80000; ");
    EXPECT_EQ(protocolErrors(), "");
    struct Row {
        char const* device;
        char const* file;
    };
    constexpr Row rows[] = {
        {"left/internal", "encl01-1.20.rom"}, {"left/front-b", "encl05-2.10.rom"},
        {"left/middle-c", RECORDS},           {"left/rear-a", RECORDS},
        {"right/tower-a", CHUNKED},           {"right/tower-d", CHUNKED},
        {"right/shelf-b", "encl11-1.50.s19"}, {"right/drawer-b", "encl14-1.06.rom"},
        {"adapter/hba-a", "encl08-1.50.s19"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(package.fileStoredIn(row.device), row.file) << row.device;

    package.powerCycle();
    EXPECT_EQ(package.flash({"-s"}).status, 2);
    EXPECT_EQ(package.firmware("left/front-b"), "left/front-b 2.10/2.10 ok");
    EXPECT_NE(machine().find("left/front-a ENCL 06 SEP 2.10/2.10 ok; "), std::string::npos)
        << "the image makes another product of it";
    EXPECT_TRUE(machine().ends_with(
        "adapter/hba-c ENCL 16 SEP 3.00/3.00 ok; adapter/hba-d ENCL 12 SEP 0.30/0.30 ok; "));
}

/// Held as a tool does that has taken the enclosures offline.
TEST_F(Enclosures, OneModelIsFlashedOnlyWhileTheOfflineLockIsHeld) {
    setTags({});
    package.flash({"-q", "-s"});  // makes the folder
    std::filesystem::path const path = package.logDirectory() / "sc-offline.dat";
    for (bool const held : {false, true}) {
        SCOPED_TRACE(held);
        writeText(path, "offline");
        int const file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(file, 0);
        ASSERT_EQ(held ? ::lockf(file, F_TLOCK, 0) : 0, 0);
        package.removeLogs();
        std::string const document = held ? "held.xml" : "free.xml";
        EXPECT_EQ(package.flash({"-s", "-d", document}).status, 3);
        EXPECT_EQ(
            devicesIn(readText(package.directory() / document)).find("ENCL 12 SEP 0.40 0.30 upgrade; ") !=
                std::string::npos,
            held);
        EXPECT_EQ(package.flash({"-s"}).status, 1);
        ::close(file);
        EXPECT_EQ(isLogged("Online flashing of ENCL 12 SEP is not supported\n"), !held);
        EXPECT_EQ(package.firmware("adapter/hba-d"),
                  held ? "adapter/hba-d 0.30/0.40 restart needed" : "adapter/hba-d 0.30/0.30 ok");
        EXPECT_EQ(isLogged("Updated: ENCL 12 SEP from 0.30 to 0.40\n"), held);
    }
}

struct RuleRow {
    char const* name;
    Boxes boxes;
    char const* change;  ///< of the controller
    std::vector<Entry> catalogue;
    Strings tags;
    char const* option;
    int status;
    char const* written;
    char const* outcomes;
    Strings logged;
};

void PrintTo(RuleRow const& row, std::ostream* out) {
    *out << row.name;
}

constexpr Sep JB73 = {"x", "JB73", "1.00"};
constexpr Sep OLDER = {"a", "ENCL 16 SEP", "2.40"};
Entry const SIXTEEN = {"ENCL 16 SEP", CHUNKED, "3.00"};
std::vector<Entry> const BOTH = {{"ENCL 03 SEP", RECORDS, "1.36"}, SIXTEEN};
constexpr char ZONED[] = R"({"identify": {"dwEvenMoreControllerFlags": 512}})";
constexpr char UPDATED[] = "Updated: ENCL 16 SEP from 2.40 to 3.00\n";
constexpr char TWICE[] = "SEP is already updated, double flashing of sep is not supported\n";

// clang-format off
RuleRow const RULES[] = {
    {"Zoned", {{JB73}, {OLDER}}, ZONED, BOTH, {"JB73"}, "-s", 3, "", UPDATED,
     {"Controller has zoning enabled. Expander Flash not supported.\n", "No devices updated.\n"}},
    {"Unzoned", {{JB73}, {OLDER}}, "{}", BOTH, {"JB73"}, "-s", 1, "a 20000; ",
     UPDATED, {}},
    // The second call reaches processors that the first one flashed, and counts as done.
    {"TaggedInTwoBoxes", {{OLDER}, {{"b", "ENCL 16 SEP", "2.50"}}}, "{}", BOTH, {"ENCL 16"}, "-s",
     1, "a 20000; b 20000; ",
     "Updated: ENCL 16 SEP from 2.40 to 3.00\nUpdated: ENCL 16 SEP from 2.50 to 3.00\n", {TWICE}},
    // The first product takes on the processors of both.
    {"TwoTaggedProducts", {{OLDER}, {{"b", "ENCL 03 SEP", "1.30"}}}, "{}", BOTH,
     {"ENCL 16", "encl 03"}, "-s", 1, "b 50060; ",
     "Updated: ENCL 03 SEP from 1.30 to 1.36\nUpdated: ENCL 16 SEP from 2.40 to 3.00\n", {TWICE}},
    // Nothing tells the two apart, so the second keeps the first from its flash.
    {"TwoOfOneName", {{{"a", "ENCL 16 SEP", "2.40", ONE_NAME}, {"b", "ENCL 16 SEP", "2.40", ONE_NAME}}}, "{}",
     BOTH, {"ENCL 16"}, "-s", 3, "",
     "Updated: ENCL 16 SEP from 2.40 to 3.00\nUpdated: ENCL 16 SEP from 2.40 to 3.00\n", {TWICE}},
    {"ForcedWhenCurrent", {{{"a", "ENCL 16 SEP", "3.00"}}}, "{}", BOTH, {}, "-f", 1, "a 20000; ",
     "Updated: ENCL 16 SEP from 3.00 to 3.00\n",
     {"Devices with older firmware:      0\nDevices with current firmware:    1\n"}},
    {"WithoutProduct", {{{"x", "", "1.00"}}, {OLDER}}, "{}", BOTH, {}, "-s", 1, "a 20000; ", UPDATED,
     {"  No product ID\n"}},
    // The model that needs no least version is the only one that gets so far without a version.
    {"WithoutRevision", {{{"x", "ENCL 29 SEP", "    "}}, {OLDER}}, "{}",
     {{"ENCL 29 SEP", CHUNKED, "3.00"}, SIXTEEN}, {}, "-s", 1, "a 20000; ", UPDATED,
     {"  No firmware revision\n"}},
    // Without a blank behind it, and with what no name has, it is another product.
    {"OddProducts", {{{"w", "ENCL 16 SEPARATE", "1.00"}, {"y", "ENCL 16 SEP\"<", "1.00"},
                      {"z", "ENCL 16\u0001SEP", "1.00"}, OLDER}}, "{}", BOTH,
     {"ENCL 16 SEP\"<"}, "-s", 1, "a 20000; ", UPDATED,
     {"   Found 4 Enclosures/SEPs\n", "   PRODUCT ID = ENCL 16 SEPARATE\n",
      "   PRODUCT ID = ENCL 16 SEP\"<\n"}},
};
// clang-format on

class EnclosureRules : public Enclosures, public ::testing::WithParamInterface<RuleRow> {};

TEST_P(EnclosureRules, DecideWhatIsFlashed) {
    RuleRow const& row = GetParam();
    place(row.boxes, row.change);
    setCatalogue(row.catalogue);
    setTags(row.tags);
    EXPECT_EQ(package.flash({"-s", row.option}).status, row.status);
    EXPECT_EQ(written(), row.written);
    EXPECT_EQ(outcomes(), row.outcomes);
    for (std::string const& line : row.logged)
        EXPECT_TRUE(isLogged(line)) << line;
    EXPECT_EQ(isLogged(TWICE), row.logged == Strings{TWICE});
    EXPECT_EQ(protocolErrors(), "");
}

INSTANTIATE_TEST_SUITE_P(Each, EnclosureRules, ::testing::ValuesIn(RULES),
                         [](auto const& row) { return std::string(row.param.name); });

/// Some enclosures must not cross 1.49, whichever way.
TEST_F(Enclosures, BackplaneAdvisory) {
    static std::string const REPLACE =
        "This enclosure requires a backplane replacement before updating the firmware\n"
        "to version 1.50.  To order a replacement backplane, contact VQ support and\n"
        "order the appropriate CSR part number: 519268-007 for QBX41 or 627113-005 for\n"
        "QBX52.).\n"
        "Please refer to Customer Advisory c04173825 for additional information.\n";
    static std::string const CANNOT =
        "This enclosure cannot run firmware version 1.40.\nFirmware version 2.14 or later should be used.\n";
    struct Row {
        char const* tag;
        char const* installed;
        char const* catalogue;
        char const* option;
        std::string forbidden;  ///< lines that say so; empty for a flash
    };
    Row const rows[] = {
        {"QBX41", "1.40", "1.50", "-s", REPLACE}, {"qbx52", "1.48", "1.50", "-f", REPLACE},
        {"QBX41", "1.40", "1.50", "-F", ""},      {"QBX41", "1.40", "1.49", "-s", ""},
        {"QBX41", "1.49", "1.50", "-s", ""},      {"QBX52", "1.40", "1.45", "-s", ""},
        {"QBX52", "1.50", "1.60", "-s", ""},      {"QBX52", "1.50", "1.40", "-f", CANNOT},
        {"QBX41", "1.50", "1.49", "-f", ""},      {"QBX41", "1.49", "1.40", "-f", ""},
        {"QBX5", "1.40", "1.50", "-s", REPLACE},  {"QBX99", "1.40", "1.50", "-s", ""},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(std::string(row.tag) + " " + row.installed + " " + row.catalogue + " " + row.option);
        place({{{"a", "ENCL 16 SEP", row.installed}}});
        setCatalogue({{"ENCL 16 SEP", CHUNKED, row.catalogue}});
        setTags({row.tag});
        bool const isForbidden = !row.forbidden.empty();
        EXPECT_EQ(package.flash({"-s", row.option}).status, isForbidden ? 3 : 1);
        EXPECT_EQ(written(), isForbidden ? "" : "a 20000; ");
        EXPECT_EQ(outcomes().empty(), isForbidden);
        for (std::string const& text : {REPLACE, CANNOT})
            EXPECT_EQ(isLogged(text), text == row.forbidden) << text;
    }
}

/// A product that fails doesn't keep the others behind its controller from their flash.
TEST_F(Enclosures, AFailureIsToldAndTheOthersAreFlashed) {
    struct Row {
        char const* rest;  ///< of the fault rule
        char const* logged;
    };
    constexpr Row rows[] = {
        {R"(}, "action": {"scsi_status": 2, "sense": [5, 44, 0]}})",
         "   ATTR_NAME_SCSI_ASC = 44\n      Internal enclosure error.\n"},
        {R"(}, "action": {"scsi_status": 2, "sense": [4, 68, 0]}})", "      Hardware component not found.\n"},
        {R"(}, "action": {"scsi_status": 2, "sense": [5, 38, 0]}})", "      Invalid ROM image.\n"},
        {R"(}, "action": {"errno": "EIO"}})", "   ATTR_NAME_LOW_LEVEL_STATUS = 5\n"},
        // It goes away while it is flashed.
        {R"(, "nth": 3}, "action": {"command_status": 4}, "times": 1000})",
         "   ATTR_NAME_SCSI_COMMAND_STATUS = 4\n"},
    };
    place({{{"a", "ENCL 03 SEP", "1.30"}},
           {{"b", "ENCL 05 SEP", "1.90"}, {"c", "ENCL 16 SEP", "2.40"}, {"d", "ENCL 16 SEP", "2.40"}}});
    setTags({});
    for (Row const& row : rows) {
        SCOPED_TRACE(row.rest);
        package.resetMachine();
        std::string const fault = R"({"match": {"unit": "c", "command": "WRITE BUFFER")";
        EXPECT_EQ(package.flash({"-s"}, "", {fault + row.rest}).status, 9);
        EXPECT_EQ(outcomes(),
                  "Updated: ENCL 03 SEP from 1.30 to 1.36\nUpdated: ENCL 05 SEP from 1.90 to 2.10\n"
                  "Failed: ENCL 16 SEP from 2.40 to 3.00\nFailed: ENCL 16 SEP from 2.40 to 3.00\n");
        EXPECT_TRUE(isLogged(row.logged)) << row.logged;
        EXPECT_TRUE(isLogged("   ATTR_NAME_UNIQUE_ID = SEP:1200000000000001_18\n")) << "which one it was";
        EXPECT_EQ(machine(),
                  "left Vaultline TR56 6.64/6.64 ok; left/a ENCL 03 SEP 1.30/1.36 restart needed; "
                  "left/b ENCL 05 SEP 1.90/2.10 restart needed; left/c ENCL 16 SEP 2.40/2.40 ok; "
                  "left/d ENCL 16 SEP 2.40/3.00 restart needed; ");
    }
}

TEST_F(Enclosures, ImagesThatTheModelCannotTakeChangeNothing) {
    std::string const records = readText(package.directory() / RECORDS);
    std::string shortCount = records;
    std::size_t const line = records.find("\nS325", records.size() / 2) + 1;
    shortCount.replace(line, 4, "S324");
    std::string longCount = records;
    longCount.replace(line, 4, "S326");
    std::size_t const limit = 1U << 24;
    struct Row {
        char const* product;
        std::string image;
        char const* written;
    };
    Row const rows[] = {
        {"ENCL 16 SEP", "", ""},
        {"ENCL 16 SEP", "K", "a 1; "},
        {"ENCL 16 SEP", std::string(4096, 'K'), "a 4096; "},
        {"ENCL 16 SEP", std::string(4097, 'K'), "a 4096; "},
        {"ENCL 16 SEP", std::string(limit, 'K'), "a 4096; "},
        {"ENCL 16 SEP", std::string(limit + 1, 'K'), ""},
        {"ENCL 16 SEP", records, "a 4096; "},
        {"ENCL 03 SEP", "", ""},
        {"ENCL 03 SEP", "S", ""},
        {"ENCL 03 SEP", std::string(limit, 'S'), ""},
        {"ENCL 03 SEP", readText(package.directory() / CHUNKED), ""},
        {"ENCL 03 SEP", records.substr(0, line + 20), nullptr},
        {"ENCL 03 SEP", shortCount, nullptr},
        {"ENCL 03 SEP", longCount, nullptr},
    };
    setTags({});
    for (Row const& row : rows) {
        SCOPED_TRACE(row.product + (" " + std::to_string(row.image.size()) + " " + row.image.substr(0, 4)));
        std::string const product = row.product;
        place({{{"a", row.product, "1.30"}}});
        setCatalogue({{row.product, "bad.img", "3.00"}});
        writeText(package.directory() / "bad.img", row.image);
        EXPECT_EQ(package.flash({"-s"}).status, 9);
        EXPECT_EQ(row.written != nullptr ? written() : "", row.written != nullptr ? row.written : "");
        EXPECT_EQ(outcomes(), "Failed: " + product + " from 1.30 to 3.00\n");
        EXPECT_EQ(package.firmware("left/a"), "left/a 1.30/1.30 ok");
    }
}

/// Versions go into the document as the device gives them; the last two have neither quote nor end.
TEST_F(Enclosures, DocumentHoldsVersionsAsTheyAre) {
    place({{{"a", "ENCL 16 SEP", "1\"<&"}, {"b", "ENCL 16 SEP", "2.\u0001x"}, {"c", "ENCL 16 SEP", "3.00"}}});
    EXPECT_EQ(package.flash({"-s", "-d", "out.xml"}).status, 3);
    EXPECT_EQ(devicesIn(readText(package.directory() / "out.xml")),
              "ENCL 16 SEP 3.00 1\"<& upgrade; ENCL 16 SEP 3.00 2.\u0001x upgrade; "
              "ENCL 16 SEP 3.00 3.00 rewrite; ");
    std::string const warning = "Discovery document isn't well-formed: ";
    std::string const log = package.verboseLog();
    EXPECT_NE(log.find(warning + "0x22 in active_version"), std::string::npos);
    EXPECT_NE(log.find(warning + "0x01 in active_version"), std::string::npos);
}

TEST_F(Enclosures, ABoxOf255Processors) {
    std::vector<std::string> names;
    for (int i = 0; i < 255; ++i)
        names.push_back("s" + std::to_string(i));
    std::vector<Sep> seps;
    for (std::string const& name : names)
        seps.push_back({name.c_str(), "ENCL 16 SEP", "2.40"});
    place({seps});
    EXPECT_EQ(package.flash({"-s", "-d", "out.xml"}).status, 3);
    EXPECT_TRUE(isLogged("Applicable devices found:         255 (0 Controller 255 Expander)\n"));
    std::string const document = readText(package.directory() / "out.xml");
    EXPECT_EQ(devicesIn(document).size(), 255 * std::strlen("ENCL 16 SEP 3.00 2.40 upgrade; "));
}

}  // namespace
