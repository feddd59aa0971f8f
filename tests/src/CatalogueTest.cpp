#include <gmock/gmock.h>

#include "src/DiscoveryInfo.h"
#include "tests/src/FrontEndFixture.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string device(std::string const& bucket, std::string const& name, std::string const& payload,
                   std::string const& version) {
    return "  <Device>\n    <w>" + bucket + "</w>\n    <x>" + name + "</x>\n    <y>" + payload +
           "</y>\n    <z>" + version + "</z>\n  </Device>\n";
}

class CatalogueTest : public FrontEndTest {
  protected:
    CatalogueTest() { DiscoveryInfo::DeleteInstance(); }
    ~CatalogueTest() override { DiscoveryInfo::DeleteInstance(); }

    int read(std::string const& content, std::string const& path = "") {
        writeFile(path.empty() ? "Config.xml" : path + "/Config.xml",
                  "<?xml version='1.0'?>\n<Devices>\n" + content + "</Devices>\n");
        return DiscoveryInfo::Instance()->createDeviceConfig(path);
    }
    std::string payload(int bucket, char const* name) {
        DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(bucket, name);
        return entry ? entry->payload : "none";
    }
};

TEST_F(CatalogueTest, EntriesAreFoundLastFirstAndByNameBehindBucketZero) {
    ASSERT_EQ(read(device("0", "ctrl A", "a.bin", "1.10") + device("1", "SEP 1", "s1.bin", "2.00") +
                   device("1", "FBWC", "f.bin", "3.00") + device("1", " SEP 1 ", "s2.bin", "2.14") +
                   device("0", "ctrl B", "b.bin", "1.20") + device("2", "else", "e.bin", "1.00")),
              0);
    struct {
        int bucket;
        char const* name;
        char const* payload;
    } const cases[] = {
        {0, "", "b.bin"},          {0, "ctrl A", "b.bin"}, {0, "whatever", "b.bin"}, {1, "SEP 1", "s2.bin"},
        {1, "SEP 1\t ", "s2.bin"}, {1, "sep 1", "none"},   {1, "SEP", "none"},       {1, "FBWC", "f.bin"},
        {1, "", "none"},           {2, "else", "e.bin"},   {2, "FBWC", "none"},      {3, "else", "none"},
        {-1, "ctrl A", "none"},
    };
    for (auto const& c : cases)
        EXPECT_EQ(payload(c.bucket, c.name), c.payload) << c.bucket << c.name;

    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(0, "");
    EXPECT_EQ(entry->devName, "ctrl B");
    EXPECT_EQ(entry->version, "1.20");
}

TEST_F(CatalogueTest, EmptyNameFindsOnlyAnEntryWithoutAName) {
    read(device("1", "", "nameless.bin", "1.0"));
    EXPECT_EQ(payload(1, ""), "nameless.bin");
    EXPECT_EQ(payload(0, ""), "none");
}

TEST_F(CatalogueTest, ChildrenOfADeviceAreReadByPosition) {
    read(
        "<Other><a>0</a><b>no</b><c>no</c></Other>"
        "<Device><q>  1</q><q>full</q><q>full.bin</q><q>1.0</q><q>ignored</q></Device>"
        "<Device><version>1</version><bucket>short</bucket></Device>"
        "<Device><a>not a number</a><b>zero</b><c>zero.bin</c></Device>"
        "<Device><a>1x</a><b><![CDATA[<tag>]]></b><c>cdata.bin</c></Device>"
        "<Device><a>1</a><b>\n<i/>mixed</b><c>\n<i/>mixed.bin\n</c></Device>"
        "<Device/>");
    EXPECT_EQ(payload(1, "full"), "full.bin");
    EXPECT_EQ(payload(1, "short"), "");
    EXPECT_EQ(payload(1, "mixed"), "mixed.bin") << "line ends around a child element are trimmed";
    EXPECT_EQ(payload(1, "<tag>"), "cdata.bin");
    EXPECT_EQ(payload(0, ""), "") << "the Device without children stands last in bucket 0";
    DevInfo const* const head = DiscoveryInfo::Instance()->getDevInfo(0, "");
    ASSERT_NE(head->nextDev, nullptr);
    EXPECT_EQ(head->nextDev->payload, "zero.bin");
    EXPECT_EQ(head->nextDev->version, "");
    EXPECT_EQ(head->nextDev->nextDev, nullptr);
}

TEST_F(CatalogueTest, BucketOutsideTheTableIsRefusedAndTheRestIsRead) {
    ASSERT_EQ(read(device("3", "three", "x", "1") + device("-1", "minus", "x", "1") +
                   device("99999999999999999999", "huge", "x", "1") + device("4294967297", "wrap", "x", "1") +
                   device("1", "good", "good.bin", "1")),
              0);
    std::string const log = takeVerboseLog();
    EXPECT_THAT(log, HasSubstr("Config.xml: device three skipped: bucket 3 found, 0 to 2 expected\n"));
    EXPECT_THAT(log, HasSubstr("Config.xml: device minus skipped: bucket -1 found, 0 to 2 expected\n"));
    EXPECT_THAT(log, HasSubstr("device huge skipped: bucket 99999999999999999999 found, 0 to 2 expected\n"));
    EXPECT_THAT(log, HasSubstr("device wrap skipped: bucket 4294967297 found, 0 to 2 expected\n"));
    EXPECT_EQ(payload(1, "good"), "good.bin");
    EXPECT_EQ(payload(1, "wrap"), "none");
    EXPECT_FALSE(DiscoveryInfo::Instance()->setDevInfo(3, "p", "v", "n"));
    EXPECT_TRUE(DiscoveryInfo::Instance()->setDevInfo(1, "later.bin", "9", "good"));
    EXPECT_EQ(payload(1, "good"), "later.bin");
}

TEST_F(CatalogueTest, LastComponentFileWinsAndAnEmptyElementIsSkipped) {
    EXPECT_EQ(DiscoveryInfo::Instance()->getcpxml(), "");
    read("<cpxml><n>first</n></cpxml><cpxml><n>second</n><n>third</n></cpxml><cpxml/><cpxml>text</cpxml>");
    EXPECT_EQ(DiscoveryInfo::Instance()->getcpxml(), "second");
    EXPECT_THAT(takeVerboseLog(),
                HasSubstr("Config.xml: cpxml skipped: no child element found, one expected\n"));
}

TEST_F(CatalogueTest, CatalogueIsReadOnceAndFailureIsTriedAgain) {
    auto* const info = DiscoveryInfo::Instance();
    for (char const* content : {"", "<Device/>", "<a><Devices/></a>", "no xml at all"}) {
        writeFile("Config.xml", content);
        int result = 0;
        EXPECT_EQ(transcript([&] { result = info->createDeviceConfig(""); }),
                  "Error: XML data invalid. <Devices>\n");
        EXPECT_EQ(result, -1);
    }
    read(device("1", "n", "one.bin", "1"));
    EXPECT_THAT(takeVerboseLog(), HasSubstr("createDeviceConfig...\nConfig xml file: Config.xml\n"));
    read(device("1", "n", "two.bin", "1"));
    EXPECT_THAT(takeVerboseLog(), Not(HasSubstr("createDeviceConfig")));
    EXPECT_EQ(payload(1, "n"), "one.bin");
    EXPECT_EQ(DiscoveryInfo::Instance(), info);
    DiscoveryInfo::DeleteInstance();
    EXPECT_EQ(payload(1, "n"), "none");
}

TEST_F(CatalogueTest, DirectoryGoesBeforeThePayloadWithinTwoHundredBytes) {
    std::string const longName(300, 'p');
    std::filesystem::create_directory("sub");
    read(device("1", "short", "s.bin", "1") + device("1", "long", longName, "1"), "sub");
    EXPECT_EQ(payload(1, "short"), "sub/s.bin");
    EXPECT_EQ(payload(1, "long"), "sub/" + longName.substr(0, 195));
    std::string const log = takeVerboseLog();
    EXPECT_THAT(log,
                HasSubstr("sub/Config.xml: payload path of 304 bytes cut, at most 199 expected: sub/ppp"));
    EXPECT_THAT(log, Not(HasSubstr("sub/s.bin cut")));

    DiscoveryInfo::DeleteInstance();
    read(device("1", "long", longName, "1"));
    EXPECT_EQ(payload(1, "long"), longName);
}

TEST_F(CatalogueTest, LookUpAndDisplayLeaveTheirTrace) {
    read(device("1", "A ", "a.bin", "1.0") + device("1", "B", "b.bin", "2.0") +
         device("0", "C", "c.bin", "3.0"));
    takeVerboseLog();
    payload(1, " A");
    EXPECT_EQ(takeVerboseLog(),
              "DiscoveryInfo:  ADiscoveryInfo::getDevInfo starts...Tag:A:\n"
              "getDevInfo iterator devName:B: \n"
              "getDevInfo iterator devName:A : \n"
              "getDevInfo devName matched:A : fw name a.bin\n");
    DiscoveryInfo::Instance()->DisplayConfigInfo();
    EXPECT_EQ(takeVerboseLog(),
              "Dev Name: C PayLoad: c.bin Version: 3.0\n"
              "Dev Name: B PayLoad: b.bin Version: 2.0\n"
              "Dev Name: A  PayLoad: a.bin Version: 1.0\n");
}

TEST_F(CatalogueTest, CatalogueCutAtAnyByteIsReadUpToTheCut) {
    std::string const document =
        "<Devices><Device><a>1</a><b>N</b><c>n.bin</c><d>1.0</d></Device>"
        "<cpxml><n>comp</n></cpxml><Device><a>7</a></Device></Devices>";
    for (std::size_t length = 0; length <= document.size(); ++length) {
        DiscoveryInfo::DeleteInstance();
        std::string const head = document.substr(0, length);
        writeFile("Config.xml", head);
        int result = 0;
        transcript([&] { result = DiscoveryInfo::Instance()->createDeviceConfig(""); });
        EXPECT_EQ(result, head.starts_with("<Devices>") ? 0 : -1) << head;
        if (head.find("</Device>") != std::string::npos) {
            EXPECT_EQ(payload(1, "N"), "n.bin") << head;
        }
        if (head.find("</cpxml>") != std::string::npos) {
            EXPECT_EQ(DiscoveryInfo::Instance()->getcpxml(), "comp") << head;
        }
    }
}

}  // namespace
