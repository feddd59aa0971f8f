// Every exchange of an update is failed in turn, in every way that a device or a driver can fail it. Each run
// must end with a code of the table, without a crash or a sanitizer's report, and leave every controller with
// firmware that it was sent whole.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>

#include "tests/support/package_run.h"

namespace {

struct FaultKind {
    char const* name;
    char const* action;  ///< of the fault plan, without the exchange's number
};

constexpr FaultKind KINDS[] = {
    {"Errno", R"("errno": "EIO")"},
    {"CheckCondition", R"("scsi_status": 2, "sense": [4, 68, 0])"},
    {"CommandStatus4", R"("command_status": 4)"},
    {"Truncated", R"("truncate": 7)"},
};

constexpr char EVERY_CONTROLLER[] =
    "<ksl_package><sw_keys><sw_keys_and><sw_key name=\"33\"/></sw_keys_and></sw_keys></ksl_package>";

/// A sanitized program takes ten times as long: there each kind of fault takes every eighth exchange, from
/// another one on, and the optimised build takes all.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t STEP = 8;
#else
constexpr std::size_t STEP = 1;
#endif

/// Of a sweep in steps: each kind of fault has its own.
std::size_t firstExchange(FaultKind const& kind, std::size_t step) {
    for (std::size_t i = 0; i < std::size(KINDS); ++i) {
        if (std::strcmp(KINDS[i].name, kind.name) == 0) return 1 + i * step / std::size(KINDS);
    }
    return 1;
}

/// Words by which a sanitizer makes itself known.
bool holdsReport(std::string const& text) {
    for (char const* word : {"Sanitizer", "runtime error"}) {
        if (text.find(word) != std::string::npos) {
            return true;
        }
    }
    return false;
}

/// What is changed in the package's machine, and how its older controller, "left", is updated.
struct Scenario {
    char const* name;
    char const* change;  ///< of the older controller, in the scenario; null: both controllers as they are
    std::vector<std::string> arguments;
    std::size_t exchanges;  ///< of an update that nothing disturbs: what the sweep goes through
    int status;             ///< which it ends with
};

Scenario const SCENARIOS[] = {
    {"TwoControllers", nullptr, {"-s"}, 102, 1},
    {"TR80", R"({"pci": {"subsystem_device": "0x3397"}})", {"-s"}, 68, 1},
    {"ZonedAndLeftAlone", R"({"identify": {"dwEvenMoreControllerFlags": 512}})", {"-s", "-zx"}, 34, 3},
    {"WithoutDowntime",
     R"({"pci": {"subsystem_device": "0x33C1"}, "supports_tofu": true,
         "identify": {"dwEvenMoreControllerFlags": 1024}})",
     {"-s", "-o"},
     68,
     1},
    {"ZenoS8c", R"({"pci": {"subsystem_device": "0x33C3"}})", {"-s", "-o"}, 68, 1},
};

class FaultSweep : public ::testing::TestWithParam<std::tuple<Scenario, FaultKind>> {
  protected:
    FaultSweep() : package("two-controllers"), scenario(std::get<0>(GetParam())) {
        if (scenario.change == nullptr) return;
        auto machine = nlohmann::json::parse(readText(package.directory() / "machine.json"));
        machine["devices"].erase(1);
        machine["devices"][0].merge_patch(nlohmann::json::parse(scenario.change));
        writeText(package.directory() / "machine.json", machine.dump());
        writeText(package.directory() / "dogwood.xml", EVERY_CONTROLLER);
        package.resetMachine();
    }

    std::size_t exchanges() const {
        std::size_t count = 0;
        for (auto const& entry : package.journal()) {
            count += entry.event == "exchange" ? 1 : 0;
        }
        return count;
    }
    void expectFirmwareWholeOrUntouched(std::string const& image) const {
        if (scenario.change == nullptr) {
            EXPECT_EQ(package.firmware("right"), "right 6.64/6.64 ok") << "nothing was sent to it";
        }
        std::string const older = package.firmware("left");
        if (older.find("left 6.40/6.40") != 0) {
            EXPECT_TRUE(older.find("left 6.40/6.64") == 0 || older.find("left 6.64/6.64") == 0) << older;
            simulator::Bytes const rom = package.romImage("left");
            EXPECT_EQ(std::string(rom.begin(), rom.end()), image);
        }
    }

    PackageRun package;
    Scenario const& scenario;
};

TEST_P(FaultSweep, EndsWellAtEachExchange) {
    ASSERT_EQ(package.flash(scenario.arguments).status, scenario.status);
    ASSERT_EQ(exchanges(), scenario.exchanges)
        << "two passes of 17 for each controller, and two flashes of 17 of the older";
    std::string const image = readText(package.directory() / "dogwood-6.64.rom");
    std::set<int> statuses;
    for (std::size_t exchange = firstExchange(std::get<1>(GetParam()), STEP); exchange <= scenario.exchanges;
         exchange += STEP) {
        SCOPED_TRACE("exchange " + std::to_string(exchange));
        package.resetMachine();
        RunResult const run = package.flash(scenario.arguments, "",
                                            {R"({"match": {"exchange": )" + std::to_string(exchange) +
                                             R"(}, "action": {)" + std::get<1>(GetParam()).action + "}}"});
        statuses.insert(run.status);
        EXPECT_TRUE(run.status >= 0 && run.status <= 10) << run.status << "\n" << run.errors;
        EXPECT_FALSE(holdsReport(run.errors)) << run.errors;
        expectFirmwareWholeOrUntouched(image);
        std::string struck;
        for (auto const& entry : package.journal()) {
            struck += entry.fault.empty() ? "" : entry.command;
            for (std::string const& error : entry.errors) {
                // Nobody looks at the result of a pause, so a failed one shows when the flash comes.
                EXPECT_EQ(error, "protocol: flash while background activity isn't paused") << entry.sequence;
                EXPECT_EQ(struck, "PAUSE BACKGROUND ACTIVITY");
            }
        }
        EXPECT_FALSE(struck.empty()) << "the fault never came";
        if (run.status == 1) {
            EXPECT_NE(package.componentLog().find("Updated: "), std::string::npos);
        }
    }
    EXPECT_TRUE(statuses.count(scenario.status) == 1) << "most single faults leave the run as it is";
}

INSTANTIATE_TEST_SUITE_P(EveryExchange, FaultSweep,
                         ::testing::Combine(::testing::ValuesIn(SCENARIOS), ::testing::ValuesIn(KINDS)),
                         [](auto const& row) {
                             return std::string(std::get<0>(row.param).name) + std::get<1>(row.param).name;
                         });

/// The step of the sweeps over the larger packages, which have ten times the exchanges: the test run takes a
/// sample, another one of each kind of fault, and KSL_SWEEP_STEP=1 goes through all of them by hand.
std::size_t sweepStep() {
    char const* const text = std::getenv("KSL_SWEEP_STEP");
    int const step = text != nullptr ? std::atoi(text) : STEP == 1 ? 96 : 600;
    return static_cast<std::size_t>(std::max(step, 1));
}

struct Package {
    char const* name;
    char const* testName;
    std::size_t exchanges;  ///< at least so many has an update that nothing disturbs
    /// Devices that no file is for, or that are current or newer, with what they run and store.
    std::vector<char const*> untouched;
};

Package const PACKAGES[] = {
    {"enclosures",
     "Enclosures",
     800,
     {"left 6.64/6.64", "right 6.64/6.64", "adapter/hba-c 3.00/3.00 ok", "adapter/hba-d 0.30/0.30 ok"}},
    {"everything",
     "Everything",
     800,
     {"middle 6.64/6.64", "right 6.72/6.72", "middle/shelf-a 1.36/1.36 ok", "right/tower-a 3.10/3.10 ok",
      "left/disk-older HP01/HP01", "left/disk-older/carrier 10/10", "middle/sata-older HPG1/HPG1",
      "middle/tape-older 1.02/1.02", "adapter/hba-disk HP01/HP01", "adapter/hba-c 1.50/1.50 ok",
      "cedar-older/cache 5/5", "cedar-newer/cache 9/9"}},
    {"cache-module",
     "CacheModule",
     300,
     {"middle 6.64/6.64", "right 6.72/6.72", "left/internal 1.04/1.04 ok",
      "cedar-older/drawer-a 1.02/1.02 ok", "left/disk-older/carrier 10/10", "adapter/hba-c 1.50/1.50 ok",
      "cedar-equal/cache 7/7", "cedar-newer/cache 9/9"}},
};

class PackageSweep : public ::testing::TestWithParam<std::tuple<Package, FaultKind>> {
  protected:
    PackageSweep() : package(std::get<0>(GetParam()).name) {
        for (auto const& device : package.devices())
            m_factory[device.name] = device.stored;
    }
    /// Every device has the firmware that it left the factory with, or a whole file of the package.
    void expectFirmwareWholeOrUntouched() const {
        for (char const* untouched : std::get<0>(GetParam()).untouched) {
            std::string const name(untouched, std::strchr(untouched, ' '));
            EXPECT_EQ(package.firmware(name).find(untouched), 0U) << package.firmware(name);
        }
        for (auto const& device : package.devices()) {
            auto const before = m_factory.find(device.name);
            ASSERT_NE(before, m_factory.end());
            if (device.stored == before->second) continue;
            EXPECT_NE(package.fileStoredIn(device.name), "") << device.name;
        }
    }

    PackageRun package;

  private:
    std::map<std::string, std::string> m_factory;  ///< stored firmware by the device's name
};

TEST_P(PackageSweep, EndsWellAtEachExchange) {
    auto const& [of, kind] = GetParam();
    std::string const fault = std::string(R"(}, "action": {)") + kind.action + "}}";
    // A chunk has no reply that could be cut, so the device has it and the flash goes on.
    bool const refuses = kind.name != std::string("Truncated");
    std::map<int, int> statuses;
    for (std::size_t exchange = firstExchange(kind, sweepStep());; exchange += sweepStep()) {
        SCOPED_TRACE("exchange " + std::to_string(exchange));
        package.resetMachine();
        RunResult const run =
            package.flash({"-s"}, "", {R"({"match": {"exchange": )" + std::to_string(exchange) + fault});
        auto const journal = package.journal();
        auto const struck = std::find_if(journal.begin(), journal.end(),
                                         [](auto const& entry) { return !entry.fault.empty(); });
        if (struck == journal.end()) {
            EXPECT_GT(exchange, of.exchanges) << "the fault never came";
            break;
        }
        ++statuses[run.status];
        EXPECT_TRUE(run.status >= 0 && run.status <= 10) << run.status << "\n" << run.errors;
        EXPECT_FALSE(holdsReport(run.errors)) << run.errors;
        expectFirmwareWholeOrUntouched();
        std::string const log = package.componentLog();
        if (struck->command == "WRITE BUFFER") {
            EXPECT_EQ(run.status, refuses ? 9 : 1) << struck->unit;
            EXPECT_TRUE(!refuses || log.find("Failed: ENCL ") != std::string::npos) << struck->unit << "\n"
                                                                                    << log;
        } else if (struck->command == "FLASH COMPONENT") {
            EXPECT_EQ(run.status, refuses ? 9 : 1) << log;
        }
    }
    for (auto const& [status, count] : statuses)
        RecordProperty("ended_with_" + std::to_string(status), count);
}

INSTANTIATE_TEST_SUITE_P(EachPackage, PackageSweep,
                         ::testing::Combine(::testing::ValuesIn(PACKAGES), ::testing::ValuesIn(KINDS)),
                         [](auto const& row) {
                             return std::string(std::get<0>(row.param).testName) +
                                    std::get<1>(row.param).name;
                         });

/// The two flashes of one controller, failed at each step: the second flash's result is the one that counts.
TEST(FlashFailure, TheSecondFlashDecides) {
    struct Row {
        char const* command;
        int nth;  ///< which of the run's commands of that name
        int status;
        char const* older;
        char const* log;
    };
    static Row const rows[] = {
        {"COLLECT BUFFER", 3, 1, "left 6.40/6.64 restart needed", "Updated: TR56"},
        {"COLLECT BUFFER", 13 + 3, 9, "left 6.40/6.64 restart needed, paused", "Failed: TR56"},
        {"FLASH CONTROLLER FIRMWARE", 1, 1, "left 6.40/6.64 restart needed", "Updated: TR56"},
        {"FLASH CONTROLLER FIRMWARE", 2, 9, "left 6.40/6.64 restart needed, paused", "Failed: TR56"},
        {"PAUSE BACKGROUND ACTIVITY", 1, 1, "left 6.40/6.64 restart needed", "Updated: TR56"},
        {"RESUME BACKGROUND ACTIVITY", 2, 1, "left 6.40/6.64 restart needed, paused", "Updated: TR56"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(std::string(row.command) + " " + std::to_string(row.nth));
        PackageRun const package("two-controllers");
        RunResult const run = package.flash(
            {"-s"}, "",
            {std::string(R"({"match": {"command": ")") + row.command + R"(", "nth": )" +
             std::to_string(row.nth) + R"(}, "action": {"scsi_status": 2, "sense": [4, 68, 0]}})"});
        EXPECT_EQ(run.status, row.status);
        EXPECT_EQ(package.firmware("left"), row.older);
        EXPECT_NE(package.componentLog().find(row.log), std::string::npos) << package.componentLog();
    }
}

}  // namespace
