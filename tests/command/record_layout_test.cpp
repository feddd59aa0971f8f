// Every record against literal tables: the structures, and the catalogue that is built at start-up.

#include <gtest/gtest.h>

#include <cstddef>
#include <set>
#include <string>

#include "command/catalogue.h"
#include "command/commandmod.h"
#include "command/records/all_records.h"

namespace {

struct LayoutRow {
    char const* record;
    char const* member;
    unsigned offset, size;
    char const* type;
    bool isArray;
    std::size_t structOffset, structSize;
};

using namespace Records;

constexpr LayoutRow LAYOUT[] = {
#define ROW(record, member, offset, size, type, isArray) \
    {#record, #member, offset, size, #type, isArray, offsetof(record, member), sizeof(record::member)},
#include "record_rows.inc"
#undef ROW
};

struct SizeRow {
    char const* record;
    unsigned size;
    std::size_t structSize;
};

constexpr SizeRow SIZES[] = {
#define SIZE(record, size) {#record, size, sizeof(record)},
#include "record_sizes.inc"
#undef SIZE
};

class RecordCatalogue : public testing::Test {
  protected:
    void SetUp() override { Interface::CommandMod::InitializeModule(false); }
    void TearDown() override { Interface::CommandMod::ForgetModule(); }
};

TEST(RecordLayout, StructuresHaveTheirMembersInPlace) {
    EXPECT_EQ(std::size(LAYOUT), 643U);
    for (LayoutRow const& row : LAYOUT) {
        EXPECT_EQ(row.structOffset, row.offset) << row.record << "." << row.member;
        EXPECT_EQ(row.structSize, row.size) << row.record << "." << row.member;
    }
}

TEST(RecordLayout, StructuresHaveTheirSizes) {
    EXPECT_EQ(std::size(SIZES), 103U);
    for (SizeRow const& row : SIZES)
        EXPECT_EQ(row.structSize, row.size) << row.record;
}

TEST_F(RecordCatalogue, HasEveryMember) {
    for (LayoutRow const& row : LAYOUT) {
        Structure const* const structure = findStructure(row.record);
        ASSERT_NE(structure, nullptr) << row.record;
        StructureMember const* const member = findMember(*structure, row.member);
        ASSERT_NE(member, nullptr) << row.record << "." << row.member;
        EXPECT_EQ(member->offset, row.offset) << row.record << "." << row.member;
        EXPECT_EQ(member->size, row.size) << row.record << "." << row.member;
        EXPECT_STREQ(member->type.c_str(), row.type) << row.record << "." << row.member;
        EXPECT_EQ(member->isArray, row.isArray) << row.record << "." << row.member;
    }
}

TEST_F(RecordCatalogue, HasEveryRecordOnceWithItsSize) {
    for (SizeRow const& row : SIZES) {
        Structure const* const structure = findStructure(row.record);
        ASSERT_NE(structure, nullptr) << row.record;
        EXPECT_EQ(structure->size, row.size) << row.record;
    }
    std::set<std::string> names;
    for (Structure const& structure : catalogue())
        names.insert(structure.name.c_str());
    // Those of the tables, the eight bytes that INQUIRY data starts with, and four NVRAM layouts.
    EXPECT_EQ(catalogue().size(), 108U);
    EXPECT_EQ(names.size(), 108U);
}

// A record that grows members is only whole if they cover it: a gap would be bytes that nobody can name.
TEST_F(RecordCatalogue, MembersCoverEveryRecordWithoutGapOrOverlap) {
    for (Structure const& structure : catalogue()) {
        unsigned end = 0;
        for (StructureMember const& member : structure.members) {
            EXPECT_EQ(member.offset, end) << structure.name.c_str() << "." << member.name.c_str();
            end = member.offset + member.size;
        }
        EXPECT_EQ(end, structure.size) << structure.name.c_str();
    }
}

TEST_F(RecordCatalogue, ASecondStartChangesNothing) {
    std::size_t const records = catalogue().size();
    Interface::CommandMod::InitializeModule(true);
    EXPECT_EQ(catalogue().size(), records);
    EXPECT_FALSE(Interface::CommandMod::profilingEnabled());
}

}  // namespace
