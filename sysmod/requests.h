#pragma once

/// The fixed records that carry one command from a command object to the pass-through and bring its outcome
/// back. They take their pointer type as a parameter: the running build uses its own pointers, and the sizes
/// of the 32-bit form are checked here on every build.

#include <cstdint>

#include "sysmod/transfer_type.h"

namespace Interface::SysMod::Command {

/// Valid sense bytes that a request's sense buffer can take.
inline constexpr std::uint32_t SENSE_BUFFER_SIZE = 32;

/// `lowLevelStatus` of a command that didn't reach its device although no system call failed: there is no
/// route to it, or the driver refused the request. No errno.
inline constexpr std::int32_t NOT_DELIVERED = -1;

// `commandStatus` of a controller's reply. Other values are failures.
inline constexpr std::uint16_t COMMAND_DONE = 0;
inline constexpr std::uint16_t TARGET_STATUS = 1;  ///< see the SCSI status byte
inline constexpr std::uint16_t DATA_UNDERRUN = 2;  ///< fewer bytes came than asked for
inline constexpr std::uint16_t DATA_OVERRUN = 3;   ///< there were more bytes than asked for

/// A controller management (BMIC) command. The pass-through makes a ten-byte command block of it:
/// 0x26 or 0x27, `unit` low, `details` (most significant byte first), `commandByte`, length (most
/// significant byte first), `unit` high.
template <typename Pointer>
struct BasicBMICRequest {
    EnTransferType transferType = EnTransferType::In;  ///< any value but In selects the write form, 0x27
    std::uint32_t timeout = 0;                         ///< seconds; the pass-through clamps it
    std::uint8_t commandByte = 0;                      ///< command block byte 6
    std::uint32_t details = 0;                         ///< command block bytes 2 to 5, high byte first
    std::uint16_t unit = 0;        ///< low byte to command block byte 1, high byte to byte 9
    Pointer dataBuffer{};          ///< reply or payload, borrowed; null when transferType is None
    std::uint32_t dataLength = 0;  ///< bytes at dataBuffer; on return of a read, those that came
    std::int32_t lowLevelStatus =
        0;  ///< set by the transport: why it could not deliver, an errno or NOT_DELIVERED
    std::uint16_t commandStatus = 0;      ///< set by the transport: the controller's command status
    std::uint8_t scsiStatus = 0;          ///< set by the transport: SCSI status byte
    Pointer senseBuffer{};                ///< SENSE_BUFFER_SIZE bytes, borrowed
    std::uint32_t senseLength = 0;        ///< size on entry, valid length on return
    std::uint32_t cdbLengthOverride = 0;  ///< when not 0, stands in command block bytes 7 and 8
    std::uint8_t noCache = 0;
    std::uint8_t passThrough = 0;
    std::uint8_t selectiveCache = 0;
};

/// A SCSI command block of 6, 10, 12 or 16 bytes.
template <typename Pointer>
struct BasicSCSIRequest {
    EnTransferType transferType = EnTransferType::In;
    std::uint32_t timeout = 0;    ///< seconds
    Pointer cdb{};                ///< command block, borrowed
    std::uint32_t cdbLength = 0;  ///< 6, 10, 12 or 16
    Pointer dataBuffer{};         ///< borrowed
    std::uint32_t dataLength = 0;
    std::int32_t lowLevelStatus = 0;  ///< as above
    std::uint16_t commandStatus = 0;
    std::uint8_t scsiStatus = 0;
    Pointer senseBuffer{};
    std::uint32_t senseLength = 0;
    std::uint8_t noCache = 0;
    std::uint8_t passThrough = 0;
    std::uint8_t selectiveCache = 0;
};

/// An ATA taskfile, sent as ATA PASS-THROUGH (16) of SAT.
template <typename Pointer>
struct BasicATARequest {
    EnTransferType transferType = EnTransferType::In;
    std::uint32_t timeout = 0;  ///< seconds
    std::uint8_t features = 0;
    std::uint8_t sectorCount = 0;  ///< 0: the data length divided by 512
    std::uint8_t lbaLow = 0;
    std::uint8_t lbaMid = 0;
    std::uint8_t lbaHigh = 0;
    std::uint8_t device = 0;
    std::uint8_t command = 0;
    std::uint8_t ataStatus = 0;    ///< set by the transport
    Pointer dataBuffer{};          ///< borrowed
    std::uint32_t dataLength = 0;  ///< bytes at dataBuffer; on return of a read, those that came
    std::int32_t lowLevelStatus = 0;
    std::uint32_t resultLength = 0;  ///< 8
    /// The command's eight result bytes, borrowed: error, sector count, LBA low, mid and high, device, status
    /// and one that stays. Set where the device returns them; an adapter does so for a command that failed.
    Pointer resultRegisters{};
    Pointer senseBuffer{};
    std::uint32_t senseLength = 0;
    std::uint8_t scsiStatus = 0;
    std::uint8_t noCache = 0;
    std::uint8_t passThrough = 0;
    std::uint8_t selectiveCache = 0;
    std::uint32_t reserved = 0;
};

/// Pausing or resuming a device's background activity through CSMI.
struct CSMIRequest {
    std::uint8_t pauseActivity = 0;  ///< activity code: not 0 pauses, 0 resumes
    std::int32_t lowLevelStatus = 0;
};

static_assert(sizeof(BasicBMICRequest<std::uint32_t>) == 52);
static_assert(sizeof(BasicSCSIRequest<std::uint32_t>) == 44);
static_assert(sizeof(BasicATARequest<std::uint32_t>) == 52);
static_assert(sizeof(CSMIRequest) == 8);

using BMICRequest = BasicBMICRequest<unsigned char*>;
using SCSIRequest = BasicSCSIRequest<unsigned char*>;
using ATARequest = BasicATARequest<unsigned char*>;

}  // namespace Interface::SysMod::Command
