#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace Common {

// Owner of a block of plain records that is copied deeply: command buffers and replies.
template <class T>
class copy_ptr {
    static_assert(std::is_trivially_copyable_v<T>, "the block is copied as bytes");

  public:
    copy_ptr() = default;

    // Takes ownership of `count` items. `isArray` says that the block came from new[]; a count of 2 or
    // more says so too.
    explicit copy_ptr(T* block, unsigned int count = 1, bool isArray = false)
        : m_block(block), m_count(count), m_isArray(isArray), m_size(count * sizeof(T)) {}

    copy_ptr(copy_ptr const& other)
        : m_count(other.m_count), m_isArray(other.m_isArray), m_size(other.m_size) {
        Copy(other.m_block);
    }
    ~copy_ptr() { Release(); }

    copy_ptr& operator=(copy_ptr const& other) {
        if (this == &other) return *this;
        Release();
        m_count = other.m_count;
        m_isArray = other.m_isArray;
        m_size = other.m_size;
        Copy(other.m_block);
        return *this;
    }

    T* get() const { return m_block; }
    T* operator->() const { return m_block; }
    T& operator*() const { return *m_block; }
    T& operator[](unsigned int index) const { return m_block[index]; }
    explicit operator bool() const { return m_block != nullptr; }

    unsigned int count() const { return m_count; }
    bool isArray() const { return m_isArray; }
    std::size_t sizeInBytes() const { return m_size; }

    // Frees the block. Count, form and size stay, as Copy needs them.
    void Release() {
        if (usesArrayForm()) {
            delete[] m_block;
        } else {
            delete m_block;
        }
        m_block = nullptr;
    }

    // Replaces the block by a new one of the stored size, filled from `source`, which must have that many
    // bytes; null just releases. `source` may be the present block.
    template <class U>
    void Copy(U const* source) {
        static_assert(std::is_trivially_copyable_v<U>, "the block is copied as bytes");
        T* fresh = nullptr;
        if (source != nullptr) {
            fresh = usesArrayForm() ? new T[m_count]() : new T();
            std::memcpy(static_cast<void*>(fresh), source, m_size);
        }
        Release();
        m_block = fresh;
    }

  private:
    bool usesArrayForm() const { return m_isArray || m_count >= 2; }

    T* m_block = nullptr;
    unsigned int m_count = 0;
    bool m_isArray = false;
    std::size_t m_size = 0;
};

}  // namespace Common
