#include "common/list.h"

#include <gtest/gtest.h>

#include <new>
#include <string>

#include "common/stack.h"

namespace {

struct Counts {
    int allocated = 0;
    int freed = 0;
    int limit = 1000;  // allocations beyond it give null
};
Counts counts;

struct CountingAllocator {
    void* allocate(std::size_t size) {
        if (counts.allocated >= counts.limit) return nullptr;
        ++counts.allocated;
        return ::operator new(size);
    }
    void deallocate(void* p) {
        ++counts.freed;
        ::operator delete(p);
    }
};

using Numbers = Common::list<int, CountingAllocator>;

std::string text(Numbers const& numbers) {
    std::string s;
    for (int n : numbers)
        s += std::to_string(n) + " ";
    return s;
}

class ListTest : public testing::Test {
  protected:
    void SetUp() override { counts = Counts(); }
    void TearDown() override { EXPECT_EQ(counts.allocated, counts.freed); }
};

TEST_F(ListTest, AnUnusedListAllocatesNothingUntilItsDestructorTouchesIt) {
    {
        Numbers const unused;
        EXPECT_EQ(counts.allocated, 0);
    }
    EXPECT_EQ(counts.allocated, 1);
    EXPECT_EQ(counts.freed, 1);
}

TEST_F(ListTest, AConstAccessBuildsTheSentinelOnce) {
    Numbers const numbers;
    EXPECT_TRUE(numbers.begin() == numbers.end());
    EXPECT_EQ(counts.allocated, 1);
    EXPECT_EQ(numbers.size(), 0u);
    EXPECT_TRUE(numbers.empty());
    EXPECT_EQ(counts.allocated, 1);
}

TEST_F(ListTest, InsertGoesBeforeThePositionAndLeavesIteratorsValid) {
    Numbers numbers;
    numbers.push_back(2);
    Numbers::iterator const two = numbers.begin();
    EXPECT_EQ(*numbers.insert(two, 1), 1);
    numbers.insert(numbers.end(), 3);
    numbers.insert(Numbers::iterator(), 4);
    EXPECT_EQ(text(numbers), "1 2 3 4 ");
    EXPECT_EQ(*two, 2);
    numbers.push_back(*two);  // an element of the list itself
    EXPECT_EQ(text(numbers), "1 2 3 4 2 ");
    EXPECT_EQ(counts.allocated, 6);
}

TEST_F(ListTest, EraseGivesTheFollowingIteratorAndLeavesEndAlone) {
    Numbers numbers;
    for (int n : {1, 2, 3})
        numbers.push_back(n);
    EXPECT_EQ(*numbers.erase(++numbers.begin()), 3);
    EXPECT_EQ(counts.freed, 1);
    EXPECT_TRUE(numbers.erase(numbers.end()) == numbers.end());
    EXPECT_TRUE(numbers.erase(Numbers::iterator()) == numbers.end());
    EXPECT_EQ(text(numbers), "1 3 ");
    numbers.erase(numbers.begin());
    EXPECT_TRUE(numbers.erase(numbers.begin()) == numbers.end());
    EXPECT_TRUE(numbers.empty());
}

TEST_F(ListTest, ClearKeepsTheSentinel) {
    Numbers numbers;
    numbers.push_back(1);
    numbers.push_back(2);
    numbers.clear();
    EXPECT_EQ(counts.freed, 2);
    numbers.push_back(7);
    EXPECT_EQ(text(numbers), "7 ");
}

TEST_F(ListTest, CopiesAreIndependentAndInOrder) {
    Numbers a;
    for (int n : {1, 2, 3})
        a.push_back(n);
    Numbers b(a);
    *b.begin() = 9;
    Numbers c;
    c.push_back(5);
    c = a;
    a = *&a;
    a.clear();
    EXPECT_EQ(text(b), "9 2 3 ");
    EXPECT_EQ(text(c), "1 2 3 ");
    c = a;
    EXPECT_EQ(text(c), "");
}

TEST_F(ListTest, IteratorsCompareAcrossConstnessAndWalkBothWays) {
    Numbers numbers;
    for (int n : {1, 2})
        numbers.push_back(n);
    Numbers::const_iterator i = numbers.begin();
    EXPECT_TRUE(i == numbers.begin());
    EXPECT_EQ(*i++, 1);
    EXPECT_EQ(*i, 2);
    EXPECT_TRUE(++i == numbers.end());
    EXPECT_EQ(*--i, 2);
    EXPECT_EQ(*i--, 2);
    EXPECT_TRUE(i != numbers.end());
    EXPECT_TRUE(Numbers::iterator() == Numbers::iterator());
    EXPECT_TRUE(Numbers::const_iterator() != i);
}

TEST_F(ListTest, AnAllocatorWithoutMemoryIsAnExceptionAndTheListStays) {
    counts.limit = 2;
    {
        Numbers numbers;
        numbers.push_back(1);
        EXPECT_THROW(numbers.push_back(2), std::bad_alloc);
        EXPECT_THROW(Numbers(numbers).begin(), std::bad_alloc);
        EXPECT_EQ(text(numbers), "1 ");
        counts.limit = 1000;
    }
}

struct Reluctant {
    static int copiesLeft;
    Reluctant() = default;
    Reluctant(Reluctant const&) {
        if (copiesLeft-- == 0) throw 1;
    }
};
int Reluctant::copiesLeft = 0;

TEST_F(ListTest, AThrowingCopyLeaksNoNode) {
    Common::list<Reluctant, CountingAllocator> items;
    Reluctant::copiesLeft = 3;
    items.push_back(Reluctant());
    items.push_back(Reluctant());
    Reluctant::copiesLeft = 1;
    using Items = Common::list<Reluctant, CountingAllocator>;
    EXPECT_THROW(Items copy(items), int);
    EXPECT_EQ(counts.allocated - counts.freed, 3);
    EXPECT_EQ(items.size(), 2u);
}

TEST_F(ListTest, AStackWorksFromOneEnd) {
    Common::stack<unsigned short, CountingAllocator> stack;
    stack.pop();
    EXPECT_EQ(stack.top(), 0);
    stack.push(1);
    stack.push(0xFFFE);
    EXPECT_EQ(stack.top(), 0xFFFE);
    stack.pop();
    EXPECT_EQ(stack.top(), 1);
    EXPECT_EQ(stack.size(), 1u);
}

}  // namespace
