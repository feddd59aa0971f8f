// Options and machines that lead to each end of a run: what the console and the logs say, the exit status,
// and the firmware afterwards.

#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "tests/support/package_run.h"

namespace {

using Strings = std::vector<std::string>;
using nlohmann::json;

constexpr char OPENING[] =
    "\n"
    "\tThis program consists of two phases: device discovery and device update.\n"
    "\tNo device will be updated until you answer.\n"
    "\n"
    "Do you want to run device discovery?\n"
    "Finding hardware. This may take a few minutes.\n";
constexpr char HELP[] =
    "   -d <file>    Dumps discovery information in XML format to <file>\n"
    "   -g|-f|-e     Force reflashing of supported items\n"
    "   -k<sw_key>   The firmware type in the XML\n"
    "   -q           Query hardware attached - human readable, see -d\n"
    "   -t<tag>      SCSI device tag of device (required - e.g. QBX41)\n"
    "   -v<version>  Version number of new ROM (required)\n"
    "   -z           Disable flashing in zoned environment\n";
constexpr char REBOOT[] =
    "\nAs part of the reboot process, you must power cycle the server and any external array storage "
    "devices.\n\n";
constexpr char NONE[] = "No devices updated.\n";

class Options : public ::testing::Test {
  protected:
    Options()
        : package("two-controllers"), factory(json::parse(readText(package.directory() / "machine.json"))) {}

    void make(json const& scenario) {
        writeText(package.directory() / "machine.json", scenario.dump());
        package.resetMachine();
    }
    /// The machine with these versions of the two controllers.
    void makeWithFirmware(char const* left, char const* right) {
        json changed = factory;
        changed["devices"][0]["firmware"] = left;
        changed["devices"][1]["firmware"] = right;
        make(changed);
    }
    std::string file(char const* name) const { return readText(package.directory() / name); }
    /// Of the left and the right controller: running and stored version, state.
    std::string firmware() const {
        return package.firmware("left").substr(5) + ", " + package.firmware("right").substr(6);
    }
    std::string logBehindSummary() const {
        std::string const log = package.componentLog();
        return log.substr(log.find("\n\n") + 2);
    }
    std::size_t exchanges() const {
        std::size_t count = 0;
        for (auto const& entry : package.journal()) {
            count += entry.event == "exchange" ? 1 : 0;
        }
        return count;
    }

    PackageRun package;
    json const factory;
};

TEST_F(Options, TheirTextsComeInEachPassAndTheLogGoesWhereTheySay) {
    struct {
        char const* option;
        char const* text;
        bool redirects;
    } const cases[] = {
        {"-iother.log", "Logging to other.log\n", false},
        {"-lother.log", "Logging to other.log\n", true},
        {"-m", "Parameter 'm' deprecated - ignoring\n", false},
        {"-uother.xml", "Parameter 'u' XML file ignored (using defaults)\n", false},
        {"-x~89abcdef", "0x89abcdef\n", false},
        {"-x~0xFFF", "0xfff\n", false},
        {"-x~zero", "0x0\n", false},
        // The others are silent.
        {"-xd90", "", false},
        {"-xq", "", false},
        {"-c", "", false},
        {"-L", "", false},
        {"-o", "", false},
        {"-F", "", false},
        {"-vX", "", false},
        {"-kX", "", false},
    };
    for (auto const& one : cases) {
        SCOPED_TRACE(one.option);
        package.resetMachine();
        std::filesystem::remove(package.directory() / "other.log");
        RunResult const run = package.flash({one.option}, "yes\nno\n");
        EXPECT_EQ(run.status, 5);
        EXPECT_EQ(run.output,
                  std::string(OPENING) + one.text +
                      "Found 2 devices.\n\nDo you want to upgrade the device that has older ROM?\n\n" +
                      one.text + NONE);
        EXPECT_EQ(run.errors, "(yes/no) (yes/no) ");
        std::string const log = one.redirects ? file("other.log") : package.componentLog();
        EXPECT_TRUE(log.starts_with("Discovered applicable devices:\n")) << "the first pass";
        EXPECT_TRUE(log.ends_with("Upgrade cancelled by user.\nNo devices updated.\n")) << "the second";
        EXPECT_EQ(one.redirects ? package.componentLog() : file("other.log"), "");
    }
}

// What stood behind -h in its cluster was once read by the next pass.
TEST_F(Options, HelpEndsEachPassAsItsClusterBegins) {
    for (char const* option : {"-h", "-hs", "-hsq", "-hd"}) {
        RunResult const run = package.flash({option}, "yes\n");
        EXPECT_EQ(run.status, 3) << option;
        EXPECT_EQ(run.output, std::string(OPENING) + HELP +
                                  "Found 0 devices.\n\nNo device will be updated.\n" + HELP + NONE);
    }
    EXPECT_EQ(exchanges(), 0U);
}

/// What -f and the answers mean for newer and for current controllers.
TEST_F(Options, QuestionsAndMarksByWhatTheControllersHold) {
    static std::string const reflash = "Do you want to reflash the device that has current ROM?\n";
    static std::string const downgrade = "Do you want to downgrade the device that has newer ROM?\n";
    static std::string const noReflash = "Reflash cancelled by user.\n";
    static std::string const noDowngrade = "Downgrade cancelled by user.\n";
    static std::string const any = "any text";
    struct {
        char const* left;
        char const* right;
        std::string option;
        char const* answers;
        int status;
        std::string questions;  ///< the console from behind the discovery
        std::string log;        ///< from behind the summary
        char const* firmware;
    } const cases[] = {
        {"6.80", "6.64", "-f", "yes\nno\nno\n", 5, reflash + "\n" + downgrade + "\n" + NONE,
         noReflash + noDowngrade + NONE, "6.80/6.80 ok, 6.64/6.64 ok"},
        {"6.80", "6.64", "-f", "yes\nno\nyes\n", 1, any, any, "6.80/6.64 restart needed, 6.64/6.64 ok"},
        {"6.80", "6.80", "-L", "yes\n", 3, NONE, NONE, "6.80/6.80 ok, 6.80/6.80 ok"},
        {"6.80", "6.64", "-s", "", 3, any, NONE, "6.80/6.80 ok, 6.64/6.64 ok"},
        {"6.64", "6.64", "-f", "yes\nno\n", 5, reflash + "\n" + NONE, noReflash + NONE,
         "6.64/6.64 ok, 6.64/6.64 ok"},
        {"6.64", "6.64", "-f", "yes\nquit\n", 3, reflash + NONE, NONE, "6.64/6.64 ok, 6.64/6.64 ok"},
        {"6.64", "6.64", "-f", "yes\nyes\n", 1, any, any,
         "6.64/6.64 restart needed, 6.64/6.64 restart needed"},
        {"6.64", "6.64", "-L", "yes\n", 2, NONE, NONE, "6.64/6.64 ok, 6.64/6.64 ok"},
    };
    for (auto const& one : cases) {
        SCOPED_TRACE(std::string(one.left) + one.right + one.option + one.answers);
        makeWithFirmware(one.left, one.right);
        RunResult const run = package.flash({one.option}, one.answers);
        EXPECT_EQ(run.status, one.status);
        EXPECT_EQ(firmware(), one.firmware);
        if (one.questions != any) {
            EXPECT_EQ(run.output, OPENING + std::string("Found 2 devices.\n\n") + one.questions);
        }
        if (one.log != any) {
            EXPECT_EQ(logBehindSummary(), one.log);
        }
    }
}

TEST_F(Options, NewerControllerIsADowngradeInTheDocumentAndMarkedBySilentForce) {
    makeWithFirmware("6.80", "6.64");
    EXPECT_EQ(package.flash({"-d", "out.xml", "-s"}).status, 3);
    EXPECT_NE(file("out.xml").find("<version value=\"6.64\"/>\n<active_version value=\"6.80\"/>\n"
                                   "<action value=\"downgrade\"/>\n"),
              std::string::npos);
    EXPECT_EQ(package.flash({"-f", "-s"}).status, 1);
    EXPECT_EQ(firmware(), "6.80/6.64 restart needed, 6.64/6.64 restart needed");
}

TEST_F(Options, SecondDumpToOnePathIsAppended) {
    package.flash({"-d", "once.xml", "-s"});
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(package.flash({"-d", "twice.xml", "-s"}).status, 3);
    }
    EXPECT_NE(file("once.xml"), "");
    EXPECT_EQ(file("twice.xml"), file("once.xml") + file("once.xml"));
}

TEST_F(Options, MachineWithoutStorageHasAnEmptyDocumentAndNothingToUpdate) {
    make({{"devices", json::array()}});
    EXPECT_EQ(package.flash({"-d", "out.xml", "-s"}).status, 3);
    EXPECT_NE(file("out.xml").find("<devices>\n</devices>\n</vq_rom_discovery>\n"), std::string::npos);
    EXPECT_EQ(package.flash({"-q", "-s"}).status, 0);
    EXPECT_EQ(package.flash({"-s"}).status, 3);
    EXPECT_EQ(package.flash({"-f", "-s"}).status, 3);
}

/// One of two older controllers is changed: its failure is the status, and the one behind it isn't reached.
TEST_F(Options, FailureIsTheStatusAndEndsTheRun) {
    static constexpr char REFUSED[] = "Device refused OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE...\n";
    static constexpr char UNTOLD[] =
        "The array flash operation failed:\n   No status information is available.\n";
    static std::string const first = "Updated: TR56 Slot: 1 from 6.40 to 6.64\n";
    static std::string const second = "Updated: TR58 Slot: 2 from 6.40 to 6.64\n";
    struct {
        int device;
        char const* change;
        char const* fault;  ///< of the left controller's flash command; null for none
        int status;
        std::string log;
        char const* verbose;
        char const* firmware;
    } const cases[] = {
        {0, R"({"identify": {"dwEncryptionStatus": 16}})", nullptr, 6, NONE, REFUSED,
         "6.40/6.40 ok, 6.40/6.40 ok"},
        {1, R"({"identify": {"dwEncryptionStatus": 16}})", nullptr, 6, first, REFUSED,
         "6.40/6.64 restart needed, 6.40/6.40 ok"},
        // Other bits of that word lock nothing here.
        {0, R"({"identify": {"dwEncryptionStatus": 15}})", nullptr, 1, first + second, "",
         "6.40/6.64 restart needed, 6.40/6.64 restart needed"},
        // A TR57 is flashed, and then nothing tells which controller's boot strap is its. It ended the run.
        {0,
         R"({"pci": {"subsystem_device": "0x3351"}, "subsystem": {"sControllerSerialNumber": "0000000000000000"}})",
         nullptr, 1,
         "Updated: TR57 Slot: 1 from 6.40 to 6.64\n"
         "Skipped: TR57: no serial number: NVRAM bytes 2045 and 2046 were left as they are\n" +
             second,
         "setArrayShiftBit: TR57 skipped: no serial number\n",
         "6.40/6.64 restart needed, 6.40/6.64 restart needed"},
        // Both flashes of the controller fail; the first alone.
        {0, "{}", "", 9, "Failed: TR56 Slot: 1 from 6.40 to 6.64\n" + std::string(NONE), UNTOLD,
         "6.40/6.40 paused, 6.40/6.40 ok"},
        {0, "{}", R"(, "nth": 1)", 1, first + second, UNTOLD,
         "6.40/6.64 restart needed, 6.40/6.64 restart needed"},
    };
    writeText(
        package.directory() / "dogwood.xml",
        "<ksl_package><sw_keys><sw_keys_and><sw_key name=\"33\"/></sw_keys_and></sw_keys></ksl_package>");
    for (auto const& one : cases) {
        SCOPED_TRACE(std::string(one.change) + one.firmware);
        json changed = factory;
        changed["devices"][1]["firmware"] = "6.40";
        changed["devices"][one.device].merge_patch(json::parse(one.change));
        make(changed);
        Strings faults;
        if (one.fault != nullptr) {
            faults.push_back(R"({"match": {"device": "left", "command": "0xF7")" + std::string(one.fault) +
                             R"(}, "action": {"scsi_status": 2, "sense": [5, 38, 0]}})");
        }
        EXPECT_EQ(package.flash({"-s"}, "", faults).status, one.status);
        EXPECT_EQ(firmware(), one.firmware);
        EXPECT_EQ(logBehindSummary(), one.log + (one.status == 1 ? REBOOT : ""));
        EXPECT_NE(package.verboseLog().find(one.verbose), std::string::npos);
    }
}

}  // namespace
