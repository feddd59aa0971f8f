#pragma once

#include "command/scsi/scsi_block_command.h"

// The lists of logical and physical units that a controller keeps. Read in two passes: eight bytes tell how
// long the list is, then it is read whole.
class ReportLuns : public ScsiBlockCommand {
  public:
    static constexpr std::size_t HEADER_SIZE = 8;
    // Longest list that is believed. A longer one is read so far and no further, with a line in the log.
    static constexpr std::uint32_t LIST_LIMIT = 4096 * 32;

    // Whole entries that are there; 0 when the first pass failed.
    std::size_t count() const { return (data().size() - HEADER_SIZE) / m_entrySize; }
    // As many bytes as an entry has; `index` below count().
    unsigned char const* entry(std::size_t index) const { return &data()[HEADER_SIZE + index * m_entrySize]; }

  protected:
    ReportLuns(unsigned char operationCode, unsigned char flag, std::size_t entrySize)
        : ScsiBlockCommand(12, {operationCode, flag}, Direction::In, HEADER_SIZE), m_entrySize(entrySize) {}

    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;

  private:
    std::size_t m_entrySize;
};

// Flag 0 gives entries of eight bytes, the units' addresses; flag 2 entries of 24, with a unique identity of
// 16 bytes behind the address.
class ReportLogicalLuns : public ReportLuns {
  public:
    explicit ReportLogicalLuns(unsigned char flag = 2) : ReportLuns(0xC2, flag, flag == 2 ? 24 : 8) {}
};

// Entries of 32 bytes: 0 address (8), 8 SAS address (8), 16 the parent's SAS address (8), 24 index (2, high
// byte first), 26 device type, 27 phy, 28 the parent's phy.
class ReportPhysicalLunsType2 : public ReportLuns {
  public:
    ReportPhysicalLunsType2() : ReportLuns(0xC3, 2, 32) {}
};
