#pragma once

#include <cstdint>

/// What the bits of the flag members of the identify record mean, as the controllers' firmware sets them.
///
/// The tables are of rows FLAG(member, bit, attribute): the attribute is true when the bit is set.
namespace Operations::IdentifyFlags {

/// Bits that something is decided by, or whose attribute has other values than true and false.
inline constexpr std::uint32_t ZMR_MODE = 1U << 8;           // dwEvenMoreControllerFlags
inline constexpr std::uint32_t CONFIG_LOCKOUT = 1U << 0;     // dwEncryptionStatus
inline constexpr std::uint8_t ADG_ENABLER = 1U << 1;         // bADGSupport
inline constexpr std::uint32_t HBA_MODE_PENDING = 1U << 3;   // dwExtraControllerFlags
inline constexpr std::uint32_t SELF_TEST_FAILED = 1U << 20;  // dwEncryptionStatus, and the next two
inline constexpr std::uint32_t CSP_NVRAM_FAILED = 1U << 21;
inline constexpr std::uint32_t RTC_SRAM_FAILED = 1U << 22;

// bControllerMode
inline constexpr std::uint8_t MODE_VAULTLINE = 0;
inline constexpr std::uint8_t MODE_HBA = 1;
inline constexpr std::uint8_t MODE_MIXED = 2;
inline constexpr std::uint8_t MODE_ABSENT = 255;

}  // namespace Operations::IdentifyFlags

// clang-format off
/// Of every controller.
#define KSL_CONTROLLER_FLAGS(FLAG)                                                                  \
    FLAG(bControllerFlags, 0, DIAGNOSTIC_MODE_ENABLED)                                              \
    FLAG(bControllerFlags, 1, CONTROLLER_HAS_UNSUPPORTED_SAS_DRIVES)                                \
    FLAG(bControllerFlags, 2, CONTROLLER_HAS_R5_WITHOUT_CACHE)                                      \
    FLAG(bControllerFlags, 3, MINIMUM_MEMORY_RAID)                                                  \
    FLAG(bHostFlags, 0, SUPPORTS_DISABLE_OTHER_CONTROLLER)                                          \
    FLAG(bHostFlags, 1, BOOT_VOLUME_SUPPORTED)                                                      \
    FLAG(bHostFlags, 2, QBX_SUPPORT)                                                                \
    FLAG(bADGSupport, 0, IS_ADG_SUPPORTED)                                                          \
    FLAG(bActiveROMStatus, 0, RECOVERY_ROM_SUPPORTED)                                               \
    FLAG(bMoreControllerFlags, 0, HOTPLUG_SUPPORTED)                                                \
    FLAG(bMoreControllerFlags, 1, GASGAUGE_SUPPORTED)                                               \
    FLAG(bMoreControllerFlags, 2, CLEAR_CONTROLLER_CONFIG_SUPPORTED)                                \
    FLAG(bMoreControllerFlags, 3, IS_ROLLBACK_SUPPORTED)                                            \
    FLAG(bMoreControllerFlags, 4, CACHE_OPERATIONS_SUPPORTED)                                       \
    FLAG(dwYetMoreControllerFlags, 0, DRIVE_ERASE_SUPPORTED)                                        \
    FLAG(dwYetMoreControllerFlags, 1, DRIVE_ERASE_ENABLED)                                          \
    FLAG(dwYetMoreControllerFlags, 2, VOD_SUPPORTED)                                                \
    FLAG(dwYetMoreControllerFlags, 3, VOD_ENABLED)                                                  \
    FLAG(dwYetMoreControllerFlags, 4, ACE_SUPPORTED)                                                \
    FLAG(dwYetMoreControllerFlags, 5, ACE_ENABLED)                                                  \
    FLAG(dwYetMoreControllerFlags, 6, SPLIT_MIRROR_SUPPORTED)                                       \
    FLAG(dwYetMoreControllerFlags, 7, SPLIT_MIRROR_ENABLED)                                         \
    FLAG(dwYetMoreControllerFlags, 8, SAE_SUPPORTED)                                                \
    FLAG(dwYetMoreControllerFlags, 9, SAE_ENABLED)                                                  \
    FLAG(dwYetMoreControllerFlags, 10, RAID_50_SUPPORTED)                                           \
    FLAG(dwYetMoreControllerFlags, 11, RAID_50_ENABLED)                                             \
    FLAG(dwYetMoreControllerFlags, 12, RAID_60_SUPPORTED)                                           \
    FLAG(dwYetMoreControllerFlags, 13, RAID_60_ENABLED)                                             \
    FLAG(dwYetMoreControllerFlags, 14, DUAL_DOMAIN_SUPPORTED)                                       \
    FLAG(dwYetMoreControllerFlags, 15, DUAL_DOMAIN_ENABLED)                                         \
    FLAG(dwYetMoreControllerFlags, 16, SAAP2_SUPPORTED)                                             \
    FLAG(dwYetMoreControllerFlags, 17, SAAP2_ENABLED)                                               \
    FLAG(dwYetMoreControllerFlags, 18, MOVE_LUN_SUPPORTED)                                          \
    FLAG(dwYetMoreControllerFlags, 19, MOVE_LUN_ENABLED)                                            \
    FLAG(dwYetMoreControllerFlags, 20, LUN_PROFILING_SUPPORTED)                                     \
    FLAG(dwYetMoreControllerFlags, 21, LUN_PROFILING_ENABLED)                                       \
    FLAG(dwYetMoreControllerFlags, 22, ONLINE_SPLIT_MIRROR_SUPPORTED)                               \
    FLAG(dwYetMoreControllerFlags, 23, ONLINE_SPLIT_MIRROR_ENABLED)                                 \
    FLAG(dwYetMoreControllerFlags, 24, NCQ_SUPPORTED)                                               \
    FLAG(dwYetMoreControllerFlags, 25, PARITY_RAID_SUPPORTED)                                       \
    FLAG(dwYetMoreControllerFlags, 26, MPG_SUPPORTED)                                               \
    FLAG(dwYetMoreControllerFlags, 27, GREATER_THAN_2TIB_PHYSICAL_DRIVES_SUPPORTED)                 \
    FLAG(dwYetMoreControllerFlags, 28, ROAMING_SPARES_SUPPORTED)                                    \
    FLAG(dwYetMoreControllerFlags, 29, DRIVE_AND_CARRIER_AUTHENTICATION_SUPPORT)                    \
    FLAG(dwYetMoreControllerFlags, 30, LOGICAL_DRIVE_ERASE_SUPPORTED)                               \
    FLAG(dwYetMoreControllerFlags, 31, FIRMWARE_SUPPORTS_REORDER_COMMAND)                           \
    FLAG(dwEvenMoreControllerFlags, 0, NWAY_MIRRORING_SUPPORTED)                                    \
    FLAG(dwEvenMoreControllerFlags, 1, NWAY_MIRRORING_ENABLED)                                      \
    FLAG(dwEvenMoreControllerFlags, 2, RAPID_PARITY_INITIALIZATION_SUPPORTED)                       \
    FLAG(dwEvenMoreControllerFlags, 3, ENHANCED_RPI_SUPPORTED)                                      \
    FLAG(dwEvenMoreControllerFlags, 4, IO_BYPASS_SUPPORTED)                                         \
    FLAG(dwEvenMoreControllerFlags, 5, PREDICTIVE_SPARE_REBUILD_SUPPORTED)                          \
    FLAG(dwEvenMoreControllerFlags, 6, RAPID_REBUILD_SUPPORTED)                                     \
    FLAG(dwEvenMoreControllerFlags, 7, OVERPROVISIONING_OPTIMIZATION_SUPPORTED)                     \
    FLAG(dwEvenMoreControllerFlags, 9, ZONING_ENABLED)                                              \
    FLAG(dwEvenMoreControllerFlags, 10, IS_TOFU_SUPPORTED)                                          \
    FLAG(dwEvenMoreControllerFlags, 11, ENABLE_DISABLE_RIGHT_PHYS_SUPPORTED)                        \
    FLAG(dwEvenMoreControllerFlags, 12, RIGHT_PHYS_ENABLED)                                         \
    FLAG(dwEvenMoreControllerFlags, 13, FLEXIBLE_LATENCY_SCHEDULER_SUPPORTED)                       \
    FLAG(dwEvenMoreControllerFlags, 14, SSD_CACHING_SUPPORTED)                                      \
    FLAG(dwEvenMoreControllerFlags, 15, SSD_CACHING_ENABLED)                                        \
    FLAG(dwEvenMoreControllerFlags, 16, SSD_CACHING_RAID1_RAID10_ENABLED)                           \
    FLAG(dwEvenMoreControllerFlags, 17, SSD_CACHING_RAID5_RAID50_ENABLED)                           \
    FLAG(dwEvenMoreControllerFlags, 18, SSD_CACHING_RAID6_RAID60_ENABLED)                           \
    FLAG(dwEvenMoreControllerFlags, 19, SSD_CACHING_RAID5_WRITEBACK_ENABLED)                        \
    FLAG(dwEvenMoreControllerFlags, 20, FIRMWARE_SUPPORTS_TANZANITE_HOTPLUG)                        \
    FLAG(dwEvenMoreControllerFlags, 21, FIRMWARE_ENABLES_TANZANITE_HOTPLUG)                         \
    FLAG(dwEvenMoreControllerFlags, 22, FIRMWARE_SUPPORTS_NOBATTERY_WRITE_CACHE)                    \
    FLAG(dwEvenMoreControllerFlags, 23, FIRMWARE_CAN_WAIT_FOR_CACHE_ROOM)                           \
    FLAG(dwEvenMoreControllerFlags, 24, FIRMWARE_SUPPORTS_INCONSISTENCY_EVENT_NOTIFICATION_CONTROL) \
    FLAG(dwEvenMoreControllerFlags, 25, FIRMWARE_SUPPORTS_RAID1_WRITE_BUFFERING)                    \
    FLAG(dwEvenMoreControllerFlags, 26, FIRMWARE_SUPPORTS_CONFIGURING_RAID1_WRITE_BUFFERING)        \
    FLAG(dwEncryptionStatus, 1, ENCRYPTION_SUPPORTED)                                               \
    FLAG(dwEncryptionStatus, 4, ENCRYPTION_FW_LOCKED)                                               \
    FLAG(dwEncryptionStatus, 5, ENCRYPTION_CONTROLLER_LOCKED)                                       \
    FLAG(dwExtraControllerFlags, 4, POWER_MODE_SUPPORTED)

/// How the controller can run.
#define KSL_MODE_FLAGS(FLAG)                            \
    FLAG(dwExtraControllerFlags, 0, HBA_MODE_SUPPORTED) \
    FLAG(dwExtraControllerFlags, 1, HBA_MODE_ENABLED)   \
    FLAG(dwExtraControllerFlags, 2, VAULT_HBA_MODE_SUPPORTED)

/// Of the CEDAR family.
#define KSL_CEDAR_FLAGS(FLAG)                                    \
    FLAG(dwExtraControllerFlags, 8, CEDAR_BASE_SUPPORT)          \
    FLAG(dwExtraControllerFlags, 9, CEDAR_ACCEL_PCI_INSTALLED)   \
    FLAG(dwExtraControllerFlags, 10, CEDAR_ACCEL_PCI_FUNCTIONAL) \
    FLAG(dwExtraControllerFlags, 11, CEDAR_I2C_FUNCTIONAL)       \
    FLAG(dwExtraControllerFlags, 12, CEDAR_SAS_SUPPORTED)        \
    FLAG(dwExtraControllerFlags, 13, CEDAR_SAS_ENABLED)          \
    FLAG(dwExtraControllerFlags, 14, CEDAR_CACHE_SUPPORTED)      \
    FLAG(dwExtraControllerFlags, 15, CEDAR_CACHE_INSTALLED)

/// Of a controller that supports encryption.
#define KSL_ENCRYPTION_FLAGS(FLAG)                                               \
    FLAG(dwEncryptionStatus, 2, ENCRYPTION_ENABLED)                              \
    FLAG(dwEncryptionStatus, 3, ENCRYPTION_STANDALONE_MODE_ENABLED)              \
    FLAG(dwEncryptionStatus, 6, ENCRYPTION_MIXED_VOLUMES_ENABLED)                \
    FLAG(dwEncryptionStatus, 7, ENCRYPTION_MIXED_VOLUMES_CONVERT_PLAINTEXT)      \
    FLAG(dwEncryptionStatus, 8, ENCRYPTION_KEYMANAGER_MODE_CONVERSION_SUPPORTED) \
    FLAG(dwEncryptionStatus, 9, ENCRYPTION_TARN_MIXING_SUPPORTED)                \
    FLAG(dwEncryptionStatus, 10, ENCRYPTION_ACOUSTICS_MIXING_SUPPORTED)          \
    FLAG(dwEncryptionStatus, 11, ENCRYPTION_TARN_MIXING_WARNING)                 \
    FLAG(dwEncryptionStatus, 12, ENCRYPTION_CONTROLLER_PASSWORD_ENABLED)         \
    FLAG(dwEncryptionStatus, 13, ENCRYPTION_VOLUME_CREATION_ENABLED)             \
    FLAG(dwEncryptionStatus, 14, ENCRYPTION_ONE_BUTTON_MODE)                     \
    FLAG(dwEncryptionStatus, 15, ENCRYPTION_DYNAMIC_ROLES_SUPPORTED)             \
    FLAG(dwEncryptionStatus, 16, ENCRYPTION_SKIP_CONTROLLER_PASSWORD_SUPPORTED)  \
    FLAG(dwEncryptionStatus, 17, ENCRYPTION_SKIP_CONTROLLER_PASSWORD_ENABLED)    \
    FLAG(dwEncryptionStatus, 18, ENCRYPTION_REASON_RTF)
// clang-format on
