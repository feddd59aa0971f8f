#pragma once

// Data carried to or from a controller unread, and small control blocks.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_NO_PAYLOAD(ONE, MANY) \
    MANY(0, 512, BYTE, pbPayload)
KSL_WIRE_RECORD(NO_PAYLOAD, 512)

#define KSL_DUMMY_PAYLOAD(ONE, MANY) \
    MANY(0, 512, BYTE, pbPayload)
KSL_WIRE_RECORD(DUMMY_PAYLOAD, 512)

#define KSL_CHAR_PAYLOAD(ONE, MANY) \
    MANY(0, 512, char, sPayload)
KSL_WIRE_RECORD(CHAR_PAYLOAD, 512)

#define KSL_COLLECT_BUFFER_PAYLOAD(ONE, MANY) \
    MANY(0, 16384, BYTE, pbData)
KSL_WIRE_RECORD(COLLECT_BUFFER_PAYLOAD, 16384)

#define KSL_NVRAM_PASS_THROUGH_PAYLOAD(ONE, MANY) \
    MANY(0, 256, BYTE, pbData)
KSL_WIRE_RECORD(NVRAM_PASS_THROUGH_PAYLOAD, 256)

#define KSL_FLASH_FBWC_PAYLOAD(ONE, MANY) \
    MANY(0, 49152, BYTE, pbData)
KSL_WIRE_RECORD(FLASH_FBWC_PAYLOAD, 49152)

#define KSL_FLASH_DRIVE_ACTIVE_CARRIER_PAYLOAD(ONE, MANY) \
    MANY(0, 32768, BYTE, pbData)
KSL_WIRE_RECORD(FLASH_DRIVE_ACTIVE_CARRIER_PAYLOAD, 32768)

#define KSL_CLP_PASS_THROUGH_BUFFER(ONE, MANY) \
    ONE(0, 4, DWORD, dwCommandLength)          \
    ONE(4, 4, DWORD, dwResponseLength)         \
    ONE(8, 4, DWORD, dwStatus)                 \
    MANY(12, 244, RESERVED, reserved1)         \
    MANY(256, 4096, char, sText)
KSL_WIRE_RECORD(CLP_PASS_THROUGH_BUFFER, 4352)

#define KSL_READ_WRITE_BUFFER(ONE, MANY) \
    ONE(0, 1, BYTE, bMode)               \
    ONE(1, 1, BYTE, bBufferID)           \
    ONE(2, 2, WORD, wReserved2)          \
    ONE(4, 4, DWORD, dwBufferOffset)     \
    ONE(8, 4, DWORD, dwBufferLength)     \
    MANY(12, 500, BYTE, pbData)
KSL_WIRE_RECORD(READ_WRITE_BUFFER, 512)

#define KSL_LOCK_MANAGEMENT_BUFFER(ONE, MANY) \
    ONE(0, 1, BYTE, bLockOperation)           \
    ONE(1, 1, BYTE, bLockType)                \
    ONE(2, 2, WORD, wLockTimeout)
KSL_WIRE_RECORD(LOCK_MANAGEMENT_BUFFER, 4)

#define KSL_INJECT_FAULT(ONE, MANY)   \
    ONE(0, 4, DWORD, dwFaultType)     \
    ONE(4, 2, WORD, wDeviceIndex)     \
    ONE(6, 2, WORD, wLogicalDrive)    \
    ONE(8, 8, QWORD, qwLBA)           \
    ONE(16, 4, DWORD, dwCount)        \
    ONE(20, 4, DWORD, dwFlags)        \
    MANY(24, 488, RESERVED, reserved)
KSL_WIRE_RECORD(INJECT_FAULT, 512)

#define KSL_MESSAGE(ONE, MANY)      \
    ONE(0, 1, BYTE, bMessageType)   \
    ONE(1, 1, BYTE, bMessageLength) \
    ONE(2, 2, WORD, wReserved2)     \
    MANY(4, 252, char, sMessage)
KSL_WIRE_RECORD(MESSAGE, 256)

#define KSL_TRANSFER_DATA(ONE, MANY)   \
    ONE(0, 1, BYTE, bTransferMode)     \
    ONE(1, 4, DWORD, dwTransferLength)
KSL_WIRE_RECORD(TRANSFER_DATA, 5)

#define KSL_NVRAM_GENERATION_1(ONE, MANY) \
    MANY(0, 1024, BYTE, pbContents)
KSL_WIRE_RECORD(NVRAM_GENERATION_1, 1024)

#define KSL_NVRAM_GENERATION_2(ONE, MANY) \
    MANY(0, 1024, BYTE, pbContents)
KSL_WIRE_RECORD(NVRAM_GENERATION_2, 1024)

#define KSL_NVRAM_GENERATION_3(ONE, MANY) \
    MANY(0, 8192, BYTE, pbContents)
KSL_WIRE_RECORD(NVRAM_GENERATION_3, 8192)

#define KSL_NVRAM_GENERATION_4(ONE, MANY) \
    MANY(0, 8192, BYTE, pbContents)
KSL_WIRE_RECORD(NVRAM_GENERATION_4, 8192)

#define KSL_PAYLOAD_RECORDS(R)            \
    R(NO_PAYLOAD)                         \
    R(DUMMY_PAYLOAD)                      \
    R(CHAR_PAYLOAD)                       \
    R(COLLECT_BUFFER_PAYLOAD)             \
    R(NVRAM_PASS_THROUGH_PAYLOAD)         \
    R(FLASH_FBWC_PAYLOAD)                 \
    R(FLASH_DRIVE_ACTIVE_CARRIER_PAYLOAD) \
    R(CLP_PASS_THROUGH_BUFFER)            \
    R(READ_WRITE_BUFFER)                  \
    R(LOCK_MANAGEMENT_BUFFER)             \
    R(INJECT_FAULT)                       \
    R(MESSAGE)                            \
    R(TRANSFER_DATA)                      \
    R(NVRAM_GENERATION_1)                 \
    R(NVRAM_GENERATION_2)                 \
    R(NVRAM_GENERATION_3)                 \
    R(NVRAM_GENERATION_4)

}  // namespace Records
// clang-format on
