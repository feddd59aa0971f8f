#pragma once

#include "common/convertible.h"

namespace Common::Synchronization {

// Holds `M` (ProcessMutex or RecursiveProcessMutex) from construction to destruction.
template <class M>
class ScopedMutexLock : public NonCopyable {
  public:
    explicit ScopedMutexLock(M& mutex) : m_mutex(mutex) { m_mutex.Lock(); }
    ~ScopedMutexLock() override { m_mutex.Unlock(); }

  private:
    M& m_mutex;
};

}  // namespace Common::Synchronization
