#include "command/scsi/scsi_block_command.h"

#include <algorithm>

ScsiBlockCommand::ScsiBlockCommand(unsigned int blockLength, std::initializer_list<unsigned char> block,
                                   Direction direction, std::size_t dataSize)
    : ScsiBlockCommand(blockLength, block, direction, Bytes(dataSize)) {}

ScsiBlockCommand::ScsiBlockCommand(unsigned int blockLength, std::initializer_list<unsigned char> block,
                                   Direction direction, Bytes data)
    : m_blockLength(blockLength), m_direction(direction), m_data(std::move(data)) {
    std::copy_n(block.begin(), std::min<std::size_t>(block.size(), blockLength), m_block);
}

bool ScsiBlockCommand::sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
    if (m_direction == Direction::In) std::fill(m_data.begin(), m_data.end(), 0);
    request.transferType = m_direction;
    request.cdb = m_block;
    request.cdbLength = m_blockLength;
    request.dataBuffer = m_data.empty() ? nullptr : m_data.data();
    request.dataLength = static_cast<std::uint32_t>(m_data.size());
    bool const sent = device.sendSCSICommand(request);
    m_received = std::min<std::size_t>(request.dataLength, m_data.size());
    return sent;
}

void ScsiBlockCommand::setNumber(unsigned int at, unsigned int width, unsigned long long value) {
    for (unsigned int i = 0; i < width; ++i) {
        m_block[at + i] = static_cast<unsigned char>(value >> 8 * (width - 1 - i));
    }
}

Common::string ScsiBlockCommand::text(std::size_t offset, std::size_t size) const {
    Common::string result;
    if (offset + size > m_received) return result;
    for (std::size_t i = offset; i < offset + size && byte(i) != 0; ++i) {
        char const character[2] = {static_cast<char>(byte(i)), '\0'};
        result += character;
    }
    return result.Trim();
}
