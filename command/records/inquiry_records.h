#pragma once

// Replies to SCSI INQUIRY that a controller passes on.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_SCSI_DEVICE_INFO(ONE, MANY)  \
    ONE(0, 1, BYTE, bPeripheralType)     \
    ONE(1, 1, BYTE, bRMB)                \
    ONE(2, 1, BYTE, bVersion)            \
    ONE(3, 1, BYTE, bResponseDataFormat) \
    ONE(4, 1, BYTE, bAdditionalLength)   \
    ONE(5, 1, BYTE, bProtectionBits)     \
    ONE(6, 1, BYTE, bEnclosureBits)      \
    ONE(7, 1, BYTE, bQueueBits)
KSL_WIRE_RECORD(SCSI_DEVICE_INFO, 8)

#define KSL_SCSI_STANDARD_INQUIRY_DATA(ONE, MANY) \
    ONE(0, 8, SCSI_DEVICE_INFO, deviceInfo)       \
    MANY(8, 8, char, sVendorID)                   \
    MANY(16, 16, char, sProductID)                \
    MANY(32, 4, char, sProductRevisionLevel)      \
    MANY(36, 8, BYTE, bVendorSpecific1)           \
    MANY(44, 12, BYTE, bVendorSpecific2)          \
    MANY(56, 200, RESERVED, reserved)
KSL_WIRE_RECORD(SCSI_STANDARD_INQUIRY_DATA, 256)

#define KSL_SCSI_DEVICE_INFORMATION(ONE, MANY) \
    ONE(0, 1, BYTE, bDeviceType)               \
    ONE(1, 1, BYTE, bPageCode)                 \
    ONE(2, 1, RESERVED, reserved2)             \
    ONE(3, 1, BYTE, bPageLength)               \
    MANY(4, 64, char, sSerialNumber)           \
    MANY(68, 188, RESERVED, reserved1)
KSL_WIRE_RECORD(SCSI_DEVICE_INFORMATION, 256)

#define KSL_SCSI_KESTAL_INQUIRY_DATA(ONE, MANY) \
    ONE(0, 8, SCSI_DEVICE_INFO, deviceInfo)     \
    MANY(8, 8, char, sVendorID)                 \
    MANY(16, 16, char, sProductID)              \
    MANY(32, 4, char, sProductRevisionLevel)    \
    MANY(36, 220, RESERVED, reserved)
KSL_WIRE_RECORD(SCSI_KESTAL_INQUIRY_DATA, 256)

#define KSL_PASS_THROUGH_SPECIAL_INQUIRY(ONE, MANY)                       \
    ONE(0, 4, DWORD, dwNumberInquiryCommands)                             \
    ONE(4, 1, BYTE, bInquiryCAMStatus)                                    \
    ONE(5, 1, BYTE, bInquirySCSIStatus)                                   \
    ONE(6, 1, BYTE, bInquirySenseErrorCode)                               \
    ONE(7, 1, BYTE, bInquirySenseKey)                                     \
    ONE(8, 4, DWORD, dwInquirySenseInfo)                                  \
    ONE(12, 1, BYTE, bInquiryAdditionalSenseCode)                         \
    ONE(13, 1, BYTE, bInquiryAdditionalSenseCodeQualifier)                \
    ONE(14, 256, SCSI_STANDARD_INQUIRY_DATA, standardInquiryResponse)     \
    ONE(270, 1, BYTE, bDeviceInformationPageCAMStatus)                    \
    ONE(271, 1, BYTE, bDeviceInformationPageSCSIStatus)                   \
    ONE(272, 1, BYTE, bDeviceInformationPageSenseErrorCode)               \
    ONE(273, 1, BYTE, bDeviceInformationPageSenseKey)                     \
    ONE(274, 4, DWORD, dwDeviceInformationPageSenseInfo)                  \
    ONE(278, 1, BYTE, bDeviceInformationPageAdditionalSenseCode)          \
    ONE(279, 1, BYTE, bDeviceInformationPageAdditionalSenseCodeQualifier) \
    ONE(280, 256, SCSI_DEVICE_INFORMATION, deviceInformationResponse)     \
    ONE(536, 1, BYTE, bKestalInquiryPageCAMStatus)                        \
    ONE(537, 1, BYTE, bKestalInquiryPageSCSIStatus)                       \
    ONE(538, 1, BYTE, bKestalInquiryPageSenseErrorCode)                   \
    ONE(539, 1, BYTE, bKestalInquiryPageSenseKey)                         \
    ONE(540, 4, DWORD, dwKestalInquiryPageSenseInfo)                      \
    ONE(544, 1, BYTE, bKestalInquiryPageAdditionalSenseCode)              \
    ONE(545, 1, BYTE, bKestalInquiryPageAdditionalSenseCodeQualifier)     \
    ONE(546, 256, SCSI_KESTAL_INQUIRY_DATA, kestalInquiryResponse)
KSL_WIRE_RECORD(PASS_THROUGH_SPECIAL_INQUIRY, 802)

#define KSL_INQUIRY_RECORDS(R)      \
    R(SCSI_DEVICE_INFO)             \
    R(SCSI_STANDARD_INQUIRY_DATA)   \
    R(SCSI_DEVICE_INFORMATION)      \
    R(SCSI_KESTAL_INQUIRY_DATA)     \
    R(PASS_THROUGH_SPECIAL_INQUIRY)

}  // namespace Records
// clang-format on
