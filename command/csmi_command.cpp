#include "command/csmi_command.h"

using Interface::SysMod::Command::CSMIRequest;

bool CSMICommand::operator()(CSMIDevice& device) {
    CSMIRequest request;
    return sendCommand(device, request);
}

bool CSMIPauseResumeActivity::sendCommand(CSMIDevice& device, CSMIRequest& request) {
    request.pauseActivity = m_pause ? 1 : 0;
    return device.sendCSMICommand(request);
}
