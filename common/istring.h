#pragma once

#include "common/shared_text.h"
#include "common/string.h"

namespace Common {

// 0 as soon as either text ends, so that a prefix counts as equal; 1 at the first difference. A null text
// counts as an empty one. Never negative, which makes istring::operator< always false.
int stricmp(char const* a, char const* b);

// 0 for equal, 1 at the first difference; 0 for `n` of 0.
int memicmp(void const* a, void const* b, unsigned int n);

// string with comparison and search that ignore case. Not fit as a map key: no istring is less than
// another.
class istring : public SharedText {
  public:
    istring();
    istring(istring const& other);  // shares
    istring(string const& other);   // copies, up to the first zero byte
    istring(char const* s, unsigned int n = npos);
    istring(char const* s, unsigned int pos, unsigned int n);
    istring(char c);
    ~istring() = default;

    operator string() const;

    istring& assign(istring const& other);
    istring& assign(char const* s, unsigned int n = npos);
    istring& operator=(istring const& other);  // shares
    istring& operator=(string const& other);   // copies, up to the first zero byte
    istring& operator=(char const* s);
    istring& operator=(char c);  // a zero byte gives the empty string

    istring& operator+=(istring const& other);
    istring& operator+=(string const& other);
    istring& operator+=(char const* s);

    istring& replace(unsigned int pos, unsigned int n, istring const& other);
    istring& replace(unsigned int pos, unsigned int n, char const* s);
    void clear();

    // The rules of string::find and string::rfind, index 0 included.
    unsigned int find(char const* s, unsigned int pos, unsigned int n) const;
    unsigned int find(char const* s, unsigned int pos = 0) const;
    unsigned int find(istring const& s, unsigned int pos = 0) const;
    unsigned int find(char c, unsigned int pos = 0) const;
    unsigned int rfind(char const* s, unsigned int pos, unsigned int n) const;
    unsigned int rfind(char const* s, unsigned int pos = npos) const;
    unsigned int rfind(istring const& s, unsigned int pos = npos) const;
    unsigned int rfind(char c, unsigned int pos = npos) const;

    istring substr(unsigned int pos, unsigned int n = npos) const;

    bool operator==(istring const& other) const;
    bool operator==(string const& other) const;
    bool operator==(char const* s) const;
    bool operator!=(istring const& other) const { return !(*this == other); }
    bool operator!=(string const& other) const { return !(*this == other); }
    bool operator!=(char const* s) const { return !(*this == s); }
    bool operator<(istring const& other) const;
    bool operator<(char const* s) const;

    istring TrimLeft() const;
    istring TrimRight() const;
    istring Trim() const;
    istring LowerCase() const;
    istring UpperCase() const;
};

istring operator+(istring const& a, istring const& b);
istring operator+(istring const& a, char const* b);
istring operator+(char const* a, istring const& b);

}  // namespace Common
