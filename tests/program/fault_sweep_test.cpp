// Every exchange of an update is failed in turn, in every way that a device or a driver can fail it. Each run
// must end with a code of the table, without a crash or a sanitizer's report, and leave every controller with
// firmware that it was sent whole.

#include <gtest/gtest.h>

#include <ostream>
#include <set>

#include "tests/support/package_run.h"

namespace {

struct FaultKind {
    char const* name;
    char const* action;  ///< of the fault plan, without the exchange's number
};

void PrintTo(FaultKind const& kind, std::ostream* out) {
    *out << kind.name;
}

constexpr FaultKind KINDS[] = {
    {"Errno", R"("errno": "EIO")"},
    {"CheckCondition", R"("scsi_status": 2, "sense": [4, 68, 0])"},
    {"CommandStatus4", R"("command_status": 4)"},
    {"Truncated", R"("truncate": 7)"},
};

/// Words by which a sanitizer makes itself known.
bool holdsReport(std::string const& text) {
    for (char const* word : {"Sanitizer", "runtime error"}) {
        if (text.find(word) != std::string::npos) {
            return true;
        }
    }
    return false;
}

class FaultSweep : public ::testing::TestWithParam<FaultKind> {};

TEST_P(FaultSweep, TwoControllers) {
    PackageRun package("two-controllers");
    ASSERT_EQ(package.flash({"-s"}).status, 1);
    std::size_t exchanges = 0;
    for (auto const& entry : package.journal()) {
        exchanges += entry.event == "exchange" ? 1 : 0;
    }
    ASSERT_EQ(exchanges, 86U) << "two passes of 13 over two controllers, and two flashes of 17";

    std::string const image = readText(package.directory() / "dogwood-6.64.rom");
    std::set<int> statuses;
    for (std::size_t exchange = 1; exchange <= exchanges; ++exchange) {
        SCOPED_TRACE("exchange " + std::to_string(exchange));
        package.resetMachine();
        RunResult const run = package.flash({"-s"}, "",
                                            {R"({"match": {"exchange": )" + std::to_string(exchange) +
                                             R"(}, "action": {)" + GetParam().action + "}}"});
        statuses.insert(run.status);
        EXPECT_TRUE(run.status >= 0 && run.status <= 10) << run.status << "\n" << run.errors;
        EXPECT_FALSE(holdsReport(run.errors)) << run.errors;
        EXPECT_EQ(package.firmware("right"), "right 6.64/6.64 ok") << "nothing was sent to it";
        std::string const older = package.firmware("left");
        EXPECT_TRUE(older.find("left 6.40/6.40") == 0 || older.find("left 6.40/6.64") == 0) << older;
        if (older.find("left 6.40/6.64") == 0) {
            simulator::Bytes const rom = package.romImage("left");
            EXPECT_EQ(std::string(rom.begin(), rom.end()), image);
        }
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
            EXPECT_NE(package.componentLog().find("Updated: TR56"), std::string::npos);
        }
    }
    EXPECT_TRUE(statuses.count(1) == 1) << "most single faults leave the update to succeed";
}

INSTANTIATE_TEST_SUITE_P(EveryExchange, FaultSweep, ::testing::ValuesIn(KINDS),
                         [](auto const& kind) { return std::string(kind.param.name); });

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
