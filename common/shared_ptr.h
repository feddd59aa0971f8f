#pragma once

#include <cstddef>
#include <type_traits>

namespace Common {

// Counted pointer. The count is a plain long without lock or atomic operation: pointers that share may not
// be copied by two threads at once. Two pointers built separately from one raw pointer are independent
// owners. T needs a virtual destructor when the object is deleted through a base.
template <class T>
class shared_ptr {
  public:
    using element_type = T;

    // A null pointer has a count cell of its own too.
    shared_ptr() : m_object(nullptr), m_count(new long(1)) {}
    shared_ptr(std::nullptr_t) : shared_ptr() {}

    // Takes ownership of `object`, also when the count cell can't be allocated.
    explicit shared_ptr(T* object) : m_object(object), m_count(nullptr) {
        try {
            m_count = new long(1);
        } catch (...) {
            delete object;
            throw;
        }
    }

    shared_ptr(shared_ptr const& other) : m_object(other.m_object), m_count(other.m_count) { ++*m_count; }

    template <class U>
    requires std::is_convertible_v<U*, T*> shared_ptr(shared_ptr<U> const& other)
        : m_object(other.m_object), m_count(other.m_count) {
        ++*m_count;
    }

    ~shared_ptr() { dispose(); }

    shared_ptr& operator=(shared_ptr const& other) {
        if (this != &other) share(other.m_object, other.m_count);
        return *this;
    }

    template <class U>
    requires std::is_convertible_v<U*, T*> shared_ptr& operator=(shared_ptr<U> const& other) {
        share(other.m_object, other.m_count);
        return *this;
    }

    T* get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    // How many pointers share the object, this one included.
    long useCount() const { return *m_count; }

  private:
    template <class U>
    friend class shared_ptr;
    template <class To, class From>
    friend shared_ptr<To> dynamic_pointer_cast(shared_ptr<From> const& from);
    template <class To, class From>
    friend shared_ptr<To> static_pointer_cast(shared_ptr<From> const& from);

    shared_ptr(T* object, long* count) : m_object(object), m_count(count) { ++*m_count; }

    // The new count goes up before the old one goes down: the old object may own the source pointer.
    void share(T* object, long* count) {
        if (count == m_count) return;
        ++*count;
        dispose();
        m_object = object;
        m_count = count;
    }

    void dispose() {
        if (--*m_count == 0) destroy(m_object, m_count);
    }

    // Not inlined: g++ can't follow the count, and takes the other holders' accesses for uses after free.
    [[gnu::noinline]] static void destroy(T* object, long* count) {
        delete object;
        delete count;
    }

    T* m_object;
    long* m_count;
};

template <class T, class U>
bool operator==(shared_ptr<T> const& a, shared_ptr<U> const& b) {
    return a.get() == b.get();
}
template <class T, class U>
bool operator!=(shared_ptr<T> const& a, shared_ptr<U> const& b) {
    return a.get() != b.get();
}
template <class T>
bool operator==(shared_ptr<T> const& a, std::nullptr_t) {
    return a.get() == nullptr;
}
template <class T>
bool operator!=(shared_ptr<T> const& a, std::nullptr_t) {
    return a.get() != nullptr;
}

// Share the count of `from`; a failed dynamic cast is a null pointer with a count of its own.
template <class To, class From>
shared_ptr<To> dynamic_pointer_cast(shared_ptr<From> const& from) {
    To* const object = dynamic_cast<To*>(from.m_object);
    return object != nullptr ? shared_ptr<To>(object, from.m_count) : shared_ptr<To>();
}
template <class To, class From>
shared_ptr<To> static_pointer_cast(shared_ptr<From> const& from) {
    return shared_ptr<To>(static_cast<To*>(from.m_object), from.m_count);
}

}  // namespace Common
