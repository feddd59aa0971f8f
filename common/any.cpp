#include "common/any.h"

#include <cstdio>

namespace Common {

namespace {

// "%f" of the greatest double has 309 digits before the point.
template <class T>
string formatted(char const* format, T value) {
    char text[352];
    std::snprintf(text, sizeof text, format, value);
    return string(text);
}

}  // namespace

string AnyToString<unsigned char>::text(unsigned char value) {
    return formatted("%u", static_cast<unsigned int>(value));
}
string AnyToString<unsigned short>::text(unsigned short value) {
    return formatted("%u", static_cast<unsigned int>(value));
}
string AnyToString<unsigned int>::text(unsigned int value) {
    return formatted("%u", value);
}
string AnyToString<int>::text(int value) {
    return formatted("%d", value);
}
string AnyToString<double>::text(double value) {
    return formatted("%f", value);
}

string AnyToString<unsigned long long>::text(unsigned long long value) {
    char digits[20];
    unsigned int first = sizeof digits;
    do {
        digits[--first] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    return string(digits + first, static_cast<unsigned int>(sizeof digits) - first);
}

}  // namespace Common
