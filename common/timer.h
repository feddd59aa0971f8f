#pragma once

#include <ctime>

namespace Common::Synchronization {

// Measures the CPU time of the process, not wall time: waiting for hardware hardly counts.
class Timer {
  public:
    Timer();
    void Reset();
    double elapsedSeconds() const;

  private:
    clock_t m_start;
};

}  // namespace Common::Synchronization
