/// Interposed: sleeping, which takes virtual time only.

#include <pthread.h>
#include <sched.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "simulator/preload/door.h"
#include "simulator/preload/real.h"

using simulator::preload::bypassed;

namespace {

void sleepVirtually(std::uint64_t microseconds) {
    simulator::preload::sleepOnMachine(microseconds);
    // A thread that waits in a loop lets the others run, and can be cancelled here as in a real sleep.
    ::sched_yield();
    ::pthread_testcancel();
}

bool valid(timespec const* time) {
    return time != nullptr && time->tv_sec >= 0 && time->tv_nsec >= 0 && time->tv_nsec < 1000000000;
}

std::uint64_t microsecondsOf(timespec const& time) {
    return static_cast<std::uint64_t>(time.tv_sec) * 1000000 +
           static_cast<std::uint64_t>(time.tv_nsec + 999) / 1000;
}

}  // namespace

extern "C" {

int usleep(useconds_t microseconds) {
    if (bypassed()) return KSL_REAL(usleep)(microseconds);
    sleepVirtually(microseconds);
    return 0;
}

unsigned sleep(unsigned seconds) {
    if (bypassed()) return KSL_REAL(sleep)(seconds);
    sleepVirtually(std::uint64_t{seconds} * 1000000);
    return 0;
}

int nanosleep(timespec const* time, timespec* remaining) {
    if (bypassed() || !valid(time)) return KSL_REAL(nanosleep)(time, remaining);
    sleepVirtually(microsecondsOf(*time));
    return 0;
}

int clock_nanosleep(clockid_t clock, int flags, timespec const* time, timespec* remaining) {
    if (bypassed() || !valid(time)) return KSL_REAL(clock_nanosleep)(clock, flags, time, remaining);
    std::uint64_t duration = microsecondsOf(*time);
    if ((flags & TIMER_ABSTIME) != 0) {
        timespec now{};
        if (::clock_gettime(clock, &now) != 0) return errno;
        std::uint64_t const passed = microsecondsOf(now);
        duration = duration > passed ? duration - passed : 0;
    }
    sleepVirtually(duration);
    return 0;
}

}  // extern "C"
