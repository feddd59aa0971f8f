#pragma once

#include <bit>
#include <concepts>
#include <cstring>

// Between wire order (little-endian, in SCSI big-endian) and host order. `host` is a parameter so that the
// other host can be tested on this one.
template <std::unsigned_integral T>
constexpr T reverseBytes(T value) {
    T reversed = 0;
    for (unsigned i = 0; i < sizeof(T); ++i) {
        reversed = static_cast<T>((reversed << 8 * (sizeof(T) > 1)) | (value & 0xFF));
        value = static_cast<T>(value >> 8 * (sizeof(T) > 1));
    }
    return reversed;
}

template <std::unsigned_integral T, std::endian host = std::endian::native>
constexpr T ConvertLittleEndianToValue(T wire) {
    return host == std::endian::little ? wire : reverseBytes(wire);
}

template <std::unsigned_integral T, std::endian host = std::endian::native>
constexpr T ConvertValueToLittleEndian(T value) {
    return host == std::endian::little ? value : reverseBytes(value);
}

template <std::unsigned_integral T, std::endian host = std::endian::native>
constexpr T ConvertBigEndianToValue(T wire) {
    return host == std::endian::big ? wire : reverseBytes(wire);
}

template <std::unsigned_integral T, std::endian host = std::endian::native>
constexpr T ConvertValueToBigEndian(T value) {
    return host == std::endian::big ? value : reverseBytes(value);
}

// A big-endian number at an address of any alignment, as SCSI has them.
template <std::unsigned_integral T>
T readBigEndian(unsigned char const* at) {
    T wire;
    std::memcpy(&wire, at, sizeof(wire));
    return ConvertBigEndianToValue(wire);
}

// A little-endian number at an address of any alignment.
template <std::unsigned_integral T>
T readLittleEndian(unsigned char const* at) {
    T wire;
    std::memcpy(&wire, at, sizeof(wire));
    return ConvertLittleEndianToValue(wire);
}
