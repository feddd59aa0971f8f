#include "command/ata_command.h"

#include <algorithm>
#include <iterator>

#include "common/conversion.h"

using Interface::SysMod::Command::ATARequest;

bool ATACommand::operator()(ATADevice& device) {
    std::fill(std::begin(m_resultRegisters), std::end(m_resultRegisters), 0);
    ATARequest request;
    request.timeout = m_timeout;
    request.resultRegisters = m_resultRegisters;
    request.resultLength = RESULT_REGISTER_COUNT;
    request.noCache = m_noCache;
    request.passThrough = m_passThrough;
    request.selectiveCache = m_selectiveCache;

    bool const sent = sendCommand(device, request);
    if (sent) PostProcessCommand();
    return sent;
}

Common::string ATACommand::ResultRegisters() const {
    return Conversion::arrayToString(m_resultRegisters, RESULT_REGISTER_COUNT, " ");
}
