#include "command/scsi_command.h"

using Interface::SysMod::Command::SCSIRequest;
using Interface::SysMod::Command::SENSE_BUFFER_SIZE;

bool ScsiCommand::operator()(SCSIDevice& device) {
    ResetStatus();
    unsigned char sense[SENSE_BUFFER_SIZE] = {};
    SCSIRequest request;
    request.timeout = m_timeout;
    request.senseBuffer = sense;
    request.senseLength = SENSE_BUFFER_SIZE;
    request.noCache = m_noCache;
    request.passThrough = m_passThrough;
    request.selectiveCache = m_selectiveCache;

    bool const sent = sendCommand(device, request);
    return TakeStatus(request, sent);
}
