#pragma once

#include "command/scsi_command.h"

// The controller's task management message that has it look for new devices: no data, and the block is a
// message rather than a command block.
class QRTHScan : public ScsiCommand {
  protected:
    bool sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) override;
};
