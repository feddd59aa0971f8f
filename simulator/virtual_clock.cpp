#include "simulator/virtual_clock.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "simulator/sleepers.h"

namespace simulator {

namespace {

using Number = unsigned long long;

class File {
  public:
    File(char const* directory, char const* name, int flags) {
        char path[PATH_MAX];
        int const length = std::snprintf(path, sizeof path, "%s/%s", directory, name);
        if (length > 0 && length < PATH_MAX) m_number = ::open(path, flags | O_CLOEXEC, 0644);
    }
    ~File() {
        if (m_number >= 0) ::close(m_number);
    }
    File(File const&) = delete;
    File& operator=(File const&) = delete;
    int number() const { return m_number; }

  private:
    int m_number = -1;
};

/// The clock file of a machine, locked as long as this lives.
class LockedClock {
  public:
    explicit LockedClock(char const* directory)
        : m_lock(directory, "lock", O_RDWR | O_CREAT), m_clock(directory, "clock", O_RDWR) {
        if (m_lock.number() < 0 || m_clock.number() < 0) {
            m_error = errno;
            return;
        }
        while (::flock(m_lock.number(), LOCK_EX) != 0) {
            if (errno == EINTR) continue;
            m_error = errno;
            return;
        }
        char text[CLOCK_SIZE + 1] = {};
        if (::pread(m_clock.number(), text, CLOCK_SIZE, 0) < 0 || !parseClock(text, reading)) m_error = EIO;
    }
    /// 0 or an errno; without it `reading` is what the file says.
    int error() const { return m_error; }
    int write() const {
        char text[CLOCK_SIZE + 1];
        formatClock(reading, text);
        return ::pwrite(m_clock.number(), text, CLOCK_SIZE, 0) == CLOCK_SIZE ? 0 : EIO;
    }

    ClockReading reading;

  private:
    File m_lock;
    File m_clock;
    int m_error = 0;
};

int writeLine(char const* directory, ClockReading const& reading, std::uint64_t microseconds) {
    char line[256];
    Number const began = reading.microseconds / 1000;
    Number const duration = microseconds / 1000;
    int const length =
        std::snprintf(line, sizeof line,
                      "{\"event\":\"sleep\",\"seq\":%llu,\"text\":\"%llu.%03llu s\",\"time\":%llu.%03llu}\n",
                      Number{reading.sequence}, duration / 1000, duration % 1000, began / 1000, began % 1000);
    File const journal(directory, "journal.jsonl", O_WRONLY | O_CREAT | O_APPEND);
    if (journal.number() < 0 || ::write(journal.number(), line, static_cast<std::size_t>(length)) != length)
        return EIO;
    return 0;
}

}  // namespace

void formatClock(ClockReading const& reading, char (&text)[CLOCK_SIZE + 1]) {
    std::snprintf(text, sizeof text, "%020llu %020llu\n", Number{reading.sequence},
                  Number{reading.microseconds});
}

bool parseClock(char const* text, ClockReading& reading) {
    Number sequence = 0;
    Number microseconds = 0;
    if (std::sscanf(text, "%20llu %20llu", &sequence, &microseconds) != 2) return false;
    reading = {sequence, microseconds};
    return true;
}

int sleepInDirectory(char const* directory, std::uint64_t microseconds) {
    std::uint64_t until = 0;
    {
        LockedClock clock(directory);
        if (clock.error() != 0) return clock.error();
        if (int const error = writeLine(directory, clock.reading, microseconds); error != 0) return error;
        until = clock.reading.microseconds + microseconds;
        ++clock.reading.sequence;
        if (int const error = clock.write(); error != 0) return error;
    }
    Sleeper sleeper(until);
    while (!sleeper.isAwake()) {
        if (!sleeper.isNextToWake()) {
            ::sched_yield();
            continue;
        }
        LockedClock clock(directory);
        if (clock.error() != 0) return clock.error();
        if (clock.reading.microseconds < until) {
            clock.reading.microseconds = until;
            if (int const error = clock.write(); error != 0) return error;
        }
        Sleeper::wakeUntil(clock.reading.microseconds);
        break;
    }
    return 0;
}

}  // namespace simulator
