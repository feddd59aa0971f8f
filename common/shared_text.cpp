#include "common/shared_text.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "common/conversion.h"
#include "common/string.h"

namespace Common {

namespace {

// The longest text: its size cell holds the length plus one.
constexpr std::uint64_t MAX_LENGTH = 0xFFFFFFFE;

unsigned int checkedLength(std::uint64_t length) {
    if (length > MAX_LENGTH) throw std::bad_alloc();
    return static_cast<unsigned int>(length);
}

}  // namespace

unsigned int textLength(char const* s) {
    return s != nullptr ? checkedLength(std::strlen(s)) : 0;
}

SharedText::SharedText(char const* s, unsigned int n) : m_size(nullptr), m_count(nullptr), m_text(nullptr) {
    assignText(s, n);
}

SharedText::SharedText(SharedText const& other)
    : m_size(other.m_size), m_count(other.m_count), m_text(other.m_text) {
    ++*m_count;
}

SharedText::~SharedText() {
    release();
}

void SharedText::release() {
    if (--*m_count != 0) return;
    delete m_size;
    delete m_count;
    delete[] m_text;
}

// Gives up the present bytes and leaves a count cell of 1 that nobody else holds. The other two pointers
// are dead afterwards.
void SharedText::detach() {
    if (m_count == nullptr) {
        m_count = new unsigned int(1);
    } else if (*m_count > 1) {
        unsigned int* const own = new unsigned int(1);
        --*m_count;
        m_count = own;
    } else {
        delete m_size;
        delete[] m_text;
    }
}

// The new blocks are complete before the old are given up: `s` may point into the old text.
void SharedText::assignText(char const* s, unsigned int n) {
    unsigned int const length = s == nullptr ? 0 : n == npos ? textLength(s) : n;
    auto size = std::make_unique<unsigned int>(length + 1);
    auto text = std::make_unique<char[]>(std::size_t{length} + 1);
    if (length != 0) std::memcpy(text.get(), s, length);
    text[length] = '\0';
    detach();
    m_size = size.release();
    m_text = text.release();
}

void SharedText::shareWith(SharedText const& other) {
    ++*other.m_count;  // first, so that assignment to oneself keeps the text
    unsigned int* const size = other.m_size;
    unsigned int* const count = other.m_count;
    char* const text = other.m_text;
    release();
    m_size = size;
    m_count = count;
    m_text = text;
}

void SharedText::appendText(char const* s, unsigned int n) {
    unsigned int const length = checkedLength(std::uint64_t{size()} + n);
    auto cell = std::make_unique<unsigned int>(length + 1);
    auto text = std::make_unique<char[]>(std::size_t{length} + 1);
    std::memcpy(text.get(), m_text, size());
    if (n != 0) std::memcpy(text.get() + size(), s, n);
    text[length] = '\0';
    detach();
    m_size = cell.release();
    m_text = text.release();
}

void SharedText::replaceText(unsigned int position, unsigned int n, char const* s, unsigned int length) {
    unsigned int const start = position < size() ? position : size();
    unsigned int const removed = n < size() - start ? n : size() - start;
    unsigned int const tail = size() - start - removed;
    unsigned int const total = checkedLength(std::uint64_t{start} + length + tail);
    auto scratch = std::make_unique<char[]>(std::size_t{total} + 1);
    std::memcpy(scratch.get(), m_text, start);
    if (length != 0) std::memcpy(scratch.get() + start, s, length);
    std::memcpy(scratch.get() + start + length, m_text + start + removed, tail);
    assignText(scratch.get(), total);
}

unsigned int SharedText::findText(char const* s, unsigned int position, unsigned int n,
                                  Compare compare) const {
    if (s == nullptr) {
        s = "";
        n = 0;
    }
    if (size() < n) return npos;
    for (unsigned int i = position; i <= size() - n; ++i) {
        if (compare(m_text + i, s, n) == 0) return i;
    }
    return npos;
}

unsigned int SharedText::rfindText(char const* s, unsigned int position, unsigned int n,
                                   Compare compare) const {
    if (s == nullptr) {
        s = "";
        n = 0;
    }
    if (n > size()) return npos;
    unsigned int const last = empty() ? 0 : size() - 1;
    unsigned int start = position < last ? position : last;
    if (start > size() - n) start = size() - n;
    // Index 0 is never examined. The users of this search have come to rely on it.
    for (unsigned int i = start; i > 0; --i) {
        if (compare(m_text + i, s, n) == 0) return i;
    }
    return npos;
}

SharedText::Range SharedText::range(unsigned int position, unsigned int n) const {
    if (position > size()) position = size();
    char const* const text = m_text + position;
    if (n == npos) return {text, textLength(text)};
    return {text, n < size() - position ? n : size() - position};
}

SharedText::Range SharedText::trimmed(bool left, bool right) const {
    unsigned int begin = 0;
    unsigned int end = size();
    while (left && begin < end && IsWhiteSpace(m_text[begin]))
        ++begin;
    while (right && end > begin && IsWhiteSpace(m_text[end - 1]))
        --end;
    return {m_text + begin, end - begin};
}

void SharedText::convertBytes(int (*convert)(int)) {
    for (unsigned int i = 0; i < size(); ++i) {
        m_text[i] = static_cast<char>(convert(static_cast<unsigned char>(m_text[i])));
    }
}

bool SharedText::IsWhiteSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

unsigned long long SharedText::toQWord() const {
    return Conversion::toNumber<unsigned long long>(string(m_text, size()));
}
unsigned short SharedText::toWord() const {
    return Conversion::toNumber<unsigned short>(string(m_text, size()));
}
unsigned char SharedText::toByte() const {
    return Conversion::toNumber<unsigned char>(string(m_text, size()));
}

}  // namespace Common
