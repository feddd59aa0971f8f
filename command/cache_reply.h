#pragma once

// Inside the cache only: what BMIC and SCSI replies have in common.

#include <algorithm>
#include <cstring>

#include "command/cache.h"
#include "command/cache_state.h"

// A reply serves a request that wants no more data than it holds and exactly as much sense.
template <class Request>
bool canServe(SCSI_READ_CACHE const& reply, Request const& request) {
    return reply.data.size() >= request.dataLength && reply.sense.size() == request.senseLength &&
           (request.dataBuffer != nullptr || request.dataLength == 0) &&
           (request.senseBuffer != nullptr || request.senseLength == 0);
}

// As the device would answer: to a shorter buffer with an overrun and without sense.
template <class Request>
void serve(SCSI_READ_CACHE const& reply, Request& request) {
    if (request.dataLength != 0) std::memcpy(request.dataBuffer, reply.data.c_str(), request.dataLength);
    bool const whole = reply.data.size() == request.dataLength;
    if (request.senseLength != 0) {
        if (whole) {
            std::memcpy(request.senseBuffer, reply.sense.c_str(), request.senseLength);
        } else {
            std::memset(request.senseBuffer, 0, request.senseLength);
        }
    }
    request.dataLength = std::min(request.dataLength, reply.received);
    request.scsiStatus = whole ? reply.scsiStatus : 0;
    request.commandStatus = whole ? reply.commandStatus : Interface::SysMod::Command::DATA_OVERRUN;
}

// Takes the reply out of a request that came back. The lengths are those that the request was sent with: a
// transport may report shorter ones. The whole buffer is kept, so that the same request finds it again, and
// how much of it came.
template <class Request>
void keep(SCSI_READ_CACHE& reply, Request const& request, unsigned dataLength, unsigned senseLength) {
    unsigned const length = request.dataBuffer != nullptr ? dataLength : 0;
    reply.received = std::min<unsigned>(length, request.dataLength);
    unsigned const sense = request.senseBuffer != nullptr ? senseLength : 0;
    reply.data = Common::string(reinterpret_cast<char const*>(request.dataBuffer), length);
    reply.sense = Common::string(reinterpret_cast<char const*>(request.senseBuffer), sense);
    reply.scsiStatus = request.scsiStatus;
    reply.commandStatus = request.commandStatus;
}

// The state of a device whose replies may be served and kept now; null when they may not. A request that
// isn't a plain read empties the device's cache here: it may change anything.
template <class Request>
CACHE_STATE* stateForRead(Common::string const& handle, Request const& request) {
    if (!cacheControls().commandCacheEnabled) return nullptr;
    CACHE_STATE* const state = findCacheState(handle);
    if (state == nullptr || !state->enabled) return nullptr;
    if (request.transferType != Interface::SysMod::Command::EnTransferType::In) {
        EmptyCacheFor(handle, true);
        return nullptr;
    }
    return request.passThrough == 0 ? state : nullptr;
}
