#include "simulator/sleepers.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace simulator {

namespace {

/// Of a place that nobody has, and of one whose sleeper may go on.
constexpr std::uint64_t FREE = 0;
constexpr std::uint64_t AWAKE = 1;
/// Added to what a place holds, so that it is neither of them.
constexpr std::uint64_t FIRST_TIME = 2;

struct Place {
    std::atomic<std::uint64_t> until{FREE};
    std::atomic<long> thread{0};
};

constexpr std::size_t PLACES = 128;
Place places[PLACES];

bool sleepsHere(long thread) {
    for (Place const& place : places) {
        if (place.thread.load() == thread && place.until.load() >= FIRST_TIME) return true;
    }
    return false;
}

/// Whether a thread waits in the kernel, or has ended.
bool waits(long thread) {
    char path[64];
    std::snprintf(path, sizeof path, "/proc/self/task/%ld/stat", thread);
    int const file = static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, O_RDONLY | O_CLOEXEC));
    if (file < 0) return true;
    char text[512] = {};
    ssize_t const length = ::read(file, text, sizeof text - 1);
    ::close(file);
    // The name may hold anything but its end: the state is behind the last parenthesis.
    char const* const name = length > 0 ? std::strrchr(text, ')') : nullptr;
    return name == nullptr || (name[1] == ' ' && std::strchr("SZX", name[2]) != nullptr);
}

/// As the kernel writes them; its header isn't for programs.
struct DirectoryEntry {
    std::uint64_t number;
    std::int64_t offset;
    unsigned short length;
    unsigned char type;
    char name[1];
};

/// Whether all threads but this one sleep here or wait. False also when that can't be found out.
bool allOthersWait() {
    int const directory = static_cast<int>(
        ::syscall(SYS_openat, AT_FDCWD, "/proc/self/task", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory < 0) return false;
    long const self = ::syscall(SYS_gettid);
    bool all = true;
    alignas(DirectoryEntry) char entries[4096];
    long length = 0;
    while (all && (length = ::syscall(SYS_getdents64, directory, entries, sizeof entries)) > 0) {
        for (long at = 0; all && at < length;) {
            auto const* const entry = reinterpret_cast<DirectoryEntry const*>(entries + at);
            at += entry->length;
            long const thread = std::strtol(entry->name, nullptr, 10);
            if (thread != 0 && thread != self) all = sleepsHere(thread) || waits(thread);
        }
    }
    ::close(directory);
    return all && length == 0;
}

}  // namespace

Sleeper::Sleeper(std::uint64_t until) : m_place(0) {
    for (; m_place < PLACES; ++m_place) {
        std::uint64_t free = FREE;
        if (places[m_place].until.compare_exchange_strong(free, AWAKE)) break;
    }
    if (m_place == PLACES) return;
    places[m_place].thread = ::syscall(SYS_gettid);
    places[m_place].until = until + FIRST_TIME;
}

Sleeper::~Sleeper() {
    if (m_place == PLACES) return;
    places[m_place].thread = 0;
    places[m_place].until = FREE;
}

bool Sleeper::isAwake() const {
    return m_place != PLACES && places[m_place].until == AWAKE;
}

bool Sleeper::isFirst() const {
    std::uint64_t const until = places[m_place].until;
    for (std::size_t other = 0; other < PLACES; ++other) {
        std::uint64_t const theirs = places[other].until;
        if (theirs >= FIRST_TIME && (theirs < until || (theirs == until && other < m_place))) return false;
    }
    return until >= FIRST_TIME;
}

bool Sleeper::isNextToWake() const {
    // Asked for again behind the look at the threads: one of them may have begun to sleep meanwhile. None can
    // later, as all wait.
    return m_place == PLACES || (isFirst() && allOthersWait() && isFirst());
}

void Sleeper::wakeUntil(std::uint64_t now) {
    for (Place& place : places) {
        std::uint64_t until = place.until;
        if (until >= FIRST_TIME && until - FIRST_TIME <= now)
            place.until.compare_exchange_strong(until, AWAKE);
    }
}

}  // namespace simulator
