#pragma once

#include "command/scsi/scsi_block_command.h"

// Mode pages and log pages (SPC). Pages are given back with their headers, unread but for what the accessors
// tell.

// MODE SENSE (10) of a page without block descriptors.
class SCSIModeSense : public ScsiBlockCommand {
  public:
    SCSIModeSense(unsigned char page, unsigned char subpage, std::uint16_t length);

  protected:
    SCSIModeSense(unsigned char flags, unsigned char page, unsigned char subpage, std::uint16_t length);
};

// A mode page whole: first 63 bytes, then as many as the reply says that it has.
class ModeSense10 : public SCSIModeSense {
  public:
    static constexpr std::uint16_t FIRST_LENGTH = 63;

    explicit ModeSense10(unsigned char page) : SCSIModeSense(0, page, 0, FIRST_LENGTH) {}

  protected:
    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;
};

// MODE SELECT: the parameter list as the device takes it, at most 65,535 bytes, in the short form 255; what
// is longer is cut.
class SCSIModeSelect : public ScsiBlockCommand {
  public:
    explicit SCSIModeSelect(Bytes parameters);
};

class ModeSelect6 : public ScsiBlockCommand {
  public:
    explicit ModeSelect6(Bytes parameters);
};

// LOG SELECT, at most 65,535 bytes.
class SCSILogSelect : public ScsiBlockCommand {
  public:
    explicit SCSILogSelect(Bytes parameters);
};

// LOG SENSE. Past the reply cache: of an address its key has the first byte alone, and would answer with the
// page of another drive.
class SCSILogSense : public ScsiBlockCommand {
  protected:
    SCSILogSense(std::initializer_list<unsigned char> block, std::size_t dataSize)
        : ScsiBlockCommand(10, block, Direction::In, dataSize) {
        PassThrough(true);
    }
};

// The log pages that a device has.
class ReadSupportedLogPages : public SCSILogSense {
  public:
    ReadSupportedLogPages();
    bool supports(unsigned char page) const;
    Bytes pages() const;
};

// Workload and wear of a solid state drive.
class ReadWLLPage : public SCSILogSense {
  public:
    // The block asks for 4,096 bytes and the buffer takes 260: drives give no more of this page.
    ReadWLLPage() : SCSILogSense({0x4D, 0, 0x76, 0, 0, 0, 0, 0x10, 0}, 260) {}
};

// The SMART page's first parameter, and the one numbered 4.
class ReadWLLSmartPageParam0 : public SCSILogSense {
  public:
    ReadWLLSmartPageParam0() : SCSILogSense({0x4D, 0, 0x6F, 0, 0, 0, 0, 0, 16}, 16) {}
};

class ReadWLLSmartPageParam4 : public SCSILogSense {
  public:
    ReadWLLSmartPageParam4() : SCSILogSense({0x4D, 0, 0x6F, 0, 0, 0, 4, 0, 16}, 16) {}
};
