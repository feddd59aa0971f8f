#pragma once

#include <cstdint>

#include "command/scsi_command.h"

// Commands that carry firmware to a device behind a controller or an adapter. The image is borrowed for the
// length of the call and sent from where it stands; nothing of it is looked at but where S-record lines end.

// An image in memory.
struct ImageSpan {
    unsigned char const* bytes = nullptr;
    std::size_t size = 0;
};

// A drive's firmware by WRITE BUFFER (SPC).
class FlashPhysicalDriveFirmware : public ScsiCommand {
  public:
    static constexpr std::uint32_t CHUNK_SIZE = 32768;

    enum EnFlashType {
        eWhole = 0,  // mode 5, the whole image in one command
        eChunks = 1  // mode 7, chunks with their offsets
    };

    FlashPhysicalDriveFirmware(EnFlashType type, ImageSpan image) : m_type(type), m_image(image) {}

  protected:
    // The first chunk that fails ends it.
    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;

  private:
    EnFlashType m_type;
    ImageSpan m_image;
};

// A drive's firmware by ATA DOWNLOAD MICROCODE with offsets (subcommand 3), in chunks as above; by
// ATA PASS-THROUGH (16) of SAT.
class SCSIATADownloadMicrocode : public ScsiCommand {
  public:
    explicit SCSIATADownloadMicrocode(ImageSpan image) : m_image(image) {}

  protected:
    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;

  private:
    ImageSpan m_image;
};

// An enclosure processor's firmware by WRITE BUFFER. One chunk is in flight at a time in all threads.
class FlashSEPFirmware : public ScsiCommand {
  public:
    enum EnFlashType {
        eMode5Whole = 0,
        eMode7Chunks = 1,
        eMode7SRecords = 2,
        eMode14SRecords = 3,
        eMode14Chunks = 4,  // the chunk's offset stands in the command block
        eActivate = 5       // mode 15, no data
    };

    FlashSEPFirmware(EnFlashType type, ImageSpan image, std::uint32_t chunkSize)
        : m_type(type), m_image(image), m_chunkSize(chunkSize) {}

    // Of the last command that failed: the four bytes at offset 3 of its sense data, high byte first.
    std::uint32_t addtionalStatus() const { return m_additionalStatus; }

  protected:
    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;

  private:
    bool sendBuffer(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request, std::size_t offset,
                    std::size_t size);
    bool sendLocked(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request, std::size_t offset,
                    std::size_t size);
    bool sendChunks(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request);
    bool sendSRecords(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request);

    EnFlashType m_type;
    ImageSpan m_image;
    std::uint32_t m_chunkSize;
    std::uint32_t m_additionalStatus = 0;
};
