#include "common/string.h"

#include <cctype>
#include <cstring>

namespace Common {

namespace {

int compareBytes(void const* a, void const* b, unsigned int n) {
    return std::memcmp(a, b, n);
}

}  // namespace

string::string() : SharedText("", 0) {}
string::string(string const& other) : SharedText(other) {}
string::string(char const* s, unsigned int n) : SharedText(s, n) {}
string::string(char const* s, unsigned int pos, unsigned int n)
    : SharedText(s != nullptr ? s + pos : nullptr, n) {}
string::string(char c) : SharedText(&c, 1) {}

string& string::assign(string const& other) {
    shareWith(other);
    return *this;
}
string& string::assign(char const* s, unsigned int n) {
    assignText(s, n);
    return *this;
}
string& string::operator=(string const& other) {
    return assign(other);
}
string& string::operator=(char const* s) {
    return assign(s);
}
string& string::operator=(char c) {
    char const text[] = {c, '\0'};
    return assign(text);
}

string& string::operator+=(string const& other) {
    appendText(other.c_str(), other.size());
    return *this;
}
string& string::operator+=(char const* s) {
    appendText(s, textLength(s));
    return *this;
}

string& string::replace(unsigned int pos, unsigned int n, string const& other) {
    replaceText(pos, n, other.c_str(), other.size());
    return *this;
}
string& string::replace(unsigned int pos, unsigned int n, char const* s) {
    replaceText(pos, n, s, textLength(s));
    return *this;
}
void string::clear() {
    assignText("", 0);
}

unsigned int string::find(char const* s, unsigned int pos, unsigned int n) const {
    return findText(s, pos, n, compareBytes);
}
unsigned int string::find(char const* s, unsigned int pos) const {
    return find(s, pos, textLength(s));
}
unsigned int string::find(string const& s, unsigned int pos) const {
    return find(s.c_str(), pos, s.size());
}
unsigned int string::find(char c, unsigned int pos) const {
    return find(&c, pos, 1);
}

unsigned int string::rfind(char const* s, unsigned int pos, unsigned int n) const {
    return rfindText(s, pos, n, compareBytes);
}
unsigned int string::rfind(char const* s, unsigned int pos) const {
    return rfind(s, pos, textLength(s));
}
unsigned int string::rfind(string const& s, unsigned int pos) const {
    return rfind(s.c_str(), pos, s.size());
}
unsigned int string::rfind(char c, unsigned int pos) const {
    return rfind(&c, pos, 1);
}

string string::substr(unsigned int pos, unsigned int n) const {
    Range const part = range(pos, n);
    return string(part.text, part.length);
}

bool string::operator==(string const& other) const {
    return size() == other.size() && std::memcmp(c_str(), other.c_str(), size()) == 0;
}
bool string::operator==(char const* s) const {
    unsigned int const length = textLength(s);
    return length == size() && (length == 0 || std::strncmp(c_str(), s, length) == 0);
}
bool string::operator<(string const& other) const {
    return std::strcmp(c_str(), other.c_str()) < 0;
}
bool string::operator<(char const* s) const {
    return s != nullptr && std::strcmp(c_str(), s) < 0;
}

string string::TrimLeft() const {
    Range const part = trimmed(true, false);
    return string(part.text, part.length);
}
string string::TrimRight() const {
    Range const part = trimmed(false, true);
    return string(part.text, part.length);
}
string string::Trim() const {
    Range const part = trimmed(true, true);
    return string(part.text, part.length);
}
string string::LowerCase() const {
    string text(c_str(), size());
    text.convertBytes(std::tolower);
    return text;
}
string string::UpperCase() const {
    string text(c_str(), size());
    text.convertBytes(std::toupper);
    return text;
}

string operator+(string const& a, string const& b) {
    string sum(a);
    sum += b;
    return sum;
}
string operator+(string const& a, char const* b) {
    string sum(a);
    sum += b;
    return sum;
}
string operator+(char const* a, string const& b) {
    string sum(a);
    sum += b;
    return sum;
}

}  // namespace Common
