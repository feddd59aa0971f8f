#pragma once

#include "command/devices.h"

// A CSMI command: a request without a reply. Sent once; the transport's answer is all that comes back.
class CSMICommand {
  public:
    virtual ~CSMICommand() = default;

    bool operator()(CSMIDevice& device);

  protected:
    virtual bool sendCommand(CSMIDevice& device, Interface::SysMod::Command::CSMIRequest& request) = 0;
};

// Pauses or resumes what a device does in the background.
class CSMIPauseResumeActivity : public CSMICommand {
  public:
    explicit CSMIPauseResumeActivity(bool pause) : m_pause(pause) {}

  protected:
    bool sendCommand(CSMIDevice& device, Interface::SysMod::Command::CSMIRequest& request) override;

  private:
    bool m_pause;
};
