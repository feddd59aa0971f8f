#pragma once

/// What the bits of a drive's identify record mean, as the controllers' firmware sets them.
///
/// Rows are FLAG(member, bit, attribute): the attribute is true when the bit is set.

// clang-format off
#define KSL_DRIVE_FLAGS(FLAG)                                                       \
    FLAG(bKestalDriveStamped, 0, STAMPED)                                           \
    FLAG(bDeviceFlags, 2, NCQ_CAPABLE)                                              \
    FLAG(bDeviceFlags, 3, NCQ_ENABLED)                                              \
    FLAG(bDeviceFlags, 4, RPI_CAPABLE)                                              \
    FLAG(bDeviceFlags, 5, UNSUPPORTED_CONFIG_MEMBER)                                \
    FLAG(bDeviceFlags, 6, DRIVE_REQUIRES_FW_UPDATE)                                 \
    FLAG(bDeviceFlags, 7, MASKED_FROM_HBA_HAS_RIS)                                  \
    FLAG(bYetMoreDeviceFlags, 0, DRIVE_SUPPORTS_WRITE_BUFFER_MODE_5)                \
    FLAG(bYetMoreDeviceFlags, 1, DRIVE_SUPPORTS_WRITE_BUFFER_MODE_7)                \
    FLAG(bYetMoreDeviceFlags, 2, DRIVE_SUPPORTS_WRITE_BUFFER_MODE_D)                \
    FLAG(bYetMoreDeviceFlags, 3, DRIVE_SUPPORTS_WRITE_BUFFER_MODE_E)                \
    FLAG(bSanititzeEraseSupport, 0, SANITIZE_ERASE_SUPPORTED)                       \
    FLAG(bSanititzeEraseSupport, 1, SANITIZE_METHOD_CRYPTO_SCRAMBLE_SUPPORTED)      \
    FLAG(bSanititzeEraseSupport, 2, SANITIZE_METHOD_BLOCK_ERASE_SUPPORTED)          \
    FLAG(bSanititzeEraseSupport, 3, SANITIZE_METHOD_OVERWRITE_SUPPORTED)            \
    FLAG(bEncryptionFlags, 0, ENCRYPTION_ENABLED_DRIVE_NEEDS_KEY)                   \
    FLAG(bEncryptionFlags, 1, ENCRYPTION_ENABLED_DRIVE_HAS_KEY)                     \
    FLAG(bEncryptionFlags, 2, ENCRYPTION_ENABLED_DRIVE_HAS_BAD_KEY)                 \
    FLAG(bEncryptionFlags, 3, ENCRYPTION_ENABLED_DRIVE_HAS_NVRAM_KEY)               \
    FLAG(bEncryptionFlags, 4, ENCRYPTION_UNABLE_TO_DECRYPT_KEK)                     \
    FLAG(bEncryptionFlags, 5, ENCRYPTION_KEK_NOT_FOUND)                             \
    FLAG(bEncryptionFlags, 6, ENCRYPTION_KEK_NOT_RETRIEVED_FROM_ESKM_CONNECTION_ISSUE) \
    FLAG(bEncryptionFlags, 7, ENCRYPTION_ENCRYPTED_DRIVE)

/// Rows are STATE(member, bit, status): the first set bit is the drive's status; without one it is OK.
#define KSL_DRIVE_STATES(STATE)                                    \
    STATE(bDeviceFlags, 0, FAILED)                                 \
    STATE(bMoreDeviceFlags, 5, WRONG_DRIVE_REPLACED)               \
    STATE(bMoreDeviceFlags, 6, DISABLED_FROM_SCSI_ID_CONFLICT)     \
    STATE(bMoreDeviceFlags, 7, DRIVE_IMPROPERLY_CONNECTED)         \
    STATE(bEvenMoreDeviceFlags, 0, HARDWARE_HAS_OVERHEATED)        \
    STATE(bEvenMoreDeviceFlags, 1, HARDWARE_IS_OVERHEATING)        \
    STATE(bEvenMoreDeviceFlags, 2, ERASE_IN_PROGRESS)              \
    STATE(bMoreDeviceFlags, 0, NOT_YET_AVAILABLE)                  \
    STATE(bMoreDeviceFlags, 2, INTERIM_RECOVERY)                   \
    STATE(bMoreDeviceFlags, 3, READY_FOR_RECOVERY)                 \
    STATE(bMoreDeviceFlags, 4, QUEUED_FOR_EXPANSION)               \
    STATE(bMoreDeviceFlags, 1, NOT_CONFIGURED)                     \
    STATE(bDeviceFlags, 1, PREDICTIVE_FAILURE)
// clang-format on
