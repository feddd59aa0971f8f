// What the check of a controller does with it: whether it is judged, flashed, and looked behind.

#include <gtest/gtest.h>

#include "common/sleep.h"
#include "src/controllerModel.h"
#include "src/flashArray.h"
#include "src/flashRun.h"
#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

constexpr char FLASH[] = "OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE";
constexpr char DOGWOOD4[] = "ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4";      // TR56
constexpr char BIRCH8[] = "ATTR_VALUE_CONTROLLER_NAME_BIRCH8";          // TR80
constexpr char CEDAR16I[] = "ATTR_VALUE_CONTROLLER_NAME_CEDAR16I";      // LD63i
constexpr char CEDAR4I[] = "ATTR_VALUE_CONTROLLER_NAME_CEDAR4I";        // LD16i
constexpr char KITEWING[] = "ATTR_VALUE_CONTROLLER_NAME_KITEWING_SAS";  // ZenoS8c
constexpr char ZONED[] = "ATTR_VALUE_ZONING_ENABLED_TRUE";
constexpr char UNZONED[] = "ATTR_VALUE_ZONING_ENABLED_FALSE";
constexpr char APPLICABLE[] = "509358932";  // 0x1E5C3354
constexpr char STRANGER[] = "509358933";    // 0x1E5C3355

std::vector<unsigned int> pauses;

class ArrayControllerTest : public RunTest {
  protected:
    ArrayControllerTest()
        : m_sleep(
              Common::Synchronization::SetSleepFunction([](unsigned int time) { pauses.push_back(time); })) {
        pauses.clear();
        cli.setSilent(true);
        gblDeviceTags = {"33541E5C"};
        carryFirmware();
    }
    ~ArrayControllerTest() override { Common::Synchronization::SetSleepFunction(m_sleep); }

    static void carryFirmware() {
        writeFile("controller.rom", "firmware");
        DiscoveryInfo::Instance()->setDevInfo(0, "controller.rom", "6.64", "");
    }

    /// Null stands for an attribute that the controller doesn't have.
    struct Told {
        char const* name = DOGWOOD4;
        char const* version = "6.40";
        char const* subsystem = APPLICABLE;
        char const* id = "an identifier";
        char const* zoning = nullptr;
    };
    static Fake controllerThatTells(Told const& told) {
        Facts facts = {{"ATTR_NAME_SLOT", "3"},
                       {"ATTR_NAME_CONTROLLER_NAME", told.name},
                       {"ATTR_NAME_FIRMWARE_VERSION", told.version},
                       {"ATTR_NAME_SUBSYSTEM_ID", told.subsystem},
                       {"ATTR_NAME_UNIQUE_ID", told.id},
                       {"ATTR_NAME_ZONING_ENABLED", told.zoning}};
        std::erase_if(facts, [](auto const& fact) { return fact.second == nullptr; });
        return fakeController(facts);
    }
    /// The answer to the question about the model.
    static void chosen(char const* name, bool yes = true) {
        row(mapContollerName(MakeEnclosureNameNice(name)), yes);
    }

  private:
    Common::Synchronization::SleepFunction m_sleep;
};

TEST_F(ArrayControllerTest, InspectionDecidesWhatIsFoundFlashedAndLookedBehind) {
    enum Package { usual, empty, cache };
    enum Run { discover, flash, query, refuse, flashZ };  ///< refuse: the user said no; flashZ: with -z
    struct {
        Told told;
        Run run;
        Package package;
        char const* outcome;  ///< found, flashes, whether enclosures are looked for
        char const* log;
    } const cases[] = {
        {{}, flash, usual, "1 2 behind", "Unit has 6.40 vs 6.64\nUnit Requires Flashing.\n"},
        {{.version = "6.64"}, flash, usual, "1 2 behind", "ROM is up to date.\n"},
        {{.version = "6.80"}, flash, usual, "1 2 behind", "ROM is up to date.\n"},
        {{}, refuse, usual, "1 0 behind", "FlashArray: Not appliacble to flash: TR56\n"},
        {{}, query, usual, "1 0 behind", "Unit Requires Flashing.\n"},
        {{}, discover, usual, "1 0 behind", "discoveredDeviceCount:2\n"},
        {{.zoning = ZONED}, flash, usual, "1 2 behind", "Controller has zoning enabled...\n"},
        {{.zoning = ZONED}, flashZ, usual, "0 0", "Controller has zoning enabled...\n"},
        {{.zoning = UNZONED}, flashZ, usual, "1 2 behind", ""},
        {{.id = nullptr}, flash, usual, "0 0", "  No Unique ID\n"},
        {{.version = nullptr}, discover, usual, "1 0", "Controller does not have a firmware version."},
        {{.version = nullptr}, flash, usual, "1 2 behind", "Unit has  vs 6.64\nUnit Requires"},
        {{}, flash, empty, "0 0", "CheckArray: Unsupported device\n"},
        {{.subsystem = STRANGER}, flash, usual, "0 0 behind", "not applicable to '33551E5C'\n"},
        {{.subsystem = nullptr}, flash, usual, "0 0 behind", "not applicable to ''\n"},
        // TR80 ends after its flash, for which one that was refused passes too, and only then.
        {{.name = BIRCH8}, flash, usual, "1 2", "mapped Controller TR80\n"},
        {{.name = BIRCH8}, refuse, usual, "1 0", "mapped Controller TR80\n"},
        {{.name = BIRCH8}, query, usual, "1 0 behind", "mapped Controller TR80\n"},
        {{.name = BIRCH8}, discover, usual, "1 0 behind", "mapped Controller TR80\n"},
        {{.name = BIRCH8, .subsystem = STRANGER}, flash, usual, "0 0 behind", "Controller TR80\n"},
        // A package with an entry for cache modules looks at nothing else behind a controller.
        {{}, flash, cache, "1 2", "Flash complete.\n"},
        {{.name = CEDAR16I}, flash, cache, "1 2", "Device refused OPERATION_WRITE_FLASH_FBWC"},
        {{.name = CEDAR4I}, discover, cache, "1 0", "Device refused OPERATION_WRITE_FLASH_FBWC"},
        {{.name = CEDAR16I, .subsystem = STRANGER}, flash, cache, "0 0", "refused OPERATION"},
        {{.name = CEDAR16I}, flash, usual, "1 2 behind", "Flash complete.\n"},
    };
    for (auto const& one : cases) {
        DiscoveryInfo::DeleteInstance();
        if (one.package != empty) carryFirmware();
        if (one.package == cache) catalogue("FBWC", "1.20");
        forgetRows();
        chosen(one.told.name, one.run != refuse);
        gblFound = gblFlashed = 0;
        begin(one.run == discover ? discovery : update);
        gblFlashing = one.run != discover && one.run != query;
        gblDisableZoneFlashing = one.run == flashZ;
        Fake const controller = controllerThatTells(one.told);
        FakeOperation const& operation = controller->offer(FLASH);
        takeVerboseLog();
        EXPECT_EQ(CheckArray(controller), 0);
        std::string const log = takeVerboseLog();
        std::string const behind = log.find("   Finding Enclosures\n") != std::string::npos ? " behind" : "";
        std::string const flashes = std::to_string(operation.performances.size());
        EXPECT_EQ(std::to_string(gblFound) + " " + flashes + behind, one.outcome) << log;
        EXPECT_EQ(std::to_string(gblFlashed), flashes);
        EXPECT_NE(log.find(one.log), std::string::npos) << log;
    }
}

TEST_F(ArrayControllerTest, SecondOfTheTwoFlashesCounts) {
    Core::OperationReturn const good;
    Core::OperationReturn const bad("ATTR_VALUE_STATUS_FAILURE");
    struct {
        Core::OperationReturn first, second;
        int code, flashed;
        char const* log;
        bool behind;
    } const cases[] = {
        {good, good, 0, 2, "Updated: TR56 Slot: 3 from 6.40 to 6.64\n", true},
        {bad, good, 0, 1, "Updated: TR56 Slot: 3 from 6.40 to 6.64\n", true},
        {good, bad, 9, 1, "Failed: TR56 Slot: 3 from 6.40 to 6.64\n", false},
        {bad, failureWord(0x80000000), 8, 0, "Failed: TR56 Slot: 3 from 6.40 to 6.64\n", false},
    };
    chosen(DOGWOOD4);
    begin(update);
    for (auto const& one : cases) {
        gblFlashed = 0;
        Fake const controller = controllerThatTells({});
        FakeOperation& flash = controller->offer(FLASH);
        flash.results = {one.first, one.second};
        std::filesystem::remove(directory() + "/component.log");
        takeVerboseLog();
        EXPECT_EQ(CheckArray(controller), one.code);
        EXPECT_EQ(gblFlashed, one.flashed);
        EXPECT_EQ(componentLog(), one.log);
        EXPECT_EQ(verboseLogHas("   Finding Enclosures\n"), one.behind);
        ASSERT_EQ(flash.performances.size(), 2u);
        for (auto const& performance : flash.performances) {
            EXPECT_EQ(performance.image, "firmware");
            EXPECT_EQ(performance.arguments,
                      (std::map<std::string, std::string>{{"ATTR_NAME_BUFFER_SIZE", "8"}}));
        }
    }
    EXPECT_EQ(pauses, std::vector<unsigned int>(4, 500000));
}

TEST_F(ArrayControllerTest, FlashThatCannotBeginSaysWhy) {
    chosen(DOGWOOD4);
    begin(update);
    Fake const refusing = controllerThatTells({});
    EXPECT_EQ(CheckArray(refusing), 6);
    EXPECT_TRUE(verboseLogHas("Device refused OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE...\n"));
    Fake const controller = controllerThatTells({});
    FakeOperation const& flash = controller->offer(FLASH);
    std::filesystem::remove("controller.rom");
    EXPECT_EQ(CheckArray(controller), 7);
    EXPECT_TRUE(verboseLogHas("Error: Firmware Info/Image read error for TR56\n"));
    gblFakeError = 0x80000000;
    takeVerboseLog();
    EXPECT_EQ(CheckArray(controller), 7) << "a simulated failure is never 8";
    EXPECT_TRUE(
        verboseLogHas("### requested failure was 0x80000000 #############\n"
                      "   Internal Failure code 0x80000000\n   critical error"));
    EXPECT_TRUE(flash.performances.empty());
    EXPECT_EQ(gblFlashed, 0);
}

TEST_F(ArrayControllerTest, CacheModuleDecidesOnTheResultOfItsController) {
    catalogue("FBWC", "1.20");
    begin(update);
    for (char const* name : {CEDAR16I, CEDAR4I, DOGWOOD4}) {
        Fake const controller = controllerThatTells({.name = name, .subsystem = STRANGER});
        FakeOperation& flash = controller->offer("OPERATION_WRITE_FLASH_FBWC");
        flash.results = {Core::OperationReturn(), failureWord(0x80000000)};  // the probe, the flash
        EXPECT_EQ(CheckArray(controller), name == DOGWOOD4 ? 0 : 8) << name;
        EXPECT_EQ(flash.performances.size(), name == DOGWOOD4 ? 0u : 2u) << name;
    }
}

TEST_F(ArrayControllerTest, UpdateWithoutDowntimeIsAskedForWhereItCanBeAndOnOneModelAlways) {
    struct {
        bool enabled;
        char const* name;
        char const* offered;
        bool asked;
        char const* log;  ///< what stands between the image and the buffer's address
    } const cases[] = {
        {true, DOGWOOD4, "ATTR_NAME_TOFU", true, "gblisZeroDownTimeEnabled Supported\nTofu Supported\n"},
        {true, DOGWOOD4, "", false, "gblisZeroDownTimeEnabled Supported\nTofu not supported\n"},
        {true, DOGWOOD4, "ATTR_NAME_X", false, "gblisZeroDownTimeEnabled Supported\nTofu not supported\n"},
        {true, KITEWING, "", true, "gblisZeroDownTimeEnabled Supported\n"},
        {true, KITEWING, "ATTR_NAME_TOFU", true, "gblisZeroDownTimeEnabled Supported\nTofu Supported\n"},
        {false, DOGWOOD4, "ATTR_NAME_TOFU", false, ""},
        {false, KITEWING, "", false, ""},
    };
    chosen(DOGWOOD4);
    chosen(KITEWING);
    for (auto const& one : cases) {
        gblisZeroDownTimeEnabled = one.enabled;
        Fake const controller = controllerThatTells({.name = one.name});
        FakeOperation& flash = controller->offer(FLASH);
        flash.offered = one.offered;
        std::string const model = mapContollerName(MakeEnclosureNameNice(one.name));
        takeVerboseLog();
        EXPECT_EQ(FlashArray(controller, model, true), 0);
        ASSERT_EQ(flash.performances.size(), 1u);
        auto const& arguments = flash.performances[0].arguments;
        auto const found = arguments.find("ATTR_NAME_TOFU");
        EXPECT_EQ(found == arguments.end() ? "" : found->second, one.asked ? "ATTR_VALUE_TOFU_ENABLE" : "");
        std::string const before = "ROM Image 8 bytes read from disk\n";
        EXPECT_TRUE(verboseLogHas(before + one.log + "Setting buffer address to "))
            << one.name << one.offered;
    }
}

// The rows are found by the model: the controller that was judged last decides for both.
TEST_F(ArrayControllerTest, TwoOfOneModelGetOneStatus) {
    begin(discovery);
    CheckArray(controllerThatTells({.version = "6.40", .id = "one"}));
    ASSERT_EQ(discoveredDeviceCount, 1);
    EXPECT_EQ(deviceInfoCltn[0].status, upgrade);
    CheckArray(controllerThatTells({.version = "6.64", .id = "two"}));
    ASSERT_EQ(discoveredDeviceCount, 2);
    EXPECT_EQ(deviceInfoCltn[0].status, reflash);
    EXPECT_EQ(deviceInfoCltn[1].status, reflash);
    EXPECT_EQ(deviceInfoCltn[0].deviceVersion, 6.40F);
    EXPECT_EQ(gblUpgrades, 1);
    EXPECT_EQ(gblRefresh, 1);
}

// Without a row of its own a controller would be taken for its twin in the update pass.
TEST_F(ArrayControllerTest, ControllerBeyondTheTableIsLeftOutOfBothPasses) {
    for (int i = 0; i < 1023; ++i) {
        row("FILLER", false);
    }
    Fake const within = controllerThatTells({.id = "within the table"});
    Fake const beyond = controllerThatTells({.id = "beyond the table"});
    FakeOperation const& flashWithin = within->offer(FLASH);
    FakeOperation const& flashBeyond = beyond->offer(FLASH);
    begin(discovery);
    CheckArray(within);
    EXPECT_EQ(gblFound, 1);
    std::string const documented = document();
    takeVerboseLog();
    CheckArray(beyond);
    EXPECT_TRUE(verboseLogHas("beyond the table refused: the table's 1024 rows are taken\n"));
    EXPECT_EQ(discoveredDeviceCount, 1024);
    EXPECT_EQ(gblFound, 1);
    EXPECT_EQ(document(), documented);
    setFlashToDeviceCollection(upgrade);
    begin(update);
    EXPECT_EQ(CheckArray(within), 0);
    EXPECT_EQ(CheckArray(beyond), 0);
    EXPECT_EQ(flashWithin.performances.size(), 2u);
    EXPECT_TRUE(flashBeyond.performances.empty());
    EXPECT_EQ(gblFound, 2);
}

TEST_F(ArrayControllerTest, KeysOfAnyLengthAreTheEightPlacesWithTheirHalvesSwapped) {
    std::pair<char const*, char const*> const cases[] = {
        {"1", ""},
        {"291", ""},              // 123
        {"4660", ""},             // 1234
        {"74565", "51234"},       // 12345
        {"1193046", "561234"},    // 123456
        {"19088743", "5671234"},  // 1234567
        {"2147483648", "00008000"},
        {"-2147483648", "00008000"},
        {"-1985229329", "CDEF89AB"},
    };
    for (auto const& [identifier, key] : cases) {
        EXPECT_EQ(applicabilityKey(identifier), key) << identifier;
    }
}

}  // namespace
