#pragma once

/// The functions behind the interposed ones.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace simulator::preload {

/// The next function called `name` after this library's own, of the type of `like`: the C library's, or a
/// sanitizer's that wraps it.
template <typename Function>
Function* next(Function* /*like*/, char const* name) {
    void* found = ::dlsym(RTLD_NEXT, name);
    if (found == nullptr) {
        std::fprintf(stderr, "ksl-door: the C library has no %s\n", name);
        std::abort();
    }
    return reinterpret_cast<Function*>(found);
}

}  // namespace simulator::preload

/// The real function of an interposed one, looked up at its first call.
#define KSL_REAL(function)                                                          \
    ([] {                                                                           \
        static auto* const real = simulator::preload::next(&::function, #function); \
        return real;                                                                \
    }())
