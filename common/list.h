#pragma once

#include <cstddef>
#include <iterator>
#include <new>
#include <type_traits>

#include "common/allocator.h"

namespace Common {

template <class T>
struct ListNode {
    ListNode() : next(this), previous(this), value() {}
    explicit ListNode(T const& v) : next(this), previous(this), value(v) {}

    ListNode* next;
    ListNode* previous;
    T value;
};

// One node pointer, without a reference to its list. Insertions leave iterators valid; those of an erased
// node are dead. A default-constructed iterator may be compared and assigned, nothing else.
template <class T, class Ref, class Ptr>
class ListIterator {
  public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = Ptr;
    using reference = Ref;

    ListIterator() : m_node(nullptr) {}
    explicit ListIterator(ListNode<T>* node) : m_node(node) {}

    operator ListIterator<T, T const&, T const*>() const requires(!std::is_same_v<Ref, T const&>) {
        return ListIterator<T, T const&, T const*>(m_node);
    }

    Ref operator*() const { return m_node->value; }
    Ptr operator->() const { return &m_node->value; }

    ListIterator& operator++() {
        m_node = m_node->next;
        return *this;
    }
    ListIterator operator++(int) {
        ListIterator const before = *this;
        m_node = m_node->next;
        return before;
    }
    ListIterator& operator--() {
        m_node = m_node->previous;
        return *this;
    }
    ListIterator operator--(int) {
        ListIterator const before = *this;
        m_node = m_node->previous;
        return before;
    }

    template <class R, class P>
    bool operator==(ListIterator<T, R, P> const& other) const {
        return m_node == other.node();
    }
    template <class R, class P>
    bool operator!=(ListIterator<T, R, P> const& other) const {
        return m_node != other.node();
    }

    ListNode<T>* node() const { return m_node; }

  private:
    ListNode<T>* m_node;
};

// Circular doubly linked list whose sentinel is built on first touch: an unused list costs no allocation
// until it is destroyed. The sentinel holds a default-constructed T, so a list of a heavy type pays for one
// such value. A const access may build the sentinel, so concurrent reads need a lock too.
//
// Allocator: allocate(size) and deallocate(p); a null result becomes std::bad_alloc.
template <class T, class Allocator = DefaultAllocator>
class list {
  public:
    using value_type = T;
    using node_type = ListNode<T>;
    using iterator = ListIterator<T, T&, T*>;
    using const_iterator = ListIterator<T, T const&, T const*>;

    list() = default;
    list(list const& other) : list() { append(other); }
    // Touches, so that even an unused list allocates its sentinel once, to free it again. Where that fails
    // there is nothing to free.
    ~list() {
        try {
            clear();
        } catch (...) {
            return;
        }
        destroy(m_sentinel);
        putNode(m_sentinel);
    }

    list& operator=(list const& other) {
        if (this != &other) {
            clear();
            append(other);
        }
        return *this;
    }

    iterator begin() { return iterator(sentinel()->next); }
    iterator end() { return iterator(sentinel()); }
    const_iterator begin() const { return const_iterator(sentinel()->next); }
    const_iterator end() const { return const_iterator(sentinel()); }

    bool empty() const { return sentinel()->next == m_sentinel; }

    // Walks the list.
    unsigned int size() const {
        unsigned int n = 0;
        for (const_iterator i = begin(); i != end(); ++i)
            ++n;
        return n;
    }

    // A default-constructed `before` stands for end(). `value` may be an element of this list.
    iterator insert(iterator before, T const& value) {
        node_type* const next = before.node() != nullptr ? before.node() : sentinel();
        node_type* const node = getNode();
        try {
            construct(node, value);
        } catch (...) {
            putNode(node);
            throw;
        }
        node->next = next;
        node->previous = next->previous;
        next->previous->next = node;
        next->previous = node;
        return iterator(node);
    }

    void push_back(T const& value) { insert(end(), value); }

    // Returns the iterator that follows. end() is left alone.
    iterator erase(iterator position) {
        node_type* const node = position.node();
        if (node == nullptr || node == sentinel()) return end();
        node_type* const next = node->next;
        node->previous->next = next;
        next->previous = node->previous;
        destroy(node);
        putNode(node);
        return iterator(next);
    }

    void clear() {
        node_type* node = sentinel()->next;
        while (node != m_sentinel) {
            node_type* const next = node->next;
            destroy(node);
            putNode(node);
            node = next;
        }
        m_sentinel->next = m_sentinel;
        m_sentinel->previous = m_sentinel;
    }

  protected:
    // Raw storage for a node, without a value in it.
    node_type* getNode() const {
        void* const storage = m_allocator.allocate(sizeof(node_type));
        if (storage == nullptr) throw std::bad_alloc();
        return static_cast<node_type*>(storage);
    }
    void putNode(node_type* node) const { m_allocator.deallocate(node); }
    static void construct(node_type* node, T const& value) {
        ::new (static_cast<void*>(node)) node_type(value);
    }
    static void destroy(node_type* node) { node->~node_type(); }

    // Builds the sentinel unless it is there.
    void initialize() const {
        if (m_initialised == 1) return;
        node_type* const node = getNode();
        try {
            ::new (static_cast<void*>(node)) node_type();
        } catch (...) {
            putNode(node);
            throw;
        }
        m_sentinel = node;
        m_initialised = 1;
    }

  private:
    node_type* sentinel() const {
        initialize();
        return m_sentinel;
    }
    void append(list const& other) {
        for (const_iterator i = other.begin(); i != other.end(); ++i)
            push_back(*i);
    }

    mutable node_type* m_sentinel = nullptr;
    mutable unsigned char m_initialised = 0;
    mutable Allocator m_allocator;
};

}  // namespace Common
