// What follows the flash of a TR57 or TR57i: the boot strap bytes in the controller's NVRAM.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <ostream>
#include <regex>

#include "tests/support/package_run.h"

namespace {

using nlohmann::json;
using Nvram = std::map<unsigned, unsigned>;

constexpr char TR57[] = "0x3351";
constexpr char TR57I[] = "0x3352";
constexpr char TR56[] = "0x3354";

struct Row {
    char const* name;
    char const* subsystem;
    unsigned stored;  ///< byte 2045; 2046 is 7
    char const* fault;
    int status;
    char const* state;
    Nvram after;
    unsigned reads, writes;  ///< of NVRAM, over both flashes
    char const* log;         ///< of the first flash, between its two codes; handles are "HANDLE"
};

void PrintTo(Row const& row, std::ostream* out) {
    *out << row.name;
}

#define BLANKS "                    "  // to the 32 bytes of the member
#define FOUND                                                                                                \
    "****** Controller Found!        Handle: HANDLE ******\n\n\tSenseSubsysInfo...\n\tCalling "              \
    "InfoMgrControlObject... for Vaultline controller HANDLE. Command type: 0x8001\n\tInfoMgrControlObject " \
    "Return Status: 0\n\t Controller Serial Number = VQ5C3354A001" BLANKS
#define READ(value)                      \
    "\nThe ox7fd offset value is " value \
    "\n"                                 \
    "ReadNVRAMBootStrap retuns: 0:byteValue " value "\n"
#define COUNTED "pDevInfo.numSSD: 0 pDevInfo.numSeps: 0 pDevInfo.numPhyDrives: 0\n"
#define WRITTEN "writeNVRAMBootStrap retuns: 0:byteValue 0\n"
#define NOT_WRITTEN "writeNVRAMBootStrap retuns: -2147483643:byteValue 0\n"

constexpr char STORED[] = "only 6.40/6.64 restart needed";
constexpr char NO_FAULT[] = "";

Row const ROWS[] = {
    {"Fixed", TR57, 1, NO_FAULT, 1, STORED, {{2045, 1}, {2046, 7}}, 2, 0, FOUND READ("1")},
    {"LargeWritten", TR57, 2, NO_FAULT, 1, STORED, {}, 2, 4, FOUND READ("2") COUNTED WRITTEN WRITTEN},
    {"LargeWrittenInTheOtherModel",
     TR57I,
     255,
     NO_FAULT,
     1,
     STORED,
     {},
     2,
     4,
     FOUND READ("255") COUNTED WRITTEN WRITTEN},
    {"ReadFails",
     TR57,
     1,
     R"({"match": {"command": "READ NVRAM"}, "action": {"errno": "EIO"}})",
     8,
     STORED,
     {},
     2,
     4,
     FOUND
     "\nThe ox7fd offset value is 255\nReadNVRAMBootStrap retuns: -2147483643:byteValue 255\n" COUNTED WRITTEN
         WRITTEN},
    {"ReadIsRefused",
     TR57,
     1,
     R"({"match": {"command": "0x42"}, "action": {"scsi_status": 2, "sense": [5, 36, 0]}})",
     8,
     STORED,
     {{2045, 1}, {2046, 7}},
     2,
     4,
     FOUND "Scsi command Falied 1\nThe ox7fd offset value is 255\n"
           "ReadNVRAMBootStrap retuns: -2147483643:byteValue 255\n" COUNTED
           "Scsi command Falied 1" NOT_WRITTEN "Scsi command Falied 1" NOT_WRITTEN},
    {"WriteFails",
     TR57,
     2,
     R"({"match": {"command": "WRITE NVRAM"}, "action": {"errno": "EIO"}})",
     8,
     STORED,
     {{2045, 2}, {2046, 7}},
     2,
     4,
     FOUND READ("2") COUNTED NOT_WRITTEN NOT_WRITTEN},
    // The second flash repeats what the first couldn't do.
    {"WritesFailOnce",
     TR57,
     2,
     R"({"match": {"command": "WRITE NVRAM"}, "action": {"errno": "EIO"}, "times": 2})",
     1,
     STORED,
     {},
     2,
     4,
     FOUND READ("2") COUNTED NOT_WRITTEN NOT_WRITTEN},
    // The six before are of the two passes: the management objects' own look finds nobody.
    {"NoHandle",
     TR57,
     2,
     R"({"match": {"command": "INQUIRY", "nth": 5}, "action": {"errno": "EIO"}})",
     10,
     STORED,
     {{2045, 2}, {2046, 7}},
     0,
     0,
     ""},
    {"AnotherModel", TR56, 2, NO_FAULT, 1, STORED, {{2045, 2}, {2046, 7}}, 0, 0, ""},
};

/// Every controller of this maker is chosen.
void choose(PackageRun const& package, json const& machine) {
    writeText(package.directory() / "machine.json", machine.dump());
    package.resetMachine();
    writeText(
        package.directory() / "dogwood.xml",
        "<ksl_package><sw_keys><sw_keys_and><sw_key name=\"33\"/></sw_keys_and></sw_keys></ksl_package>");
}

/// What a flash logged behind its return code; the controllers' flashes come in pairs.
std::string followUp(PackageRun const& package, unsigned flash = 0) {
    std::string log = std::regex_replace(package.verboseLog(), std::regex("0x[0-9a-f]{6,}"), "HANDLE");
    std::string const code = "Operation return code:0\n\n";
    std::size_t begin = log.find(code) + code.size();
    for (; flash != 0; --flash) {
        begin = log.find(code, begin) + code.size();
    }
    return log.substr(begin, log.find("DiscoveryInfo: ", begin) - begin);
}

class BootStrap : public ::testing::TestWithParam<Row> {};

TEST_P(BootStrap, FollowsTheFlash) {
    Row const& row = GetParam();
    PackageRun const package("two-controllers");
    json machine = json::parse(readText(package.directory() / "machine.json"));
    machine["devices"].erase(1);
    json& device = machine["devices"][0];
    device["name"] = "only";
    device["pci"]["subsystem_device"] = row.subsystem;
    device["nvram"] = {{"2045", row.stored}, {"0x7FE", 7}};
    choose(package, machine);
    std::vector<std::string> const faults(*row.fault == 0 ? 0 : 1, row.fault);
    EXPECT_EQ(package.flash({"-s"}, "", faults).status, row.status);
    EXPECT_EQ(package.firmware("only"), row.state);
    EXPECT_EQ(package.devices()[0].nvram, row.after);
    unsigned reads = 0;
    unsigned writes = 0;
    for (auto const& entry : package.journal()) {
        reads += entry.command == "READ NVRAM";
        writes += entry.command == "WRITE NVRAM";
        EXPECT_TRUE(entry.errors.empty()) << entry.sequence << ": " << entry.errors.front();
    }
    EXPECT_EQ(reads, row.reads);
    EXPECT_EQ(writes, row.writes);
    EXPECT_EQ(followUp(package), row.log);
}

/// What a discovery finds behind the controller decides.
TEST(BootStraps, FollowTheDrivesAndProcessors) {
    constexpr char THREE[] = R"({"count": 3, "interface": "sata"})";
    constexpr char NO_BOXES[] = "[]";
    constexpr char PROCESSORS[] = R"([{"bus": 8, "target": 0, "drives": [0, 1, 2], "serial": "BOX", "seps": [
        {"index": 16, "product": "ENCL 03 SEP"}, {"index": 17, "product": "ENCL 03 SEP"}]}])";
    struct {
        char const* drives;
        char const* boxes;
        Nvram after;
        char const* counts;
    } const rows[] = {
        {THREE, NO_BOXES, {{2045, 2}, {2046, 254}}, "numSSD: 0 pDevInfo.numSeps: 0 pDevInfo.numPhyDrives: 3"},
        {R"([{"interface": "sata"}, {"interface": "sata"}, {"interface": "sata_ssd"}])",
         NO_BOXES,
         {},
         "numSSD: 1 pDevInfo.numSeps: 0 pDevInfo.numPhyDrives: 3"},
        {R"({"count": 9, "interface": "sata"})",
         NO_BOXES,
         {},
         "numSSD: 0 pDevInfo.numSeps: 0 pDevInfo.numPhyDrives: 9"},
        {THREE, PROCESSORS, {}, "numSSD: 0 pDevInfo.numSeps: 2 pDevInfo.numPhyDrives: 3"},
    };
    for (auto const& row : rows) {
        PackageRun const package("two-controllers");
        json machine = json::parse(readText(package.directory() / "machine.json"));
        machine["devices"].erase(1);
        json& device = machine["devices"][0];
        device["pci"]["subsystem_device"] = TR57;
        device["nvram"] = {{"2045", 3}, {"2046", 7}};
        device["drives"] = json::parse(row.drives);
        device["boxes"] = json::parse(row.boxes);
        choose(package, machine);
        EXPECT_EQ(package.flash({"-s"}).status, 1) << row.counts;
        EXPECT_EQ(package.devices()[0].nvram, row.after) << row.counts;
        EXPECT_NE(followUp(package).find(row.counts), std::string::npos) << followUp(package);
    }
}

/// The second controller is found behind the first, by its serial number.
TEST(BootStraps, OfTwoControllersAreTheirOwn) {
    PackageRun const package("two-controllers");
    json machine = json::parse(readText(package.directory() / "machine.json"));
    char const* const subsystems[] = {TR57, TR57I};
    for (unsigned i = 0; i < 2; ++i) {
        machine["devices"][i]["pci"]["subsystem_device"] = subsystems[i];
        machine["devices"][i]["firmware"] = "6.40";
        machine["devices"][i]["nvram"] = {{"2045", i + 1}, {"2046", 7}};
    }
    choose(package, machine);
    EXPECT_EQ(package.flash({"-s"}).status, 1);
    EXPECT_EQ(package.devices()[0].nvram, (Nvram{{2045, 1}, {2046, 7}}));
    EXPECT_EQ(package.devices()[1].nvram, Nvram{});
    EXPECT_EQ(followUp(package), FOUND READ("1"));
    EXPECT_EQ(followUp(package, 3), FOUND
              "\n****** Controller Discovery End Handle: HANDLE ******\n"
              "****** Controller Found!        Handle: HANDLE ******\n\n\tSenseSubsysInfo...\n\tCalling "
              "InfoMgrControlObject... for Vaultline controller HANDLE. Command type: "
              "0x8001\n\tInfoMgrControlObject Return Status: 0\n\t Controller Serial Number = "
              "VQ5C3355B002" BLANKS READ("0") COUNTED WRITTEN WRITTEN);
}

INSTANTIATE_TEST_SUITE_P(Branches, BootStrap, ::testing::ValuesIn(ROWS),
                         [](auto const& row) { return std::string(row.param.name); });

}  // namespace
