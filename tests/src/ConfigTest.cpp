#include "src/config.h"

#include "src/deviceTags.h"
#include "tests/src/FrontEndFixture.h"

namespace {

using Tags = std::vector<std::string>;

class ConfigTest : public FrontEndTest {
  protected:
    ConfigTest() { gblDeviceTags.clear(); }
    ~ConfigTest() override {
        Config::Instance()->CleanConfig();
        gblDeviceTags.clear();
    }
};

TEST_F(ConfigTest, RowsAreReadFieldByField) {
    auto* const config = Config::Instance();
    EXPECT_EQ(config->delimeter, ',');
    EXPECT_EQ(config->FileMode, 0);
    writeFile("old.cfg",
              "# comment, with, commas\n"
              "  #indented comment\n"
              " QBX41 , 2.14 , sep.bin ,\tcage , yes , 3\n"
              "QBX41,9.99,late.bin\n"
              "\n"
              ",1.0,nameless.bin,g,s,7x,extra, more \n"
              "LAST");
    std::string const seen = transcript([&] { EXPECT_TRUE(config->ReadConfig("old.cfg", "fw")); });
    EXPECT_EQ(seen, "Unexpected entry in config file [extra]\nUnexpected entry in config file [more]\n");

    // The empty line is a row as well.
    ASSERT_EQ(config->List.size(), 5u);
    FlashConfig const& first = *config->List[0];
    EXPECT_EQ(first.ProductId, "QBX41");
    EXPECT_EQ(first.Version, 2.14f);
    EXPECT_EQ(first.ROMFileName, "fw/sep.bin");
    EXPECT_EQ(first.Group, "cage");
    EXPECT_EQ(first.flashSep, "yes");
    EXPECT_EQ(first.flashType, 3);
    EXPECT_EQ(config->List[3]->flashType, 7);
    EXPECT_EQ(config->List[4]->ROMFileName, "");

    // Straight into the list: no doubled first tag, and no search for equals.
    EXPECT_EQ(gblDeviceTags, (Tags{"QBX41", "QBX41", "LAST"}));
    EXPECT_EQ(config->GetConfig(" QBX41 "), config->List[0]);
    EXPECT_EQ(config->GetConfig(""), config->List[2]);
    EXPECT_EQ(config->GetConfig("qbx41"), nullptr);
}

TEST_F(ConfigTest, UnreadablePathChangesNothingAndAReadablePathStartsAnew) {
    auto* const config = Config::Instance();
    gblDeviceTags = {"KEPT"};
    config->List.push_back(new FlashConfig);
    config->List[0]->ROMImage.assign(1000, 0xA5);
    EXPECT_FALSE(config->ReadConfig("missing.cfg", ""));
    EXPECT_EQ(config->List.size(), 1u);
    EXPECT_EQ(gblDeviceTags, Tags{"KEPT"});

    writeFile("new.cfg", "A,1,a.bin\n");
    EXPECT_TRUE(config->ReadConfig("new.cfg", ""));
    ASSERT_EQ(config->List.size(), 1u);
    EXPECT_EQ(config->List[0]->ROMFileName, "a.bin");
    EXPECT_EQ(gblDeviceTags, Tags{"A"});
    config->CleanConfig();
    EXPECT_TRUE(config->List.empty());
    EXPECT_EQ(gblDeviceTags, Tags{"A"});
}

TEST_F(ConfigTest, DeleteInstanceDeletesNothing) {
    auto* const config = Config::Instance();
    config->List.push_back(new FlashConfig);
    Config::DeleteInstance();
    EXPECT_EQ(Config::Instance(), config);
    EXPECT_EQ(config->List.size(), 1u);
}

TEST_F(ConfigTest, ReadingTagsFromTheCatalogueHasNoEffect) {
    writeFile("Config.xml", "<Devices><Device><a>1</a><b>N</b></Device></Devices>");
    getDeviceTagsFromXml();
    EXPECT_EQ(gblDeviceTags, Tags{});
    EXPECT_TRUE(Config::Instance()->List.empty());
}

}  // namespace
