#include "simulator/rom_image.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

namespace simulator {

namespace {

constexpr char MAGIC[] = "KSLROM1\n";

/// Text up to the first zero byte, with unprintable bytes as '?'.
std::string textAt(std::span<std::uint8_t const> image, std::size_t offset, std::size_t size) {
    std::string text;
    for (std::uint8_t const byte : image.subspan(offset, size)) {
        if (byte == 0) break;
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '?';
    }
    return text;
}

std::string hexNumber(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

}  // namespace

Bytes makeImage(std::string const& family, std::string const& version, std::size_t size, std::uint64_t seed) {
    Bytes image(std::max(size, IMAGE_HEADER_SIZE), 0);
    std::memcpy(image.data(), MAGIC, 8);
    std::copy_n(family.begin(), std::min(family.size(), IMAGE_FAMILY_SIZE), image.begin() + 8);
    std::copy_n(version.begin(), std::min(version.size(), IMAGE_VERSION_SIZE), image.begin() + 24);
    std::span<std::uint8_t> const payload = std::span(image).subspan(IMAGE_HEADER_SIZE);
    RandomBytes(seed).fill(payload);
    putLittle(&image[32], 4, IMAGE_HEADER_SIZE);
    putLittle(&image[36], 4, payload.size());
    putLittle(&image[40], 4, crc32(payload));
    putLittle(&image[60], 4, crc32(std::span(image).first(60)));
    return image;
}

std::string checkImage(std::span<std::uint8_t const> image, ImageInfo& info) {
    if (image.size() < IMAGE_HEADER_SIZE)
        return "image of " + std::to_string(image.size()) + " bytes, a header alone has 64";
    if (std::memcmp(image.data(), MAGIC, 8) != 0)
        return "image magic " + toHex(image.first(8), " ") + ", expected 4b 53 4c 52 4f 4d 31 0a";
    info.family = textAt(image, 8, IMAGE_FAMILY_SIZE);
    info.version = textAt(image, 24, IMAGE_VERSION_SIZE);
    info.payloadLength = static_cast<std::uint32_t>(getLittle(&image[36], 4));
    info.payloadCrc = static_cast<std::uint32_t>(getLittle(&image[40], 4));
    auto const headerCrc = static_cast<std::uint32_t>(getLittle(&image[60], 4));
    if (headerCrc != crc32(image.first(60)))
        return "image header CRC " + hexNumber(headerCrc) + ", computed " + hexNumber(crc32(image.first(60)));
    if (getLittle(&image[32], 4) != IMAGE_HEADER_SIZE)
        return "image header length " + std::to_string(getLittle(&image[32], 4)) + ", expected 64";
    std::span<std::uint8_t const> const payload = image.subspan(IMAGE_HEADER_SIZE);
    if (info.payloadLength != payload.size())
        return "image payload length " + std::to_string(info.payloadLength) + ", received " +
               std::to_string(payload.size());
    if (info.payloadCrc != crc32(payload))
        return "image payload CRC " + hexNumber(info.payloadCrc) + ", computed " + hexNumber(crc32(payload));
    return {};
}

}  // namespace simulator
