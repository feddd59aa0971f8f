#include "common/compound_list.h"

namespace Common {

CompoundList::CompoundList(bool allowDuplicates) : m_allowDuplicates(allowDuplicates) {}

CompoundList::CompoundList(string const& text, bool allowDuplicates) : m_allowDuplicates(allowDuplicates) {
    GenerateCompoundListFor(text);
}

void CompoundList::Add(string const& item) {
    if (m_allowDuplicates || !contains(item)) m_items.push_back(item);
}

void CompoundList::Merge(CompoundList const& other) {
    list<string> const items(other.m_items);  // `other` may be this list
    for (string const& item : items)
        Add(item);
}

void CompoundList::Merge(string const& text) {
    Merge(CompoundList(text, true));
}

void CompoundList::Remove(CompoundList const& other) {
    list<string> const items(other.m_items);
    for (string const& item : items) {
        list<string>::iterator i = m_items.begin();
        while (i != m_items.end()) {
            if (*i == item) {
                i = m_items.erase(i);
            } else {
                ++i;
            }
        }
    }
}

void CompoundList::Remove(string const& text) {
    Remove(CompoundList(text, false));
}

void CompoundList::Clear() {
    m_items.clear();
}

unsigned int CompoundList::size() const {
    return m_items.size();
}
CompoundList::const_iterator CompoundList::begin() const {
    return m_items.begin();
}
CompoundList::const_iterator CompoundList::end() const {
    return m_items.end();
}

bool CompoundList::contains(string const& item) const {
    for (string const& present : m_items) {
        if (present == item) return true;
    }
    return false;
}

string CompoundList::toString(string delimiter) const {
    if (delimiter.empty()) delimiter = COMPOUND_ATTRIBUTE_VALUE_DELIMITER;
    string text;
    for (const_iterator i = begin(); i != end(); ++i) {
        if (i != begin()) text += delimiter;
        text += *i;
    }
    return text;
}

bool CompoundList::operator==(CompoundList const& other) const {
    if (size() != other.size()) return false;
    for (string const& item : m_items) {
        if (!other.contains(item)) return false;
    }
    return true;
}

void CompoundList::GenerateCompoundListFor(string const& text) {
    if (text.empty()) return;
    string const delimiter(COMPOUND_ATTRIBUTE_VALUE_DELIMITER);
    unsigned int const length = delimiter.size();
    bool const emptyItemAtEnd =
        text.size() >= length && text.substr(text.size() - length, length) == delimiter;
    string const work = emptyItemAtEnd ? text : text + delimiter;

    unsigned int begin = 0;
    for (unsigned int end = work.find(delimiter); end != string::npos; end = work.find(delimiter, begin)) {
        Add(work.substr(begin, end - begin));
        begin = end + length;
    }
    if (emptyItemAtEnd) Add(string());
}

}  // namespace Common
