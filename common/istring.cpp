#include "common/istring.h"

#include <cctype>

namespace Common {

namespace {

int lower(char c) {
    return std::tolower(static_cast<unsigned char>(c));
}

}  // namespace

int stricmp(char const* a, char const* b) {
    if (a == nullptr || b == nullptr) return 0;
    for (; *a != '\0' && *b != '\0'; ++a, ++b) {
        if (lower(*a) != lower(*b)) return 1;
    }
    return 0;
}

int memicmp(void const* a, void const* b, unsigned int n) {
    char const* const left = static_cast<char const*>(a);
    char const* const right = static_cast<char const*>(b);
    for (unsigned int i = 0; i < n; ++i) {
        if (lower(left[i]) != lower(right[i])) return 1;
    }
    return 0;
}

istring::istring() : SharedText("", 0) {}
istring::istring(istring const& other) : SharedText(other) {}
istring::istring(string const& other) : SharedText(other.c_str(), npos) {}
istring::istring(char const* s, unsigned int n) : SharedText(s, n) {}
istring::istring(char const* s, unsigned int pos, unsigned int n)
    : SharedText(s != nullptr ? s + pos : nullptr, n) {}
istring::istring(char c) : SharedText(&c, 1) {}

istring::operator string() const {
    return string(c_str(), size());
}

istring& istring::assign(istring const& other) {
    shareWith(other);
    return *this;
}
istring& istring::assign(char const* s, unsigned int n) {
    assignText(s, n);
    return *this;
}
istring& istring::operator=(istring const& other) {
    return assign(other);
}
istring& istring::operator=(string const& other) {
    return assign(other.c_str());
}
istring& istring::operator=(char const* s) {
    return assign(s);
}
istring& istring::operator=(char c) {
    char const text[] = {c, '\0'};
    return assign(text);
}

istring& istring::operator+=(istring const& other) {
    appendText(other.c_str(), other.size());
    return *this;
}
istring& istring::operator+=(string const& other) {
    appendText(other.c_str(), other.size());
    return *this;
}
istring& istring::operator+=(char const* s) {
    appendText(s, textLength(s));
    return *this;
}

istring& istring::replace(unsigned int pos, unsigned int n, istring const& other) {
    replaceText(pos, n, other.c_str(), other.size());
    return *this;
}
istring& istring::replace(unsigned int pos, unsigned int n, char const* s) {
    replaceText(pos, n, s, textLength(s));
    return *this;
}
void istring::clear() {
    assignText("", 0);
}

unsigned int istring::find(char const* s, unsigned int pos, unsigned int n) const {
    return findText(s, pos, n, memicmp);
}
unsigned int istring::find(char const* s, unsigned int pos) const {
    return find(s, pos, textLength(s));
}
unsigned int istring::find(istring const& s, unsigned int pos) const {
    return find(s.c_str(), pos, s.size());
}
unsigned int istring::find(char c, unsigned int pos) const {
    return find(&c, pos, 1);
}

unsigned int istring::rfind(char const* s, unsigned int pos, unsigned int n) const {
    return rfindText(s, pos, n, memicmp);
}
unsigned int istring::rfind(char const* s, unsigned int pos) const {
    return rfind(s, pos, textLength(s));
}
unsigned int istring::rfind(istring const& s, unsigned int pos) const {
    return rfind(s.c_str(), pos, s.size());
}
unsigned int istring::rfind(char c, unsigned int pos) const {
    return rfind(&c, pos, 1);
}

istring istring::substr(unsigned int pos, unsigned int n) const {
    Range const part = range(pos, n);
    return istring(part.text, part.length);
}

bool istring::operator==(istring const& other) const {
    return size() == other.size() && memicmp(c_str(), other.c_str(), size()) == 0;
}
bool istring::operator==(string const& other) const {
    return size() == other.size() && memicmp(c_str(), other.c_str(), size()) == 0;
}
bool istring::operator==(char const* s) const {
    return size() == textLength(s) && memicmp(c_str(), s, size()) == 0;
}
// stricmp never gives a negative value, so these are always false. Kept: no istring is ever a key.
bool istring::operator<(istring const& other) const {
    return stricmp(c_str(), other.c_str()) < 0;
}
bool istring::operator<(char const* s) const {
    return s != nullptr && stricmp(c_str(), s) < 0;
}

istring istring::TrimLeft() const {
    Range const part = trimmed(true, false);
    return istring(part.text, part.length);
}
istring istring::TrimRight() const {
    Range const part = trimmed(false, true);
    return istring(part.text, part.length);
}
istring istring::Trim() const {
    Range const part = trimmed(true, true);
    return istring(part.text, part.length);
}
istring istring::LowerCase() const {
    istring text(c_str(), size());
    text.convertBytes(std::tolower);
    return text;
}
istring istring::UpperCase() const {
    istring text(c_str(), size());
    text.convertBytes(std::toupper);
    return text;
}

istring operator+(istring const& a, istring const& b) {
    istring sum(a);
    sum += b;
    return sum;
}
istring operator+(istring const& a, char const* b) {
    istring sum(a);
    sum += b;
    return sum;
}
istring operator+(char const* a, istring const& b) {
    istring sum(a);
    sum += b;
    return sum;
}

}  // namespace Common
