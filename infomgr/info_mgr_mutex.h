#pragma once

#include "common/process_mutex.h"

/// Protects data of the management objects. Of all of them only those that serialise discoveries are held
/// while a device is asked something.
class InfoMgrMutex {
  public:
    void Take() { m_mutex.Lock(); }
    void Release() { m_mutex.Unlock(); }

    /// Holds a mutex for its own lifetime.
    class Hold {
      public:
        explicit Hold(InfoMgrMutex& mutex) : m_mutex(mutex) { m_mutex.Take(); }
        ~Hold() { m_mutex.Release(); }
        Hold(Hold const&) = delete;
        Hold& operator=(Hold const&) = delete;

      private:
        InfoMgrMutex& m_mutex;
    };

  private:
    Common::Synchronization::ProcessMutex m_mutex;
};
