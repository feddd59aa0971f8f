#pragma once

#include <algorithm>
#include <initializer_list>
#include <span>
#include <vector>

#include "command/scsi_command.h"
#include "common/string.h"

// A SCSI command whose block, direction and data are settled when it is made. Its data is kept between
// sends; what a device doesn't give stays zero.
class ScsiBlockCommand : public ScsiCommand {
  public:
    using Bytes = std::vector<unsigned char>;

    // What came back, or what is sent. Of a reply as many bytes as were asked for; zeros where it is shorter.
    Bytes const& data() const { return m_data; }
    // How many bytes of a reply came.
    std::size_t receivedLength() const { return m_received; }
    // Those bytes: what a decoder may look at. A reply that was cut on its way has no zeros for values.
    std::span<unsigned char const> received() const {
        return {m_data.data(), std::min(m_received, m_data.size())};
    }

  protected:
    using Direction = Interface::SysMod::Command::EnTransferType;
    static constexpr unsigned int BLOCK_LIMIT = 16;

    // `block` has 6, 10, 12 or 16 bytes; a shorter list is filled up with zeros to `blockLength`.
    ScsiBlockCommand(unsigned int blockLength, std::initializer_list<unsigned char> block,
                     Direction direction, std::size_t dataSize);
    ScsiBlockCommand(unsigned int blockLength, std::initializer_list<unsigned char> block,
                     Direction direction, Bytes data);

    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;

    // `width` bytes of the block from `at` on, most significant first.
    void setNumber(unsigned int at, unsigned int width, unsigned long long value);
    void resize(std::size_t size) { m_data.assign(size, 0); }
    // Forgets what stands behind `size`.
    void truncateTo(std::size_t size) { m_data.resize(std::min(size, m_data.size())); }

    // A reply's text without the blanks around it; it ends at the first zero. Empty unless all of it came:
    // half a version would pass for an older one.
    Common::string text(std::size_t offset, std::size_t size) const;
    // A byte of the reply; 0 beyond it.
    unsigned char byte(std::size_t offset) const { return offset < m_data.size() ? m_data[offset] : 0; }

  private:
    unsigned char m_block[BLOCK_LIMIT] = {};
    unsigned int m_blockLength;
    Direction m_direction;
    Bytes m_data;
    std::size_t m_received = 0;
};
