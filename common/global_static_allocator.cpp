#include "common/global_static_allocator.h"

#include <cstdint>
#include <cstring>
#include <new>

#include "common/debug_logger.h"
#include "common/scoped_mutex_lock.h"

namespace Common {

namespace {

using Node = GlobalStaticAllocator::FreeListNode;
using Lock = Synchronization::ScopedMutexLock<Synchronization::ProcessMutex>;

constexpr unsigned int HEADER_SIZE = 2;
constexpr unsigned int MINIMUM_BLOCK = sizeof(Node);
static_assert(sizeof(Node) == 4);

// Nodes and headers lie at any address, so they go in and out as bytes.
Node readNode(unsigned char const* at) {
    Node node;
    std::memcpy(&node, at, sizeof node);
    return node;
}
void writeNode(unsigned char* at, unsigned int size, unsigned int offset) {
    Node const node = {static_cast<unsigned short>(size), static_cast<unsigned short>(offset)};
    std::memcpy(at, &node, sizeof node);
}
unsigned int readHeader(unsigned char const* block) {
    std::uint16_t size;
    std::memcpy(&size, block, sizeof size);
    return size;
}
void writeHeader(unsigned char* block, unsigned int size) {
    std::uint16_t const header = static_cast<std::uint16_t>(size);
    std::memcpy(block, &header, sizeof header);
}

}  // namespace

unsigned char* GlobalStaticAllocator::sm_pMemoryPool = nullptr;
GlobalStaticAllocator::SegmentInfo GlobalStaticAllocator::sm_segmentInfo[SEGMENT_COUNT] = {};
unsigned int s_gTotalHeapMemory = 0;

Synchronization::ProcessMutex& pgsaMutex() {
    static Synchronization::ProcessMutex* const mutex = new Synchronization::ProcessMutex;
    return *mutex;
}

void LogTotalHeapMemory() {
    unsigned int total = 0;
    {
        Lock const lock(pgsaMutex());
        total = s_gTotalHeapMemory;
    }
    DebugLogger::LogCommand("Total Heap Usage: %d\n", static_cast<int>(total));
}

void GlobalStaticAllocator::Initialize() {
    static bool initialised = false;
    if (initialised) return;
    sm_pMemoryPool = static_cast<unsigned char*>(::operator new(POOL_SIZE));
    s_gTotalHeapMemory += POOL_SIZE;
    for (unsigned int i = 0; i < SEGMENT_COUNT; ++i) {
        unsigned char* const start = sm_pMemoryPool + std::size_t{i} * SEGMENT_SIZE;
        std::memset(start, 0, SEGMENT_SIZE);
        writeNode(start, SEGMENT_SIZE, 0);
        sm_segmentInfo[i] = {start, 1};
    }
    initialised = true;
}

// Five rounds at most, each in the segment with the shortest free list among those not yet tried. A full
// segment has the shortest list of all, so five full segments hide the other five: the limit bounds the
// time of a request, and a caller that gets null does without the object.
bool GlobalStaticAllocator::findBestSegmentForAlloc(unsigned int needed, unsigned int& segment,
                                                    unsigned char*& node, unsigned char*& previous) {
    bool tried[SEGMENT_COUNT] = {};
    for (unsigned int round = 0; round <= 9; round += 2) {
        unsigned int best = SEGMENT_COUNT;
        unsigned int lowest = 65535;
        for (unsigned int i = 0; i < SEGMENT_COUNT; ++i) {
            if (!tried[i] && sm_segmentInfo[i].FreeListCount < lowest) {
                best = i;
                lowest = sm_segmentInfo[i].FreeListCount;
            }
        }
        if (best == SEGMENT_COUNT) return false;
        tried[best] = true;

        previous = nullptr;
        for (node = sm_segmentInfo[best].pFirstFreeNode; node != nullptr;) {
            Node const free = readNode(node);
            // A remainder of 1 to 3 bytes couldn't hold a node.
            if (free.wSize == needed || free.wSize >= needed + MINIMUM_BLOCK) {
                segment = best;
                return true;
            }
            previous = node;
            node = free.wNextNodeSegmentOffset != 0 ? node + free.wNextNodeSegmentOffset : nullptr;
        }
    }
    return false;
}

// Takes the first `needed` bytes of a free node out of its list.
void GlobalStaticAllocator::takeNode(unsigned int segment, unsigned char* node, unsigned char* previous,
                                     unsigned int needed) {
    SegmentInfo& info = sm_segmentInfo[segment];
    Node const free = readNode(node);
    unsigned int const offset = free.wNextNodeSegmentOffset;
    if (free.wSize == needed) {
        if (previous == nullptr) {
            info.pFirstFreeNode = offset != 0 ? node + offset : nullptr;
        } else {
            Node const before = readNode(previous);
            writeNode(previous, before.wSize, offset != 0 ? before.wNextNodeSegmentOffset + offset : 0);
        }
        --info.FreeListCount;
        return;
    }
    writeNode(node + needed, free.wSize - needed, offset != 0 ? offset - needed : 0);
    if (previous == nullptr) {
        info.pFirstFreeNode = node + needed;
    } else {
        Node const before = readNode(previous);
        writeNode(previous, before.wSize, before.wNextNodeSegmentOffset + needed);
    }
}

void* GlobalStaticAllocator::allocate(std::size_t size) noexcept try {
    Lock const lock(pgsaMutex());
    Initialize();
    if (size > SEGMENT_SIZE - HEADER_SIZE) return nullptr;
    unsigned int needed = static_cast<unsigned int>(size) + HEADER_SIZE;
    if (needed < MINIMUM_BLOCK) needed = MINIMUM_BLOCK;

    unsigned int segment = 0;
    unsigned char* node = nullptr;
    unsigned char* previous = nullptr;
    if (!findBestSegmentForAlloc(needed, segment, node, previous)) return nullptr;
    takeNode(segment, node, previous, needed);
    std::memset(node, 0, needed);
    writeHeader(node, needed - HEADER_SIZE);
    return node + HEADER_SIZE;
} catch (std::bad_alloc const&) {
    return nullptr;  // the pool itself couldn't be had
}

GlobalStaticAllocator::SegmentInfo* GlobalStaticAllocator::getSegmentFrom(std::uintptr_t address,
                                                                          unsigned char*& start) {
    std::uintptr_t const pool = reinterpret_cast<std::uintptr_t>(sm_pMemoryPool);
    if (address < pool || address - pool >= POOL_SIZE) return nullptr;
    std::size_t const index = (address - pool) / SEGMENT_SIZE;
    start = sm_pMemoryPool + index * SEGMENT_SIZE;
    return &sm_segmentInfo[index];
}

void GlobalStaticAllocator::deallocate(void* p) noexcept try {
    if (p == nullptr) return;
    if (!release(p)) DebugLogger::LogCommand("Memory pool: %p refused, not an allocated block\n", p);
} catch (std::bad_alloc const&) {
    return;  // no pool, so `p` isn't from it
}

// False for an address in the pool that isn't an allocated block.
bool GlobalStaticAllocator::release(void* p) {
    Lock const lock(pgsaMutex());
    Initialize();
    // As a number: `p` may belong to anyone.
    std::uintptr_t const address = reinterpret_cast<std::uintptr_t>(p) - HEADER_SIZE;
    unsigned char* start = nullptr;
    SegmentInfo* const segment = getSegmentFrom(address, start);
    if (segment == nullptr) return true;
    unsigned char* const block = start + (address - reinterpret_cast<std::uintptr_t>(start));
    unsigned int const room = SEGMENT_SIZE - static_cast<unsigned int>(block - start);
    if (room < MINIMUM_BLOCK) return false;
    unsigned int const size = readHeader(block) + HEADER_SIZE;
    if (size < MINIMUM_BLOCK || size > room) return false;

    unsigned char* previous = nullptr;
    unsigned char* next = segment->pFirstFreeNode;
    while (next != nullptr && next <= block) {
        previous = next;
        unsigned int const offset = readNode(next).wNextNodeSegmentOffset;
        next = offset != 0 ? next + offset : nullptr;
    }
    // What overlaps free memory has been freed before, or never was a block.
    if (previous != nullptr && previous + readNode(previous).wSize > block) return false;
    if ((next != nullptr ? next : start + SEGMENT_SIZE) < block + size) return false;

    std::memset(block, 0, size);
    enterNode(*segment, block, size, previous, next);
    Coalesce(*segment, previous != nullptr ? previous : block);
    return true;
}

void GlobalStaticAllocator::enterNode(SegmentInfo& segment, unsigned char* block, unsigned int size,
                                      unsigned char* previous, unsigned char const* next) {
    writeNode(block, size, next != nullptr ? static_cast<unsigned int>(next - block) : 0);
    if (previous == nullptr) {
        segment.pFirstFreeNode = block;
    } else {
        writeNode(previous, readNode(previous).wSize, static_cast<unsigned int>(block - previous));
    }
    ++segment.FreeListCount;
}

// Two steps are enough to join a freed block with both neighbours.
void GlobalStaticAllocator::Coalesce(SegmentInfo& segment, unsigned char* node) {
    for (int step = 0; step < 2; ++step) {
        Node const here = readNode(node);
        if (here.wNextNodeSegmentOffset == 0) return;
        unsigned char* const next = node + here.wNextNodeSegmentOffset;
        if (here.wNextNodeSegmentOffset == here.wSize) {
            Node const there = readNode(next);
            unsigned int const offset = there.wNextNodeSegmentOffset;
            writeNode(node, here.wSize + there.wSize, offset != 0 ? here.wNextNodeSegmentOffset + offset : 0);
            --segment.FreeListCount;
        } else {
            node = next;
        }
    }
}

// allocate() gives any address, also odd ones. The operators ask for ALIGNMENT more, skip 1 to ALIGNMENT
// bytes to the next aligned address and keep that distance in the byte before it.
void* GlobalStaticAllocator::operator new(std::size_t size) noexcept {
    if (size > SEGMENT_SIZE) return nullptr;
    unsigned char* const p = static_cast<unsigned char*>(allocate(size + ALIGNMENT));
    if (p == nullptr) return nullptr;
    std::size_t const skipped = ALIGNMENT - reinterpret_cast<std::uintptr_t>(p) % ALIGNMENT;
    p[skipped - 1] = static_cast<unsigned char>(skipped);
    return p + skipped;
}

void GlobalStaticAllocator::operator delete(void* p) noexcept {
    if (p == nullptr) return;
    unsigned char* start = nullptr;
    {
        Lock const lock(pgsaMutex());
        if (sm_pMemoryPool == nullptr ||
            getSegmentFrom(reinterpret_cast<std::uintptr_t>(p), start) == nullptr)
            return;
    }
    unsigned char* const object = static_cast<unsigned char*>(p);
    std::size_t const distance = static_cast<std::size_t>(object - start);
    std::size_t const skipped = distance != 0 ? object[-1] : 0;
    if (skipped == 0 || skipped > ALIGNMENT || skipped + HEADER_SIZE > distance) {
        DebugLogger::LogCommand("Memory pool: %p refused, not an object\n", p);
        return;
    }
    deallocate(object - skipped);
}

void* GlobalStaticAllocator::operator new[](std::size_t size) noexcept {
    return operator new(size);
}
void GlobalStaticAllocator::operator delete[](void* p) noexcept {
    operator delete(p);
}

}  // namespace Common

void* operator new(std::size_t size, Common::GlobalStaticAllocator*) noexcept {
    return Common::GlobalStaticAllocator::operator new(size);
}
void* operator new[](std::size_t size, Common::GlobalStaticAllocator*) noexcept {
    return Common::GlobalStaticAllocator::operator new[](size);
}
void operator delete(void* p, Common::GlobalStaticAllocator*) noexcept {
    Common::GlobalStaticAllocator::operator delete(p);
}
void operator delete[](void* p, Common::GlobalStaticAllocator*) noexcept {
    Common::GlobalStaticAllocator::operator delete[](p);
}
