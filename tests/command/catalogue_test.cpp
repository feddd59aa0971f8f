#include "command/catalogue.h"

#include <gtest/gtest.h>

#include <string>

#include "command/commandmod.h"
#include "command/structure_proxy.h"
#include "command/type_proxy.h"
#include "fakes.h"

namespace {

using namespace command_test;

class Catalogue : public testing::Test {
  protected:
    void TearDown() override { ClearCatalogue(); }
};

TEST_F(Catalogue, StripsThePrefixAndTheArrayMark) {
    AddStructure("S");
    struct {
        char const *member, *type, *stored;
        bool isArray;
    } const rows[] = {
        {"a", "SA_BYTE", "BYTE", false}, {"b", "SA_WORD []", "WORD", true},
        {"c", "char []", "char", true},  {"d", "DRIVE_PARAM_TABLE", "DRIVE_PARAM_TABLE", false},
        {"e", "SA_SA_X", "SA_X", false},
    };
    for (auto const& row : rows) {
        AddStructureMember("S", row.member, 1, 2, row.type);
        StructureMember const* const member = findMember(*findStructure("S"), row.member);
        ASSERT_NE(member, nullptr) << row.type;
        EXPECT_STREQ(member->type.c_str(), row.stored);
        EXPECT_EQ(member->isArray, row.isArray) << row.type;
    }
}

TEST_F(Catalogue, NamesCountToTheirSixtyFourthCharacter) {
    std::string const name(64, 'N');
    AddStructure((name + "first").c_str());
    AddStructure((name + "second").c_str());
    EXPECT_EQ(catalogue().size(), 1U);
    SetStructureSize((name + "third").c_str(), 77);
    ASSERT_NE(findStructure(name.c_str()), nullptr);
    EXPECT_EQ(findStructure(name.c_str())->size, 77U);
    EXPECT_EQ(findStructure(name.substr(0, 63).c_str()), nullptr);
}

TEST_F(Catalogue, RefusesWhatItHasNoPlaceFor) {
    LogCapture log(1);
    AddStructureMember("NOWHERE", "a", 0, 1, "SA_BYTE");
    SetStructureSize("NOWHERE", 5);
    EXPECT_EQ(log.count("there is no record \"NOWHERE\""), 2U) << log.text();
    AddStructure("S");
    AddStructureMember("S", "a", 0, 1, "SA_BYTE");
    AddStructureMember("S", "a", 9, 9, "SA_WORD");
    EXPECT_EQ(log.count("second member \"a\" of \"S\" refused"), 1U) << log.text();
    EXPECT_EQ(findMember(*findStructure("S"), "a")->offset, 0U);
    EXPECT_EQ(findStructure(nullptr), nullptr);
}

class Proxy : public testing::Test {
  protected:
    void SetUp() override {
        Interface::CommandMod::InitializeModule(false);
        for (unsigned i = 0; i < sizeof(buffer); ++i)
            buffer[i] = static_cast<unsigned char>(0x40 + i);
    }
    void TearDown() override { Interface::CommandMod::ForgetModule(); }

    unsigned char buffer[36];
};

TEST_F(Proxy, GivesAccessByName) {
    StructureProxy proxy("BOX_INQUIRY_DATA", buffer);
    EXPECT_EQ(proxy.getStructureSize(), 36U);
    EXPECT_EQ(proxy.memberNameList().size(), 10U);
    EXPECT_STREQ(proxy.memberNameList().begin()->c_str(), "bPeripheralType");
    Common::string type;
    unsigned int offset = 0, size = 0;
    bool isArray = false;
    ASSERT_TRUE(proxy.MemberInfo("sVendorID", type, offset, size, isArray));
    EXPECT_STREQ(type.c_str(), "char");
    EXPECT_EQ(offset, 8U);
    EXPECT_EQ(size, 8U);
    EXPECT_TRUE(isArray);
    EXPECT_FALSE(proxy.MemberInfo("sNothing", type, offset, size, isArray));
    EXPECT_STREQ(proxy.read("bSupportBits").c_str(), "47");
    EXPECT_STREQ(proxy.read("reserved").c_str(), "45 46");
    EXPECT_STREQ(proxy.read("sProductRevision").c_str(), "`abc");
    EXPECT_STREQ(StructureProxy("ALARM_STRUCTURE", buffer).read("wAlarmCount").c_str(), "43 44")
        << "no proxy";
    EXPECT_STREQ(proxy.read("sNothing").c_str(), "");
}

TEST_F(Proxy, WritesWhatFitsAndNothingElse) {
    StructureProxy proxy("BOX_INQUIRY_DATA", buffer);
    EXPECT_TRUE(proxy.Write("reserved", "aB 0f"));
    EXPECT_EQ(buffer[5], 0xAB);
    EXPECT_EQ(buffer[6], 0x0F);
    for (char const* bad : {"", "AB", "AB 0", "AB 0F 00", "AB-0F", "AB 0G"}) {
        EXPECT_FALSE(proxy.Write("reserved", bad)) << bad;
    }
    EXPECT_EQ(buffer[5], 0xAB);
    EXPECT_EQ(buffer[7], 0x47);
    EXPECT_TRUE(proxy.Write("sVendorID", "VQ  "));
    EXPECT_STREQ(proxy.read("sVendorID").c_str(), "VQ  ");
    EXPECT_EQ(buffer[12] | buffer[15], 0) << "filled up";
    EXPECT_EQ(buffer[16], 0x50);
    EXPECT_TRUE(proxy.Write("sVendorID", "12345678"));
    EXPECT_FALSE(proxy.Write("sVendorID", "123456789"));
    EXPECT_STREQ(proxy.read("sVendorID").c_str(), "12345678");
    EXPECT_FALSE(StructureProxy("ALARM_STRUCTURE", buffer).Write("wAlarmCount", "00 00")) << "no proxy";
    EXPECT_FALSE(proxy.Write("sNothing", "00"));
}

TEST_F(Proxy, AMemberBehindTheStructureOrWithoutABufferIsRefused) {
    AddStructure("SHORT");
    SetStructureSize("SHORT", 4);
    AddStructureMember("SHORT", "bIn", 3, 1, "SA_BYTE");
    AddStructureMember("SHORT", "bOut", 4, 1, "SA_BYTE");
    LogCapture log(1);
    StructureProxy proxy("SHORT", buffer);
    EXPECT_STREQ(proxy.read("bIn").c_str(), "43");
    EXPECT_STREQ(proxy.read("bOut").c_str(), "");
    EXPECT_FALSE(proxy.Write("bOut", "00"));
    EXPECT_EQ(log.count("Member \"bOut\" refused: it ends at 5 in a record of 4 bytes"), 2U) << log.text();
    EXPECT_STREQ(StructureProxy("SHORT", nullptr).read("bIn").c_str(), "");
    EXPECT_EQ(StructureProxy("UNKNOWN", buffer).getStructureSize(), 0U);
}

TEST_F(Proxy, TypesMayHaveProxiesOfTheirOwn) {
    class TextProxy : public TypeProxy {
      public:
        Common::string Read(unsigned char const* memory, unsigned int size) const override {
            return Common::string(reinterpret_cast<char const*>(memory), size);
        }
        bool Write(unsigned char*, unsigned int, Common::string const&) const override { return false; }
    };
    EXPECT_EQ(TypeProxyFactory::getTypeProxy("WORD"), nullptr);
    AddStructure("T");
    SetStructureSize("T", 2);
    AddStructureMember("T", "text", 0, 2, "TEXT_OF_THE_TEST []");
    TypeProxyFactory::RegisterTypeProxy("TEXT_OF_THE_TEST", Common::shared_ptr<TypeProxy>(new TextProxy));
    EXPECT_STREQ(StructureProxy("T", buffer).read("text").c_str(), "@A");
}

}  // namespace
