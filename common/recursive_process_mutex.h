#pragma once

#include <pthread.h>

#include "common/convertible.h"

namespace Common::Synchronization {

// Between the threads of one process. The owner may lock it again and unlocks as often; an Unlock by
// anyone else has no effect.
class RecursiveProcessMutex : public NonCopyable {
  public:
    RecursiveProcessMutex();
    ~RecursiveProcessMutex() override;

    void Lock();
    void Unlock();

  private:
    pthread_mutex_t m_inner;
    int m_lockCount;
    pthread_cond_t m_unlocked;
    pthread_t* m_owner;  // meaningful while m_isLocked
    bool m_isLocked;
};

}  // namespace Common::Synchronization
