#include "simulator/virtual_clock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

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
    File const lock(directory, "lock", O_RDWR | O_CREAT);
    if (lock.number() < 0) return errno;
    while (::flock(lock.number(), LOCK_EX) != 0)
        if (errno != EINTR) return errno;
    File const clock(directory, "clock", O_RDWR);
    if (clock.number() < 0) return errno;
    char text[CLOCK_SIZE + 1] = {};
    ClockReading reading;
    if (::pread(clock.number(), text, CLOCK_SIZE, 0) < 0 || !parseClock(text, reading)) return EIO;

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
    ++reading.sequence;
    reading.microseconds += microseconds;
    formatClock(reading, text);
    return ::pwrite(clock.number(), text, CLOCK_SIZE, 0) == CLOCK_SIZE ? 0 : EIO;
}

}  // namespace simulator
