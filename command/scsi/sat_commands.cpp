#include "command/scsi/sat_commands.h"

#include <algorithm>

SCSIATAPassThrough::SCSIATAPassThrough(unsigned char protocol, unsigned char transfer, unsigned char features,
                                       std::uint16_t sectors, unsigned char command, Direction direction,
                                       std::size_t dataSize)
    : ScsiBlockCommand(16, {0x85, protocol, transfer, 0, features}, direction, dataSize) {
    setNumber(6, 1, sectors & 0xFF);
    setNumber(14, 1, command);
}

bool ATADataCommand::sendCommand(ATADevice& device, Interface::SysMod::Command::ATARequest& request) {
    std::fill(m_data.begin(), m_data.end(), 0);
    request.transferType = Interface::SysMod::Command::EnTransferType::In;
    request.sectorCount = m_sectorCount;
    request.lbaLow = m_lbaLow;
    request.lbaMid = m_lbaMid;
    request.command = m_command;
    request.dataBuffer = m_data.data();
    request.dataLength = static_cast<std::uint32_t>(m_data.size());
    bool const sent = device.sendATACommand(request);
    // There is no outcome: of a command that the drive refused the status tells, and nothing came.
    bool const answered = sent && request.scsiStatus == 0;
    m_received = answered ? std::min<std::size_t>(request.dataLength, m_data.size()) : 0;
    return sent;
}

ATAReadLogExt::ATAReadLogExt(unsigned char log, unsigned char page, unsigned char sectors)
    : ATADataCommand(0x2F, std::size_t{sectors} * 512) {
    m_sectorCount = sectors;
    m_lbaLow = log;
    m_lbaMid = page;
}
