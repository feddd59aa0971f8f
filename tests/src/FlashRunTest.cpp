// The walk of a pass over the children of the root, the code that a pass ends with, and what an exception
// leaves behind. The root and its children are made up; the checks are the real ones.

#include "src/flashRun.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "common/sleep.h"
#include "src/tolkflash.h"
#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

constexpr char FLASH[] = "OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE";
constexpr char FLASH_SEP[] = "OPERATION_WRITE_FLASH_SEP_FIRMWARE";
constexpr char FLASH_CACHE[] = "OPERATION_WRITE_FLASH_FBWC";

/// A root whose children are what the test adds.
class FakeRoot : public FakeDevice {
  public:
    FakeRoot() : FakeDevice("ATTR_VALUE_TYPE_MOD_ROOT", "root", {}) {}
    ResultList Reenumerate(ReenumeratePredicate const&) override {
        if (onSearch) onSearch();
        return {};
    }
    std::function<void()> onSearch;
};

DevicePointer theRoot;

class FlashRunTest : public RunTest {
  protected:
    FlashRunTest() : m_sleep(Common::Synchronization::SetSleepFunction([](unsigned int) {})) {
        RegisterOperations();  // once in a process; it names the real root
        Core::DeviceFactory::SetRootCreator([] { return theRoot; });
        freshRoot();
        cli.setSilent(true);
        gblDeviceTags = {"33541E5C"};
        writeFile("controller.rom", "firmware");
        DiscoveryInfo::Instance()->setDevInfo(0, "controller.rom", "6.64", "");
        catalogue("ENCL 1", "1.20");
    }
    ~FlashRunTest() override {
        forgetRoot();
        Core::DeviceFactory::SetRootCreator(nullptr);
        Common::Synchronization::SetSleepFunction(m_sleep);
    }

    void freshRoot() {
        forgetRoot();
        root = new FakeRoot;
        theRoot = DevicePointer(root);
    }
    /// As before the first walk, but for the switches.
    void prepare(char const* children) {
        freshRoot();
        forgetRows();
        gblFound = gblFlashed = gblRefresh = gblDowngrades = gblUpgrades = 0;
        gblWwIdList.clear();
        row("TR56", true);
        row("ENCL 1", true);
        add(children);
        takeVerboseLog();
    }

    /// Adds a child for each letter, which is also its marketing name, by which the log tells who was
    /// visited:
    ///   d, s     drive; solid state drive
    ///   c, C, X  controller TR56, older, with a yes for it, whose flash ends with 0, 9, 8
    ///   a, A, K  adapter with an older enclosure processor, with a yes for it, whose flash ends with 0, 9, 8
    ///   t, u     of a type that nobody checks; of no type
    void add(char const* letters) {
        for (std::string name; *letters != '\0'; ++letters) {
            name = *letters;
            struct {
                std::string letters;
                char const* type;
                Facts facts;
            } const kinds[] = {
                {"d", "ATTR_VALUE_TYPE_PHYSICAL_DRIVE", {{"ATTR_NAME_INTERFACE", "SAS"}}},
                {"s", "ATTR_VALUE_TYPE_PHYSICAL_DRIVE", {{"ATTR_NAME_INTERFACE", "SAS_SSD"}}},
                {"cCX",
                 "ATTR_VALUE_TYPE_ARRAY_CONTROLLER",
                 {{"ATTR_NAME_CONTROLLER_NAME", "TR56"},
                  {"ATTR_NAME_SUBSYSTEM_ID", "509358932"},
                  {"ATTR_NAME_FIRMWARE_VERSION", "6.40"}}},
                {"aAK", "ATTR_VALUE_TYPE_HBA", {}},
                {"tu", "ATTR_VALUE_TYPE_TAPE_DRIVE", {}},
            };
            for (auto const& kind : kinds) {
                if (kind.letters.find(name) == std::string::npos) continue;
                Fake device(kind.type, name, kind.facts);
                device->Receive(Core::Attribute("ATTR_NAME_MARKETING_NAME", name.c_str()));
                Core::OperationReturn const result = std::strchr("CA", name[0])
                                                         ? Core::OperationReturn("ATTR_VALUE_X")
                                                     : std::strchr("XK", name[0]) ? failureWord(0x80000000)
                                                                                  : Core::OperationReturn();
                if (kind.letters == "cCX") device->offer(FLASH).results = {result, result};
                if (kind.letters == "aAK") {
                    device->offer(FLASH_SEP).results = {result};
                    device.add(fakeSep("ENCL 1", "1.10", name.c_str()));
                }
                if (name == "u") device->Clear("ATTR_NAME_TYPE");
                root->receive(DevicePointer(device));
            }
        }
    }

    /// The letters of the children that the walk took note of.
    std::string visited() {
        std::istringstream log(takeVerboseLog());
        std::string letters;
        for (std::string line; std::getline(log, line);) {
            if (line.starts_with("Device: ")) letters += line.substr(8);
            if (line == "Missing Name attribute - api error") letters += 'u';
        }
        return letters;
    }

    FakeRoot* root = nullptr;  ///< owned by theRoot

  private:
    static void forgetRoot() {
        pRoot = DevicePointer();
        Core::DeviceFactory::ForgetRoot();
        theRoot = DevicePointer();
    }

    Common::Synchronization::SleepFunction m_sleep;
};

TEST_F(FlashRunTest, WalkGoesOnOrEndsByTheKindOfTheChildThatFailed) {
    struct {
        char const* children;
        bool interrupted;  ///< the user said no to a group
        int code;
        char const* visited;
    } const cases[] = {
        {"", false, 3, ""},       {"utd", false, 3, "utd"},
        {"dsa", false, 1, "ds"},   // a drive with a result ends it
        {"Cad", false, 9, "C"},    // and so does a controller
        {"cXd", false, 8, "cX"},   // but not one that went well
        {"Kad", false, 8, "Kad"},  // an adapter never does, and its failure isn't forgotten
        {"KAd", false, 9, "KAd"},  // except for a later one
        {"AKd", false, 8, "AKd"}, {"Kd", true, 5, "Kd"},  // a no drops an adapter's failure
        {"KC", true, 9, "KC"},                            // and never a controller's
    };
    for (auto const& one : cases) {
        SCOPED_TRACE(one.children);
        begin(update);
        prepare(one.children);
        gblFound = 1;
        gblFlashInterrupt = one.interrupted;
        EXPECT_EQ(xqrthflash(), one.code);
        EXPECT_EQ(visited(), one.visited);
    }
}

/// The first rule that fits decides, so rows stand for the border between each two rules.
TEST_F(FlashRunTest, CodeOfAPass) {
    constexpr bool NO = false, YES = true;
    struct {
        int found, flashed, refresh, force;
        bool flashing, interrupted;
        int walk;  ///< what the walk ends with: 1 a drive, 9 a controller
        int code;
        bool saysNone;
    } const cases[] = {
        // Nothing found, in a pass that may flash.
        {0, 0, 0, 0, YES, NO, 0, 3, true},
        {0, 2, 0, 0, YES, YES, 0, 3, true},
        {0, 2, 0, 0, YES, NO, 1, 3, true},
        {0, 0, 0, 0, NO, NO, 0, 0, false},
        {0, 0, 0, 0, NO, NO, 1, 1, false},
        // Something flashed and nothing failed.
        {4, 1, 4, 0, YES, YES, 0, 1, false},
        {4, 2, 0, 1, NO, NO, 0, 1, false},
        // Everything current, unless forced.
        {4, 0, 4, 0, YES, NO, 0, 2, false},
        {4, 0, 4, 1, YES, NO, 0, 3, false},
        {4, 0, 3, 0, YES, NO, 0, 3, false},
        {4, 0, 4, 0, NO, NO, 0, 0, false},
        {4, 0, 0, 0, NO, NO, 0, 0, false},
        // The user said no.
        {4, 0, 4, 0, YES, YES, 0, 5, false},
        {4, 0, 4, 1, YES, YES, 0, 5, false},
        {4, 0, 0, 0, NO, YES, 0, 5, false},
        // A failure, whatever else there was.
        {4, 0, 4, 0, YES, NO, 9, 9, false},
        {4, 0, 0, 0, YES, YES, 9, 9, false},
        {4, 3, 0, 0, YES, NO, 9, 9, false},
        {4, 0, 0, 0, NO, YES, 1, 1, false},
    };
    // One tag stands twice in the list of tags, so it doesn't equal the switch's and nothing is said of it.
    addTags("ENCL 14 SEP     ");
    for (auto const& one : cases) {
        prepare(one.walk == 1 ? "s" : one.walk == 9 ? "C" : "");
        begin(update);
        gblFound = one.found - (one.walk == 9 ? 1 : 0);  // the controller counts itself
        gblFlashed = one.flashed;
        gblRefresh = one.refresh;
        gblForceFlashing = one.force;
        gblFlashing = one.flashing;
        gblFlashInterrupt = one.interrupted;
        int const code = xqrthflash();
        char variables[300];
        std::snprintf(
            variables, sizeof variables,
            "Return code variables: returnValue = %d, gblFound = %d, gblFlashing = %d, gblFlashed = "
            "%d, gblFlashInterrupt = %d\ngblRefresh = %d gblDowngrades = 0 gblUpgrades = %d "
            "gblForceFlashing = %d\n%s",
            one.walk, one.found, one.flashing, one.flashed, one.interrupted, one.refresh,
            one.walk == 9 ? 1 : 0, one.force, one.saysNone ? "No devices updated.\n" : "");
        EXPECT_EQ(code, one.code) << variables;
        std::string const log = takeVerboseLog();
        EXPECT_TRUE(log.ends_with(variables)) << log << "expected\n" << variables;
        EXPECT_EQ(log.find("SAS switch"), std::string::npos);
    }
}

/// The tag list of a package never equals the switch's tag, as its first tag goes in twice; a list that was
/// made in another way does.
TEST_F(FlashRunTest, SasSwitchNoticeHasEightLinesBehindAFailedRunThatFlashed) {
    begin(update);
    prepare("s");  // ends the walk with 1
    gblFound = 1;
    gblFlashed = 1;
    gblDeviceTags = {"ENCL 14 SEP     "};
    cli.setSilent(false);
    testing::internal::CaptureStdout();
    EXPECT_EQ(xqrthflash(), 1);
    cli.setSilent(true);
    std::string const disconnected =
        "Devices which do not have redundant connections will be disconnected from their host systems.\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), disconnected);
    std::string const warning =
        "\n** WARNING ** Resetting your SAS switch will disconnect the path through that switch.\n";
    std::string const downtime =
        "For non-redundant configurations, VQ recommends resetting your SAS switch device during scheduled "
        "downtime.\n";
    std::string const log = takeVerboseLog();
    // The sixth line goes to the ordinary log and the console.
    std::string const expected =
        "\nIt is necessary to reset your SAS switch for the new firmware to take effect.\n" + warning +
        disconnected + downtime + warning + downtime +
        "Please consult your product documentation for additional details.\n";
    EXPECT_TRUE(log.ends_with(expected)) << log;
}

TEST_F(FlashRunTest, DiscoveryEndsWithItsDocumentAndNoOtherCode) {
    begin(discovery);
    prepare("s");  // a drive whose result would count in the update pass
    gblDeviceTags.clear();
    EXPECT_EQ(xqrthflash(), 3);
    EXPECT_EQ(document(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<vq_rom_discovery version=\"2.0.0.0\">\n"
              "<type value=\"QBX\"/>\n<alt_name value=\"ROM Flash for VQ Storage Controller, Enclosure and "
              "Sep firmware\"/>\n<takes_effect value=\"deferred\"/>\n<devices>\n</devices>\n"
              "</vq_rom_discovery>\n");
}

TEST_F(FlashRunTest, SearchThatBreaksOffLeavesWhatItFound) {
    begin(update);
    prepare("ds");
    Core::DeviceFactory().pRoot();  // made before, by a search of its own
    root->onSearch = [] { throw std::runtime_error("hardware"); };
    gblFound = 1;
    EXPECT_EQ(xqrthflash(), 1);
    EXPECT_EQ(visited(), "ds");
    root->onSearch = nullptr;
}

// A cache module is probed in both passes, which is where the exception comes from.
TEST_F(FlashRunTest, ExceptionEndsAPassWithEightAndThePassCountsAsNotReturned) {
    struct {
        bool first, second;  ///< the pass throws
        int code;
        bool returned;  ///< the switch that says a walk has returned
        int complaints;
    } const cases[] = {
        {true, true, 8, false, 2},
        {true, false, 2, true, 1},
        {false, true, 8, true, 1},
        {false, false, 2, true, 0},
    };
    for (auto const& one : cases) {
        SCOPED_TRACE(one.first * 2 + one.second);
        prepare("");
        catalogue("FBWC", "1.20");
        gblXMLMode = notDiscovered = false;
        Fake const device("ATTR_VALUE_TYPE_ARRAY_CONTROLLER", "A",
                          {{"ATTR_NAME_CONTROLLER_NAME", "ATTR_VALUE_CONTROLLER_NAME_CEDAR16I"},
                           {"ATTR_NAME_CACHE_AUTO_REVISION", "1.20"}});
        device->offer(FLASH_CACHE).onVisit = [&one] {
            if (gblXMLMode ? one.first : one.second) throw one;  // of whatever kind
        };
        root->receive(DevicePointer(device));
        std::string words[] = {"kslflash", "-s", "-lcomponent.log"};
        char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
        int code = -1;
        transcript([&] { code = CheckState(3, arguments); });
        EXPECT_EQ(code, one.code);
        EXPECT_EQ(notDiscovered, one.returned);
        std::string const log = takeVerboseLog();
        int complaints = 0;
        for (std::size_t at = 0;
             (at = log.find("detected a serious error and must exit.\n", at)) != std::string::npos; ++at) {
            ++complaints;
        }
        EXPECT_EQ(complaints, one.complaints);
        EXPECT_NE(log.find("VQ Storage Enclosure ROM Flash: Completed with return code " +
                           std::to_string(one.code) + ": "),
                  std::string::npos);
    }
}

}  // namespace
