#pragma once

#include <pthread.h>

#include "common/convertible.h"
#include "common/list.h"

namespace Common::Synchronization {

// What a thread runs. Must outlive its thread.
class Threadable {
  public:
    virtual ~Threadable() = default;
    virtual void operator()() = 0;
    // Runs in the thread after operator() has returned.
    virtual void OnThreadExit() {}
};

class Thread : public NonCopyable {
  public:
    // Starts at once. When the system refuses a thread it is logged, nothing runs and IsStarted() is
    // false.
    explicit Thread(Threadable& body);
    ~Thread() override;  // joins

    // Blocks until the thread has ended. Harmless on a joined thread.
    void Join();

    // False once joined.
    bool IsStarted() const { return m_thread != nullptr; }

    // The same thread; a joined one equals only itself.
    bool operator==(Thread const& other) const;

  private:
    pthread_t* m_thread;  // null after Join
};

// Owns its threads.
class ThreadGroup : public NonCopyable {
  public:
    ThreadGroup() = default;
    ~ThreadGroup() override;  // joins and deletes

    // Takes ownership. Null and a thread already in the group are ignored.
    void Add(Thread* thread);
    // Gives ownership back to the caller.
    void Remove(Thread* thread);
    // Joins, deletes and forgets all threads.
    void Clear();
    void JoinAll();

    unsigned int size() const { return m_threads.size(); }

  private:
    list<Thread*> m_threads;
};

}  // namespace Common::Synchronization
