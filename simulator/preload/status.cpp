/// Interposed: what looks at files without opening them.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "simulator/preload/door.h"
#include "simulator/preload/real.h"

using simulator::preload::bypassed;
using simulator::preload::MappedPath;

extern "C" {
// Forms for fortified programs and for programs linked to an older C library; no header declares them.
int __xstat(int version, char const* path, struct stat* status);
int __xstat64(int version, char const* path, struct stat64* status);
int __lxstat(int version, char const* path, struct stat* status);
int __lxstat64(int version, char const* path, struct stat64* status);
int __fxstatat(int version, int directory, char const* path, struct stat* status, int flags);
int __fxstatat64(int version, int directory, char const* path, struct stat64* status, int flags);
char* __realpath_chk(char const* path, char* resolved, size_t size);
ssize_t __readlink_chk(char const* path, char* target, size_t length, size_t size);
ssize_t __readlinkat_chk(int directory, char const* path, char* target, size_t length, size_t size);
}

namespace {

template <typename Real, typename... Arguments>
auto withPath(Real* real, char const* path, Arguments... arguments) {
    MappedPath const mapped(path);
    return real(mapped.c_str(), arguments...);
}

template <typename Real, typename... Arguments>
auto withPathAt(Real* real, int directory, char const* path, Arguments... arguments) {
    MappedPath const mapped(path, directory);
    return real(directory, mapped.c_str(), arguments...);
}

/// A resolved path of the machine's tree, in the machine's words again.
char* unmapped(char* path) {
    if (path == nullptr || bypassed()) return path;
    std::string const& root = simulator::preload::rootPath();
    std::size_t const length = root.size();
    if (std::strncmp(path, root.c_str(), length) == 0 && path[length] == '/')
        std::memmove(path, path + length, std::strlen(path + length) + 1);
    return path;
}

}  // namespace

extern "C" {

int stat(char const* path, struct stat* status) noexcept {
    return withPath(KSL_REAL(stat), path, status);
}
int stat64(char const* path, struct stat64* status) noexcept {
    return withPath(KSL_REAL(stat64), path, status);
}
int lstat(char const* path, struct stat* status) noexcept {
    return withPath(KSL_REAL(lstat), path, status);
}
int lstat64(char const* path, struct stat64* status) noexcept {
    return withPath(KSL_REAL(lstat64), path, status);
}

int fstatat(int directory, char const* path, struct stat* status, int flags) noexcept {
    return withPathAt(KSL_REAL(fstatat), directory, path, status, flags);
}
int fstatat64(int directory, char const* path, struct stat64* status, int flags) noexcept {
    return withPathAt(KSL_REAL(fstatat64), directory, path, status, flags);
}
int statx(int directory, char const* path, int flags, unsigned mask, struct statx* status) noexcept {
    return withPathAt(KSL_REAL(statx), directory, path, flags, mask, status);
}

int __xstat(int, char const* path, struct stat* status) {
    return withPath(KSL_REAL(stat), path, status);
}
int __xstat64(int, char const* path, struct stat64* status) {
    return withPath(KSL_REAL(stat64), path, status);
}
int __lxstat(int, char const* path, struct stat* status) {
    return withPath(KSL_REAL(lstat), path, status);
}
int __lxstat64(int, char const* path, struct stat64* status) {
    return withPath(KSL_REAL(lstat64), path, status);
}
int __fxstatat(int, int directory, char const* path, struct stat* status, int flags) {
    return withPathAt(KSL_REAL(fstatat), directory, path, status, flags);
}
int __fxstatat64(int, int directory, char const* path, struct stat64* status, int flags) {
    return withPathAt(KSL_REAL(fstatat64), directory, path, status, flags);
}

int access(char const* path, int mode) noexcept {
    return withPath(KSL_REAL(access), path, mode);
}
int euidaccess(char const* path, int mode) noexcept {
    return withPath(KSL_REAL(euidaccess), path, mode);
}
int eaccess(char const* path, int mode) noexcept {
    return withPath(KSL_REAL(eaccess), path, mode);
}
int faccessat(int directory, char const* path, int mode, int flags) noexcept {
    return withPathAt(KSL_REAL(faccessat), directory, path, mode, flags);
}

ssize_t getxattr(char const* path, char const* name, void* value, size_t size) noexcept {
    return withPath(KSL_REAL(getxattr), path, name, value, size);
}
ssize_t lgetxattr(char const* path, char const* name, void* value, size_t size) noexcept {
    return withPath(KSL_REAL(lgetxattr), path, name, value, size);
}
ssize_t listxattr(char const* path, char* list, size_t size) noexcept {
    return withPath(KSL_REAL(listxattr), path, list, size);
}
ssize_t llistxattr(char const* path, char* list, size_t size) noexcept {
    return withPath(KSL_REAL(llistxattr), path, list, size);
}

ssize_t readlink(char const* path, char* target, size_t size) noexcept {
    return withPath(KSL_REAL(readlink), path, target, size);
}
ssize_t readlinkat(int directory, char const* path, char* target, size_t size) noexcept {
    return withPathAt(KSL_REAL(readlinkat), directory, path, target, size);
}
ssize_t __readlink_chk(char const* path, char* target, size_t length, size_t size) {
    if (length > size) std::abort();
    return withPath(KSL_REAL(readlink), path, target, length);
}
ssize_t __readlinkat_chk(int directory, char const* path, char* target, size_t length, size_t size) {
    if (length > size) std::abort();
    return withPathAt(KSL_REAL(readlinkat), directory, path, target, length);
}

char* realpath(char const* path, char* resolved) noexcept {
    return unmapped(withPath(KSL_REAL(realpath), path, resolved));
}
char* __realpath_chk(char const* path, char* resolved, size_t size) {
    if (size < PATH_MAX) std::abort();
    return unmapped(withPath(KSL_REAL(realpath), path, resolved));
}
char* canonicalize_file_name(char const* path) noexcept {
    return unmapped(withPath(KSL_REAL(canonicalize_file_name), path));
}

}  // extern "C"
