#pragma once

// Boxes on a controller's buses.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_BOX_INQUIRY_DATA(ONE, MANY) \
    ONE(0, 1, BYTE, bPeripheralType)    \
    ONE(1, 1, BYTE, bRMB)               \
    ONE(2, 1, BYTE, bVersions)          \
    ONE(3, 1, BYTE, bMisc)              \
    ONE(4, 1, BYTE, bAdditionalLength)  \
    MANY(5, 2, RESERVED, reserved)      \
    ONE(7, 1, BYTE, bSupportBits)       \
    MANY(8, 8, char, sVendorID)         \
    MANY(16, 16, char, sProductID)      \
    MANY(32, 4, char, sProductRevision)
KSL_WIRE_RECORD(BOX_INQUIRY_DATA, 36)

#define KSL_ALARM_STRUCTURE(ONE, MANY)      \
    ONE(0, 1, BYTE, bAlarmStatus)           \
    ONE(1, 1, BYTE, bTempStatus)            \
    ONE(2, 1, BYTE, bValidAlarmBits)        \
    ONE(3, 2, WORD, wAlarmCount)            \
    MANY(5, 16, WORD, wSpecificAlarmCounts)
KSL_WIRE_RECORD(ALARM_STRUCTURE, 21)

#define KSL_SENSE_BUS_PARAMETERS(ONE, MANY)               \
    ONE(0, 36, BOX_INQUIRY_DATA, boxInquiryData)          \
    ONE(36, 1, BYTE, bInquiryValid)                       \
    ONE(37, 4, DWORD, dwInstalledDriveMap)                \
    MANY(41, 64, WORD, wHotPlugCount)                     \
    ONE(105, 1, BYTE, bPhysicalBox)                       \
    ONE(106, 1, RESERVED, reserved3)                      \
    ONE(107, 21, ALARM_STRUCTURE, alarmData)              \
    ONE(128, 2, WORD, wConnectionFlags)                   \
    ONE(130, 1, BYTE, bSCSIDeviceRevision)                \
    ONE(131, 1, BYTE, bFanStatus)                         \
    MANY(132, 64, BYTE, bMoreInquiryData)                 \
    ONE(196, 4, DWORD, dwSCSIDeviceType)                  \
    ONE(200, 4, DWORD, dwBusMap)                          \
    ONE(204, 4, DWORD, dwInterruptCount)                  \
    ONE(208, 4, DWORD, dwUltraBusFaults)                  \
    ONE(212, 1, BYTE, bSCSIInitiatorID)                   \
    ONE(213, 1, BYTE, bSCSITargetID)                      \
    MANY(214, 2, char, sPhysicalPort)                     \
    MANY(216, 16, BYTE, pbBigInstalledDriveMap)           \
    MANY(232, 16, BYTE, pbBigBusMap)                      \
    MANY(248, 16, BYTE, pbBigBoxMap)                      \
    ONE(264, 1, BYTE, bInstalledBoxMap)                   \
    ONE(265, 1, BYTE, bMoreConnectionFlags)               \
    ONE(266, 1, BYTE, bBayCount)                          \
    ONE(267, 1, BYTE, bExpanderCount)                     \
    MANY(268, 40, char, sChassisSerialNumber)             \
    ONE(308, 4, DWORD, dwFastBusFaults)                   \
    ONE(312, 4, DWORD, dwUltra2BusFaults)                 \
    ONE(316, 4, DWORD, dwUltra3BusFaults)                 \
    ONE(320, 4, DWORD, dwUltra320BusFaults)               \
    ONE(324, 1, BYTE, bSEPCount)                          \
    MANY(325, 16, BYTE, bSEPDeviceTypes)                  \
    MANY(341, 32, WORD, wSEPDeviceNumbers)                \
    MANY(373, 32, WORD, wExpanderDeviceNumbers)           \
    ONE(405, 2, WORD, wOffsetToExtendedInstalledDriveMap) \
    ONE(407, 2, WORD, wOffsetToExtendedBusMap)            \
    ONE(409, 2, WORD, wOffsetToExtendedBoxMap)            \
    ONE(411, 1, RESERVED, reserved2)                      \
    ONE(412, 4, DWORD, dwTotalStructureLength)            \
    ONE(416, 2, WORD, wOffsetToElementTypeModules)        \
    ONE(418, 2, WORD, wMaximumPhysicalDevicesSupported)   \
    ONE(420, 1, BYTE, bIOModulePresentMap)                \
    ONE(421, 1, BYTE, bActiveIOModuleNumber)              \
    ONE(422, 1, BYTE, bIOModuleFailureMap)                \
    ONE(423, 1, BYTE, bRedundantPathPresentMap)           \
    ONE(424, 1, BYTE, bRedundantPathFailureMap)           \
    ONE(425, 1, BYTE, bActivePathNumber)                  \
    MANY(426, 2, char, sMultiPathPort1)                   \
    MANY(428, 2, char, sMultiPathPort2)                   \
    MANY(430, 2, char, sMultiPathPort3)                   \
    MANY(432, 2, char, sMultiPathPort4)                   \
    MANY(434, 2, char, sMultiPathPort5)                   \
    MANY(436, 2, char, sMultiPathPort6)                   \
    MANY(438, 2, char, sMultiPathPort7)                   \
    MANY(440, 2, char, sMultiPathPort8)                   \
    ONE(442, 1, BYTE, bMultiPathBox1)                     \
    ONE(443, 1, BYTE, bMultiPathBox2)                     \
    ONE(444, 1, BYTE, bMultiPathBox3)                     \
    ONE(445, 1, BYTE, bMultiPathBox4)                     \
    ONE(446, 1, BYTE, bMultiPathBox5)                     \
    ONE(447, 1, BYTE, bMultiPathBox6)                     \
    ONE(448, 1, BYTE, bMultiPathBox7)                     \
    ONE(449, 1, BYTE, bMultiPathBox8)                     \
    MANY(450, 32, BYTE, pbZonedInEnclosureBayMap)         \
    ONE(482, 4, DWORD, dwFixedStructureLength)            \
    MANY(486, 512, WORD, wBigHotPlugCount)                \
    MANY(998, 26, RESERVED, reserved1)
KSL_WIRE_RECORD(SENSE_BUS_PARAMETERS, 1024)

#define KSL_EXTERNAL_BOX_PARAMETERS(ONE, MANY)       \
    MANY(0, 8, BYTE, bFanStatus)                     \
    MANY(8, 8, BYTE, bPowerSupplyStatus)             \
    MANY(16, 8, BYTE, bVoltageRegulatorModuleStatus) \
    ONE(24, 1, BYTE, bTemperatureTripPoint)          \
    ONE(25, 1, BYTE, bTemperatureAlarmPoint)         \
    ONE(26, 1, BYTE, bTemperatureHysteresis)         \
    ONE(27, 1, RESERVED, reserved2)                  \
    MANY(28, 16, WORD, wTemperatureSensorStatus)     \
    ONE(44, 36, BOX_INQUIRY_DATA, boxInquiryData)    \
    MANY(80, 432, RESERVED, reserved1)
KSL_WIRE_RECORD(EXTERNAL_BOX_PARAMETERS, 512)

#define KSL_ENCLOSURE_RECORDS(R) \
    R(BOX_INQUIRY_DATA)          \
    R(ALARM_STRUCTURE)           \
    R(SENSE_BUS_PARAMETERS)      \
    R(EXTERNAL_BOX_PARAMETERS)

}  // namespace Records
// clang-format on
