#include "command/cache_reply.h"
#include "command/passing_condition.h"
#include "sysmod/device_handle.h"
#include "sysmod/send_command.h"

using Interface::SysMod::Command::SCSIRequest;
using Interface::SysMod::Command::SendSCSICommand;

namespace {

SCSI_KEY keyOf(Common::string const& handle, SCSIRequest const& request) {
    unsigned char sasAddress[8] = {};
    Core::SysMod::getSasAddress(handle, sasAddress);
    SCSI_KEY key;
    MAKE_SCSI_KEY(key, static_cast<unsigned char>(std::min<unsigned>(request.cdbLength, 0xFF)), request.cdb,
                  sasAddress, sizeof(sasAddress));
    return key;
}

}  // namespace

bool ProcessSCSICommand(Common::string const& handle, SCSIRequest& request) {
    CACHE_STATE* const state = stateForRead(handle, request);
    if (state == nullptr || request.cdb == nullptr) return SendSCSICommand(handle, request);

    SCSI_KEY const key = keyOf(handle, request);
    auto const found = state->scsiReplies.find(key);
    if (found != state->scsiReplies.end() && canServe(found->second, request)) {
        serve(found->second, request);
        return true;
    }
    unsigned const dataLength = request.dataLength;
    unsigned const senseLength = request.senseLength;
    if (!SendSCSICommand(handle, request)) return false;
    // A passing condition is asked again and not remembered: from memory it would never pass.
    if (request.noCache == 0 && !(senseLength >= 13 && isPassingCondition(request))) {
        SCSI_READ_CACHE reply;
        keep(reply, request, dataLength, senseLength);
        state->scsiReplies.insert({key, reply});
    }
    return true;
}
