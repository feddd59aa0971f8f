#include "src/deviceTags.h"

#include "tests/src/FrontEndFixture.h"

namespace {

using Tags = std::vector<std::string>;

class DeviceTagsTest : public FrontEndTest {
  protected:
    DeviceTagsTest() { gblDeviceTags.clear(); }
    ~DeviceTagsTest() override { gblDeviceTags.clear(); }
};

TEST_F(DeviceTagsTest, FirstTagGoesInTwiceAndLaterOnesOnce) {
    EXPECT_EQ(getTags(), "");
    struct {
        char const* tag;
        bool added;
        char const* joined;
    } const steps[] = {
        {"A", true, "A, A"},     {"B", true, "A, A, B"},    {"A", false, "A, A, B"},
        {"B", false, "A, A, B"}, {"a", true, "A, A, B, a"},
    };
    for (auto const& step : steps) {
        EXPECT_EQ(addTags(step.tag), step.added) << step.tag;
        EXPECT_EQ(getTags(), step.joined);
    }
    EXPECT_EQ(transcript([] { printTags(); }), "gbldevice Tags ABa");
    gblDeviceTags.clear();
    EXPECT_EQ(transcript([] { printTags(); }), "gbldevice Tags ");
}

TEST_F(DeviceTagsTest, TagIsAPrefixOfTheIdWithoutCase) {
    EXPECT_FALSE(isApplicable("anything"));
    EXPECT_EQ(takeVerboseLog(), "FW is not applicable to 'anything'\n");
    gblDeviceTags = {"abc", "X 1"};
    struct {
        char const* id;
        bool applicable;
    } const cases[] = {{"ABCD", true}, {"abc", true},   {"AB", false}, {"zabc", false},
                       {"x 10", true}, {"X  1", false}, {"", false},   {"X 1      ", true}};
    for (auto const& c : cases)
        EXPECT_EQ(isApplicable(c.id), c.applicable) << c.id;
    takeVerboseLog();
    isApplicable("ABCD");
    EXPECT_EQ(takeVerboseLog(), "FW is applicable to 'ABCD'\n");
}

TEST_F(DeviceTagsTest, ComponentFileGivesTheNamesOfItsSoftwareKeys) {
    writeFile("comp.xml",
              "<ksl_package>\n <sw_keys>\n"
              "  <sw_keys_and>\n   <sw_key name=' QBX41 '/>\n   <sw_key name='P1210m'>text</sw_key>\n"
              "   <other name='no'/>\n  </sw_keys_and>\n"
              "  <sw_keys_and>\n   <sw_key name='QBX41'/>\n   <sw_key name='FBWC'/>\n  </sw_keys_and>\n"
              "  <sw_key name='no'/>\n </sw_keys>\n</ksl_package>\n");
    EXPECT_EQ(readTagsFromComponentXML("comp.xml"), 0);
    EXPECT_EQ(gblDeviceTags, (Tags{"QBX41", "QBX41", "P1210m", "FBWC"}));
    // A tag that was there already is logged as added too.
    EXPECT_EQ(takeVerboseLog(),
              "readTagsFromComponentXML: comp.xml\nAdded tag: QBX41\nAdded tag: P1210m\nAdded tag: QBX41\n"
              "Added tag: FBWC\n");
    // Every pass reads the file again: nothing is added a second time.
    EXPECT_EQ(readTagsFromComponentXML("comp.xml"), 0);
    EXPECT_EQ(gblDeviceTags, (Tags{"QBX41", "QBX41", "P1210m", "FBWC"}));
}

TEST_F(DeviceTagsTest, MissingComponentFileMeansNoTags) {
    std::string const seen = transcript([] { EXPECT_EQ(readTagsFromComponentXML(".xml"), 0); });
    EXPECT_EQ(seen, "");
    EXPECT_EQ(gblDeviceTags, Tags{});
}

}  // namespace
