#include "command/scsi/enclosure_commands.h"

#include <algorithm>

namespace {

constexpr std::uint32_t LENGTH_BITS = 0xFFFFFF;
constexpr std::size_t AUTO_REVISION_BLOCK = 512;

/// RECEIVE's counterpart, which says what it is to give.
class SelectAutoRevNumber : public ScsiBlockCommand {
  public:
    explicit SelectAutoRevNumber(unsigned char offset)
        : ScsiBlockCommand(6, {0x0A, 0xE0, 0, 0x90, 0x08}, Direction::Out, block(offset)) {}

    bool send(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
        return sendCommand(device, request);
    }

  private:
    static Bytes block(unsigned char offset) {
        Bytes bytes = {0x90, 0x02, 0xAC, offset};
        bytes.resize(AUTO_REVISION_BLOCK);
        return bytes;
    }
};

ScsiBlockCommand::Bytes filledUp(Common::string const& text, std::size_t size) {
    ScsiBlockCommand::Bytes bytes(size, ' ');
    std::copy_n(text.c_str(), std::min<std::size_t>(text.size(), size), bytes.begin());
    return bytes;
}

}  // namespace

WriteChassisSerialNumber::WriteChassisSerialNumber(Common::string const& serialNumber)
    : ScsiBlockCommand(6, {0x0A, 0xE0, 0, 0x93, 0x20}, Direction::Out,
                       filledUp(serialNumber, ReadChassisSerialNumber::SIZE)) {}

ReadAutoRevNumber::ReadAutoRevNumber(unsigned char offset)
    : ScsiBlockCommand(6, {0x08, 0, 0, 0x90, 0x08}, Direction::In, 8), m_offset(offset) {}

bool ReadAutoRevNumber::sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
    return SelectAutoRevNumber(m_offset).send(device, request) &&
           ScsiBlockCommand::sendCommand(device, request);
}

ReadSOB::ReadSOB(std::uint32_t length)
    : ScsiBlockCommand(10, {0x3C, 5}, Direction::In, length & LENGTH_BITS) {
    setNumber(6, 3, data().size());
}

ReadVendorBuffer::ReadVendorBuffer(unsigned char bufferId, std::uint32_t length)
    : ScsiBlockCommand(10, {0x3C, 1, bufferId}, Direction::In, length & LENGTH_BITS) {
    setNumber(6, 3, data().size());
}
