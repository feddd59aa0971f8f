#include "src/flashSep.h"

#include <gtest/gtest.h>

#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

using WwIds = std::vector<std::string>;

class FlashSepTest : public RunTest {
  protected:
    FlashSepTest() {
        gblDeviceTags = {"ENCL", "JB73"};
        catalogue("ENCL 1", "1.20");
        catalogue("JB73", "1.20");
    }

    static Fake controllerWith(std::vector<Fake> const& seps, Facts const& facts = {}) {
        Fake controller = fakeController(facts);
        for (Fake const& sep : seps) {
            controller.add(sep);
        }
        return controller;
    }
};

TEST_F(FlashSepTest, OperationGetsTheImageAndItsArguments) {
    Fake const controller = controllerWith({fakeSep("ENCL 1", "1.10", "a"), fakeSep("OTHER", "1.10", "b"),
                                            fakeSep("", "1.10", "c"), fakeSep("ENCL 2", "1.10", "d")});
    FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    EXPECT_EQ(FlashSEP(controller, "ENCL 1          "), 0);
    ASSERT_EQ(flash.performances.size(), 1u);
    EXPECT_EQ(flash.performances[0].image, "image of ENCL 1");
    EXPECT_EQ(flash.performances[0].arguments,
              (std::map<std::string, std::string>{{"ATTR_NAME_PRODUCT_ID", "ENCL 1          "},
                                                  {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"},
                                                  {"ATTR_NAME_BUFFER_SIZE", "15"},
                                                  {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_FALSE"}}));
    EXPECT_EQ(gblFlashed, 1);
    EXPECT_EQ(gblWwIdList, (WwIds{"a", "d"})) << "every applicable processor, of whatever product";
    EXPECT_TRUE(verboseLogHas("The SEP flash operation succeeded.\n"));
}

TEST_F(FlashSepTest, ProcessorReachedOverASecondPathIsNotFlashedAgain) {
    Fake const first = controllerWith({fakeSep("ENCL 1", "1.10", "a")});
    Fake const second = controllerWith({fakeSep("ENCL 1", "1.10", "new"), fakeSep("ENCL 1", "1.10", "a"),
                                        fakeSep("ENCL 1", "1.10", "behind")});
    first->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    FakeOperation const& flash = second->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    EXPECT_EQ(FlashSEP(first, "ENCL 1"), 0);
    EXPECT_EQ(FlashSEP(second, "ENCL 1"), 0);
    EXPECT_TRUE(flash.performances.empty());
    EXPECT_EQ(gblWwIdList, (WwIds{"a", "new"}));
    EXPECT_EQ(gblFlashed, 1);
}

/// All of them passed for the first one, and "Updated" was logged for processors that nobody had written to.
TEST_F(FlashSepTest, ProcessorsWithoutANameAreFlashedAndNotNoted) {
    for (char const* name : {"", "0000000000000000"}) {
        Fake const controller =
            controllerWith({fakeSep("ENCL 1", "1.10", name), fakeSep("ENCL 1", "1.10", name)});
        FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
        EXPECT_EQ(FlashSEP(controller, "ENCL 1"), 0);
        EXPECT_EQ(flash.performances.size(), 1u);
        EXPECT_TRUE(gblWwIdList.empty());
    }
}

TEST_F(FlashSepTest, OneExpanderCannotBeFlashedBehindZoning) {
    struct {
        char const* zoning;
        char const* product;
        std::size_t flashes;
    } const cases[] = {
        {"ATTR_VALUE_ZONING_ENABLED_TRUE", "JB73", 0},
        {"ATTR_VALUE_ZONING_ENABLED_TRUE", "JB73            ", 0},
        {"ATTR_VALUE_ZONING_ENABLED_TRUE", "JB731", 1},
        {"ATTR_VALUE_ZONING_ENABLED_FALSE", "JB73", 1},
    };
    for (auto const& one : cases) {
        gblWwIdList.clear();
        Fake const controller =
            controllerWith({fakeSep(one.product, "1.10", "a")}, {{"ATTR_NAME_ZONING_ENABLED", one.zoning}});
        FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
        EXPECT_EQ(FlashSEP(controller, "JB73"), 0);
        EXPECT_EQ(flash.performances.size(), one.flashes) << one.product << one.zoning;
        EXPECT_EQ(gblWwIdList.size(), one.flashes);
    }
    EXPECT_TRUE(verboseLogHas("Controller has zoning enabled. Expander Flash not supported.\n"));
}

// A controller without the operation once led to arguments set on nothing.
TEST_F(FlashSepTest, RefusalLeavesTheProcessorsToAnotherPath) {
    Fake const refusing = controllerWith({fakeSep("ENCL 1", "1.10", "a")});
    EXPECT_EQ(FlashSEP(refusing, "ENCL 1"), 6);
    EXPECT_TRUE(gblWwIdList.empty());
    Fake const able = controllerWith({fakeSep("ENCL 1", "1.10", "a")});
    FakeOperation const& flash = able->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    EXPECT_EQ(FlashSEP(able, "ENCL 1"), 0);
    EXPECT_EQ(flash.performances.size(), 1u);
    EXPECT_EQ(FlashSEP(refusing, "ENCL 1"), 0) << "what was taken on before comes before the refusal";
}

TEST_F(FlashSepTest, NothingIsTakenOnWithoutEntryOrImage) {
    Fake const controller = controllerWith({fakeSep("ENCL 1", "1.10", "a")});
    FakeOperation const& flash = controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    EXPECT_EQ(FlashSEP(controller, "ENCL 9"), 0);
    EXPECT_TRUE(verboseLogHas("FlashSEP Unsupported device: ENCL 9\n"));
    std::filesystem::remove("ENCL 1.rom");
    EXPECT_EQ(FlashSEP(controller, "ENCL 1"), 7);
    EXPECT_TRUE(verboseLogHas("Error: Firmware Info/Image read error for ENCL 1\n"));
    EXPECT_TRUE(gblWwIdList.empty());
    EXPECT_TRUE(flash.performances.empty());
}

TEST_F(FlashSepTest, FailureIsReportedAndNotCounted) {
    Fake const controller = controllerWith({});
    FakeOperation& flash = controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    flash.results = {failureWord(0x80000000), failureWord(0x2)};
    EXPECT_EQ(FlashSEP(controller, "ENCL 1"), 8);
    EXPECT_EQ(FlashSEP(controller, "ENCL 1"), 9);
    EXPECT_EQ(gblFlashed, 0);
}

TEST_F(FlashSepTest, LongFlashIsAnnouncedWithItsLength) {
    Fake const controller = controllerWith({});
    controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    struct {
        unsigned int seconds;
        char const* text;
    } const cases[] = {
        {10, "\nRequesting flash...\n"},
        {11, "\nRequesting flash - this could take up to 11 seconds...\n"},
        {900, "\nRequesting flash - this could take up to 15 minutes...\n"},
    };
    for (auto const& one : cases) {
        gblEstimatedFlashTime = one.seconds;
        takeVerboseLog();
        FlashSEP(controller, "ENCL 1");
        EXPECT_TRUE(verboseLogHas(one.text)) << one.seconds;
    }
}

}  // namespace
