// Machines that are not what they seem: the program must end with a code of its table and touch no device
// that wasn't chosen.

#include <cstdio>
#include <nlohmann/json.hpp>

#include "tests/program/hostile_fixture.h"

namespace hostile {
namespace {

std::size_t countOf(std::string const& text, std::string const& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

class HostileMachine : public HostileInput {
  protected:
    HostileMachine() : m_scenario(nlohmann::json::parse(readText(file("machine.json")))) {}

    nlohmann::json& older() { return m_scenario["devices"][0]; }
    nlohmann::json scenario() const { return m_scenario; }
    void make(nlohmann::json const& scenario) {
        replace("machine.json", scenario.dump());
        package.resetMachine();
    }

  private:
    nlohmann::json m_scenario;
};

TEST_F(HostileMachine, SysfsEntriesThatAreNotWhatTheySeem) {
    nlohmann::json const dangling = {{"dangling", true}};
    struct Row {
        char const* file;
        nlohmann::json value;
        bool isFound;
    };
    Row const rows[] = {
        {"class", nullptr, false},
        {"class", "", false},
        {"class", "0x0", false},
        {"class", dangling, false},
        {"class", std::string(1000000, '0'), false},
        {"class", "0x01" + std::string(100000, '%'), true},
        {"vendor", nullptr, false},
        {"vendor", "0x1", false},
        {"vendor", "%s%n%s%n", false},
        {"device", dangling, false},
        {"device", "0x" + std::string(1000000, 'F'), true},
        {"subsystem_vendor", "", false},
        {"subsystem_device", "0xGGGG", false},
        {"driver", nullptr, false},
        {"driver", "xqrth", false},
        {"driver", dangling, false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.file + (" " + row.value.dump().substr(0, 30)));
        nlohmann::json changed = scenario();
        changed["devices"][0]["pci"]["sysfs"][row.file] = row.value;
        make(changed);
        // With the older controller out of sight, all that is left is current.
        EXPECT_EQ(row.isFound ? 1 : 2, run({"-s"}).status);
        EXPECT_EQ(row.isFound ? FLASHED : OLD, package.firmware("left"));
        if (!row.isFound) expectUntouched();
    }
}

TEST_F(HostileMachine, TextsOfDevicesAreNeverFormats) {
    nlohmann::json changed = scenario();
    changed["devices"][0]["product"] = "%s%n%s%n%s%n%s%n";
    changed["devices"][0]["serial"] = "%n%n%n%n\"<&>";
    changed["devices"][0]["firmware"] = "%n%s";
    changed["devices"][0]["pci"]["slot"] = "9.-_slot";
    make(changed);
    EXPECT_EQ(1, run({"-s"}).status);
    EXPECT_NE(std::string::npos,
              package.componentLog().find("Updated: TR56 Slot: 9.-_slot from %n%s to 6.64\n"));
    EXPECT_NE(std::string::npos, package.verboseLog().find("%s%n%s%n%s%n%s%n"));
    EXPECT_EQ(3, run({"-d", "out.xml", "-s"}).status);
}

TEST_F(HostileMachine, NoMachineAtAll) {
    make({{"devices", nlohmann::json::array()}});
    for (char const* directory : {"sys/bus/pci/devices", "sys/bus/pci", "sys", "dev"}) {
        fs::remove_all(package.machineDirectory() / "root" / directory);
        EXPECT_EQ(3, run({"-s"}).status) << directory;
        EXPECT_EQ(0, run({"-q", "-s"}).status) << directory;
    }
}

/// The table of a run has 1,024 rows. What goes beyond is refused by name, and the first are served.
TEST_F(HostileMachine, MoreControllersThanRows) {
    constexpr unsigned COUNT = 1100;
    constexpr unsigned ROWS = 1024;
    nlohmann::json devices = nlohmann::json::array();
    for (unsigned i = 0; i < COUNT; ++i) {
        char address[16];
        std::snprintf(address, sizeof address, "0000:%02x:%02x.%x", i >> 8, i >> 3 & 31, i & 7);
        nlohmann::json device = older();
        device["name"] = "c" + std::to_string(i);
        device["serial"] = "SERIAL" + std::to_string(i);
        device["pci"]["address"] = address;
        device["pci"].erase("slot");
        device["identify"]["bControllerMode"] = 1;  // a plain adapter is asked least
        devices.push_back(device);
    }
    make({{"devices", devices}});
    EXPECT_EQ(3, run({"-d", "out.xml", "-s"}).status);
    EXPECT_EQ(ROWS, countOf(readText(file("out.xml")), "<device>"));
    std::string const log = package.verboseLog();
    EXPECT_NE(std::string::npos, log.find("refused: the table's 1024 rows are taken\n"));
    EXPECT_EQ(COUNT - ROWS, countOf(log, "refused: the table's 1024 rows are taken\n"));
    EXPECT_NE(
        std::string::npos,
        package.componentLog().find("Applicable devices found:         1024 (1024 Controller 0 Expander)\n"));
    EXPECT_EQ(0U, writes());
}

}  // namespace
}  // namespace hostile
