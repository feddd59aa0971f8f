#include "src/carrierPic.h"

#include <gtest/gtest.h>

#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

class CarrierPicTest : public RunTest {
  protected:
    CarrierPicTest()
        : drive("ATTR_VALUE_TYPE_PHYSICAL_DRIVE", "drive", {{"ATTR_NAME_CACHE_AUTO_REVISION", "1.1"}}) {
        writeFile("tmk.rom", "carrier image");
        auto* const row = new FlashConfig;
        row->ProductId = "TMK";
        row->Version = 1.2F;
        row->ROMFileName = "tmk.rom";
        Config::Instance()->List.push_back(row);
    }
    int flash(std::string const& typed) {
        int code = -1;
        transcript(typed, [&] { code = flashTallyMarkPIC(drive, "TMK"); });
        return code;
    }

    Fake drive;
};

TEST_F(CarrierPicTest, AnswerDecides) {
    struct {
        char const* typed;  ///< null: silent, so nobody is asked
        int code;
        bool interrupted, flashing;
        std::size_t flashes;
    } const cases[] = {
        {"yes\n", 0, false, true, 1},  {nullptr, 0, false, true, 1}, {"no\n", 0, true, true, 0},
        {"quit\n", 0, true, false, 0}, {"all\n", 7, false, true, 0},
    };
    FakeOperation& operation = drive->offer("OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER");
    for (auto const& one : cases) {
        gblFlashInterrupt = false;
        gblFlashing = true;
        gblFlashed = 0;
        operation.performances.clear();
        cli.setSilent(one.typed == nullptr);
        EXPECT_EQ(flash(one.typed == nullptr ? "" : one.typed), one.code);
        EXPECT_EQ(gblFlashInterrupt, one.interrupted);
        EXPECT_EQ(gblFlashing, one.flashing);
        ASSERT_EQ(operation.performances.size(), one.flashes);
        EXPECT_EQ(gblFlashed, static_cast<int>(one.flashes));
        if (one.flashes == 0) continue;
        EXPECT_EQ(operation.performances[0].image, "carrier image");
        EXPECT_EQ(operation.performances[0].arguments,
                  (std::map<std::string, std::string>{{"ATTR_NAME_BUFFER_SIZE", "13"}}));
    }
    EXPECT_TRUE(Config::Instance()->List[0]->ROMImage.empty()) << "the image is released";
    EXPECT_TRUE(verboseLogHas("Device [FBWC]:  FW Ver [Current:1.1 ; Apply:1.20 ?]\n"));
    EXPECT_TRUE(verboseLogHas("Bad return from askFlashIt: 5\n"));
}

TEST_F(CarrierPicTest, FailuresHaveTheirCodes) {
    cli.setSilent(true);
    EXPECT_EQ(flash(""), 6) << "the drive has no such operation";
    FakeOperation& operation = drive->offer("OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER");
    operation.results = {failureWord(0x1)};
    EXPECT_EQ(flash(""), 9);
    EXPECT_TRUE(verboseLogHas("The TALLYMARK PIC flash operation failed:\n"));
    EXPECT_TRUE(Config::Instance()->List[0]->ROMImage.empty());
    writeFile("tmk.rom", "");
    EXPECT_EQ(flash(""), 6) << "an empty image";
    std::filesystem::remove("tmk.rom");
    EXPECT_EQ(flash(""), 7);
    gblFakeError = 0x1000;
    EXPECT_EQ(flash(""), 7);
    EXPECT_TRUE(verboseLogHas("    7 Segment display component failed to flash - replace\n"));
    EXPECT_EQ(componentLog(),
              "######## BOGUS ERROR STATE TRIGGERED  #############\n"
              "### requested failure was 0x00001000 #############\n");
    EXPECT_EQ(flashTallyMarkPIC(drive, "J19 SAS X"), 7);
    EXPECT_TRUE(verboseLogHas("Error: Config not found for JB19\n"));
    EXPECT_EQ(gblFlashed, 0);
    EXPECT_EQ(operation.performances.size(), 1u);
}

}  // namespace
