#pragma once

/// The firmware image that the virtual controllers accept. All numbers little-endian.
///
///   offset  size  content
///        0     8  "KSLROM1" and a line feed
///        8    16  target family, filled with zeros
///       24     8  version, filled with zeros
///       32     4  header length, 64
///       36     4  payload length
///       40     4  CRC-32 of the payload
///       44    16  zeros
///       60     4  CRC-32 of bytes 0 to 59
///       64     -  payload

#include <span>
#include <string>

#include "simulator/bytes.h"

namespace simulator {

inline constexpr std::size_t IMAGE_HEADER_SIZE = 64;
inline constexpr std::size_t IMAGE_FAMILY_SIZE = 16;
inline constexpr std::size_t IMAGE_VERSION_SIZE = 8;

/// What an image says of itself.
struct ImageInfo {
    std::string family;
    std::string version;
    std::uint32_t payloadLength = 0;
    std::uint32_t payloadCrc = 0;
};

/// An image of `size` bytes in all (at least the header) with a payload that `seed` determines. Family and
/// version must fit their members.
Bytes makeImage(std::string const& family, std::string const& version, std::size_t size, std::uint64_t seed);

/// Checks magic, header length and CRC, payload length and CRC, in this order; for any family. Returns what
/// is wrong, with the value found and the value expected, or an empty text. `info` is filled as far as the
/// header could be read.
std::string checkImage(std::span<std::uint8_t const> image, ImageInfo& info);

}  // namespace simulator
