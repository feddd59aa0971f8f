#pragma once

#include "common/allocator.h"
#include "common/convertible.h"
#include "common/list.h"
#include "common/string.h"

namespace Common {

template <class T, class Allocator = DefaultAllocator>
class stack : public Convertible {
  public:
    stack() = default;
    stack(stack const&) = default;
    stack& operator=(stack const&) = default;
    virtual ~stack() = default;

    bool empty() const { return m_items.empty(); }
    unsigned int size() const { return m_items.size(); }

    void push(T const& value) { m_items.insert(m_items.begin(), value); }
    // A copy of the item pushed last; T() when there is none.
    T top() const { return m_items.empty() ? T() : T(*m_items.begin()); }
    // No effect on an empty stack.
    void pop() { m_items.erase(m_items.begin()); }

  private:
    list<T, Allocator> m_items;
};

}  // namespace Common
