#pragma once

#include <string>
#include <vector>

namespace Core::SysMod {

/// The one seam where this library meets the operating system: device nodes and the kernel's file system
/// views go through it and through nothing else. The base class is the real system; a test puts a virtual
/// machine in its place. Implementations must allow calls from several threads.
class SystemCalls {
  public:
    virtual ~SystemCalls() = default;

    /// As open(2): a descriptor, or -1 with errno set.
    virtual int open(char const* path, int flags);
    /// As ioctl(2); `argument` may be null for a request without a record.
    virtual int ioctl(int descriptor, unsigned long request, void* argument);
    /// As close(2).
    virtual int close(int descriptor);

    /// Names of a directory's entries without "." and "..", in ascending order. False when it can't be read.
    virtual bool listDirectory(std::string const& path, std::vector<std::string>& names);
    /// First line of a file without its line end, at most 4,096 bytes. False when it can't be read.
    virtual bool readFirstLine(std::string const& path, std::string& line);
    /// Whole contents of a file, at most `limit` bytes. False when it can't be read.
    virtual bool readFile(std::string const& path, std::string& contents, std::size_t limit);
    /// Target text of a symbolic link. False when `path` isn't one.
    virtual bool readLink(std::string const& path, std::string& target);
};

/// The system calls in force: the real ones unless replaced.
SystemCalls& systemCalls();

/// Puts `replacement` (borrowed) in force, or the real system when null. Returns what was in force before,
/// null for the real system. Not to be called while commands are under way.
SystemCalls* SetSystemCalls(SystemCalls* replacement);

}  // namespace Core::SysMod
