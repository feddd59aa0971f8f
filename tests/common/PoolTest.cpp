#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "common/global_static_allocator.h"
#include "tests/common/CaptureStream.h"

namespace {

using Common::GlobalStaticAllocator;

using Segment = std::vector<std::pair<unsigned int, unsigned int>>;  // offset and size of each free node

struct Pool : GlobalStaticAllocator {
    static unsigned char* memory() { return sm_pMemoryPool; }

    static unsigned int segmentOf(void const* p) {
        return static_cast<unsigned int>((static_cast<unsigned char const*>(p) - sm_pMemoryPool) / 65535);
    }

    static Segment freeNodes(unsigned int index) {
        Segment nodes;
        unsigned char const* const start = sm_pMemoryPool + index * 65535;
        for (unsigned char const* at = sm_segmentInfo[index].pFirstFreeNode; at != nullptr;) {
            std::uint16_t words[2];
            std::memcpy(words, at, 4);
            nodes.emplace_back(static_cast<unsigned int>(at - start), words[0]);
            at = words[1] != 0 ? at + words[1] : nullptr;
        }
        EXPECT_EQ(nodes.size(), sm_segmentInfo[index].FreeListCount) << "segment " << index;
        return nodes;
    }
};

unsigned int header(void const* p) {
    std::uint16_t size;
    std::memcpy(&size, static_cast<unsigned char const*>(p) - 2, 2);
    return size;
}

// Each test begins and ends with a pool of ten empty segments.
class PoolTest : public testing::Test {
  protected:
    void SetUp() override {
        GlobalStaticAllocator::deallocate(GlobalStaticAllocator::allocate(1));
        expectPristine();
    }
    void TearDown() override {
        Common::DebugLogger::UnRegisterAllDebugOutputStreams();
        expectPristine();
    }
    static void expectPristine() {
        for (unsigned int i = 0; i < 10; ++i) {
            EXPECT_EQ(Pool::freeNodes(i), (Segment{{0, 65535}})) << "segment " << i;
        }
    }
    static unsigned char* allocate(std::size_t size) {
        return static_cast<unsigned char*>(GlobalStaticAllocator::allocate(size));
    }
    static void free(void* p) { GlobalStaticAllocator::deallocate(p); }
};

TEST_F(PoolTest, ABlockIsItsHeaderAndItsBytesAndAtLeastFour) {
    struct {
        std::size_t size;
        unsigned int header, block;
    } const cases[] = {{0, 2, 4}, {1, 2, 4}, {2, 2, 4}, {3, 3, 5}, {100, 100, 102}};
    unsigned int offset = 0;
    std::vector<unsigned char*> blocks;
    for (auto const& c : cases) {
        unsigned char* const p = allocate(c.size);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(p, Pool::memory() + offset + 2);
        EXPECT_EQ(header(p), c.header);
        offset += c.block;
        blocks.push_back(p);
    }
    EXPECT_EQ(Pool::freeNodes(0), (Segment{{119, 65535 - 119}}));
    for (unsigned char* p : blocks)
        free(p);
}

TEST_F(PoolTest, ABlockIsZeroedWhenItIsGiven) {
    unsigned char* const a = allocate(50);
    unsigned char* const b = allocate(50);
    std::memset(a, 0xAA, 50);
    std::memset(b, 0xBB, 50);
    free(a);
    free(b);  // merging leaves the node of this block in the middle of the free one
    unsigned char* const both = allocate(102);
    ASSERT_EQ(both, a);
    EXPECT_TRUE(std::all_of(both, both + 102, [](unsigned char c) { return c == 0; }));
    free(both);
}

TEST_F(PoolTest, ARequestLargerThanASegmentGivesNull) {
    EXPECT_EQ(allocate(65534), nullptr);
    EXPECT_EQ(allocate(70000), nullptr);
    EXPECT_EQ(allocate(static_cast<std::size_t>(-1)), nullptr);
    unsigned char* const whole = allocate(65533);
    ASSERT_NE(whole, nullptr);
    EXPECT_TRUE(Pool::freeNodes(0).empty());
    free(whole);
}

TEST_F(PoolTest, OnlyFiveSegmentsAreExaminedAndFullOnesComeFirst) {
    std::vector<unsigned char*> blocks;
    for (unsigned int i = 0; i < 5; ++i) {
        blocks.push_back(allocate(65533));
        ASSERT_NE(blocks.back(), nullptr);
        EXPECT_EQ(Pool::segmentOf(blocks.back()), i);
    }
    EXPECT_EQ(allocate(1), nullptr);  // five segments are empty, yet out of sight
    free(blocks[2]);
    blocks[2] = allocate(1);
    ASSERT_NE(blocks[2], nullptr);
    EXPECT_EQ(Pool::segmentOf(blocks[2]), 2u);
    for (unsigned char* p : blocks)
        free(p);
}

TEST_F(PoolTest, TheSegmentWithTheShortestFreeListServesFirst) {
    unsigned char* const a = allocate(10);
    unsigned char* const b = allocate(10);
    free(a);  // segment 0 has two free nodes now
    unsigned char* const c = allocate(10);
    EXPECT_EQ(Pool::segmentOf(c), 1u);
    free(b);
    unsigned char* const d = allocate(10);
    EXPECT_EQ(Pool::segmentOf(d), 0u);  // a tie goes to the lowest index
    free(c);
    free(d);
}

// Segment 0 has a hole of 12 bytes and its rest; every other segment has three free nodes, so that segment 0
// is examined first.
TEST_F(PoolTest, AHoleServesAnExactFitOrLeavesRoomForANode) {
    struct {
        std::size_t size;
        bool inHole;
        Segment after;
    } const cases[] = {
        {10, true, {{24, 65511}}},           {9, false, {{0, 12}, {35, 65500}}},
        {8, false, {{0, 12}, {34, 65501}}},  {7, false, {{0, 12}, {33, 65502}}},
        {6, true, {{8, 4}, {24, 65511}}},    {0, true, {{4, 8}, {24, 65511}}},
        {11, false, {{0, 12}, {37, 65498}}}, {65509, false, {{0, 12}}},  // the last node of the list, exactly
    };
    for (auto const& c : cases) {
        unsigned char* const hole = allocate(10);
        std::vector<unsigned char*> fences = {allocate(10)};
        free(hole);
        for (unsigned int i = 1; i < 10; ++i) {
            unsigned char* const blocks[4] = {allocate(2), allocate(2), allocate(2), allocate(2)};
            ASSERT_EQ(Pool::segmentOf(blocks[0]), i);
            free(blocks[0]);
            free(blocks[2]);
            fences.push_back(blocks[1]);
            fences.push_back(blocks[3]);
        }
        unsigned char* const p = allocate(c.size);
        EXPECT_EQ(p == Pool::memory() + 2, c.inHole) << c.size;
        EXPECT_EQ(Pool::segmentOf(p), 0u);
        EXPECT_EQ(Pool::freeNodes(0), c.after) << c.size;
        free(p);
        for (unsigned char* fence : fences)
            free(fence);
    }
}

TEST_F(PoolTest, NeighboursMergeInWhateverOrderTheyAreFreed) {
    std::array<int, 4> order = {0, 1, 2, 3};
    do {
        unsigned char* blocks[4];
        for (unsigned char*& p : blocks)
            p = allocate(20);
        for (int i : order)
            free(blocks[i]);
        EXPECT_EQ(Pool::freeNodes(0), (Segment{{0, 65535}})) << order[0] << order[1] << order[2] << order[3];
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(PoolTest, WhatIsNoBlockIsRefused) {
    int local = 0;
    free(nullptr);
    free(&local);
    unsigned char* const a = allocate(20);
    unsigned char* const b = allocate(20);
    free(a);
    Segment const before = Pool::freeNodes(0);
    CaptureStream::Lines lines;
    CaptureStream::attach(lines, 1);
    free(a);
    std::uint16_t const overrun = 21, size = 20;
    std::memcpy(b - 2, &overrun, 2);  // one byte into the free rest
    free(b);
    std::memcpy(b - 2, &size, 2);
    free(Pool::memory() + 10000);           // inside the free rest
    free(Pool::memory() + 10 * 65535 - 1);  // no room for a header
    Common::DebugLogger::UnRegisterAllDebugOutputStreams();
    EXPECT_EQ(Pool::freeNodes(0), before);
    EXPECT_EQ(lines.count("refused, not an allocated block"), 4u);
    free(b);
}

// Blocks of random sizes keep their bytes, lists stay in order, and free neighbours are always merged.
TEST_F(PoolTest, ManyBlocksNeverOverlapAndEverythingComesBack) {
    std::mt19937 random(20240917);
    struct Block {
        unsigned char* p;
        std::size_t size;
        unsigned char mark;
    };
    std::vector<Block> blocks;
    for (int step = 0; step < 6000; ++step) {
        if (blocks.size() < 150 && random() % 5 < 3) {
            std::size_t const size = random() % 10 == 0 ? random() % 9000 : random() % 90;
            unsigned char* const p = allocate(size);
            if (p == nullptr) continue;
            unsigned char const mark = static_cast<unsigned char>(1 + random() % 255);
            std::memset(p, mark, size);
            blocks.push_back({p, size, mark});
        } else if (!blocks.empty()) {
            std::size_t const at = random() % blocks.size();
            Block const block = blocks[at];
            ASSERT_TRUE(
                std::all_of(block.p, block.p + block.size, [&](unsigned char c) { return c == block.mark; }))
                << "step " << step;
            blocks[at] = blocks.back();
            blocks.pop_back();
            free(block.p);
        }
        if (step % 50 != 0) continue;
        unsigned int total = 0;
        for (unsigned int i = 0; i < 10; ++i) {
            unsigned int end = 0;
            bool first = true;
            for (auto const& [offset, size] : Pool::freeNodes(i)) {
                ASSERT_TRUE(first || offset > end) << "unmerged or unordered at step " << step;
                first = false;
                end = offset + size;
                total += size;
            }
        }
        for (Block const& block : blocks)
            total += header(block.p) + 2;
        ASSERT_EQ(total, 655350u) << "step " << step;
    }
    for (Block const& block : blocks)
        free(block.p);
}

struct Pooled : GlobalStaticAllocator {
    virtual ~Pooled() = default;
    void* pointer = nullptr;
    long double wide = 1;
};

// The compiler objects where it sees what is deleted here.
[[gnu::noinline]] void operatorDelete(void* p) {
    GlobalStaticAllocator::operator delete(p);
}

TEST_F(PoolTest, ObjectsAreAlignedWhereverTheirBlockLies) {
    for (std::size_t shift = 0; shift < 20; ++shift) {
        unsigned char* const p = allocate(shift);
        Pooled* const object = new Pooled;
        Pooled* const array = new Pooled[3];
        EXPECT_EQ(Pool::segmentOf(object), 0u);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(object) % 16, 0u);
        EXPECT_EQ(object->wide, 1);
        EXPECT_TRUE(object->isInvariant());
        delete object;
        delete[] array;
        free(p);
    }
    int* const plain = new (static_cast<GlobalStaticAllocator*>(nullptr)) int(5);
    EXPECT_EQ(Pool::segmentOf(plain), 0u);
    operatorDelete(plain);
}

TEST_F(PoolTest, AnExhaustedPoolGivesANullObject) {
    std::vector<unsigned char*> blocks;
    for (int i = 0; i < 5; ++i)
        blocks.push_back(allocate(65533));
    Pooled* const object = new Pooled;
    EXPECT_EQ(object, nullptr);
    delete object;
    for (unsigned char* p : blocks)
        free(p);
    EXPECT_EQ(GlobalStaticAllocator::operator new(static_cast<std::size_t>(-8)), nullptr);
    alignas(16) unsigned char foreign[64] = {};
    operatorDelete(foreign + 16);  // ignored
}

TEST_F(PoolTest, TheReportShowsEachSegmentAndIsBounded) {
    unsigned char* const a = allocate(10);
    unsigned char* const b = allocate(10);
    free(a);
    std::vector<char> buffer(8192, '#');
    GlobalStaticAllocator::ToXML(buffer.data(), 8192);
    std::string const report = buffer.data();
    char expected[512];
    std::snprintf(expected, sizeof expected,
                  "<MemoryPool><Address>0x%llx</Address><Segment><Index>0x0</Index><Address>0x%llx</Address>"
                  "<FreeListCount>0x2</FreeListCount>"
                  "<FreeListNode><Size>0xc</Size><NextOffset>0x18</NextOffset></FreeListNode>"
                  "<FreeListNode><Size>0xffe7</Size><NextOffset>0x0</NextOffset></FreeListNode></Segment>"
                  "<Segment><Index>0x1</Index>",
                  reinterpret_cast<unsigned long long>(Pool::memory()),
                  reinterpret_cast<unsigned long long>(Pool::memory()));
    EXPECT_EQ(report.substr(0, std::strlen(expected)), expected);
    EXPECT_NE(report.find("<Index>0x9</Index>"), std::string::npos);
    std::string const tail = "<FreeSpace>0x9ffea</FreeSpace></MemoryPool>";
    EXPECT_EQ(report.substr(report.size() - tail.size()), tail);

    CaptureStream::Lines lines;
    CaptureStream::attach(lines, 1);
    unsigned int const room = 100;
    std::fill(buffer.begin(), buffer.end(), '#');
    GlobalStaticAllocator::ToXML(buffer.data(), room);
    EXPECT_EQ(std::string(buffer.data()), report.substr(0, room - 1));
    EXPECT_EQ(buffer[room], '#');
    GlobalStaticAllocator::ToXML(nullptr, room);
    GlobalStaticAllocator::ToXML(buffer.data() + 200, 0);
    EXPECT_EQ(buffer[200], '#');
    EXPECT_EQ(lines.count("characters refused, the buffer holds 100"), 1u);
    EXPECT_EQ(lines.count("report refused: no buffer of 100 characters"), 1u);
    EXPECT_EQ(lines.count("report refused: a buffer of 0 characters"), 1u);
    Common::DebugLogger::UnRegisterAllDebugOutputStreams();
    free(b);
}

TEST_F(PoolTest, TheHeapTotalIsLogged) {
    CaptureStream::Lines lines;
    CaptureStream::attach(lines, 1);
    Common::LogTotalHeapMemory();
    EXPECT_EQ(lines.count("Total Heap Usage: 655350\n"), 1u);
}

TEST_F(PoolTest, ThreadsShareThePool) {
    auto const work = [] {
        for (unsigned int i = 0; i < 300; ++i) {
            void* const a = GlobalStaticAllocator::allocate(i % 70);
            std::unique_ptr<Pooled> const object(new Pooled);
            GlobalStaticAllocator::deallocate(a);
        }
    };
    std::thread first(work), second(work), third(work);
    first.join();
    second.join();
    third.join();
}

}  // namespace
