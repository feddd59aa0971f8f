#pragma once

#include "command/ata_command.h"
#include "command/scsi/scsi_block_command.h"

// ATA commands: as ATA PASS-THROUGH (16) of SAT, for devices that take SCSI command blocks, and as taskfiles.

class SCSIATAPassThrough : public ScsiBlockCommand {
  protected:
    // `protocol` is byte 1 of the block, `transfer` byte 2: where the length stands, its unit, the direction.
    SCSIATAPassThrough(unsigned char protocol, unsigned char transfer, unsigned char features,
                       std::uint16_t sectors, unsigned char command, Direction direction,
                       std::size_t dataSize);
};

// IDENTIFY DEVICE: 512 bytes, words in little-endian order.
class SCSIATAIdentifyDevice : public SCSIATAPassThrough {
  public:
    SCSIATAIdentifyDevice() : SCSIATAPassThrough(0x08, 0x0E, 0, 1, 0xEC, Direction::In, 512) {}
};

// READ LOG EXT, one block of a log's page, for drives behind a controller. Past the reply cache, like LOG
// SENSE.
class SCSIATAReadLogExt : public SCSIATAPassThrough {
  public:
    SCSIATAReadLogExt(unsigned char log, unsigned char page)
        : SCSIATAPassThrough(0x09, 0x0E, 0, 1, 0x2F, Direction::In, 512) {
        setNumber(8, 1, log);
        setNumber(10, 1, page);
        PassThrough(true);
    }
};

// A taskfile and its data.
class ATADataCommand : public ATACommand {
  public:
    // As many bytes as were asked for; zeros behind those that came.
    std::vector<unsigned char> const& data() const { return m_data; }
    // How many bytes of the reply came; 0 when the drive refused the command.
    std::size_t receivedLength() const { return m_received; }

  protected:
    ATADataCommand(unsigned char command, std::size_t dataSize) : m_command(command), m_data(dataSize) {}

    bool sendCommand(ATADevice& device, Interface::SysMod::Command::ATARequest& request) override;

    unsigned char m_sectorCount = 0;
    unsigned char m_lbaLow = 0;
    unsigned char m_lbaMid = 0;

  private:
    unsigned char m_command;
    std::vector<unsigned char> m_data;
    std::size_t m_received = 0;
};

class ATAIdentify : public ATADataCommand {
  public:
    ATAIdentify() : ATADataCommand(0xEC, 512) {}
};

// READ LOG EXT: `sectors` blocks of 512 bytes of a log, from one of its pages on.
class ATAReadLogExt : public ATADataCommand {
  public:
    ATAReadLogExt(unsigned char log, unsigned char page, unsigned char sectors = 1);
};
