#pragma once

#include "command/scsi/scsi_block_command.h"

// What an enclosure and its processor tell and take: SES diagnostic pages, READ BUFFER, and the vendor's own
// blocks with SEND and RECEIVE.

class ReadChassisSerialNumber : public ScsiBlockCommand {
  public:
    static constexpr std::size_t SIZE = 32;
    ReadChassisSerialNumber() : ScsiBlockCommand(6, {0x08, 0, 0, 0x93, 0x20}, Direction::In, SIZE) {}
    Common::string serialNumber() const { return text(0, SIZE); }
};

// A longer text is cut, a shorter one filled up with blanks.
class WriteChassisSerialNumber : public ScsiBlockCommand {
  public:
    explicit WriteChassisSerialNumber(Common::string const& serialNumber);
};

// Eight bytes of the automatic revision block: one command says from where, a second reads.
class ReadAutoRevNumber : public ScsiBlockCommand {
  public:
    explicit ReadAutoRevNumber(unsigned char offset);

  protected:
    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;

  private:
    unsigned char m_offset;
};

// The state-of-box block. Of the length only the low 24 bits are asked for: the command block has no more.
class ReadSOB : public ScsiBlockCommand {
  public:
    explicit ReadSOB(std::uint32_t length);
};

// READ BUFFER with vendor-specific data.
class ReadVendorBuffer : public ScsiBlockCommand {
  public:
    ReadVendorBuffer(unsigned char bufferId, std::uint32_t length);
};

// Versions of the parts of an enclosure of the older kind.
class ReadEnclosureSubcomponentVersions : public ReadVendorBuffer {
  public:
    ReadEnclosureSubcomponentVersions() : ReadVendorBuffer(0xD0, 164) {}
};

class ReadExpanderAsicRevision : public ReadVendorBuffer {
  public:
    explicit ReadExpanderAsicRevision(std::uint32_t length) : ReadVendorBuffer(0xD0, length) {}
};

class ReadSEPSubComponentNVRAM : public ReadVendorBuffer {
  public:
    ReadSEPSubComponentNVRAM(unsigned char bufferId, std::uint32_t length)
        : ReadVendorBuffer(bufferId, length) {}
};

// SES pages 1 (configuration) and 7 (element descriptors). The first asks for 1,036 bytes and takes 1,032:
// that is how enclosures have always been asked.
class ReadEnclosureConfigurationDiagnosticPage : public ScsiBlockCommand {
  public:
    ReadEnclosureConfigurationDiagnosticPage()
        : ScsiBlockCommand(6, {0x1C, 1, 1, 0x04, 0x0C}, Direction::In, 1032) {}
};

class ReadEnclosureSubcomponentVersions2 : public ScsiBlockCommand {
  public:
    ReadEnclosureSubcomponentVersions2()
        : ScsiBlockCommand(6, {0x1C, 1, 7, 0x04, 0x08}, Direction::In, 1032) {}
};

// A processor's zoning and its configuration mode, two views of one vendor command.
class ReadSEPZoning : public ScsiBlockCommand {
  public:
    ReadSEPZoning() : ScsiBlockCommand(10, {0x26, 0, 0, 0, 0, 0, 0x11, 0, 2}, Direction::In, 2) {}
};

class ReadSEPConfigurationMode : public ScsiBlockCommand {
  public:
    ReadSEPConfigurationMode() : ScsiBlockCommand(10, {0x26, 0, 0, 0, 0, 0, 0x11, 0, 4}, Direction::In, 4) {}
};

class WriteSEPConfigurationMode : public ScsiBlockCommand {
  public:
    WriteSEPConfigurationMode(unsigned char mode, Bytes data)
        : ScsiBlockCommand(10, {0x27, 0, mode, 0, 0, 0, 0x10}, Direction::Out, std::move(data)) {}
};

class WriteSEPZoning : public WriteSEPConfigurationMode {
  public:
    using WriteSEPConfigurationMode::WriteSEPConfigurationMode;
};
