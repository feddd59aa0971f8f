#pragma once

#include "command/scsi/scsi_block_command.h"

// What a SCSI device tells of itself (SPC INQUIRY and its pages), and whether it is ready.

class TestUnitReady : public ScsiBlockCommand {
  public:
    TestUnitReady() : ScsiBlockCommand(6, {}, Direction::None, 0) {}
};

// Standard INQUIRY data of any length up to 255.
class SCSIIdentify : public ScsiBlockCommand {
  public:
    explicit SCSIIdentify(unsigned char length)
        : ScsiBlockCommand(6, {0x12, 0, 0, 0, length}, Direction::In, length) {}

    unsigned char peripheralType() const { return byte(0) & 0x1F; }
    Common::string vendorId() const { return text(8, 8); }
    Common::string productId() const { return text(16, 16); }
    Common::string productRevision() const { return text(32, 4); }
};

class ReportStandardInquiry : public SCSIIdentify {
  public:
    ReportStandardInquiry() : SCSIIdentify(95) {}
};

// A vital product data page.
class SCSIReadVPDPage : public ScsiBlockCommand {
  public:
    SCSIReadVPDPage(unsigned char page, unsigned char length)
        : ScsiBlockCommand(6, {0x12, 1, page, 0, length}, Direction::In, length) {}

  protected:
    // Bytes of the page: what the page says, and no more than was asked for.
    std::size_t pageEnd() const;
};

// Unit serial number.
class VPDPage80 : public SCSIReadVPDPage {
  public:
    explicit VPDPage80(unsigned char length = 255) : SCSIReadVPDPage(0x80, length) {}
    Common::string serialNumber() const;
};

// Device identification.
class VPDPage83 : public SCSIReadVPDPage {
  public:
    explicit VPDPage83(unsigned char length = 255) : SCSIReadVPDPage(0x83, length) {}
    // The logical unit's NAA identifier as upper-case hexadecimal digits; empty without one.
    Common::string identifier() const;
};

class VolumeIdentification : public VPDPage83 {
  public:
    VolumeIdentification() : VPDPage83(157) {}
};
