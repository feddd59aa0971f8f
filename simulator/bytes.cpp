#include "simulator/bytes.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace simulator {

void putText(std::uint8_t* data, std::size_t size, std::string_view text) {
    std::size_t const length = std::min(size, text.size());
    std::copy_n(text.begin(), length, data);
    std::fill(data + length, data + size, std::uint8_t{' '});
}

std::string toHex(std::span<std::uint8_t const> data, std::string_view separator) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    text.reserve(data.size() * (2 + separator.size()));
    for (std::uint8_t const byte : data) {
        if (!text.empty()) text += separator;
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

bool fromHex(std::string_view text, Bytes& bytes) {
    auto const digit = [](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        return -1;
    };
    bytes.clear();
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        if (i + 1 >= text.size() || digit(text[i]) < 0 || digit(text[i + 1]) < 0) return false;
        bytes.push_back(static_cast<std::uint8_t>(digit(text[i]) << 4 | digit(text[i + 1])));
        i += 2;
    }
    return true;
}

std::uint32_t crc32(std::span<std::uint8_t const> data) {
    static constexpr auto table = [] {
        std::array<std::uint32_t, 256> rows{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t row = i;
            for (int bit = 0; bit < 8; ++bit)
                row = (row & 1) != 0 ? row >> 1 ^ 0xEDB88320U : row >> 1;
            rows[i] = row;
        }
        return rows;
    }();
    std::uint32_t value = 0xFFFFFFFFU;
    for (std::uint8_t const byte : data)
        value = value >> 8 ^ table[(value ^ byte) & 0xFF];
    return ~value;
}

std::uint64_t RandomBytes::next() {
    std::uint64_t value = m_state += 0x9E3779B97F4A7C15U;
    value = (value ^ value >> 30) * 0xBF58476D1CE4E5B9U;
    value = (value ^ value >> 27) * 0x94D049BB133111EBU;
    return value ^ value >> 31;
}

void RandomBytes::fill(std::span<std::uint8_t> data) {
    for (std::size_t i = 0; i < data.size(); i += 8) {
        std::uint64_t const value = next();
        for (std::size_t k = i; k < std::min(i + 8, data.size()); ++k)
            data[k] = static_cast<std::uint8_t>(value >> (8 * (k - i)));
    }
}

}  // namespace simulator
