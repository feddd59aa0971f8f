#pragma once

/// The records that cross into the kernel. They take their pointer type as a parameter: the running build
/// uses its own pointer width, with the request number that follows from its record's size; the 32-bit form
/// is checked here on every build. All multi-byte fields are little-endian on the machines served.

#include <cstddef>
#include <cstdint>

namespace Core::SysMod {

inline constexpr unsigned long SG_IO_REQUEST = 0x2285;
inline constexpr unsigned long XQRTH_REGNEWD = 0x420E;

/// SCSI generic version 3 record (SG_IO).
template <typename Pointer>
struct SgIoRecord {
    std::uint32_t interfaceId;
    std::int32_t direction;
    std::uint8_t blockLength;
    std::uint8_t senseSize;
    std::uint16_t scatterCount;
    std::uint32_t dataLength;
    Pointer data;
    Pointer block;
    Pointer sense;
    std::uint32_t timeout;  ///< milliseconds
    std::uint32_t flags;
    std::int32_t packetId;
    Pointer userPointer;
    std::uint8_t status;
    std::uint8_t maskedStatus;
    std::uint8_t messageStatus;
    std::uint8_t senseWritten;
    std::uint16_t hostStatus;
    std::uint16_t driverStatus;
    std::int32_t residual;
    std::uint32_t duration;
    std::uint32_t info;
};

/// What the two pass-through records of the controller's block driver have in common.
struct XqrthCommand {
    std::uint8_t address[8];  ///< logical unit address; all zero is the controller itself
    std::uint8_t blockLength;
    std::uint8_t type;      ///< bits 0-2 request type, 3-5 attribute, 6-7 direction
    std::uint16_t timeout;  ///< seconds
    std::uint8_t block[16];
    std::uint8_t scsiStatus;
    std::uint8_t senseLength;
    std::uint16_t commandStatus;
    std::uint32_t residual;
    std::uint8_t errorInformation[8];
    std::uint8_t sense[32];
};

template <typename Pointer>
struct XqrthPassthru {
    XqrthCommand command;
    std::uint16_t bufferSize;
    Pointer buffer;
};

template <typename Pointer>
struct XqrthBigPassthru {
    XqrthCommand command;
    std::uint32_t chunkSize;  ///< size of the driver's allocations
    std::uint32_t bufferSize;
    Pointer buffer;
};

/// A read-and-write request of the driver's group 'B', which codes the size of its record.
constexpr unsigned long xqrthRequest(unsigned number, std::size_t recordSize) {
    return 0xC0000000UL | (static_cast<unsigned long>(recordSize) << 16) | 0x4200UL | number;
}

template <typename Pointer>
inline constexpr unsigned long XQRTH_PASSTHRU = xqrthRequest(0x0B, sizeof(XqrthPassthru<Pointer>));
template <typename Pointer>
inline constexpr unsigned long XQRTH_BIG_PASSTHRU = xqrthRequest(0x12, sizeof(XqrthBigPassthru<Pointer>));

using Pointer32 = std::uint32_t;

static_assert(sizeof(SgIoRecord<Pointer32>) == 64);
static_assert(offsetof(SgIoRecord<Pointer32>, interfaceId) == 0);
static_assert(offsetof(SgIoRecord<Pointer32>, direction) == 4);
static_assert(offsetof(SgIoRecord<Pointer32>, blockLength) == 8);
static_assert(offsetof(SgIoRecord<Pointer32>, senseSize) == 9);
static_assert(offsetof(SgIoRecord<Pointer32>, dataLength) == 12);
static_assert(offsetof(SgIoRecord<Pointer32>, data) == 16);
static_assert(offsetof(SgIoRecord<Pointer32>, block) == 20);
static_assert(offsetof(SgIoRecord<Pointer32>, sense) == 24);
static_assert(offsetof(SgIoRecord<Pointer32>, timeout) == 28);

static_assert(offsetof(XqrthCommand, address) == 0);
static_assert(offsetof(XqrthCommand, blockLength) == 8);
static_assert(offsetof(XqrthCommand, type) == 9);
static_assert(offsetof(XqrthCommand, timeout) == 10);
static_assert(offsetof(XqrthCommand, block) == 12);
static_assert(offsetof(XqrthCommand, scsiStatus) == 28);
static_assert(offsetof(XqrthCommand, senseLength) == 29);
static_assert(offsetof(XqrthCommand, commandStatus) == 30);
static_assert(offsetof(XqrthCommand, residual) == 32);
static_assert(offsetof(XqrthCommand, sense) == 44);

static_assert(sizeof(XqrthPassthru<Pointer32>) == 84);
static_assert(offsetof(XqrthPassthru<Pointer32>, bufferSize) == 76);
static_assert(offsetof(XqrthPassthru<Pointer32>, buffer) == 80);
static_assert(XQRTH_PASSTHRU<Pointer32> == 0xC054420B);

static_assert(sizeof(XqrthBigPassthru<Pointer32>) == 88);
static_assert(offsetof(XqrthBigPassthru<Pointer32>, chunkSize) == 76);
static_assert(offsetof(XqrthBigPassthru<Pointer32>, bufferSize) == 80);
static_assert(offsetof(XqrthBigPassthru<Pointer32>, buffer) == 84);
static_assert(XQRTH_BIG_PASSTHRU<Pointer32> == 0xC0584212);

/// Header of every CSMI request.
struct CsmiHeader {
    std::uint32_t controllerNumber;
    std::uint32_t length;  ///< of the whole record, header included
    std::uint32_t returnCode;
    std::uint32_t timeout;  ///< seconds
    std::uint16_t direction;
    std::uint16_t padding;
};
static_assert(sizeof(CsmiHeader) == 20);

inline constexpr std::uint32_t CSMI_TIMEOUT = 60;

/// CSMI request numbers and record sizes.
inline constexpr unsigned long CSMI_GET_DRIVER_INFO = 0xCC770001;
inline constexpr unsigned long CSMI_GET_CNTLR_CONFIG = 0xCC770002;
inline constexpr unsigned long CSMI_GET_CNTLR_STATUS = 0xCC770003;
inline constexpr unsigned long CSMI_SSP_PASSTHRU = 0xCC770018;
inline constexpr unsigned long CSMI_PAUSE_ACTIVITY = 0xCC770031;
inline constexpr unsigned long CSMI_RESUME_ACTIVITY = 0xCC770032;
inline constexpr std::uint32_t CSMI_DRIVER_INFO_SIZE = 196;
inline constexpr std::uint32_t CSMI_CNTLR_CONFIG_SIZE = 200;
inline constexpr std::uint32_t CSMI_CNTLR_STATUS_SIZE = 56;
inline constexpr std::uint32_t CSMI_PAUSE_RECORD_SIZE = 92;
inline constexpr std::uint32_t CSMI_SSP_FIXED_SIZE = 360;

/// Fixed part of the CSMI SSP pass-through record; the data follows.
struct CsmiSspPassthru {
    CsmiHeader header;
    std::uint8_t phyIdentifier;
    std::uint8_t portIdentifier;
    std::uint8_t connectionRate;
    std::uint8_t reserved23;
    std::uint8_t destination[8];
    std::uint8_t lun[8];
    std::uint8_t blockLength;
    std::uint8_t additionalBlockLength;
    std::uint8_t reserved42[2];
    std::uint8_t block[16];
    std::uint32_t flags;
    std::uint8_t additionalBlock[24];
    std::uint32_t dataLength;
    std::uint8_t connectionStatus;
    std::uint8_t sspStatus;
    std::uint8_t reserved94[2];
    std::uint8_t dataPresent;
    std::uint8_t scsiStatus;
    std::uint8_t responseLength[2];  ///< high byte first
    std::uint8_t response[256];
    std::uint32_t dataBytes;
};
static_assert(sizeof(CsmiSspPassthru) == CSMI_SSP_FIXED_SIZE);
static_assert(offsetof(CsmiSspPassthru, phyIdentifier) == 20);
static_assert(offsetof(CsmiSspPassthru, destination) == 24);
static_assert(offsetof(CsmiSspPassthru, blockLength) == 40);
static_assert(offsetof(CsmiSspPassthru, block) == 44);
static_assert(offsetof(CsmiSspPassthru, flags) == 60);
static_assert(offsetof(CsmiSspPassthru, dataLength) == 88);
static_assert(offsetof(CsmiSspPassthru, connectionStatus) == 92);
static_assert(offsetof(CsmiSspPassthru, dataPresent) == 96);
static_assert(offsetof(CsmiSspPassthru, scsiStatus) == 97);
static_assert(offsetof(CsmiSspPassthru, responseLength) == 98);
static_assert(offsetof(CsmiSspPassthru, response) == 100);
static_assert(offsetof(CsmiSspPassthru, dataBytes) == 356);

}  // namespace Core::SysMod
