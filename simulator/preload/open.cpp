/// Interposed: what opens files and directories.

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "simulator/preload/door.h"
#include "simulator/preload/real.h"

using simulator::preload::MappedPath;

extern "C" {
// The checked forms that a fortified program calls; no header declares them.
int __open_2(char const* path, int flags);
int __open64_2(char const* path, int flags);
int __openat_2(int directory, char const* path, int flags);
int __openat64_2(int directory, char const* path, int flags);
}

namespace {

bool takesMode(int flags) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

template <typename Real>
int openMapped(Real* real, char const* path, int flags, mode_t mode) {
    MappedPath const mapped(path);
    if (int const error = mapped.openError(); error != 0) {
        errno = error;
        return -1;
    }
    return real(mapped.c_str(), flags, mode);
}

template <typename Real>
int openatMapped(Real* real, int directory, char const* path, int flags, mode_t mode) {
    MappedPath const mapped(path, directory);
    if (int const error = mapped.openError(); error != 0) {
        errno = error;
        return -1;
    }
    return real(directory, mapped.c_str(), flags, mode);
}

template <typename Real, typename... Arguments>
FILE* fopenMapped(Real* real, char const* path, Arguments... arguments) {
    MappedPath const mapped(path);
    if (int const error = mapped.openError(); error != 0) {
        errno = error;
        return nullptr;
    }
    return real(mapped.c_str(), arguments...);
}

template <typename Real, typename... Arguments>
auto withPath(Real* real, char const* path, Arguments... arguments) {
    MappedPath const mapped(path);
    return real(mapped.c_str(), arguments...);
}

}  // namespace

#define MODE_OF(flags)                      \
    mode_t mode = 0;                        \
    if (takesMode(flags)) {                 \
        va_list arguments;                  \
        va_start(arguments, flags);         \
        mode = va_arg(arguments, unsigned); \
        va_end(arguments);                  \
    }

extern "C" {

int open(char const* path, int flags, ...) {
    MODE_OF(flags)
    return openMapped(KSL_REAL(open), path, flags, mode);
}

int open64(char const* path, int flags, ...) {
    MODE_OF(flags)
    return openMapped(KSL_REAL(open64), path, flags, mode);
}

int openat(int directory, char const* path, int flags, ...) {
    MODE_OF(flags)
    return openatMapped(KSL_REAL(openat), directory, path, flags, mode);
}

int openat64(int directory, char const* path, int flags, ...) {
    MODE_OF(flags)
    return openatMapped(KSL_REAL(openat64), directory, path, flags, mode);
}

int __open_2(char const* path, int flags) {
    return openMapped(KSL_REAL(open), path, flags, 0);
}
int __open64_2(char const* path, int flags) {
    return openMapped(KSL_REAL(open64), path, flags, 0);
}
int __openat_2(int directory, char const* path, int flags) {
    return openatMapped(KSL_REAL(openat), directory, path, flags, 0);
}
int __openat64_2(int directory, char const* path, int flags) {
    return openatMapped(KSL_REAL(openat64), directory, path, flags, 0);
}

int creat(char const* path, mode_t mode) {
    return openMapped(KSL_REAL(open), path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}
int creat64(char const* path, mode_t mode) {
    return openMapped(KSL_REAL(open64), path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

FILE* fopen(char const* path, char const* mode) {
    return fopenMapped(KSL_REAL(fopen), path, mode);
}
FILE* fopen64(char const* path, char const* mode) {
    return fopenMapped(KSL_REAL(fopen64), path, mode);
}
FILE* freopen(char const* path, char const* mode, FILE* stream) {
    return fopenMapped(KSL_REAL(freopen), path, mode, stream);
}
FILE* freopen64(char const* path, char const* mode, FILE* stream) {
    return fopenMapped(KSL_REAL(freopen64), path, mode, stream);
}

DIR* opendir(char const* path) {
    return withPath(KSL_REAL(opendir), path);
}

int scandir(char const* path, dirent*** list, int (*filter)(dirent const*),
            int (*compare)(dirent const**, dirent const**)) {
    return withPath(KSL_REAL(scandir), path, list, filter, compare);
}
int scandir64(char const* path, dirent64*** list, int (*filter)(dirent64 const*),
              int (*compare)(dirent64 const**, dirent64 const**)) {
    return withPath(KSL_REAL(scandir64), path, list, filter, compare);
}

int chdir(char const* path) noexcept {
    return withPath(KSL_REAL(chdir), path);
}

}  // extern "C"
