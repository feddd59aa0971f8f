#include "common/sleep.h"

#include <unistd.h>

#include <atomic>

namespace Common::Synchronization {

namespace {

void systemSleep(unsigned int microseconds) {
    usleep(microseconds);
}

std::atomic<SleepFunction> sleepFunction = systemSleep;

// The most milliseconds whose microseconds fit in 32 bits, rounded down to whole hours.
constexpr unsigned int LONGEST_STEP = 3600000;

}  // namespace

SleepFunction SetSleepFunction(SleepFunction function) {
    return sleepFunction.exchange(function != nullptr ? function : systemSleep);
}

void SleepMicroseconds(unsigned int microseconds) {
    sleepFunction.load()(microseconds);
}

void Sleep(unsigned int milliseconds) {
    for (; milliseconds > LONGEST_STEP; milliseconds -= LONGEST_STEP)
        SleepMicroseconds(LONGEST_STEP * 1000);
    SleepMicroseconds(milliseconds * 1000);
}

}  // namespace Common::Synchronization
