#include "common/thread.h"

#include <cstring>

#include "common/debug_logger.h"

namespace Common::Synchronization {

namespace {

void* thread_proxy(void* argument) {
    Threadable& body = *static_cast<Threadable*>(argument);
    body();
    body.OnThreadExit();
    return nullptr;
}

}  // namespace

Thread::Thread(Threadable& body) : m_thread(new pthread_t) {
    int const error = pthread_create(m_thread, nullptr, thread_proxy, &body);
    if (error != 0) {
        delete m_thread;
        m_thread = nullptr;
        DebugLogger::LogCommand("Thread: pthread_create failed: %s\n", std::strerror(error));
    }
}

Thread::~Thread() {
    Join();
}

void Thread::Join() {
    if (m_thread == nullptr) return;
    pthread_join(*m_thread, nullptr);
    delete m_thread;
    m_thread = nullptr;
}

bool Thread::operator==(Thread const& other) const {
    if (m_thread == nullptr || other.m_thread == nullptr) return this == &other;
    return pthread_equal(*m_thread, *other.m_thread) != 0;
}

ThreadGroup::~ThreadGroup() {
    Clear();
}

void ThreadGroup::Add(Thread* thread) {
    if (thread == nullptr) return;
    for (Thread const* present : m_threads) {
        if (present == thread) return;
    }
    m_threads.push_back(thread);
}

void ThreadGroup::Remove(Thread* thread) {
    for (list<Thread*>::iterator i = m_threads.begin(); i != m_threads.end(); ++i) {
        if (*i == thread) {
            m_threads.erase(i);
            return;
        }
    }
}

void ThreadGroup::Clear() {
    JoinAll();
    for (Thread* thread : m_threads)
        delete thread;
    m_threads.clear();
}

void ThreadGroup::JoinAll() {
    for (Thread* thread : m_threads)
        thread->Join();
}

}  // namespace Common::Synchronization
