#pragma once

#include <cstddef>
#include <cstdint>

#include "common/process_mutex.h"

namespace Common {

// Gives derived classes a class-level new and delete from one fixed pool of the process, so that small,
// frequent objects don't fragment the heap. The pool has ten segments with a free list each; it is
// allocated on first use and never freed. All its work runs under pgsaMutex().
class GlobalStaticAllocator {
  public:
    static constexpr unsigned int SEGMENT_COUNT = 10;
    static constexpr unsigned int SEGMENT_SIZE = 65535;
    static constexpr unsigned int POOL_SIZE = SEGMENT_COUNT * SEGMENT_SIZE;

    // The start of each free block. Blocks lie at any address, odd ones too: nodes are read and written
    // as bytes, never through a pointer to this type.
    struct FreeListNode {
        unsigned short wSize;                   // of the free block, this node included
        unsigned short wNextNodeSegmentOffset;  // bytes from this node to the next one; 0 at the last
    };

    struct SegmentInfo {
        unsigned char* pFirstFreeNode;  // null when the segment is full
        unsigned short FreeListCount;
    };

    // A zeroed block behind a 16-bit header with its user size, unaligned. Null when none of the examined
    // segments serves: no fall-back to the heap, no exception. 65,533 bytes are the most that fits.
    static void* allocate(std::size_t size) noexcept;

    // `p` is a result of allocate(). Null and addresses outside the pool are ignored. An address in the pool
    // that isn't an allocated block, as after a second free, is refused and logged.
    static void deallocate(void* p) noexcept;

    // The operators ask allocate() for ALIGNMENT bytes more and return an aligned address within. Being
    // noexcept, they may return null, and the new-expression is then null as well.
    static constexpr std::size_t ALIGNMENT = alignof(std::max_align_t);
    static void* operator new(std::size_t size) noexcept;
    static void* operator new[](std::size_t size) noexcept;
    static void operator delete(void* p) noexcept;
    static void operator delete[](void* p) noexcept;

    bool isInvariant() const { return true; }

    // Writes a report of the pool, terminated, at most `size` bytes in all. What doesn't fit is cut off
    // and logged; so is a buffer without any room.
    static void ToXML(char* buffer, unsigned int size);

  protected:
    static unsigned char* sm_pMemoryPool;
    static SegmentInfo sm_segmentInfo[SEGMENT_COUNT];

  private:
    static void Initialize();
    static bool findBestSegmentForAlloc(unsigned int needed, unsigned int& segment, unsigned char*& node,
                                        unsigned char*& previous);
    static void takeNode(unsigned int segment, unsigned char* node, unsigned char* previous,
                         unsigned int needed);
    static SegmentInfo* getSegmentFrom(std::uintptr_t address, unsigned char*& start);
    static bool release(void* p);
    static void enterNode(SegmentInfo& segment, unsigned char* block, unsigned int size,
                          unsigned char* previous, unsigned char const* next);
    static void Coalesce(SegmentInfo& segment, unsigned char* node);
};

// Guards the pool. A leaf: nothing else is locked below it. Lives until the process ends, so that static
// objects may free their memory late.
Synchronization::ProcessMutex& pgsaMutex();

// Bytes that the library has taken from the heap for pools. Guarded by pgsaMutex().
extern unsigned int s_gTotalHeapMemory;

// Logs it at level 1 as "Total Heap Usage: <n>\n".
void LogTotalHeapMemory();

}  // namespace Common

// From the pool for types that don't derive from the allocator; the pointer argument only selects the form.
// Free such memory with GlobalStaticAllocator::operator delete.
void* operator new(std::size_t size, Common::GlobalStaticAllocator* pool) noexcept;
void* operator new[](std::size_t size, Common::GlobalStaticAllocator* pool) noexcept;
void operator delete(void* p, Common::GlobalStaticAllocator* pool) noexcept;
void operator delete[](void* p, Common::GlobalStaticAllocator* pool) noexcept;
