/// Updates of cache modules: what holds one back, what doesn't, and how the run ends.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tests/support/package_run.h"

namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

enum class Image { Good, Missing, Empty, Pipe };

struct Row {
    char const* name;
    Strings arguments;
    char const* answers;
    Image image;
    Strings faults;
    int status;
    char const* versions;            ///< the controller, the first module and the second one, stored
    unsigned inDiscovery, inUpdate;  ///< modules that were sent firmware in either pass
};

void PrintTo(Row const& row, std::ostream* out) {
    *out << row.name;
}

constexpr char REFUSED[] =
    R"({"match": {"command": "FLASH COMPONENT"}, "action": {"scsi_status": 2, "sense": [5, 36, 0]}})";

Row const ROWS[] = {
    {"Silent", {"-s"}, "", Image::Good, {}, 1, "6.64 7 7", 0, 2},
    // The answer is about rows; a module is older, and goes with the package.
    {"NoToTheUpgrade", {}, "yes\nno\n", Image::Good, {}, 1, "6.40 7 7", 0, 2},
    {"NoToTheDiscovery", {}, "no\n", Image::Good, {}, 5, "6.40 5 6", 0, 0},
    {"Query", {"-q", "-s"}, "", Image::Good, {}, 0, "6.40 5 6", 0, 0},
    // -c allows flashing already in the discovery pass, before any question about devices.
    {"FileMode", {"-c", "-s"}, "", Image::Good, {}, 1, "6.64 7 7", 2, 0},
    {"FileModeWithoutADocument", {"-c", "-s", "-d"}, "", Image::Good, {}, 1, "6.64 7 7", 2, 0},
    {"FileModeAndNo", {"-c"}, "yes\nno\n", Image::Good, {}, 1, "6.40 7 7", 2, 0},
    {"FileModeBehindADocument", {"-d", "out.xml", "-c", "-s"}, "", Image::Good, {}, 3, "6.40 7 7", 2, 0},
    {"FileModeBeforeADocument", {"-c", "-d", "out.xml", "-s"}, "", Image::Good, {}, 3, "6.40 5 6", 0, 0},
    {"MissingImage", {"-s"}, "", Image::Missing, {}, 4, "6.64 5 6", 0, 0},
    {"EmptyImage", {"-s"}, "", Image::Empty, {}, 9, "6.64 5 6", 0, 0},
    {"Pipe", {"-s"}, "", Image::Pipe, {}, 7, "6.64 5 6", 0, 0},  // opening it would wait for a writer
    // A controller whose module failed is the last that the pass looks at.
    {"Refused", {"-s"}, "", Image::Good, {REFUSED}, 9, "6.64 5 6", 0, 1},
};

/// A controller, and two with cache modules.
void shrink(PackageRun const& package) {
    json machine = json::parse(readText(package.directory() / "machine.json"));
    json devices = json::array();
    for (json& device : machine["devices"]) {
        std::string const name = device["name"];
        if (name == "cedar-equal") device["cache_firmware"]["version"] = 6;
        if (name == "left" || name == "cedar-older" || name == "cedar-equal") devices.push_back(device);
    }
    machine["devices"] = devices;
    writeText(package.directory() / "machine.json", machine.dump());
    package.resetMachine();
}

std::string versions(PackageRun const& package) {
    std::map<std::string, std::string> stored;
    for (auto const& device : package.devices()) {
        stored[device.name] = device.stored;
    }
    return stored["left"] + " " + stored["cedar-older/cache"] + " " + stored["cedar-equal/cache"];
}

class CacheModuleUpdate : public ::testing::TestWithParam<Row> {};

TEST_P(CacheModuleUpdate, EndsAsItWent) {
    Row const& row = GetParam();
    PackageRun const package("cache-module");
    shrink(package);
    auto const image = package.directory() / "fbwc-7.rom";
    if (row.image != Image::Good) std::filesystem::remove(image);
    if (row.image == Image::Empty) writeText(image, "");
    if (row.image == Image::Pipe) ::mkfifo(image.c_str(), 0600);
    EXPECT_EQ(package.flash(row.arguments, row.answers, row.faults).status, row.status);
    EXPECT_EQ(versions(package), row.versions);

    // Between the passes the program starts afresh at the first controller.
    unsigned pass = 0;
    std::map<unsigned, unsigned> flashes;
    bool behind = true;
    for (auto const& entry : package.journal()) {
        EXPECT_TRUE(entry.errors.empty()) << entry.sequence << ": " << entry.errors.front();
        if (entry.command == "INQUIRY" && entry.device == "left") {
            pass += behind;
            behind = false;
        } else if (entry.device == "cedar-equal" && entry.command != "INQUIRY") {
            behind = true;
        }
        flashes[pass] += entry.command == "FLASH COMPONENT";
    }
    EXPECT_EQ(flashes[1], row.inDiscovery);
    EXPECT_EQ(flashes[2], row.inUpdate);
}

TEST(CacheModuleFlash, TellsItsSteps) {
    PackageRun const package("cache-module");
    shrink(package);
    RunResult const run = package.flash({}, "yes\nno\n");
    EXPECT_NE(run.output.find("\nUpdating: GoldPIC (FBWC) firmware version : from [5.00] to [7]\n"
                              "Updating: GoldPIC (FBWC) firmware version : from [6.00] to [7]\n"),
              std::string::npos)
        << run.output;
    std::string const log = package.verboseLog();
    std::string const end = "End: flashPIC";
    std::size_t const flash = log.find("Start: flashPIC");
    std::size_t const begin = log.rfind("Inside checkArrayForFBWC", flash);
    ASSERT_NE(begin, std::string::npos);
    EXPECT_EQ(log.substr(begin, log.find(end, flash) + end.size() - begin), R"(Inside checkArrayForFBWC
DiscoveryInfo: FBWCDiscoveryInfo::getDevInfo starts...Tag:FBWC:
getDevInfo iterator devName:FBWC: 
getDevInfo devName matched:FBWC: fw name fbwc-7.rom
Requesting controller information...
OPERATION_WRITE_FLASH_FBWC failed
FBWC Version : 5.000000  
Unit requires firmware update.
Start: flashPICFBWC Version : 5.000000  
FlashPIC: Starts. Tag: FBWC
DiscoveryInfo: FBWCDiscoveryInfo::getDevInfo starts...Tag:FBWC:
getDevInfo iterator devName:FBWC: 
getDevInfo devName matched:FBWC: fw name fbwc-7.rom
FlashPIC: fw file name: fbwc-7.rom
Preparing to flash devices on the FBWC pic...
Setting buffer size to 30000
Requesting FBWC PIC flash.
Flash complete.
The FBWC PIC flash operation succeeded.
Operation return code:0

End: flashPIC)");
}

INSTANTIATE_TEST_SUITE_P(Branches, CacheModuleUpdate, ::testing::ValuesIn(ROWS),
                         [](auto const& row) { return std::string(row.param.name); });

}  // namespace
