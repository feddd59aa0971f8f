#pragma once

#include <concepts>
#include <type_traits>

#include "common/string.h"

namespace Conversion {

template <class T>
concept Number = std::same_as<T, unsigned char> || std::same_as<T, unsigned short> ||
    std::same_as<T, unsigned int> || std::same_as<T, unsigned long long> || std::same_as<T, int> ||
    std::same_as<T, float> || std::same_as<T, double>;

// Integers: white space, one optional sign, then decimal digits up to the first non-digit. A minus negates
// in the width of T, overflow wraps, later text is ignored, no digits give 0: there is no error.
// float and double: strtod.
template <Number T>
T toNumber(Common::string const& text);

template <>
unsigned char toNumber<unsigned char>(Common::string const& text);
template <>
unsigned short toNumber<unsigned short>(Common::string const& text);
template <>
unsigned int toNumber<unsigned int>(Common::string const& text);
template <>
unsigned long long toNumber<unsigned long long>(Common::string const& text);
template <>
int toNumber<int>(Common::string const& text);
template <>
float toNumber<float>(Common::string const& text);
template <>
double toNumber<double>(Common::string const& text);

template <Number T>
void toNumber(T& out, Common::string const& text) {
    out = toNumber<T>(text);
}

// A copy of the text, the empty string for null; or decimal.
Common::string toString(char const* text);
Common::string toString(char* text);
Common::string toString(Common::string const& text);
Common::string toString(unsigned int const& value);
Common::string toString(unsigned char const& value);
template <class T>
requires std::same_as < std::remove_const_t<T>,
unsigned char > Common::string toString(T* text) {
    return toString(reinterpret_cast<char const*>(text));
}

// The bytes of a number in host memory, most significant first.
Common::string numberToHex(void const* number, unsigned int size);

// Two upper-case hexadecimal digits for each byte of the number, the most significant first.
template <class T>
requires std::is_integral_v<T> Common::string hexToString(T const& value) {
    return numberToHex(&value, sizeof(T));
}

// hexToString of each item with the separator between items.
template <class T>
Common::string arrayToString(T const* data, unsigned int count, Common::string const& separator) {
    Common::string text;
    for (unsigned int i = 0; i < count; ++i) {
        if (i != 0) text += separator;
        text += hexToString(data[i]);
    }
    return text;
}

// The first two characters as hexadecimal digits of one byte. Not validated: other characters give an
// arbitrary byte.
unsigned char hexStringToInt(Common::string const& text);

// Raw bytes, one for each two characters.
Common::string stringToArray(Common::string const& text);

// Writes the smaller of text.size()/2 and `max` bytes; returns how many.
template <class T>
requires std::same_as<T, unsigned char>
unsigned int stringToArray(Common::string const& text, T* out, unsigned int max) {
    unsigned int const count = text.size() / 2 < max ? text.size() / 2 : max;
    for (unsigned int i = 0; i < count; ++i)
        out[i] = hexStringToInt(text.substr(2 * i, 2));
    return count;
}

enum XtoiResult { XTOI_DONE = 0, XTOI_EMPTY = 1, XTOI_TOO_LONG = 2, XTOI_NOT_HEX = 4 };

// Hexadecimal text of at most 8 digits, read from the last digit to the first. With XTOI_NOT_HEX `out`
// keeps the sum of the digits behind the bad one; with the other failures it is 0.
int xtoi(Common::string const& text, unsigned int& out);

// Six bytes as "00:11:22:AA:BB:CC".
Common::string MacToString(unsigned char const* mac);

// Four bytes; the integer form takes its bytes in memory order.
Common::string toIpV4String(unsigned char const* address);
Common::string toIpV4String(unsigned int address);

// "%d.%d.%d.%d" into four bytes at `out`. False, with `out` untouched, unless four numbers were read and
// each fits in its byte. Text behind the fourth number is ignored.
bool ipToNumber(unsigned char* out, Common::string const& text);

// Always "0:0:0": the argument is ignored on purpose, and readers of the attribute expect no time of day.
Common::string timeToString(unsigned char const* time);

// Four bytes (big-endian year, month, day) as "YYYY-MM-DD"; the integer form holds them from its most
// significant byte down.
Common::string dateToString(unsigned char const* date);
Common::string dateToString(unsigned int date);

// Digits and points of four bytes of text; other bytes are dropped.
Common::string hexToVersion(unsigned char const* version);

// The nearest multiple of 5.
unsigned char clampPercentage(unsigned char const& percentage);

// The smallest common multiple. A zero argument counts as 1 beside a 0 or 1; beside anything greater there
// is no common multiple, nor when the result doesn't fit: both are logged and give 0.
template <class T>
requires std::same_as<T, unsigned int> || std::same_as<T, unsigned long long> T LCM(T const& a, T const& b);
unsigned int leastCommonMultiple(unsigned int const& a, unsigned int const& b);

// Index of the first entry equal to `text`; the number of entries when there is none. A
// null text or entry equals nothing.
unsigned int stringToIndex(char const* const* begin, char const* const* end, char const* text);

}  // namespace Conversion
