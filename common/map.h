#pragma once

#include "common/allocator.h"
#include "common/convertible.h"
#include "common/list.h"
#include "common/pair.h"
#include "common/string.h"

namespace Common {

// Sorted list of pairs with a one-entry look-up cache. Keys need ==, < and a default value; look-ups are
// linear. Even a const look-up writes the cache, so concurrent reads need a lock too.
//
// insert() overwrites: callers rely on it to replace values.
template <class K, class V, class Allocator = DefaultAllocator>
class map : public Convertible {
  public:
    using key_type = K;
    using mapped_type = V;
    using value_type = pair<K, V>;
    using list_type = list<value_type, Allocator>;
    using iterator = typename list_type::iterator;
    using const_iterator = typename list_type::const_iterator;

    map() : m_cacheValid(false), m_cachedKey() {}
    // The cache isn't copied: its iterator belongs to the other list.
    map(map const& other) : Convertible(other), m_nodes(other.m_nodes), m_cacheValid(false), m_cachedKey() {}
    virtual ~map() = default;

    map& operator=(map const& other) {
        if (this != &other) {
            clearCache();
            m_nodes = other.m_nodes;
        }
        return *this;
    }

    iterator begin() { return m_nodes.begin(); }
    iterator end() { return m_nodes.end(); }
    const_iterator begin() const { return const_iterator(m_nodes.begin()); }
    const_iterator end() const { return const_iterator(m_nodes.end()); }

    bool empty() const { return m_nodes.empty(); }
    unsigned int size() const { return m_nodes.size(); }  // walks the list

    iterator find(K const& key) { return lookUp(key); }
    const_iterator find(K const& key) const { return lookUp(key); }

    // False: the key was there and its value has been replaced.
    pair<iterator, bool> insert(value_type const& entry) {
        iterator const found = lookUp(entry.first);
        if (found != m_nodes.end()) {
            found->second = entry.second;
            return pair<iterator, bool>(found, false);
        }
        return pair<iterator, bool>(insertSorted(entry), true);
    }

    V& operator[](K const& key) {
        iterator const found = lookUp(key);
        if (found != m_nodes.end()) return found->second;
        return insertSorted(value_type(key, V()))->second;
    }

    // Leaves the erased key in the cache as absent. Returns the iterator that follows.
    iterator erase(iterator position) {
        if (position == iterator() || position == m_nodes.end()) return m_nodes.end();
        setCache(position->first, m_nodes.end());
        return m_nodes.erase(position);
    }

    void clear() {
        clearCache();
        m_nodes.clear();
    }

    // For owners that handle the nodes themselves. Whoever removes a node must clear or repoint the cache,
    // and whoever inserts one keeps ascending key order and sets the cache.
    list_type& nodes() { return m_nodes; }
    void setCache(K const& key, iterator position) { cache(key, position); }
    void clearCache() { m_cacheValid = false; }
    iterator findNode(K const& key) { return lookUp(key); }

  private:
    void cache(K const& key, iterator position) const {
        m_cachedKey = key;
        m_cachedIterator = position;
        m_cacheValid = true;
    }

    // An absent key is cached as well, as end(). No early stop at a greater key.
    iterator lookUp(K const& key) const {
        if (m_cacheValid && m_cachedKey == key) return m_cachedIterator;
        iterator i = m_nodes.begin();
        while (i != m_nodes.end() && !(i->first == key))
            ++i;
        cache(key, i);
        return i;
    }

    iterator insertSorted(value_type const& entry) {
        iterator i = m_nodes.begin();
        while (i != m_nodes.end() && i->first < entry.first)
            ++i;
        iterator const inserted = m_nodes.insert(i, entry);
        cache(inserted->first, inserted);
        return inserted;
    }

    mutable list_type m_nodes;
    mutable bool m_cacheValid;
    mutable K m_cachedKey;
    mutable iterator m_cachedIterator;
};

}  // namespace Common
