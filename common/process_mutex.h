#pragma once

#include <pthread.h>

#include "common/convertible.h"

namespace Common::Synchronization {

// Protects between the threads of one process, despite its name. Not recursive: locking it twice blocks
// for ever.
class ProcessMutex : public NonCopyable {
  public:
    ProcessMutex();
    ~ProcessMutex() override;

    void Lock();
    void Unlock();

  private:
    pthread_mutex_t* m_mutex;
};

}  // namespace Common::Synchronization
