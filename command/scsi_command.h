#pragma once

#include "command/devices.h"
#include "command/scsi_status.h"

// A SCSI command. Sent once: unlike a BMIC command it never waits and tries again.
class ScsiCommand : public SCSIStatus {
  public:
    virtual ~ScsiCommand() = default;

    // True when it succeeded, underrun and overrun included.
    bool operator()(SCSIDevice& device);

    // As those of BmicCommand.
    void NoCache(bool const& noCache) { m_noCache = noCache; }
    void PassThrough(bool const& passThrough) { m_passThrough = passThrough; }
    void SelectiveCache(bool const& selectiveCache) { m_selectiveCache = selectiveCache; }
    void SetTimeout(unsigned int const& timeout) { m_timeout = timeout; }

  protected:
    // Fills in transfer type, command block and data, and sends the request. The command block may stand on
    // this function's stack.
    virtual bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) = 0;

  private:
    bool m_noCache = false;
    bool m_passThrough = false;
    bool m_selectiveCache = false;
    unsigned int m_timeout = 0;
};
