#include "src/enclosures.h"

#include <gtest/gtest.h>

#include "src/flashRun.h"
#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

class EnclosureTest : public RunTest {
  protected:
    /// A controller with the flash operation.
    EnclosureTest()
        : controller(fakeController()), flash(controller->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE")) {}

    int process() { return processEnclosures(controller); }
    int processQuietly() {
        int code = -1;
        printed = transcript([&] { code = process(); });
        return code;
    }

    Fake controller;
    FakeOperation& flash;
    std::string printed;
};

TEST(EnclosureNameTest, ProductsHaveTheirDisplayNames) {
    struct {
        char const* productId;
        char const* name;
    } const cases[] = {
        {"QBX7714", "ZenoS8c"},         {"a QBX7714 b", "ZenoS8c"},
        {"J19 SAS X", "JB19"},          {"J28 SAS ", "JB28"},
        {"J19 SAS", "J19 SAS"},         {"xJ19 SAS ", "xJ19 SAS "},
        {"ENCL 1", "ENCL 1"},           {"", ""},
        {"J28 SAS QBX7714", "ZenoS8c"},
    };
    for (auto const& one : cases) {
        EXPECT_EQ(getDisplayName(one.productId), one.name) << one.productId;
    }
}

TEST_F(EnclosureTest, JudgesByTheCatalogueAndRecordsInTheDiscoveryPass) {
    struct {
        char const* installed;
        char const* catalogue;
        int force;
        updateState state;
        char const* action;
        int upgrades, refreshes, downgrades;
        bool needsFlash;
    } const cases[] = {
        {"1.10", "1.20", 0, upgrade, "upgrade", 1, 0, 0, true},
        {"1.20", "1.20", 0, reflash, "rewrite", 0, 1, 0, false},
        {"1.20", "1.20", 1, reflash, "rewrite", 0, 1, 0, true},
        {"1.30", "1.20", 0, downgrade, "downgrade", 0, 0, 1, false},
        {"1.30", "1.20", 1, downgrade, "downgrade", 0, 0, 1, true},
    };
    catalogue("ENCL 1", "9.99");  // an earlier entry of the name, which the later ones hide
    begin(discovery);
    int row = 0;
    for (auto const& one : cases) {
        catalogue("ENCL 1", one.catalogue);
        gblForceFlashing = one.force;
        gblUpgrades = gblRefresh = gblDowngrades = 0;
        cli.setXMLFile(directory() + "/" + std::to_string(row) + ".xml");
        Box_Info box;
        EXPECT_EQ(CheckEnclosure(fakeSep("ENCL 1          ", one.installed, " 500A "), box), 0)
            << "the discovery pass flashes nothing";
        EXPECT_FALSE(box.needsFlash);
        ASSERT_EQ(box.SEPs.size(), 1u);
        EXPECT_EQ(box.SEPs[0].productId, "ENCL 1");
        EXPECT_EQ(box.SEPs[0].displayRev, one.installed);
        EXPECT_EQ(box.SEPs[0].outOfDate, one.state == upgrade);
        EXPECT_EQ(box.SEPs[0].needsFlash, one.needsFlash);
        EXPECT_EQ(gblUpgrades, one.upgrades);
        EXPECT_EQ(gblRefresh, one.refreshes);
        EXPECT_EQ(gblDowngrades, one.downgrades);

        ASSERT_EQ(discoveredDeviceCount, row + 1);
        Device_Info const& info = deviceInfoCltn[row];
        EXPECT_STREQ(info.deviceType, "Expander");
        EXPECT_STREQ(info.deviceId, "ENCL 1");
        EXPECT_STREQ(info.deviceMarketingName, "500A") << "the WWID stands for the marketing name";
        EXPECT_STREQ(info.serialNum, " ");
        EXPECT_EQ(info.slot, " ");
        EXPECT_EQ(info.type, 1);
        EXPECT_EQ(info.status, one.state);
        EXPECT_EQ(readFile(std::to_string(row) + ".xml"),
                  "<device>\n<device_id value=\"ENCL 1\"/>\n<product_id value=\"ENCL 1\"/>\n<fw_item>\n"
                  "<type value=\"SEP Enclosure ROM\"/>\n<version value=\"1.20\"/>\n<active_version value=\"" +
                      std::string(one.installed) + "\"/>\n<action value=\"" + one.action +
                      "\"/>\n<duration value=\"900\"/>\n<shared value=\"no\"/>\n</fw_item>\n</device>\n");
        ++row;
    }
    EXPECT_EQ(gblFound, 5);
    EXPECT_EQ(gblExpMinFWVer, "1.10");
    EXPECT_EQ(gblExpMaxFWVer, "1.30");
}

TEST_F(EnclosureTest, UpdatePassRecordsNothing) {
    catalogue("ENCL 1", "1.20");
    begin(update);
    Box_Info box;
    EXPECT_EQ(CheckEnclosure(fakeSep("ENCL 1", "1.10", "500A"), box), 1);
    EXPECT_TRUE(box.needsFlash);
    EXPECT_EQ(discoveredDeviceCount, 0);
    EXPECT_EQ(document(), "");
}

TEST_F(EnclosureTest, ProcessorsThatCannotBeJudgedArePassedOver) {
    catalogue("ENCL 1", "1.20");
    Fake const enclosure("ATTR_VALUE_TYPE_STORAGE_ENCLOSURE", "box");
    Fake const noProduct("ATTR_VALUE_TYPE_SEP", "a", {{"ATTR_NAME_FIRMWARE_REVISION", "1.00"}});
    noProduct->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    Fake const noRevision("ATTR_VALUE_TYPE_SEP", "b", {{"ATTR_NAME_PRODUCT_ID", "ENCL 1"}});
    noRevision->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    Fake const noOperation("ATTR_VALUE_TYPE_SEP", "c",
                           {{"ATTR_NAME_PRODUCT_ID", "ENCL 1"}, {"ATTR_NAME_FIRMWARE_REVISION", "1.00"}});
    for (Fake const& child : {noProduct, noRevision, noOperation, fakeSep("ENCL 9", "1.00", "d"),
                              fakeSep("ENCL 1", "1.10", "e")}) {
        enclosure->receive(DevicePointer(child));
    }
    Box_Info box;
    EXPECT_EQ(CheckEnclosure(enclosure, box), 1);
    ASSERT_EQ(box.SEPs.size(), 1u);
    EXPECT_EQ(box.SEPs[0].displayRev, "1.10");
    EXPECT_EQ(gblFound, 1);
    std::string const log = takeVerboseLog();
    EXPECT_NE(log.find("  No product ID\n"), std::string::npos);
    EXPECT_NE(log.find("  No firmware revision\n"), std::string::npos);
    EXPECT_NE(log.find("Unsupported device: ENCL 9\n"), std::string::npos);
}

// The look-up ignores outer blanks and the test of the name doesn't: such an entry needs a tag.
TEST_F(EnclosureTest, EntryWithOuterBlanksNeedsATag) {
    catalogue(" ENCL 1", "1.20");
    Box_Info box;
    EXPECT_EQ(CheckEnclosure(fakeSep("ENCL 1", "1.10", "500A"), box), 0);
    addTags("encl");
    EXPECT_EQ(CheckEnclosure(fakeSep("ENCL 1", "1.10", "500A"), box), 1);
}

TEST_F(EnclosureTest, OfflineOnlyProcessorKeepsItsWholeEnclosureFromAnOnlineFlash) {
    catalogue("ENCL 1", "1.20");
    catalogue("ENCL 12 SEP", "1.20");
    Fake enclosure("ATTR_VALUE_TYPE_STORAGE_ENCLOSURE", "box");
    enclosure.add(fakeSep("ENCL 1", "1.10", "a"))
        .add(fakeSep("ENCL 12 SEP     ", "1.10", "b"))
        .add(fakeSep("ENCL 1", "1.10", "c"));
    Box_Info box;
    EXPECT_EQ(CheckEnclosure(enclosure, box), 0);
    EXPECT_FALSE(box.needsFlash);
    EXPECT_EQ(gblFound, 1) << "neither the processor itself nor what is behind it";
    EXPECT_EQ(componentLog(), "Online flashing of ENCL 12 SEP is not supported\n");
}

TEST_F(EnclosureTest, BackplaneAdvisoryKeepsEnclosuresOnTheirSideOfTheLimit) {
    constexpr char REPLACE[] =
        "This enclosure requires a backplane replacement before updating the firmware\n"
        "to version 1.60.  To order a replacement backplane, contact VQ support and\n"
        "order the appropriate CSR part number: 519268-007 for QBX41 or 627113-005 for\n"
        "QBX52.).\n"
        "Please refer to Customer Advisory c04173825 for additional information.\n";
    constexpr char TOO_OLD[] =
        "This enclosure cannot run firmware version 1.30.\n"
        "Firmware version 2.14 or later should be used.\n";
    struct {
        char const* tag;
        char const* installed;
        char const* catalogue;
        bool forceIllegal;
        int result;
        char const* text;  ///< empty: none of the advisory
    } const cases[] = {
        {"QBX41", "1.20", "1.60", false, 0, REPLACE}, {"QBX52", "1.20", "1.60", false, 0, REPLACE},
        {"QBX", "1.20", "1.60", false, 0, REPLACE},   {"QBX411", "1.20", "1.60", false, 1, ""},
        {"ENCL", "1.20", "1.60", false, 1, ""},       {"QBX41", "1.20", "1.60", true, 1, ""},
        {"QBX41", "1.49", "1.60", false, 1, ""},      {"QBX41", "1.20", "1.49", false, 1, ""},
        {"QBX41", "1.60", "1.30", false, 0, TOO_OLD}, {"QBX41", "1.49", "1.30", false, 1, ""},
        {"QBX41", "1.60", "1.30", true, 1, ""},       {"QBX41", "1.20", "1.30", false, 1, ""},
        {"QBX41", "1.60", "1.70", false, 1, ""},
    };
    gblForceFlashing = 1;
    for (auto const& one : cases) {
        SCOPED_TRACE(std::string(one.tag) + " " + one.installed + " to " + one.catalogue);
        gblDeviceTags = {one.tag};
        gblForceIllegalFlashing = one.forceIllegal;
        catalogue("ENCL 1", one.catalogue);
        takeVerboseLog();
        Box_Info box;
        EXPECT_EQ(CheckEnclosure(fakeSep("ENCL 1", one.installed, "500A"), box), one.result);
        EXPECT_TRUE(box.needsFlash) << "the mark stays whatever the advisory says";
        std::string const log = takeVerboseLog();
        if (*one.text != '\0') {
            EXPECT_NE(log.find(one.text), std::string::npos) << log;
        } else {
            EXPECT_EQ(log.find("his enclosure "), std::string::npos) << log;
        }
    }
}

// The oldest of all installed versions meets the catalogue's version for the last processor.
TEST_F(EnclosureTest, AdvisoryGoesByTheCatalogueVersionOfTheProcessorLookedAtLast) {
    gblDeviceTags = {"QBX41"};
    catalogue("ENCL 1", "1.60");
    catalogue("ENCL 2", "1.30");
    for (bool const lastIsNew : {true, false}) {
        Fake enclosure("ATTR_VALUE_TYPE_STORAGE_ENCLOSURE", "box");
        Fake const toNew = fakeSep("ENCL 1", "1.20", "a");
        Fake const toOld = fakeSep("ENCL 2", "1.20", "b");
        enclosure.add(lastIsNew ? toOld : toNew).add(lastIsNew ? toNew : toOld);
        Box_Info box;
        EXPECT_EQ(CheckEnclosure(enclosure, box), lastIsNew ? 0 : 1);
    }
}

TEST_F(EnclosureTest, ProcessorsAloneAreGatheredAndCountedInTheRows) {
    catalogue("ENCL 1", "1.20");
    begin(discovery);
    Fake enclosure("ATTR_VALUE_TYPE_STORAGE_ENCLOSURE", "box",
                   {{"ATTR_NAME_PRODUCT_ID", "ENCL 1"}, {"ATTR_NAME_FIRMWARE_REVISION", "1.00"}});
    enclosure.add(fakeSep("ENCL 1", "1.10", "a")).add(fakeSep("", "1.10", "b"));
    controller.add(enclosure);
    Device_Info const& info = row("LD63i", false, "SERIAL1");
    EXPECT_EQ(process(), 0);
    EXPECT_EQ(info.numSeps, 2);
    EXPECT_EQ(gblFound, 1);
    std::string const log = takeVerboseLog();
    EXPECT_NE(log.find("   Found 2 Enclosures/SEPs\nAdding seps 2 SERIAL1\n"), std::string::npos);
    EXPECT_NE(log.find("   PRODUCT ID = \n"), std::string::npos) << "attributes are logged";
    EXPECT_NE(log.find("  No product ID\n"), std::string::npos);
}

TEST_F(EnclosureTest, NothingBehindTheControllerIsNoFailure) {
    EXPECT_EQ(process(), 0);
    EXPECT_TRUE(verboseLogHas("   Found 0 Enclosures/SEPs\n"));
}

TEST_F(EnclosureTest, ProductsAreFlashedOnTheControllerInSortedOrder) {
    catalogue("ENCL 2", "2.50");
    catalogue("ENCL 1", "1.2");
    controller.add(fakeSep("ENCL 2", "2.4a", "a")).add(fakeSep("ENCL 1", "1.10", "b"));
    row("ENCL 1", true);
    row("ENCL 2", true);
    EXPECT_EQ(processQuietly(), 0);
    ASSERT_EQ(flash.performances.size(), 2u);
    EXPECT_EQ(flash.performances[0].device, "controller");
    EXPECT_EQ(flash.performances[0].arguments["ATTR_NAME_PRODUCT_ID"], "ENCL 1          ");
    EXPECT_EQ(flash.performances[0].image, "image of ENCL 1");
    EXPECT_EQ(flash.performances[1].arguments["ATTR_NAME_PRODUCT_ID"], "ENCL 2          ");
    EXPECT_EQ(flash.performances[1].image, "image of ENCL 2");
    EXPECT_EQ(printed, "Updating: ENCL 1 from [1.10] to [1.20]\nUpdating: ENCL 2 from [2.4a] to [2.50]\n");
    EXPECT_EQ(componentLog(), "Updated: ENCL 1 from 1.10 to 1.20\nUpdated: ENCL 2 from 2.4a to 2.50\n");
    EXPECT_EQ(gblFlashed, 2);
}

TEST_F(EnclosureTest, SecondProcessorOfAProductIsReportedUpdatedWithoutASecondFlash) {
    gblDeviceTags = {"ENCL"};
    catalogue("ENCL 1", "1.20");
    controller.add(fakeSep("ENCL 1", "1.10", "a")).add(fakeSep("ENCL 1", "1.15", "b"));
    row("ENCL 1", true);
    EXPECT_EQ(processQuietly(), 0);
    EXPECT_EQ(flash.performances.size(), 1u);
    EXPECT_EQ(gblFlashed, 1);
    EXPECT_EQ(componentLog(), "Updated: ENCL 1 from 1.10 to 1.20\nUpdated: ENCL 1 from 1.15 to 1.20\n");
    EXPECT_TRUE(verboseLogHas("SEP is already updated, double flashing of sep is not supported\n"));
}

TEST_F(EnclosureTest, WhoIsFlashedIsDecidedByNeedForceAndTheMarkInTheRow) {
    struct {
        char const* installed;
        int force;
        bool marked;
        std::size_t flashes;
    } const cases[] = {
        {"1.10", 0, true, 1}, {"1.10", 0, false, 0}, {"1.20", 0, true, 0},
        {"1.20", 1, true, 1}, {"1.20", 1, false, 0}, {"1.30", 1, true, 1},
    };
    catalogue("ENCL 1", "1.20");
    Device_Info& info = row("ENCL 1", true);
    for (auto const& one : cases) {
        Fake other = fakeController();
        FakeOperation const& operation = other->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
        other.add(fakeSep("ENCL 1", one.installed, "a"));
        gblForceFlashing = one.force;
        info.flash = one.marked;
        int code = -1;
        transcript([&] { code = processEnclosures(other); });
        EXPECT_EQ(code, 0);
        EXPECT_EQ(operation.performances.size(), one.flashes) << one.installed << one.force << one.marked;
    }
    EXPECT_TRUE(verboseLogHas("SEPFlash not applicable: ENCL 1\n"));
}

// A box of two processors: the one that is current isn't a reason to flash, the older one is.
TEST_F(EnclosureTest, CurrentProcessorOfAFlashedProductIsPassedOver) {
    catalogue("ENCL 1", "1.20");
    Fake outer = fakeSep("ENCL 1", "1.10", "a");
    outer.add(fakeSep("ENCL 1", "1.20", "b")).add(fakeSep("ENCL 2", "1.20", "c"));
    catalogue("ENCL 2", "1.20");
    row("ENCL 2", true);
    controller.add(outer);
    row("ENCL 1", true);
    EXPECT_EQ(processQuietly(), 0);
    EXPECT_EQ(componentLog(), "Updated: ENCL 1 from 1.10 to 1.20\n");
    EXPECT_TRUE(verboseLogHas("SEPFlash not applicable: ENCL 1")) << "without a line end";
    EXPECT_FALSE(verboseLogHas("Flashing ENCL 2"))
        << "a product with no older processor isn't flashed at all";
}

TEST_F(EnclosureTest, LastFailureIsTheResultAndTheOtherProductsAreStillTried) {
    for (char const* id : {"ENCL 1", "ENCL 2", "ENCL 3"}) {
        catalogue(id, "1.20");
        row(id, true);
        controller.add(fakeSep(id, "1.10", id));
    }
    flash.results = {failureWord(0x80000001), failureWord(0x1), Core::OperationReturn()};
    EXPECT_EQ(processQuietly(), 9) << "8, then 9, then a success";
    EXPECT_EQ(flash.performances.size(), 3u);
    EXPECT_EQ(gblFlashed, 1);
    EXPECT_EQ(componentLog(),
              "Failed: ENCL 1 from 1.10 to 1.20\nFailed: ENCL 2 from 1.10 to 1.20\n"
              "Updated: ENCL 3 from 1.10 to 1.20\n");
}

TEST_F(EnclosureTest, RefusalOutlastsLaterFailures) {
    for (bool const refusalFirst : {true, false}) {
        Fake refusing = fakeController();
        for (char const* id : {"ENCL 1", "ENCL 2"}) {
            catalogue(id, "1.20");
            row(id, true);
            refusing.add(fakeSep(id, "1.10", id));
        }
        std::filesystem::remove(refusalFirst ? "ENCL 2.rom" : "ENCL 1.rom");
        int code = -1;
        transcript([&] { code = processEnclosures(refusing); });
        EXPECT_EQ(code, 6);
    }
}

TEST_F(EnclosureTest, AdapterIsCheckedByWhatIsBehindIt) {
    Fake adapter("ATTR_VALUE_TYPE_HBA", "adapter");
    adapter.add(fakeSep("ENCL 1", "1.10", "a"));
    catalogue("ENCL 1", "1.20");
    row("ENCL 1", true);
    int code = -1;
    transcript([&] { code = CheckHBA(adapter); });
    EXPECT_EQ(code, 6) << "the adapter has no flash operation";
    adapter->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    transcript([&] { code = CheckHBA(adapter); });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(gblFlashed, 1);
}

}  // namespace
