#include "common/os_mutex.h"

#include <fcntl.h>
#include <sys/ipc.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/debug_logger.h"

namespace Common::Synchronization {

namespace {

// For every user that may run the program; the umask narrows it.
constexpr mode_t SEMAPHORE_MODE = 0666;

void logFailure(char const* what, string const& name, int error) {
    DebugLogger::LogCommand("Mutex \"%s\": %s failed: %s\n", name.c_str(), what, std::strerror(error));
}

sem_t* GetOSMutex(string const& osName, bool existed) {
    if (existed) return sem_open(osName.c_str(), 0);
    // No unit at first: waiters block until the holder posts on release.
    return sem_open(osName.c_str(), O_CREAT | O_EXCL, SEMAPHORE_MODE, 0);
}

// The name goes first: who is woken may want to capture it.
void ClearSem(string const& osName, sem_t* semaphore) {
    sem_unlink(osName.c_str());
    sem_post(semaphore);
    sem_close(semaphore);
}

}  // namespace

string OSMutexName(string const& name) {
    return name[0] == '/' ? name : "/" + name;
}

bool ExistsSem(string const& name) {
    sem_t* const semaphore = sem_open(OSMutexName(name).c_str(), 0);
    if (semaphore == SEM_FAILED) return errno == EACCES;
    sem_close(semaphore);
    return true;
}

OSMutexHandle* CreateOSMutex(string const& name, bool& existed) {
    string const osName = OSMutexName(name);
    // Between the look and the opening another process may create or unlink it; then look again.
    for (int attempt = 0; attempt < 8; ++attempt) {
        existed = ExistsSem(name);
        sem_t* const semaphore = GetOSMutex(osName, existed);
        if (semaphore != SEM_FAILED) return new OSMutexHandle{semaphore};
        int const error = errno;
        bool const overtaken = error == (existed ? ENOENT : EEXIST);
        if (!overtaken) {
            logFailure("sem_open", name, error);
            return nullptr;
        }
    }
    logFailure("sem_open", name, EAGAIN);
    return nullptr;
}

void CloseOSMutex(OSMutexHandle* handle) {
    if (handle == nullptr) return;
    sem_close(handle->semaphore);
    delete handle;
}

void ReleaseOSMutex(string const& name, OSMutexHandle* handle) {
    if (handle == nullptr) return;
    ClearSem(OSMutexName(name), handle->semaphore);
    delete handle;
}

key_t OSMutexKey(string const& name) {
    char const* const variable = std::getenv("TOLKXE_LOCK_FILES_DIR");
    string const directory(variable != nullptr && *variable != '\0' ? variable : "/tmp");
    return ftok((directory + OSMutexName(name)).c_str(), 1);
}

// The name is copied, not shared: threads that use one mutex each may well name it by one string.
Mutex::Mutex(string const& name) : m_state(RELEASED), m_name(name.c_str(), name.size()), m_handle(nullptr) {}

Mutex::~Mutex() {
    release();
}

bool Mutex::capture() {
    if (m_state != RELEASED) return true;
    bool existed = false;
    OSMutexHandle* const handle = CreateOSMutex(m_name, existed);
    if (handle == nullptr) return false;
    if (existed) {
        CloseOSMutex(handle);
        return false;
    }
    m_handle = handle;
    m_state = HELD;
    return true;
}

void Mutex::release() {
    if (m_state != HELD) return;
    ReleaseOSMutex(m_name, m_handle);
    m_handle = nullptr;
    m_state = RELEASED;
}

void Mutex::Wait() {
    release();
    sem_t* const semaphore = sem_open(OSMutexName(m_name).c_str(), 0);
    if (semaphore == SEM_FAILED) {
        if (errno != ENOENT) logFailure("sem_open", m_name, errno);
        return;
    }
    while (sem_wait(semaphore) != 0 && errno == EINTR) {
    }
    sem_post(semaphore);  // for the next waiter
    sem_close(semaphore);
}

}  // namespace Common::Synchronization
