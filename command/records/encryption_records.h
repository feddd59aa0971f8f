#pragma once

// Pages of the controller's encryption commands.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_ENCRYPTION_SET_MODE(ONE, MANY) \
    ONE(0, 1, BYTE, bMode)                 \
    ONE(1, 1, BYTE, bFlags)                \
    ONE(2, 2, WORD, wReserved2)            \
    MANY(4, 64, char, sMasterKeyName)      \
    MANY(68, 32, char, sPassword)          \
    MANY(100, 412, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_SET_MODE, 512)

#define KSL_ENCRYPTION_RETURN_TO_FACTORY(ONE, MANY) \
    ONE(0, 1, BYTE, bConfirmation)                  \
    ONE(1, 1, BYTE, bFlags)                         \
    MANY(2, 510, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_RETURN_TO_FACTORY, 512)

#define KSL_ENCRYPTION_LOCK_FIRMWARE(ONE, MANY) \
    ONE(0, 1, BYTE, bLock)                      \
    ONE(1, 1, BYTE, bFlags)                     \
    MANY(2, 510, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_LOCK_FIRMWARE, 512)

#define KSL_ENCRYPTION_PASSWORD(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                 \
    ONE(1, 1, BYTE, bFlags)                \
    ONE(2, 2, WORD, wPasswordLength)       \
    MANY(4, 32, char, sPassword)           \
    MANY(36, 32, char, sNewPassword)       \
    MANY(68, 444, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_PASSWORD, 512)

#define KSL_ENCRYPTION_VERIFY_PASSWORD(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                        \
    ONE(1, 1, BYTE, bFlags)                       \
    ONE(2, 2, WORD, wPasswordLength)              \
    MANY(4, 32, char, sPassword)                  \
    MANY(36, 476, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_VERIFY_PASSWORD, 512)

#define KSL_ENCRYPTION_LOCAL_KEK(ONE, MANY) \
    ONE(0, 1, BYTE, bOperation)             \
    ONE(1, 1, BYTE, bFlags)                 \
    ONE(2, 2, WORD, wNameLength)            \
    MANY(4, 64, char, sKeyName)             \
    MANY(68, 32, BYTE, pbKey)               \
    MANY(100, 412, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_LOCAL_KEK, 512)

#define KSL_ENCRYPTION_IKEK(ONE, MANY) \
    ONE(0, 1, BYTE, bOperation)        \
    ONE(1, 1, BYTE, bFlags)            \
    ONE(2, 2, WORD, wNameLength)       \
    MANY(4, 64, char, sKeyName)        \
    MANY(68, 32, BYTE, pbKey)          \
    MANY(100, 412, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_IKEK, 512)

#define KSL_ENCRYPTION_REKEY(ONE, MANY)  \
    ONE(0, 1, BYTE, bScope)              \
    ONE(1, 1, BYTE, bFlags)              \
    ONE(2, 2, WORD, wLogicalDriveNumber) \
    ONE(4, 2, WORD, wDeviceIndex)        \
    MANY(6, 506, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_REKEY, 512)

#define KSL_ENCRYPTION_PASSWORD_RECOVERY(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                          \
    ONE(1, 1, BYTE, bFlags)                         \
    ONE(2, 2, WORD, wAnswerLength)                  \
    MANY(4, 64, char, sAnswer)                      \
    MANY(68, 32, char, sNewPassword)                \
    MANY(100, 412, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_PASSWORD_RECOVERY, 512)

#define KSL_ENCRYPTION_GET_KEY(ONE, MANY) \
    ONE(0, 1, BYTE, bKeyType)             \
    ONE(1, 1, BYTE, bFlags)               \
    ONE(2, 2, WORD, wNameLength)          \
    MANY(4, 64, char, sKeyName)           \
    MANY(68, 32, BYTE, pbKey)             \
    MANY(100, 412, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_GET_KEY, 512)

#define KSL_ENCRYPTION_GET_SERVER(ONE, MANY) \
    ONE(0, 1, BYTE, bServerIndex)            \
    ONE(1, 1, BYTE, bServerCount)            \
    ONE(2, 2, WORD, wPort)                   \
    MANY(4, 256, char, sServerName)          \
    MANY(260, 252, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_GET_SERVER, 512)

#define KSL_ENCRYPTION_PASSWORD_RECOVERY_PARAMS(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                                 \
    ONE(1, 1, BYTE, bParametersSet)                        \
    ONE(2, 2, WORD, wQuestionLength)                       \
    MANY(4, 128, char, sQuestion)                          \
    ONE(132, 2, WORD, wAnswerLength)                       \
    MANY(134, 64, char, sAnswer)                           \
    MANY(198, 314, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_PASSWORD_RECOVERY_PARAMS, 512)

#define KSL_ENCRYPTION_PASSWORD_RECOVERY_PARAMS_CHECK(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                                       \
    ONE(1, 1, BYTE, bResult)                                     \
    ONE(2, 2, WORD, wAnswerLength)                               \
    MANY(4, 64, char, sAnswer)                                   \
    MANY(68, 444, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_PASSWORD_RECOVERY_PARAMS_CHECK, 512)

#define KSL_ENCRYPTION_SERVER_NAME(ONE, MANY) \
    ONE(0, 1, BYTE, bServerIndex)             \
    ONE(1, 1, BYTE, bFlags)                   \
    ONE(2, 2, WORD, wPort)                    \
    MANY(4, 256, char, sServerName)           \
    MANY(260, 252, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_SERVER_NAME, 512)

#define KSL_ENCRYPTION_RESCAN_KEYS(ONE, MANY) \
    ONE(0, 1, BYTE, bScope)                   \
    ONE(1, 1, BYTE, bFlags)                   \
    MANY(2, 510, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_RESCAN_KEYS, 512)

#define KSL_ENCRYPTION_BOOT_PASSWORD(ONE, MANY) \
    ONE(0, 1, BYTE, bOperation)                 \
    ONE(1, 1, BYTE, bFlags)                     \
    ONE(2, 2, WORD, wPasswordLength)            \
    MANY(4, 32, char, sPassword)                \
    MANY(36, 476, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_BOOT_PASSWORD, 512)

#define KSL_ENCRYPTION_UNLOCK_VOLUMES(ONE, MANY) \
    ONE(0, 2, WORD, wVolumeCount)                \
    ONE(2, 2, WORD, wReserved2)                  \
    MANY(4, 2048, WORD, pwLogicalDriveNumber)    \
    MANY(2052, 1024, BYTE, pbResult)             \
    MANY(3076, 1020, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_UNLOCK_VOLUMES, 4096)

#define KSL_ENCRYPTION_FOREIGN_LOCAL_KEY_IMPORT(ONE, MANY) \
    ONE(0, 1, BYTE, bFlags)                                \
    ONE(1, 1, BYTE, bReserved1)                            \
    ONE(2, 2, WORD, wNameLength)                           \
    MANY(4, 64, char, sKeyName)                            \
    MANY(68, 32, char, sPassword)                          \
    MANY(100, 412, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_FOREIGN_LOCAL_KEY_IMPORT, 512)

#define KSL_ENCRYPTION_BOOT_PASSWORD_STATUS(ONE, MANY) \
    ONE(0, 1, BYTE, bPasswordSet)                      \
    ONE(1, 1, BYTE, bPasswordSuspended)                \
    ONE(2, 2, WORD, wFailedAttempts)                   \
    MANY(4, 508, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_BOOT_PASSWORD_STATUS, 512)

#define KSL_ENCRYPTION_BOOT_STATUS(ONE, MANY) \
    ONE(0, 1, BYTE, bBootState)               \
    ONE(1, 1, BYTE, bLockedVolumesPresent)    \
    ONE(2, 2, WORD, wLockedVolumeCount)       \
    ONE(4, 4, DWORD, dwStatusFlags)           \
    MANY(8, 504, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_BOOT_STATUS, 512)

#define KSL_ENCRYPTION_PASSWORD_STATUS(ONE, MANY) \
    ONE(0, 1, BYTE, bCryptoPasswordSet)           \
    ONE(1, 1, BYTE, bUserPasswordSet)             \
    ONE(2, 1, BYTE, bRecoveryParametersSet)       \
    ONE(3, 1, BYTE, bReserved3)                   \
    ONE(4, 2, WORD, wCryptoFailedAttempts)        \
    ONE(6, 2, WORD, wUserFailedAttempts)          \
    MANY(8, 504, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_PASSWORD_STATUS, 512)

#define KSL_ENCRYPTION_KEY_MANAGER_STATUS(ONE, MANY) \
    ONE(0, 1, BYTE, bMode)                           \
    ONE(1, 1, BYTE, bConnectionState)                \
    ONE(2, 2, WORD, wPort)                           \
    ONE(4, 4, DWORD, dwStatusFlags)                  \
    MANY(8, 256, char, sServerName)                  \
    MANY(264, 248, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_KEY_MANAGER_STATUS, 512)

#define KSL_ENCRYPTION_IKEK_STATUS(ONE, MANY) \
    ONE(0, 1, BYTE, bKeyPresent)              \
    ONE(1, 1, BYTE, bKeyState)                \
    ONE(2, 2, WORD, wNameLength)              \
    MANY(4, 64, char, sKeyName)               \
    MANY(68, 444, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_IKEK_STATUS, 512)

#define KSL_ENCRYPTION_LOCAL_KEK_CACHE_ATTRIBUTES(ONE, MANY) \
    ONE(0, 2, WORD, wCacheEntries)                           \
    ONE(2, 2, WORD, wMaximumCacheEntries)                    \
    ONE(4, 4, DWORD, dwCacheFlags)                           \
    MANY(8, 504, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_LOCAL_KEK_CACHE_ATTRIBUTES, 512)

#define KSL_ENCRYPTION_LOCAL_KEK_CACHE(ONE, MANY) \
    ONE(0, 2, WORD, wEntryIndex)                  \
    ONE(2, 2, WORD, wNameLength)                  \
    MANY(4, 64, char, sKeyName)                   \
    MANY(68, 64, BYTE, pbWrappedKey)              \
    MANY(132, 380, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_LOCAL_KEK_CACHE, 512)

#define KSL_ENCRYPTION_ROLE_SERVICES(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                      \
    ONE(1, 1, BYTE, bFlags)                     \
    ONE(2, 2, WORD, wServiceCount)              \
    MANY(4, 64, DWORD, pdwServices)             \
    MANY(68, 444, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_ROLE_SERVICES, 512)

#define KSL_ENCRYPTION_ROLE_SERVICES_RESET(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                            \
    ONE(1, 1, BYTE, bFlags)                           \
    MANY(2, 510, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_ROLE_SERVICES_RESET, 512)

#define KSL_ENCRYPTION_DRIVE_FEATURES(ONE, MANY) \
    ONE(0, 2, WORD, wDeviceIndex)                \
    ONE(2, 1, BYTE, bFeatureFlags)               \
    ONE(3, 1, BYTE, bEncryptionFlags)            \
    MANY(4, 64, char, sKeyName)                  \
    MANY(68, 444, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_DRIVE_FEATURES, 512)

#define KSL_ENCRYPTION_ROLE_ATTRIBUTES(ONE, MANY) \
    ONE(0, 1, BYTE, bRole)                        \
    ONE(1, 1, BYTE, bFlags)                       \
    ONE(2, 2, WORD, wAttributeLength)             \
    MANY(4, 32, char, sRoleName)                  \
    ONE(36, 4, DWORD, dwAttributes)               \
    MANY(40, 472, RESERVED, reserved)
KSL_WIRE_RECORD(ENCRYPTION_ROLE_ATTRIBUTES, 512)

#define KSL_ENCRYPTION_RECORDS(R)                \
    R(ENCRYPTION_SET_MODE)                       \
    R(ENCRYPTION_RETURN_TO_FACTORY)              \
    R(ENCRYPTION_LOCK_FIRMWARE)                  \
    R(ENCRYPTION_PASSWORD)                       \
    R(ENCRYPTION_VERIFY_PASSWORD)                \
    R(ENCRYPTION_LOCAL_KEK)                      \
    R(ENCRYPTION_IKEK)                           \
    R(ENCRYPTION_REKEY)                          \
    R(ENCRYPTION_PASSWORD_RECOVERY)              \
    R(ENCRYPTION_GET_KEY)                        \
    R(ENCRYPTION_GET_SERVER)                     \
    R(ENCRYPTION_PASSWORD_RECOVERY_PARAMS)       \
    R(ENCRYPTION_PASSWORD_RECOVERY_PARAMS_CHECK) \
    R(ENCRYPTION_SERVER_NAME)                    \
    R(ENCRYPTION_RESCAN_KEYS)                    \
    R(ENCRYPTION_BOOT_PASSWORD)                  \
    R(ENCRYPTION_UNLOCK_VOLUMES)                 \
    R(ENCRYPTION_FOREIGN_LOCAL_KEY_IMPORT)       \
    R(ENCRYPTION_BOOT_PASSWORD_STATUS)           \
    R(ENCRYPTION_BOOT_STATUS)                    \
    R(ENCRYPTION_PASSWORD_STATUS)                \
    R(ENCRYPTION_KEY_MANAGER_STATUS)             \
    R(ENCRYPTION_IKEK_STATUS)                    \
    R(ENCRYPTION_LOCAL_KEK_CACHE_ATTRIBUTES)     \
    R(ENCRYPTION_LOCAL_KEK_CACHE)                \
    R(ENCRYPTION_ROLE_SERVICES)                  \
    R(ENCRYPTION_ROLE_SERVICES_RESET)            \
    R(ENCRYPTION_DRIVE_FEATURES)                 \
    R(ENCRYPTION_ROLE_ATTRIBUTES)

}  // namespace Records
// clang-format on
