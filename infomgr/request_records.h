#pragma once

/// The records of InfoMgrControlObject. They are described with 32-bit pointers, and so are the lengths that
/// callers pass and functions check: 40, 40, 12 and 48. The running build has its own pointers in them, so
/// its records are larger. A passed length says which form of a record it is, not how many bytes there are:
/// the record must be there as a whole, as this build lays it out.

#include <cstddef>
#include <cstdint>

namespace InfoMgr {

/// A controller management command. Direction by the kind of the call: WRITE_KIND sends the data, any other
/// kind reads.
template <typename Pointer>
struct BasicBmicRequest {
    static constexpr std::uint32_t LENGTH = 40;
    std::uint8_t opcode;
    std::uint32_t address;  ///< command block bytes 2 to 5, byte 2 the most significant
    std::uint16_t unit;
    Pointer data;  ///< borrowed, as all buffers; of a read, bytes that didn't come stay as they were, all
                   ///< of them where the read failed
    std::uint32_t dataLength;  ///< at most 65,535
    std::uint32_t reserved;
    Pointer error;  ///< receives sense data
    std::uint32_t errorLength;
    std::uint8_t reserved2;
    std::uint8_t padding[7];  ///< to the length that both forms share
};

/// A command block to the controller itself.
template <typename Pointer>
struct BasicScsiRequest {
    static constexpr std::uint32_t LENGTH = 40;
    static constexpr std::uint32_t WRITE_FLAG = 0x04;  ///< in `flags`: the data goes to the device
    Pointer command;
    std::uint8_t commandLength;  ///< 1 to 16
    Pointer data;
    std::uint32_t dataLength;  ///< of a read at most 65,535
    std::uint32_t flags;
    std::uint8_t reserved[5];
    Pointer error;
    std::uint32_t errorLength;
    std::uint16_t status;  ///< set by the call: command status; 0 done, 2 fewer bytes than asked for, which a
                           ///< write fails with
};

/// A CSMI request to a SAS adapter.
template <typename Pointer>
struct BasicCsmiRequest {
    static constexpr std::uint32_t LENGTH = 12;
    std::uint32_t request;  ///< 0xCC77....
    Pointer record;         ///< begins with CSMI's header, of which the call fills all but the direction
    std::uint32_t recordLength;
};

/// A command block to a device behind the controller.
template <typename Pointer>
struct BasicPassthruRequest {
    static constexpr std::uint32_t LENGTH = 48;
    std::uint8_t address[8];  ///< logical unit address
    Pointer command;
    std::uint8_t commandLength;  ///< 1 to 16
    std::uint32_t flags;         ///< as in BasicScsiRequest
    Pointer data;
    std::uint32_t dataLength;  ///< as in BasicScsiRequest
    std::uint32_t timeout;     ///< seconds
    Pointer error;
    std::uint32_t errorLength;
    std::uint8_t scsiStatus;      ///< this and the following are set by the call
    std::uint16_t status;         ///< command status
    std::int32_t lowLevelStatus;  ///< errno of a system call that failed
};

/// Asks the root what it knows of a device class.
struct ClassRequest {
    static constexpr std::uint32_t LENGTH = 12;
    std::uint32_t type;             ///< of the class
    std::uint32_t discoveredTypes;  ///< set by the call: object types that have been discovered
    std::uint32_t objects;          ///< set by the call: objects that are there
};

using Pointer32 = std::uint32_t;

static_assert(sizeof(BasicBmicRequest<Pointer32>) == BasicBmicRequest<Pointer32>::LENGTH);
static_assert(offsetof(BasicBmicRequest<Pointer32>, address) == 4);
static_assert(offsetof(BasicBmicRequest<Pointer32>, unit) == 8);
static_assert(offsetof(BasicBmicRequest<Pointer32>, data) == 12);
static_assert(offsetof(BasicBmicRequest<Pointer32>, dataLength) == 16);
static_assert(offsetof(BasicBmicRequest<Pointer32>, reserved) == 20);
static_assert(offsetof(BasicBmicRequest<Pointer32>, error) == 24);
static_assert(offsetof(BasicBmicRequest<Pointer32>, errorLength) == 28);
static_assert(offsetof(BasicBmicRequest<Pointer32>, reserved2) == 32);

static_assert(sizeof(BasicScsiRequest<Pointer32>) == BasicScsiRequest<Pointer32>::LENGTH);
static_assert(offsetof(BasicScsiRequest<Pointer32>, commandLength) == 4);
static_assert(offsetof(BasicScsiRequest<Pointer32>, data) == 8);
static_assert(offsetof(BasicScsiRequest<Pointer32>, dataLength) == 12);
static_assert(offsetof(BasicScsiRequest<Pointer32>, flags) == 16);
static_assert(offsetof(BasicScsiRequest<Pointer32>, reserved) == 20);
static_assert(offsetof(BasicScsiRequest<Pointer32>, error) == 28);
static_assert(offsetof(BasicScsiRequest<Pointer32>, errorLength) == 32);
static_assert(offsetof(BasicScsiRequest<Pointer32>, status) == 36);

static_assert(sizeof(BasicCsmiRequest<Pointer32>) == BasicCsmiRequest<Pointer32>::LENGTH);
static_assert(sizeof(BasicPassthruRequest<Pointer32>) == BasicPassthruRequest<Pointer32>::LENGTH);
static_assert(offsetof(BasicPassthruRequest<Pointer32>, lowLevelStatus) == 44);
static_assert(sizeof(ClassRequest) == ClassRequest::LENGTH);

}  // namespace InfoMgr

using _INFOMGR_BMIC_REQUEST = InfoMgr::BasicBmicRequest<unsigned char*>;
using _INFOMGR_SCSI_REQUEST = InfoMgr::BasicScsiRequest<unsigned char*>;
using _INFOMGR_CSMI_REQUEST = InfoMgr::BasicCsmiRequest<unsigned char*>;
using _INFOMGR_PASSTHRU_REQUEST = InfoMgr::BasicPassthruRequest<unsigned char*>;
