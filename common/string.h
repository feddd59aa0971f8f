#pragma once

#include "common/shared_text.h"

namespace Common {

// Shared, counted byte string. Copies share their bytes; every change of contents detaches first and
// allocates exactly what it needs: there is no spare capacity, so n appends cost n copies.
class string : public SharedText {
  public:
    string();
    string(string const& other);
    // `n` bytes at `s`; npos: up to the terminating zero.
    string(char const* s, unsigned int n = npos);
    string(char const* s, unsigned int pos, unsigned int n);
    // Length one, also for a zero byte. Assignment differs, see below.
    string(char c);
    ~string() = default;

    string& assign(string const& other);
    string& assign(char const* s, unsigned int n = npos);
    string& operator=(string const& other);
    string& operator=(char const* s);
    // Goes through the terminated form: a zero byte gives the empty string. Callers clear strings so.
    string& operator=(char c);

    string& operator+=(string const& other);
    string& operator+=(char const* s);

    // `pos` and `n` are clamped to the string.
    string& replace(unsigned int pos, unsigned int n, string const& other);
    string& replace(unsigned int pos, unsigned int n, char const* s);
    void clear();

    // An empty needle matches at `pos`.
    unsigned int find(char const* s, unsigned int pos, unsigned int n) const;
    unsigned int find(char const* s, unsigned int pos = 0) const;
    unsigned int find(string const& s, unsigned int pos = 0) const;
    unsigned int find(char c, unsigned int pos = 0) const;

    // Searches down from `pos` and never looks at index 0: a match only there is npos. Callers that take
    // text behind the last separator count on it.
    unsigned int rfind(char const* s, unsigned int pos, unsigned int n) const;
    unsigned int rfind(char const* s, unsigned int pos = npos) const;
    unsigned int rfind(string const& s, unsigned int pos = npos) const;
    unsigned int rfind(char c, unsigned int pos = npos) const;

    // `n` of npos runs to the first zero byte, not to the end. Clamped to the string.
    string substr(unsigned int pos, unsigned int n = npos) const;

    bool operator==(string const& other) const;
    bool operator==(char const* s) const;
    bool operator!=(string const& other) const { return !(*this == other); }
    bool operator!=(char const* s) const { return !(*this == s); }
    // By strcmp: stops at a zero byte.
    bool operator<(string const& other) const;
    bool operator<(char const* s) const;

    // Each returns a new string and leaves this one as it is.
    string TrimLeft() const;
    string TrimRight() const;
    string Trim() const;
    string LowerCase() const;
    string UpperCase() const;
};

string operator+(string const& a, string const& b);
string operator+(string const& a, char const* b);
string operator+(char const* a, string const& b);

}  // namespace Common
