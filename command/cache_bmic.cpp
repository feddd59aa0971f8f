#include "command/cache_reply.h"
#include "command/passing_condition.h"
#include "sysmod/send_command.h"

using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::SendBMICCommand;

bool ProcessBMICCommand(Common::string const& handle, BMICRequest& request) {
    CACHE_STATE* const state = stateForRead(handle, request);
    if (state == nullptr) return SendBMICCommand(handle, request);

    BMIC_KEY const key = MAKE_BMIC_KEY(request.commandByte, request.details, request.unit);
    auto const found = state->bmicReplies.find(key);
    if (found != state->bmicReplies.end() && canServe(found->second, request) &&
        found->second.cdbLengthOverride == request.cdbLengthOverride) {
        serve(found->second, request);
        return true;
    }
    unsigned const dataLength = request.dataLength;
    unsigned const senseLength = request.senseLength;
    if (!SendBMICCommand(handle, request)) return false;
    // A passing condition is asked again and not remembered: from memory it would never pass.
    if (request.noCache == 0 && !(senseLength >= 13 && isPassingCondition(request))) {
        BMIC_READ_CACHE reply;
        keep(reply, request, dataLength, senseLength);
        reply.cdbLengthOverride = request.cdbLengthOverride;
        state->bmicReplies.insert({key, reply});
    }
    return true;
}
