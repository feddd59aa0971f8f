#include "simulator/controller_nvram.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::uint8_t WRITE = 0x27;
constexpr std::size_t BLOCK_SIZE = 16;

bool isWrite(Command const& command) {
    return command.block[0] == WRITE;
}

/// Bytes whose value never changes. 2 to 4 have the offset and the count.
constexpr struct {
    std::size_t at;
    std::uint8_t value;
} FIXED[] = {{1, 0}, {5, 0}, {7, 0}, {8, 0xD4}, {9, 1}, {10, 0}, {11, 0}, {12, 0}, {13, 0}, {14, 0}, {15, 0}};

/// What is out of protocol; empty when nothing is.
std::string problemOf(Command const& command) {
    if (command.block.size() != BLOCK_SIZE)
        return "a command block of " + std::to_string(command.block.size()) + " bytes, expected 16";
    if (command.attribute != 4)
        return "task attribute " + std::to_string(command.attribute) + ", expected 4 (simple)";
    for (auto const& byte : FIXED)
        if (command.block[byte.at] != byte.value)
            return "byte " + std::to_string(byte.at) + " of the command block is " +
                   std::to_string(command.block[byte.at]) + ", expected " + std::to_string(byte.value);
    std::uint64_t const offset = getLittle(&command.block[2], 2);
    std::size_t const count = command.block[4];
    if (command.direction != (isWrite(command) ? Direction::Out : Direction::In))
        return isWrite(command) ? "a write whose direction isn't out" : "a read whose direction isn't in";
    if (!isWrite(command)) {
        if (offset != 0 || count != 0)
            return "offset " + std::to_string(offset) + " and count " + std::to_string(count) +
                   " of a read, expected 0 and 0";
        if (command.bufferSize != ControllerNvram::SIZE)
            return "a buffer of " + std::to_string(command.bufferSize) + " bytes for a read, expected 2048";
        return {};
    }
    if (count == 0 || count != command.dataOut.size())
        return "count " + std::to_string(count) + ", the buffer has " +
               std::to_string(command.dataOut.size());
    if (offset + count > ControllerNvram::SIZE)
        return "offset " + std::to_string(offset) + " and count " + std::to_string(count) +
               ", there are 2048 bytes";
    return {};
}

}  // namespace

ControllerNvram::ControllerNvram(Object const& device) {
    auto const value = device.find("nvram");
    if (!value) return;
    for (auto const& [key, byte] : Object(*value).all()) {
        bool const isDecimal = key.size() <= 4 && key.find_first_not_of("0123456789") == std::string::npos;
        nlohmann::json const text =
            isDecimal && !key.empty() ? nlohmann::json(std::stoul(key)) : nlohmann::json(key);
        std::uint64_t const offset = Value(text, value->where() + ", an offset").number(SIZE - 1);
        m_bytes[offset] = static_cast<std::uint8_t>(byte.number(0xFF));
    }
}

char const* ControllerNvram::commandName(Command const& command) {
    return isWrite(command) ? "WRITE NVRAM" : "READ NVRAM";
}

Reply ControllerNvram::execute(Command const& command) {
    std::string const problem = problemOf(command);
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    Reply reply;
    if (isWrite(command))
        std::copy(command.dataOut.begin(), command.dataOut.end(),
                  m_bytes.begin() + static_cast<std::ptrdiff_t>(getLittle(&command.block[2], 2)));
    else
        reply.data = m_bytes;
    return reply;
}

std::map<unsigned, unsigned> ControllerNvram::contents() const {
    std::map<unsigned, unsigned> bytes;
    for (unsigned offset = 0; offset < SIZE; ++offset)
        if (m_bytes[offset] != 0) bytes[offset] = m_bytes[offset];
    return bytes;
}

nlohmann::json ControllerNvram::save() const {
    nlohmann::json state = nlohmann::json::object();
    for (auto const& [offset, byte] : contents())
        state[std::to_string(offset)] = byte;
    return state;
}

void ControllerNvram::load(nlohmann::json const& state) {
    std::fill(m_bytes.begin(), m_bytes.end(), std::uint8_t{0});
    for (auto const& [offset, byte] : state.items())
        m_bytes.at(std::stoul(offset)) = byte.get<std::uint8_t>();
}

}  // namespace simulator
