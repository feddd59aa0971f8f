#include "common/recursive_process_mutex.h"

namespace Common::Synchronization {

RecursiveProcessMutex::RecursiveProcessMutex() : m_lockCount(0), m_owner(new pthread_t()), m_isLocked(false) {
    pthread_mutex_init(&m_inner, nullptr);
    pthread_cond_init(&m_unlocked, nullptr);
}

RecursiveProcessMutex::~RecursiveProcessMutex() {
    pthread_cond_destroy(&m_unlocked);
    pthread_mutex_destroy(&m_inner);
    delete m_owner;
}

void RecursiveProcessMutex::Lock() {
    pthread_mutex_lock(&m_inner);
    if (m_isLocked && pthread_equal(*m_owner, pthread_self()) != 0) {
        ++m_lockCount;
    } else {
        while (m_isLocked)
            pthread_cond_wait(&m_unlocked, &m_inner);
        *m_owner = pthread_self();
        m_isLocked = true;
        m_lockCount = 1;
    }
    pthread_mutex_unlock(&m_inner);
}

void RecursiveProcessMutex::Unlock() {
    pthread_mutex_lock(&m_inner);
    if (m_isLocked && pthread_equal(*m_owner, pthread_self()) != 0 && --m_lockCount == 0) {
        m_isLocked = false;
        pthread_cond_signal(&m_unlocked);
    }
    pthread_mutex_unlock(&m_inner);
}

}  // namespace Common::Synchronization
