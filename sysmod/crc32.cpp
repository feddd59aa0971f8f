#include "sysmod/crc32.h"

namespace Core::SysMod {

std::uint32_t crc32(void const* data, std::size_t size) {
    constexpr std::uint32_t REFLECTED_POLYNOMIAL = 0xEDB88320;
    auto const* bytes = static_cast<unsigned char const*>(data);
    std::uint32_t value = 0xFFFFFFFF;
    for (std::size_t i = 0; i < size; ++i) {
        value ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1) ^ ((value & 1) != 0 ? REFLECTED_POLYNOMIAL : 0);
        }
    }
    return value ^ 0xFFFFFFFF;
}

}  // namespace Core::SysMod
