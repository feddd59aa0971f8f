#pragma once

#include "common/list.h"
#include "common/string.h"

namespace Common {

inline constexpr char const* COMPOUND_ATTRIBUTE_VALUE_DELIMITER = "*-*";

// A list of strings that is stored in one attribute value, separated by the delimiter.
class CompoundList {
  public:
    using const_iterator = list<string>::const_iterator;

    explicit CompoundList(bool allowDuplicates);
    CompoundList(string const& text, bool allowDuplicates);
    explicit CompoundList(char const*) = delete;  // would be taken for a bool

    // Appends; without duplicates allowed, an item already contained is dropped.
    void Add(string const& item);

    void Merge(CompoundList const& other);
    void Merge(string const& text);
    // Removes every entry that equals one of the other's items.
    void Remove(CompoundList const& other);
    void Remove(string const& text);
    void Clear();

    unsigned int size() const;
    const_iterator begin() const;
    const_iterator end() const;
    bool contains(string const& item) const;

    // An empty delimiter stands for COMPOUND_ATTRIBUTE_VALUE_DELIMITER.
    string toString(string delimiter = string()) const;

    // Equal sizes and each item of this list contained in the other, in any order.
    bool operator==(CompoundList const& other) const;

    // Adds the items of `text`. A delimiter at the end means an empty item behind it: "a*-*" is "a" and "".
    void GenerateCompoundListFor(string const& text);

  private:
    list<string> m_items;
    bool m_allowDuplicates;
};

}  // namespace Common
