/// Interposed: what makes, removes and renames.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "simulator/preload/door.h"
#include "simulator/preload/real.h"

using simulator::preload::MappedPath;

extern "C" {

int mkdir(char const* path, mode_t mode) noexcept {
    return KSL_REAL(mkdir)(MappedPath(path).c_str(), mode);
}
int mkdirat(int directory, char const* path, mode_t mode) noexcept {
    return KSL_REAL(mkdirat)(directory, MappedPath(path, directory).c_str(), mode);
}
int rmdir(char const* path) noexcept {
    return KSL_REAL(rmdir)(MappedPath(path).c_str());
}
int unlink(char const* path) noexcept {
    return KSL_REAL(unlink)(MappedPath(path).c_str());
}
int unlinkat(int directory, char const* path, int flags) noexcept {
    return KSL_REAL(unlinkat)(directory, MappedPath(path, directory).c_str(), flags);
}
int remove(char const* path) noexcept {
    return KSL_REAL(remove)(MappedPath(path).c_str());
}
int rename(char const* from, char const* to) noexcept {
    return KSL_REAL(rename)(MappedPath(from).c_str(), MappedPath(to).c_str());
}
int renameat(int fromDirectory, char const* from, int toDirectory, char const* to) noexcept {
    return KSL_REAL(renameat)(fromDirectory, MappedPath(from, fromDirectory).c_str(), toDirectory,
                              MappedPath(to, toDirectory).c_str());
}
int renameat2(int fromDirectory, char const* from, int toDirectory, char const* to, unsigned flags) noexcept {
    return KSL_REAL(renameat2)(fromDirectory, MappedPath(from, fromDirectory).c_str(), toDirectory,
                               MappedPath(to, toDirectory).c_str(), flags);
}

}  // extern "C"
