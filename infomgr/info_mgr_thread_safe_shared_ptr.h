#pragma once

#include <boost/shared_ptr.hpp>

#include "infomgr/info_mgr_mutex.h"

/// A shared pointer that threads may copy and replace at once. The library's own shared pointer counts
/// without atomic operations, so it can't be the one inside.
template <class T>
class InfoMgrThreadSafeSharedPtr {
  public:
    explicit InfoMgrThreadSafeSharedPtr(boost::shared_ptr<T> pointer) : m_pointer(std::move(pointer)) {}
    InfoMgrThreadSafeSharedPtr(InfoMgrThreadSafeSharedPtr const&) = delete;
    InfoMgrThreadSafeSharedPtr& operator=(InfoMgrThreadSafeSharedPtr const&) = delete;

    boost::shared_ptr<T> copy() const {
        InfoMgrMutex::Hold const hold(sm_mutex());
        return m_pointer;
    }
    void replace(boost::shared_ptr<T> other) {
        InfoMgrMutex::Hold const hold(sm_mutex());
        m_pointer.swap(other);
    }

  private:
    /// Of all pointers to T, made on first use, and there to the end of the process.
    static InfoMgrMutex& sm_mutex() {
        static InfoMgrMutex& mutex = *new InfoMgrMutex;
        return mutex;
    }

    boost::shared_ptr<T> m_pointer;
};
