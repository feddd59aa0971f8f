#include "common/map.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/common/Printers.h"

namespace {

using Common::string;
using Map = Common::map<string, int>;
using Entry = Common::pair<string, int>;

std::string text(Map const& map) {
    std::string s;
    for (Entry const& entry : map)
        s += entry.first.c_str() + ("=" + std::to_string(entry.second)) + " ";
    return s;
}

TEST(MapTest, InsertOverwritesAndSaysSo) {
    Map map;
    auto const first = map.insert(Entry("k", 1));
    EXPECT_TRUE(first.second);
    auto const second = map.insert(Entry("k", 2));
    EXPECT_FALSE(second.second);
    EXPECT_EQ(second.first->second, 2);
    EXPECT_TRUE(second.first == first.first);
    EXPECT_EQ(text(map), "k=2 ");
}

TEST(MapTest, IteratesInAscendingKeyOrder) {
    Map map;
    int n = 0;
    for (char const* key : {"m", "b", "Z", "a", "z", ""})
        map.insert(Entry(key, n++));
    EXPECT_EQ(text(map), "=5 Z=2 a=3 b=1 m=0 z=4 ");
    map["c"] = 9;
    map["b"] += 10;
    EXPECT_EQ(map["new"], 0);
    EXPECT_EQ(text(map), "=5 Z=2 a=3 b=11 c=9 m=0 new=0 z=4 ");
    EXPECT_EQ(map.size(), 8u);
}

TEST(MapTest, AnInsertOutdatesACachedAbsence) {
    Map map;
    EXPECT_TRUE(map.find("k") == map.end());
    EXPECT_TRUE(map.find("k") == map.end());
    map.insert(Entry("k", 1));
    ASSERT_TRUE(map.find("k") != map.end());
    EXPECT_TRUE(map.find("l") == map.end());
    map["l"] = 4;
    ASSERT_TRUE(map.find("l") != map.end());
    EXPECT_EQ(map.find("l")->second, 4);
}

// Counts how often keys are compared for equality, which shows when the cache answers.
struct Key {
    static int comparisons;
    int n = 0;
    bool operator==(Key const& other) const {
        ++comparisons;
        return n == other.n;
    }
    bool operator<(Key const& other) const { return n < other.n; }
};
int Key::comparisons = 0;

using KeyMap = Common::map<Key, int>;

int comparisonsToFind(KeyMap& map, int n, bool expected) {
    Key::comparisons = 0;
    bool const found = map.find(Key{n}) != map.end();
    EXPECT_EQ(found, expected) << n;
    return Key::comparisons;
}

class MapCacheTest : public testing::Test {
  protected:
    MapCacheTest() {
        for (int n : {10, 20, 30})
            map.insert(Common::pair<Key, int>(Key{n}, n));
    }
    KeyMap map;
};

TEST_F(MapCacheTest, TheLastLookUpIsAnsweredByTheCacheAlsoWhenAbsent) {
    EXPECT_EQ(comparisonsToFind(map, 30, true), 1);  // from the insert
    EXPECT_EQ(comparisonsToFind(map, 5, false), 4);  // the cached key, then all three: no early stop
    EXPECT_EQ(comparisonsToFind(map, 5, false), 1);
    EXPECT_EQ(comparisonsToFind(map, 20, true), 3);
    EXPECT_EQ(comparisonsToFind(map, 20, true), 1);
}

TEST_F(MapCacheTest, CopyAndAssignmentStartWithoutACache) {
    EXPECT_EQ(comparisonsToFind(map, 20, true), 3);
    KeyMap copy(map);
    EXPECT_EQ(comparisonsToFind(copy, 20, true), 2);
    copy.find(Key{20})->second = 99;
    EXPECT_EQ(map[Key{20}], 20);
    KeyMap assigned;
    EXPECT_EQ(comparisonsToFind(assigned, 20, false), 0);
    assigned = map;
    EXPECT_EQ(comparisonsToFind(assigned, 20, true), 2);
    KeyMap const empty;
    assigned = empty;
    EXPECT_EQ(comparisonsToFind(assigned, 20, false), 0);
}

TEST_F(MapCacheTest, EraseLeavesTheKeyInTheCacheAsAbsent) {
    EXPECT_EQ(comparisonsToFind(map, 20, true), 3);
    EXPECT_EQ(map.erase(map.find(Key{20}))->first.n, 30);
    EXPECT_EQ(comparisonsToFind(map, 20, false), 1);
    EXPECT_TRUE(map.erase(map.end()) == map.end());
    map.insert(Common::pair<Key, int>(Key{20}, 7));
    EXPECT_EQ(map.find(Key{20})->second, 7);
    EXPECT_EQ(map.size(), 3u);
    map.clear();
    EXPECT_EQ(comparisonsToFind(map, 20, false), 0);
}

TEST_F(MapCacheTest, AnOwnerOfTheNodesKeepsTheCacheItself) {
    KeyMap::iterator const at = map.findNode(Key{20});
    KeyMap::iterator const next = map.nodes().erase(at);
    map.setCache(Key{20}, map.nodes().insert(next, Common::pair<Key, int>(Key{20}, 5)));
    EXPECT_EQ(comparisonsToFind(map, 20, true), 1);
    EXPECT_EQ(map[Key{20}], 5);
    map.clearCache();
    EXPECT_EQ(comparisonsToFind(map, 10, true), 1);
}

TEST(MapTest, ADefaultMapReadsAsEmptyThroughAConstReference) {
    Map const map;
    EXPECT_TRUE(map.begin() == map.end());
    EXPECT_TRUE(map.find("k") == map.end());
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.toString(), "");
}

}  // namespace
