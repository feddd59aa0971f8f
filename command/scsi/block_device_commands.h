#pragma once

#include "command/scsi/scsi_block_command.h"

// What a block device holds (SBC): its size, and its blocks.

class SCSIReadCapacity10 : public ScsiBlockCommand {
  public:
    explicit SCSIReadCapacity10(std::uint32_t blockAddress = 0);
    // Address of the last block, host order; 0xFFFFFFFF where SCSIReadCapacity16 must be asked.
    std::uint32_t lastBlock() const;
    std::uint32_t blockLength() const;  // bytes
};

class SCSIReadCapacity16 : public ScsiBlockCommand {
  public:
    SCSIReadCapacity16();
    std::uint64_t lastBlock() const;
    std::uint32_t blockLength() const;  // bytes
};

// `count` blocks of `blockLength` bytes from `block` on.
class SCSIRead10 : public ScsiBlockCommand {
  public:
    SCSIRead10(std::uint32_t block, std::uint16_t count, std::uint32_t blockLength);
};

class SCSIRead16 : public ScsiBlockCommand {
  public:
    SCSIRead16(std::uint64_t block, std::uint32_t count, std::uint32_t blockLength);
};

// Writes `data`, which has a whole number of blocks: `count`.
class SCSIWrite10 : public ScsiBlockCommand {
  public:
    SCSIWrite10(std::uint32_t block, std::uint16_t count, Bytes data);
};
