#pragma once

#include <semaphore.h>
#include <sys/types.h>

#include "common/convertible.h"
#include "common/string.h"

namespace Common::Synchronization {

struct OSMutexHandle {
    sem_t* semaphore;
};

// Named, between processes: whoever creates the semaphore of that name holds the mutex. A holder that dies
// leaves its semaphore behind, and the mutex stays taken until somebody unlinks it.
class Mutex : public NonCopyable {
  public:
    enum EMutexState { HELD = 0, RELEASED = 2 };

    // A name that doesn't start with "/" gets one in front; it has no other slash.
    explicit Mutex(string const& name);
    ~Mutex() override;  // releases

    int eMutexState() const { return m_state; }
    string const& name() const { return m_name; }

    // Takes the mutex if nobody holds it; doesn't wait. True when it is held on return. A system error is
    // logged and leaves it released.
    bool capture();

    // Gives up a held mutex and wakes whoever waits.
    void release();

    // release(), then blocks until the present holder releases. Returns at once when nobody holds it. The
    // mutex isn't captured on return.
    void Wait();

  private:
    int m_state;
    string m_name;
    OSMutexHandle* m_handle;  // null unless held
};

// The name as sem_open wants it.
string OSMutexName(string const& name);

bool ExistsSem(string const& name);

// Opens or creates the semaphore; `existed` tells which. Null on a system error, which is logged.
OSMutexHandle* CreateOSMutex(string const& name, bool& existed);

// Closes and deletes the handle; the semaphore stays.
void CloseOSMutex(OSMutexHandle* handle);

// Unlinks the semaphore, wakes the waiters, closes it and deletes the handle.
void ReleaseOSMutex(string const& name, OSMutexHandle* handle);

// System V key of the lock file of that name in the directory of the environment variable
// TOLKXE_LOCK_FILES_DIR, "/tmp" without one. -1 when the file doesn't exist.
key_t OSMutexKey(string const& name);

}  // namespace Common::Synchronization
