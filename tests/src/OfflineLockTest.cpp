#include "src/offlineLock.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdarg>
#include <cstring>
#include <functional>

#include "tests/src/FrontEndFixture.h"

namespace {

/// Where this program finds the marker while a test runs; null for its real place.
char const* markerFile = nullptr;

}  // namespace

// The marker has one fixed place, which belongs to the machine that the tests run on. So this program's own
// open() leads that one path to a file of the test. Under a name of its own, as the header may define open().
extern "C" int openForTests(char const* path, int flags, ...) __asm__("open");
extern "C" int openForTests(char const* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    bool const isMarker = markerFile != nullptr && std::strcmp(path, "/var/ksl/sc-offline.dat") == 0;
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, isMarker ? markerFile : path, flags, mode));
}

namespace {

class OfflineLockTest : public FrontEndTest {
  protected:
    OfflineLockTest() : m_file(directory() + "/sc-offline.dat") { markerFile = m_file.c_str(); }
    ~OfflineLockTest() override { markerFile = nullptr; }

  private:
    std::string m_file;
};

/// Calls `look` while another process holds a lock on part of the marker.
void whileHeld(short type, off_t start, off_t length, std::function<void()> const& look) {
    int ready[2];
    int done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    pid_t const child = ::fork();
    if (child == 0) {
        ::close(done[1]);
        int const file = ::openForTests("/var/ksl/sc-offline.dat", O_RDWR);
        struct flock lock = {};
        lock.l_type = type;
        lock.l_start = start;
        lock.l_len = length;
        char byte = ::fcntl(file, F_SETLK, &lock) == 0 ? 'y' : 'n';
        ::_exit(::write(ready[1], &byte, 1) == 1 && ::read(done[0], &byte, 1) == 0 ? 0 : 1);
    }
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_EQ(byte, 'y') << "nobody else may hold it";
    look();
    for (int const end : {ready[0], ready[1], done[0], done[1]}) {
        ::close(end);
    }
    ::waitpid(child, nullptr, 0);
}

TEST_F(OfflineLockTest, AnotherProcessMustHoldTheMarkerForAMachineToBeOffline) {
    EXPECT_FALSE(IsLocked()) << "no marker";
    writeFile("sc-offline.dat", "");
    EXPECT_FALSE(IsLocked()) << "a marker that nobody holds";
    EXPECT_FALSE(IsLocked()) << "and that the first look left free";
    struct {
        short type;
        off_t start, length;
        bool isLocked;
    } const cases[] = {
        {F_WRLCK, 0, 0, true},
        {F_WRLCK, 0, 1, true},
        {F_WRLCK, 0x100000000, 1, true},  // anywhere in the file, also past 32 bits
        {F_RDLCK, 0, 0, false},           // shared: it doesn't keep a reader out
    };
    for (auto const& one : cases) {
        whileHeld(one.type, one.start, one.length, [&] { EXPECT_EQ(IsLocked(), one.isLocked) << one.start; });
        EXPECT_FALSE(IsLocked()) << "released";
    }
}

}  // namespace
