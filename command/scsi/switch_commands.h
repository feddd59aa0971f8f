#pragma once

#include "command/scsi/scsi_block_command.h"

// Vendor commands of a SAS switch and of access control in shared storage: 0x86 reports, 0x87 changes, with
// a service action in byte 1. Their data blocks are the switch's own and travel unread.

template <unsigned char ServiceAction>
class SwitchReport : public ScsiBlockCommand {
  public:
    explicit SwitchReport(std::uint32_t length)
        : ScsiBlockCommand(16, {0x86, ServiceAction}, Direction::In, length) {
        setNumber(10, 4, data().size());
    }
};

template <unsigned char ServiceAction>
class SwitchChange : public ScsiBlockCommand {
  public:
    explicit SwitchChange(Bytes data)
        : ScsiBlockCommand(16, {0x87, ServiceAction}, Direction::Out, std::move(data)) {
        setNumber(10, 4, this->data().size());
    }
};

using ReadSwitchConfiguration = SwitchReport<0x01>;
using WriteSwitchConfiguration = SwitchChange<0x01>;
using ReportHostAttributes = SwitchReport<0x02>;
using MaintainHostAttributes = SwitchChange<0x02>;
using ReportHostModes = SwitchReport<0x03>;
using SSP1ReportACL = SwitchReport<0x11>;
using SSP1ManageACL = SwitchChange<0x11>;
using SSP2ReportACL = SwitchReport<0x12>;
using SSP2ManageACL = SwitchChange<0x12>;
using SSP2DisableACL = SwitchChange<0x13>;
