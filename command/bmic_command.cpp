#include "command/bmic_command.h"

#include <cstring>

#include "command/passing_condition.h"
#include "common/debug_logger.h"
#include "common/sleep.h"

using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::SENSE_BUFFER_SIZE;

namespace {

// What a send left behind must not be taken for the outcome of the next one.
void clearOutcome(BMICRequest& request) {
    request.lowLevelStatus = 0;
    request.commandStatus = 0;
    request.scsiStatus = 0;
    request.senseLength = SENSE_BUFFER_SIZE;
    std::memset(request.senseBuffer, 0, SENSE_BUFFER_SIZE);
}

}  // namespace

bool BmicCommand::operator()(BMICDevice& device) {
    ResetStatus();
    unsigned char sense[SENSE_BUFFER_SIZE] = {};
    BMICRequest request;
    request.timeout = m_timeout;
    request.senseBuffer = sense;
    request.senseLength = SENSE_BUFFER_SIZE;
    request.noCache = m_noCache;
    request.passThrough = m_passThrough;
    request.selectiveCache = m_selectiveCache;

    PreProcessCommand();
    bool const sent = sendWithRetries(device, request);
    m_receivedLength = sent ? request.dataLength : 0;
    PostProcessCommand();
    return TakeStatus(request, sent);
}

bool BmicCommand::sendWithRetries(BMICDevice& device, BMICRequest& request) {
    bool sent = true;
    bool retry = false;
    for (unsigned attempts = 0; attempts == 0 || (retry && attempts <= m_maxRetries); ++attempts) {
        clearOutcome(request);
        sent = sendCommand(device, request);
        retry = isPassingCondition(request);
        if (retry && m_maxRetries != 0) {
            Common::DebugLogger::LogCommand("BMIC COMMAND RETRY");
            Common::Synchronization::Sleep(RETRY_WAIT_MILLISECONDS);
        }
    }
    return sent;
}
