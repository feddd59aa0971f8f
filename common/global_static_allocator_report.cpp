#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "common/debug_logger.h"
#include "common/global_static_allocator.h"
#include "common/scoped_mutex_lock.h"

namespace Common {

namespace {

// Writes into a buffer that always stays terminated, and counts what found no room.
class BoundedText {
  public:
    BoundedText(char* buffer, unsigned int size) : m_next(buffer), m_room(size) { *m_next = '\0'; }

    void add(char const* text) {
        std::size_t const length = std::strlen(text);
        std::size_t const fitting = length < m_room ? length : m_room - 1;
        std::memcpy(m_next, text, fitting);
        m_next += fitting;
        *m_next = '\0';
        m_room -= fitting;
        m_refused += length - fitting;
    }
    void addNumber(char const* element, std::uintptr_t value) {
        char text[96];
        std::snprintf(text, sizeof text, "<%s>0x%llx</%s>", element, static_cast<unsigned long long>(value),
                      element);
        add(text);
    }

    std::size_t refused() const { return m_refused; }

  private:
    char* m_next;
    std::size_t m_room;  // the terminator included
    std::size_t m_refused = 0;
};

}  // namespace

void GlobalStaticAllocator::ToXML(char* buffer, unsigned int size) {
    if (buffer == nullptr || size == 0) {
        DebugLogger::LogCommand("Memory pool report refused: %s of %u characters, expected room for a text",
                                buffer == nullptr ? "no buffer" : "a buffer", size);
        return;
    }
    BoundedText text(buffer, size);
    {
        Synchronization::ScopedMutexLock<Synchronization::ProcessMutex> const lock(pgsaMutex());
        Initialize();
        std::uintptr_t freeSpace = 0;
        text.add("<MemoryPool>");
        text.addNumber("Address", reinterpret_cast<std::uintptr_t>(sm_pMemoryPool));
        for (unsigned int i = 0; i < SEGMENT_COUNT; ++i) {
            text.add("<Segment>");
            text.addNumber("Index", i);
            text.addNumber("Address",
                           reinterpret_cast<std::uintptr_t>(sm_pMemoryPool + std::size_t{i} * SEGMENT_SIZE));
            text.addNumber("FreeListCount", sm_segmentInfo[i].FreeListCount);
            for (unsigned char const* at = sm_segmentInfo[i].pFirstFreeNode; at != nullptr;) {
                FreeListNode node;
                std::memcpy(&node, at, sizeof node);
                text.add("<FreeListNode>");
                text.addNumber("Size", node.wSize);
                text.addNumber("NextOffset", node.wNextNodeSegmentOffset);
                text.add("</FreeListNode>");
                freeSpace += node.wSize;
                at = node.wNextNodeSegmentOffset != 0 ? at + node.wNextNodeSegmentOffset : nullptr;
            }
            text.add("</Segment>");
        }
        text.addNumber("FreeSpace", freeSpace);
        text.add("</MemoryPool>");
    }
    // After the pool's mutex is free: the logger's is a leaf too.
    if (text.refused() != 0) {
        DebugLogger::LogCommand("Memory pool report: %zu characters refused, the buffer holds %u\n",
                                text.refused(), size);
    }
}

}  // namespace Common
