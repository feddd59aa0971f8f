#pragma once

#include <cstdint>

/// What the bits of the flag words of the identify record mean, as the controllers' firmware sets them.
namespace Operations::IdentifyFlags {

// dwEvenMoreControllerFlags
inline constexpr std::uint32_t UNSUPPORTED_ZMR_MODE = 1U << 8;
inline constexpr std::uint32_t ZONING_ENABLED = 1U << 9;
inline constexpr std::uint32_t UPDATE_WITHOUT_DOWNTIME = 1U << 10;

// dwExtraControllerFlags
inline constexpr std::uint32_t HBA_MODE_SUPPORTED = 1U << 0;
inline constexpr std::uint32_t HBA_MODE_ENABLED = 1U << 1;

// dwEncryptionStatus
inline constexpr std::uint32_t CONFIG_LOCKOUT = 1U << 0;
inline constexpr std::uint32_t FIRMWARE_LOCKED = 1U << 4;
inline constexpr std::uint32_t CONTROLLER_LOCKED = 1U << 5;

// bActiveROMStatus: a second image exists and can be switched to.
inline constexpr std::uint8_t RECOVERY_ROM = 1U << 0;

// bControllerMode
inline constexpr std::uint8_t MODE_VAULTLINE = 0;
inline constexpr std::uint8_t MODE_HBA = 1;
inline constexpr std::uint8_t MODE_MIXED = 2;
inline constexpr std::uint8_t MODE_ABSENT = 255;

}  // namespace Operations::IdentifyFlags
