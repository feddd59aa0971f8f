#include "src/stringhelper.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

void trimming(std::string& text, char c) {
    auto const first = text.find_first_not_of(c);
    auto const last = text.find_last_not_of(c);
    // A text of nothing but `c` only loses one: names made of blanks keep telling apart what the catalogue
    // tells apart. For an empty text the length wraps to npos, and the text stays empty.
    text = last == std::string::npos ? text.substr(0, text.size() - 1) : text.substr(first, last - first + 1);
}

std::string trim(std::string const& text) {
    std::string result(text);
    trimming(result, ' ');
    trimming(result, '\t');
    return result;
}

std::string removePrefix(std::string const& text, std::string const& prefix, bool* found) {
    bool const begins = text.starts_with(prefix);
    if (found) *found = begins;
    return begins ? text.substr(prefix.size()) : text;
}

std::string transliterate(std::string const& text, char from, char to) {
    std::string result(text);
    std::replace(result.begin(), result.end(), from, to);
    return result;
}

int textToInt(std::string const& text) {
    long const value = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}
