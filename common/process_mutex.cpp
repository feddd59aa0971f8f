#include "common/process_mutex.h"

namespace Common::Synchronization {

ProcessMutex::ProcessMutex() : m_mutex(new pthread_mutex_t) {
    pthread_mutex_init(m_mutex, nullptr);
}

ProcessMutex::~ProcessMutex() {
    pthread_mutex_destroy(m_mutex);
    delete m_mutex;
}

void ProcessMutex::Lock() {
    pthread_mutex_lock(m_mutex);
}
void ProcessMutex::Unlock() {
    pthread_mutex_unlock(m_mutex);
}

}  // namespace Common::Synchronization
