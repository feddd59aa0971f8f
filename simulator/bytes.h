#pragma once

/// Reading and writing of little-endian and big-endian numbers at literal offsets, and hexadecimal text.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

using Bytes = std::vector<std::uint8_t>;

/// `width` bytes (1 to 8) at `data`, least significant first.
inline std::uint64_t getLittle(std::uint8_t const* data, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value |= std::uint64_t{data[i]} << (8 * i);
    return value;
}

inline void putLittle(std::uint8_t* data, std::size_t width, std::uint64_t value) {
    for (std::size_t i = 0; i < width; ++i)
        data[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

/// `width` bytes (1 to 8) at `data`, most significant first.
inline std::uint64_t getBig(std::uint8_t const* data, std::size_t width) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i)
        value = value << 8 | data[i];
    return value;
}

inline void putBig(std::uint8_t* data, std::size_t width, std::uint64_t value) {
    for (std::size_t i = 0; i < width; ++i)
        data[i] = static_cast<std::uint8_t>(value >> (8 * (width - 1 - i)));
}

/// Copies `text` into `size` bytes at `data` and fills the rest with blanks, as SCSI text members are.
void putText(std::uint8_t* data, std::size_t size, std::string_view text);

/// Two lower-case digits a byte, joined by `separator`.
std::string toHex(std::span<std::uint8_t const> data, std::string_view separator = "");

/// Pairs of hexadecimal digits, blanks between pairs allowed. False when `text` is anything else.
bool fromHex(std::string_view text, Bytes& bytes);

/// CRC-32 of IEEE 802.3 (polynomial 0xEDB88320 reflected, initial value and final inversion of all ones).
std::uint32_t crc32(std::span<std::uint8_t const> data);

/// A generator of reproducible bytes (the splitmix64 sequence of its seed).
class RandomBytes {
  public:
    explicit RandomBytes(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next();
    void fill(std::span<std::uint8_t> data);

  private:
    std::uint64_t m_state;
};

}  // namespace simulator
