#pragma once

#include "common/process_mutex.h"

/// Protects data of the management objects. Held across calls into a device only while a device class
/// discovers, and then only the class's own.
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
