#pragma once

// The controller with its ports and managed cables.
// Each row: offset, size in bytes, type, member. A MANY row is an array of that total size.

#include "command/records/wire_record.h"

// clang-format off
namespace Records {

#define KSL_PHYSICAL_PORT_INFO(ONE, MANY) \
    ONE(0, 8, QWORD, qwControllerPhyMap)  \
    MANY(8, 2, char, sPhysicalPort)       \
    MANY(10, 2, RESERVED, reserved)
KSL_WIRE_RECORD(PHYSICAL_PORT_INFO, 12)

#define KSL_ADDITIONAL_PHYSICAL_PORT_INFO(ONE, MANY) \
    MANY(0, 8, BYTE, bSASAddress)                    \
    MANY(8, 24, RESERVED, reserved)
KSL_WIRE_RECORD(ADDITIONAL_PHYSICAL_PORT_INFO, 32)

#define KSL_MANAGED_CABLE_INFO(ONE, MANY)   \
    ONE(0, 4, DWORD, dwCableState)          \
    MANY(4, 16, BYTE, bVendorPartNumber)    \
    MANY(20, 2, BYTE, bVendorRevision)      \
    MANY(22, 16, BYTE, bVendorSerialNumber) \
    ONE(38, 2, WORD, wCableLength)
KSL_WIRE_RECORD(MANAGED_CABLE_INFO, 40)

#define KSL_SUBSYSTEM_PARAMETERS(ONE, MANY)                                   \
    ONE(0, 1, BYTE, bControllerSlotNumber)                                    \
    MANY(1, 3, RESERVED, reserved4)                                           \
    MANY(4, 32, char, sChassisSerialNumber)                                   \
    MANY(36, 8, BYTE, bPortName)                                              \
    MANY(44, 32, char, sControllerSerialNumber)                               \
    MANY(76, 32, char, sCacheSerialNumber)                                    \
    MANY(108, 8, BYTE, bLinkedPortName)                                       \
    MANY(116, 32, char, sLinkedControllerSerialNumber)                        \
    MANY(148, 32, char, sLinkedCacheSerialNumber)                             \
    MANY(180, 32, char, sSystemBoardSerialNumber)                             \
    MANY(212, 32, char, sPowerBackplaneSerialNumber)                          \
    MANY(244, 32, char, sSCSIDriveBackplaneSerialNumber)                      \
    MANY(276, 32, char, sFanModuleSerialNumber)                               \
    MANY(308, 32, char, sPowerSupply0SerialNumber)                            \
    MANY(340, 32, char, sPowerSupply1SerialNumber)                            \
    MANY(372, 32, char, sPowerBayFanModuleSerialNumber)                       \
    MANY(404, 16, char, sFibreDaughterBoardSerialNumber)                      \
    MANY(420, 8, char, bNodeName)                                             \
    MANY(428, 32, char, sDriveBackplane1SerialNumber)                         \
    MANY(460, 32, char, sFanModule1SerialNumber)                              \
    ONE(492, 1, BYTE, bInternalPortCount)                                     \
    ONE(493, 1, BYTE, bExternalPortCount)                                     \
    MANY(494, 2, RESERVED, reserved3)                                         \
    MANY(496, 96, PHYSICAL_PORT_INFO, internalPortInfo)                       \
    MANY(592, 96, PHYSICAL_PORT_INFO, externalPortInfo)                       \
    MANY(688, 16, char, sProductID)                                           \
    ONE(704, 4, DWORD, dwTotalStructureLength)                                \
    MANY(708, 256, ADDITIONAL_PHYSICAL_PORT_INFO, additionalInternalPortInfo) \
    MANY(964, 256, ADDITIONAL_PHYSICAL_PORT_INFO, additionalExternalPortInfo) \
    ONE(1220, 1, BYTE, bControllerTemperature)                                \
    ONE(1221, 1, BYTE, bCacheModuleTemperature)                               \
    ONE(1222, 1, BYTE, bSupercapTemperature)                                  \
    MANY(1223, 1, RESERVED, reserved2)                                        \
    MANY(1224, 16, BYTE, sHBAFirmwareRev)                                     \
    MANY(1240, 16, BYTE, sHBAModeOptionROMRev)                                \
    ONE(1256, 2, WORD, wCacheModuleDataWidth)                                 \
    ONE(1258, 2, WORD, wCacheModuleXferRate)                                  \
    MANY(1260, 320, MANAGED_CABLE_INFO, managedCableInfo)                     \
    MANY(1580, 20, RESERVED, reserved1)
KSL_WIRE_RECORD(SUBSYSTEM_PARAMETERS, 1600)

#define KSL_SUBSYSTEM_RECORDS(R)     \
    R(PHYSICAL_PORT_INFO)            \
    R(ADDITIONAL_PHYSICAL_PORT_INFO) \
    R(MANAGED_CABLE_INFO)            \
    R(SUBSYSTEM_PARAMETERS)

}  // namespace Records
// clang-format on
