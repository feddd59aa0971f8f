#pragma once

/// What the interposed functions share: the machine, the mapping of paths, the guard against themselves.

#include <fcntl.h>

#include <cstdint>
#include <string>

namespace simulator::preload {

/// While one stands, this thread's calls are the door's own and go straight to the real functions. errno is
/// afterwards what it was before, and the thread can't be cancelled in the middle of an exchange.
class Inside {
  public:
    Inside();
    ~Inside();
    Inside(Inside const&) = delete;
    Inside& operator=(Inside const&) = delete;

  private:
    int m_cancelState = 0;
    int m_errno;
};

/// Whether this thread is inside, or there is no machine to go to.
bool bypassed();

/// A path as the real functions are to see it. Errors of its own never leave it: without memory the path
/// counts as the host's.
class MappedPath {
  public:
    /// `path` may be null. A relative one is taken from `directory`, a descriptor or AT_FDCWD: a program can
    /// walk to the machine's paths step by step.
    explicit MappedPath(char const* path, int directory = AT_FDCWD);
    char const* c_str() const { return m_mapped ? m_text.c_str() : m_given; }
    /// 0, or the errno with which the machine refuses to open the node of this path.
    int openError() const;

  private:
    char const* m_given;
    bool m_mapped = false;
    std::string m_ours;  ///< in the machine's words
    std::string m_text;  ///< in the host's
};

/// The machine's root directory on the host, without a slash at its end.
std::string const& rootPath();

/// Whether a descriptor could be a node's: the files that stand for nodes are regular. Spares a process that
/// has nothing to do with devices the opening of the machine.
bool mayBeNode(int descriptor);
/// Whether `descriptor` is open on one of the machine's nodes, however it came to be: the node's file is
/// recognised, so that duplicated and inherited descriptors count too.
bool isNode(int descriptor);
/// The machine's answer to a request on such a descriptor: 0 or an errno.
int nodeIoctl(int descriptor, unsigned long request, void* argument);
void sleepOnMachine(std::uint64_t microseconds);

}  // namespace simulator::preload
