#pragma once

namespace Common {

enum EnLocalMemFullAllocPolicy {
    EnLocalMemFullAllocFromHeap = 8,
};

// Records, in the type of a class, how many instances are expected. No data, no behaviour: the objects
// come from the general heap.
template <class T, unsigned int N, EnLocalMemFullAllocPolicy Policy>
class LocalAllocatorImpl {};

template <class T, unsigned int N, EnLocalMemFullAllocPolicy Policy = EnLocalMemFullAllocFromHeap>
class LocalStaticAllocator : public LocalAllocatorImpl<T, N, Policy> {};

}  // namespace Common
