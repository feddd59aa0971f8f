#include "command/qrth_scan.h"

bool QRTHScan::sendCommand(SCSIDevice& device, Interface::SysMod::Command::SCSIRequest& request) {
    unsigned char message[16] = {2};
    request.transferType = Interface::SysMod::Command::EnTransferType::MessageOut;
    request.cdb = message;
    request.cdbLength = sizeof(message);
    return device.sendSCSICommand(request);
}
