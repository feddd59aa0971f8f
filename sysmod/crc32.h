#pragma once

#include <cstddef>
#include <cstdint>

namespace Core::SysMod {

/// CRC-32 of ISO 3309 (reflected, polynomial 0x04C11DB7, start and final exclusive-or 0xFFFFFFFF).
std::uint32_t crc32(void const* data, std::size_t size);

}  // namespace Core::SysMod
