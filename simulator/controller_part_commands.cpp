/// An array controller's commands to drives, carriers, its cache module and the NVRAM on the I2C bus.

#include "simulator/array_controller.h"

namespace simulator {

namespace {

constexpr unsigned WRITE_FLAG = 0x10000;  ///< in the address field, beside a number in its highest byte

Reply answerOr(std::optional<Bytes> record) {
    if (!record) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    Reply reply;
    reply.data = std::move(*record);
    return reply;
}

/// What isn't as it should be below the number in an address field; empty when nothing.
std::string addressProblem(Command const& command, std::uint64_t expected) {
    std::uint64_t const low = getBig(&command.block[3], 3);
    if (low == expected) return {};
    return "address field " + toHex({&command.block[2], 4}) + ", expected " + std::to_string(expected) +
           " below its highest byte";
}

}  // namespace

Reply ArrayController::senseMnpStatistics(Command const& command) {
    return answerOr(m_units.statistics(command.block[2] | command.block[9] << 8));
}

Reply ArrayController::senseEraseProgress(Command const&) {
    return answerOr(m_units.eraseProgress());
}

/// Address field 0 is the cache module; a drive's carrier is told by the drive's number, its low byte in byte
/// 2 and its high byte in byte 9.
Reply ArrayController::flashComponent(Command const& command) {
    if (getBig(&command.block[2], 4) == 0) return m_parts.flashCache(command.dataOut);
    if (std::string const problem = addressProblem(command, WRITE_FLAG); !problem.empty())
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    unsigned const number = command.block[2] | command.block[9] << 8;
    Drive* const drive = m_units.drive(number);
    return drive != nullptr ? drive->flashCarrier(command.dataOut)
                            : protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                                            "no drive of the number " + std::to_string(number));
}

Reply ArrayController::readNvram(Command const& command) {
    if (std::string const problem = addressProblem(command, 0); !problem.empty())
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    return m_parts.readNvram(command.block[2]);
}

Reply ArrayController::writeNvram(Command const& command) {
    if (std::string const problem = addressProblem(command, WRITE_FLAG); !problem.empty())
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    return m_parts.writeNvram(command.block[2], command.dataOut);
}

}  // namespace simulator
