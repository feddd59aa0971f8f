#include "common/compound_list.h"

#include <gtest/gtest.h>

#include "tests/common/Printers.h"

namespace {

using Common::CompoundList;
using Common::string;

TEST(CompoundListTest, ReadsItemsFromText) {
    struct {
        char const* text;
        bool allowDuplicates;
        char const* items;  // joined with ","
        unsigned int size;
    } const cases[] = {
        {"", true, "", 0},
        {"a", true, "a", 1},
        {"a*-*b", true, "a,b", 2},
        {"a*-*b*-*", true, "a,b,", 3},
        {"*-*", true, ",", 2},
        {"*-*a", true, ",a", 2},
        {"a*-*a*-*", false, "a,", 2},
        {"a*-*a*-*", true, "a,a,", 3},
        {"a*-*-*b", true, "a,-*b", 2},
        {"a*b-*c", true, "a*b-*c", 1},
        {"*-", true, "", 1},  // with the delimiter behind it, it reads as "*-*" first
    };
    for (auto const& c : cases) {
        CompoundList const list(c.text, c.allowDuplicates);
        EXPECT_EQ(list.toString(","), c.items) << c.text;
        EXPECT_EQ(list.size(), c.size) << c.text;
    }
}

TEST(CompoundListTest, WritesTheDelimiterBetweenItems) {
    EXPECT_EQ(CompoundList("a*-*b", true).toString(), "a*-*b");
    EXPECT_EQ(CompoundList("a*-*b", true).toString("; "), "a; b");
    EXPECT_EQ(CompoundList(true).toString(), "");
}

TEST(CompoundListTest, MergesAndRemoves) {
    CompoundList set("a*-*b", false);
    set.Merge("b*-*c*-*c");
    EXPECT_EQ(set.toString(","), "a,b,c");
    CompoundList bag("a*-*b*-*a*-*c", true);
    bag.Merge(set);
    EXPECT_EQ(bag.toString(","), "a,b,a,c,a,b,c");
    bag.Remove("a*-*x*-*c");
    EXPECT_EQ(bag.toString(","), "b,b");
    bag.Merge("d*-*d");
    EXPECT_EQ(bag.toString(","), "b,b,d,d");
    bag.Remove("d");
    bag.Merge(bag);  // itself: ends, and doubles
    EXPECT_EQ(bag.size(), 4u);
    bag.Remove(bag);
    EXPECT_EQ(bag.size(), 0u);
    set.Clear();
    EXPECT_FALSE(set.contains("a"));
}

TEST(CompoundListTest, EqualityIgnoresOrder) {
    EXPECT_TRUE(CompoundList("a*-*b", true) == CompoundList("b*-*a", false));
    EXPECT_FALSE(CompoundList("a*-*b", true) == CompoundList("a", true));
    EXPECT_FALSE(CompoundList("a*-*c", true) == CompoundList("a*-*b", true));
    // Only this list's items are looked for, so duplicates may hide a difference.
    EXPECT_TRUE(CompoundList("a*-*a", true) == CompoundList("a*-*b", true));
    EXPECT_FALSE(CompoundList("a*-*b", true) == CompoundList("a*-*a", true));
}

}  // namespace
