#include "src/version.h"

#include <cmath>
#include <cstdio>

float VersionToFloat(std::string const& text) {
    char head[5];
    std::snprintf(head, sizeof head, "%.4s", text.c_str());

    float value = 0;
    bool seenDot = false;
    int decimals = 0;
    for (char const* c = head; *c; ++c) {
        if (*c == '.' && !seenDot) {
            seenDot = true;
            continue;
        }
        if (*c >= '0' && *c <= '9') value = value * 10 + static_cast<float>(*c - '0');
        if (seenDot) ++decimals;
    }
    if (!seenDot) return value;

    long double divisor = 1;
    for (; decimals > 0; --decimals)
        divisor *= 10;
    return static_cast<float>(static_cast<long double>(value) / divisor);
}

bool VersionsEqual(float a, float b) {
    return std::fabs(static_cast<long double>(a) - static_cast<long double>(b)) < 0.00001L;
}

bool VersionsLT(float a, float b) {
    return b > a && !VersionsEqual(a, b);
}
