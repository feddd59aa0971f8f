#include "common/conversion.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>

#include "common/debug_logger.h"

namespace Conversion {

using Common::string;

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

template <class T>
T parseInteger(char const* s) {
    using Unsigned = std::make_unsigned_t<T>;
    while (isSpace(*s))
        ++s;
    bool const negative = *s == '-';
    if (*s == '-' || *s == '+') ++s;
    Unsigned value = 0;
    for (; isDigit(*s); ++s)
        value = static_cast<Unsigned>(value * 10U + static_cast<unsigned>(*s - '0'));
    return static_cast<T>(negative ? static_cast<Unsigned>(0U - value) : value);
}

string unsignedText(unsigned int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%u", value);
    return string(text);
}

string hexByte(unsigned char byte) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", byte);
    return string(text);
}

bool hostIsLittleEndian() {
    unsigned short const one = 1;
    unsigned char first = 0;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

// No validation: what isn't a letter is taken for a digit.
unsigned int hexDigit(char c) {
    if (c >= 'a') return static_cast<unsigned int>(c - 'a' + 10);
    if (c >= 'A') return static_cast<unsigned int>(c - 'A' + 10);
    return static_cast<unsigned int>(c - '0');
}

// One decimal number as "%d" reads it, but with overflow refused. Moves `s` behind it.
bool readOctet(char const*& s, unsigned char& octet) {
    while (isSpace(*s))
        ++s;
    bool const negative = *s == '-';
    if (*s == '-' || *s == '+') ++s;
    if (!isDigit(*s)) return false;
    unsigned int value = 0;
    for (; isDigit(*s); ++s) {
        value = value * 10 + static_cast<unsigned int>(*s - '0');
        if (value > 255) return false;
    }
    octet = static_cast<unsigned char>(value);
    return !negative || value == 0;
}

}  // namespace

template <>
unsigned char toNumber<unsigned char>(string const& text) {
    return parseInteger<unsigned char>(text.c_str());
}
template <>
unsigned short toNumber<unsigned short>(string const& text) {
    return parseInteger<unsigned short>(text.c_str());
}
template <>
unsigned int toNumber<unsigned int>(string const& text) {
    return parseInteger<unsigned int>(text.c_str());
}
template <>
unsigned long long toNumber<unsigned long long>(string const& text) {
    return parseInteger<unsigned long long>(text.c_str());
}
template <>
int toNumber<int>(string const& text) {
    return parseInteger<int>(text.c_str());
}
template <>
double toNumber<double>(string const& text) {
    return std::strtod(text.c_str(), nullptr);
}
template <>
float toNumber<float>(string const& text) {
    double const value = std::strtod(text.c_str(), nullptr);
    if (std::fabs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
        return std::copysign(std::numeric_limits<float>::infinity(),
                             static_cast<float>(std::copysign(1.0, value)));
    }
    return static_cast<float>(value);
}

string toString(char const* text) {
    return string(text);
}
string toString(char* text) {
    return string(text);
}
string toString(string const& text) {
    return text;
}
string toString(unsigned int const& value) {
    return unsignedText(value);
}
string toString(unsigned char const& value) {
    return unsignedText(value);
}

string numberToHex(void const* number, unsigned int size) {
    unsigned char const* const bytes = static_cast<unsigned char const*>(number);
    bool const backwards = hostIsLittleEndian();
    string text;
    for (unsigned int i = 0; i < size; ++i)
        text += hexByte(bytes[backwards ? size - 1 - i : i]);
    return text;
}

unsigned char hexStringToInt(string const& text) {
    return static_cast<unsigned char>(hexDigit(text[0]) << 4 | (hexDigit(text[1]) & 0x0F));
}

string stringToArray(string const& text) {
    unsigned int const count = text.size() / 2;
    auto bytes = std::make_unique<unsigned char[]>(count);
    stringToArray(text, bytes.get(), count);
    return string(reinterpret_cast<char const*>(bytes.get()), count);
}

int xtoi(string const& text, unsigned int& out) {
    out = 0;
    if (text.empty()) return XTOI_EMPTY;
    if (text.size() > 8) return XTOI_TOO_LONG;
    for (unsigned int i = 0; i < text.size(); ++i) {
        char const c = text[text.size() - 1 - i];
        if (std::isxdigit(static_cast<unsigned char>(c)) == 0) return XTOI_NOT_HEX;
        out += hexDigit(c) << (4 * i);
    }
    return XTOI_DONE;
}

string MacToString(unsigned char const* mac) {
    string text = hexByte(mac[0]);
    for (int i = 1; i < 6; ++i) {
        text += ":";
        text += hexByte(mac[i]);
    }
    return text;
}

string toIpV4String(unsigned char const* address) {
    char text[16];
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", address[0], address[1], address[2], address[3]);
    return string(text);
}

string toIpV4String(unsigned int address) {
    unsigned char bytes[4];
    std::memcpy(bytes, &address, sizeof bytes);
    return toIpV4String(bytes);
}

bool ipToNumber(unsigned char* out, string const& text) {
    unsigned char address[4];
    char const* s = text.c_str();
    for (int i = 0; i < 4; ++i) {
        if (i != 0 && *s++ != '.') return false;
        if (!readOctet(s, address[i])) return false;
    }
    std::memcpy(out, address, sizeof address);
    return true;
}

string timeToString(unsigned char const*) {
    return string("0:0:0");
}

string dateToString(unsigned char const* date) {
    string text = unsignedText(static_cast<unsigned int>(date[0] << 8 | date[1]));
    for (int i = 2; i < 4; ++i) {
        text += date[i] <= 9 ? "-0" : "-";
        text += unsignedText(date[i]);
    }
    return text;
}

string dateToString(unsigned int date) {
    unsigned char bytes[4];
    for (unsigned int i = 0; i < 4; ++i)
        bytes[i] = static_cast<unsigned char>(date >> (24 - 8 * i));
    return dateToString(bytes);
}

string hexToVersion(unsigned char const* version) {
    string text;
    for (int i = 0; i < 4; ++i) {
        char const c = static_cast<char>(version[i]);
        if (isDigit(c) || c == '.') text += string(c);
    }
    return text;
}

unsigned char clampPercentage(unsigned char const& percentage) {
    unsigned int const remainder = percentage % 5U;
    return static_cast<unsigned char>(remainder <= 2 ? percentage - remainder : percentage + 5 - remainder);
}

template <class T>
requires std::same_as<T, unsigned int> || std::same_as<T, unsigned long long> T LCM(T const& a, T const& b) {
    if (a == 0 || b == 0) {
        // The multiples of 0 that are searched are 1, 1, 1 and so on: only another 0 or a 1 meets them.
        if (a <= 1 && b <= 1) return 1;
        Common::DebugLogger::LogCommand("LCM: no common multiple of %llu and %llu\n",
                                        static_cast<unsigned long long>(a),
                                        static_cast<unsigned long long>(b));
        return 0;
    }
    T const step = a / std::gcd(a, b);
    if (step > std::numeric_limits<T>::max() / b) {
        Common::DebugLogger::LogCommand("LCM: the common multiple of %llu and %llu exceeds %llu\n",
                                        static_cast<unsigned long long>(a),
                                        static_cast<unsigned long long>(b),
                                        static_cast<unsigned long long>(std::numeric_limits<T>::max()));
        return 0;
    }
    return step * b;
}
template unsigned int LCM<unsigned int>(unsigned int const& a, unsigned int const& b);
template unsigned long long LCM<unsigned long long>(unsigned long long const& a, unsigned long long const& b);

unsigned int leastCommonMultiple(unsigned int const& a, unsigned int const& b) {
    return LCM<unsigned int>(a, b);
}

unsigned int stringToIndex(char const* const* begin, char const* const* end, char const* text) {
    unsigned int index = 0;
    for (char const* const* entry = begin; entry != end; ++entry, ++index) {
        if (*entry != nullptr && text != nullptr && std::strcmp(*entry, text) == 0) break;
    }
    return index;
}

}  // namespace Conversion
