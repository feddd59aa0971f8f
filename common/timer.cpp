#include "common/timer.h"

namespace Common::Synchronization {

Timer::Timer() : m_start(clock()) {}

void Timer::Reset() {
    m_start = clock();
}

// POSIX fixes CLOCKS_PER_SEC at one million.
double Timer::elapsedSeconds() const {
    return static_cast<double>(clock() - m_start) / 1000000.0;
}

}  // namespace Common::Synchronization
