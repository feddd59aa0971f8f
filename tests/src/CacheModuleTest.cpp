#include "src/cacheModule.h"

#include <gtest/gtest.h>

#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

class CacheModuleTest : public RunTest {
  protected:
    static Fake controllerWith(char const* revision) {
        return revision == nullptr ? fakeController({})
                                   : fakeController({{"ATTR_NAME_CACHE_AUTO_REVISION", revision}});
    }
    int check(Fake const& controller) {
        int code = -1;
        printed = transcript([&] { code = checkArrayForFBWC(controller, "FBWC"); });
        return code;
    }

    std::string printed;
};

TEST_F(CacheModuleTest, DiscoveryJudgesAndRecords) {
    struct {
        char const* installed;  ///< null: the controller doesn't tell
        updateState state;
        char const* action;
        char const* shown;
    } const cases[] = {
        {"1.10", upgrade, "upgrade", "1.10"},
        {"1.2", reflash, "rewrite", "1.20"},
        {"1.30", downgrade, "downgrade", "1.30"},
        {nullptr, upgrade, "upgrade", "0.00"},
    };
    catalogue("FBWC", "1.20");
    begin(discovery);
    int number = 0;
    for (auto const& one : cases) {
        cli.setXMLFile(directory() + "/" + std::to_string(number) + ".xml");
        Fake const controller = controllerWith(one.installed);
        FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_FBWC");
        EXPECT_EQ(check(controller), 0);
        ASSERT_EQ(flash.performances.size(), 1u) << "the probe";
        EXPECT_TRUE(flash.performances[0].arguments.empty());
        ASSERT_EQ(discoveredDeviceCount, number + 1);
        Device_Info const& info = deviceInfoCltn[number];
        EXPECT_STREQ(info.deviceType, "FWBC");
        EXPECT_STREQ(info.deviceId, "FBWC");
        EXPECT_STREQ(info.deviceMarketingName, "FBWC");
        EXPECT_STREQ(info.serialNum, "");
        EXPECT_EQ(info.type, 1);
        EXPECT_EQ(info.status, one.state);
        EXPECT_EQ(readFile(std::to_string(number) + ".xml"),
                  "<device>\n<device_id value=\"FBWC\"/>\n<product_id value=\"FWBC\"/>\n<fw_item>\n"
                  "<type value=\"Controller ROM\"/>\n<version value=\"1.20\"/>\n<active_version value=\"" +
                      std::string(one.shown) + "\"/>\n<action value=\"" + one.action +
                      "\"/>\n<duration value=\"900\"/>\n<shared value=\"no\"/>\n</fw_item>\n</device>\n");
        ++number;
    }
    EXPECT_EQ(gblFound, 4);
    EXPECT_EQ(gblUpgrades, 2);
    EXPECT_EQ(gblRefresh, 1);
    EXPECT_EQ(gblDowngrades, 1);
    EXPECT_EQ(gblExpMinFWVer, "") << "what isn't told counts as an empty text";
    EXPECT_EQ(gblExpMaxFWVer, "1.30");
}

TEST_F(CacheModuleTest, OlderModuleIsFlashedWhateverWasAnswered) {
    struct {
        char const* installed;
        int force;
        bool flashing;
        std::size_t flashes;
    } const cases[] = {
        {"1.10", 0, true, 1}, {"1.10", 0, false, 0}, {"1.20", 0, true, 0},
        {"1.20", 1, true, 1}, {"1.30", 1, true, 1},  {"1.30", 1, false, 0},
    };
    catalogue("FBWC", "1.20");
    row("FBWC", false);
    for (auto const& one : cases) {
        gblFlashing = one.flashing;
        gblForceFlashing = one.force;
        gblFlashed = 0;
        Fake const controller = controllerWith(one.installed);
        FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_FBWC");
        EXPECT_EQ(check(controller), 0);
        ASSERT_EQ(flash.performances.size(), 1 + one.flashes) << one.installed << one.force << one.flashing;
        EXPECT_EQ(gblFlashed, static_cast<int>(one.flashes));
        if (one.flashes == 0) continue;
        EXPECT_EQ(flash.performances[1].image, "image of FBWC");
        EXPECT_EQ(flash.performances[1].arguments,
                  (std::map<std::string, std::string>{{"ATTR_NAME_BUFFER_SIZE", "13"}}));
        EXPECT_EQ(printed, "Updating: GoldPIC (FBWC) firmware version : from [" + std::string(one.installed) +
                               "] to [1.20]\n");
    }
}

// With flashing allowed from the start the discovery pass already flashes.
TEST_F(CacheModuleTest, UnattendedRunFlashesInTheDiscoveryPass) {
    catalogue("FBWC", "1.20");
    begin(discovery);
    gblFlashing = true;
    Fake const controller = controllerWith("1.10");
    FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_FBWC");
    EXPECT_EQ(check(controller), 0);
    EXPECT_EQ(flash.performances.size(), 2u);
    EXPECT_EQ(discoveredDeviceCount, 1);
}

TEST_F(CacheModuleTest, WithoutEntryOrOperationNothingIsCounted) {
    Fake const controller = controllerWith("1.10");
    EXPECT_EQ(check(controller), 7) << "no entry in the catalogue";
    EXPECT_EQ(flashPIC(controller, "FBWC"), 6);
    catalogue("FBWC", "1.20");
    EXPECT_EQ(check(controller), 0) << "no such operation: there is no such module";
    EXPECT_EQ(gblFound, 0);
    controller->offer("OPERATION_WRITE_FLASH_FBWC");
    EXPECT_EQ(flashPIC(controller, "OTHER"), 0);
    EXPECT_TRUE(verboseLogHas("FlashPIC Unsupported device: OTHER\n"));
}

TEST_F(CacheModuleTest, ImageThatCannotBeReadEndsTheFlash) {
    catalogue("FBWC", "1.20");
    std::filesystem::remove("FBWC.rom");
    Fake const controller = controllerWith("1.10");
    FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_FBWC");
    EXPECT_EQ(check(controller), 4);
    std::filesystem::create_directory("FBWC.rom");
    EXPECT_EQ(check(controller), 7) << "it opens, and has no contents";
    EXPECT_EQ(flash.performances.size(), 2u) << "the probes alone";
    EXPECT_EQ(gblFlashed, 0);
}

TEST_F(CacheModuleTest, FailedFlashIsTheResult) {
    catalogue("FBWC", "1.20");
    Fake const controller = controllerWith("1.10");
    FakeOperation& flash = controller->offer("OPERATION_WRITE_FLASH_FBWC");
    flash.results = {Core::OperationReturn("ATTR_VALUE_STATUS_ARGUMENT_MISSING"), failureWord(0x4)};
    EXPECT_EQ(check(controller), 9) << "the probe's own failure means nothing";
    EXPECT_EQ(gblFlashed, 0);
    EXPECT_TRUE(verboseLogHas("The FBWC PIC flash operation failed:\n"));
}

}  // namespace
