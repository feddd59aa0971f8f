#pragma once

#include <cstddef>
#include <new>

namespace Common {

// Storage for containers from the global heap. std::bad_alloc passes through.
class DefaultAllocator {
  public:
    void* allocate(std::size_t size) { return ::operator new(size); }
    void deallocate(void* p) { ::operator delete(p); }
};

}  // namespace Common
