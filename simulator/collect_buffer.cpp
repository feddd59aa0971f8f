#include "simulator/collect_buffer.h"

#include <algorithm>
#include <fstream>

#include "simulator/error.h"
#include "simulator/files.h"

namespace simulator {

namespace {

constexpr std::size_t HEAD_SIZE = 8;

std::string chunkText(unsigned number, unsigned count) {
    return "chunk " + std::to_string(number) + " of " + std::to_string(count);
}

}  // namespace

CollectBuffer::CollectBuffer(std::filesystem::path file, std::size_t limit)
    : m_file(std::move(file)), m_limit(limit) {}

CollectBuffer::Head CollectBuffer::head() const {
    std::ifstream in(m_file, std::ios::binary);
    std::uint8_t bytes[HEAD_SIZE] = {};
    if (!in.read(reinterpret_cast<char*>(bytes), HEAD_SIZE)) return {};
    return {static_cast<unsigned>(getLittle(bytes, 4)), static_cast<unsigned>(getLittle(bytes + 4, 4))};
}

std::string CollectBuffer::collect(unsigned number, unsigned count, std::span<std::uint8_t const> chunk) {
    Head state = head();
    if (count == 0) return chunkText(number, count) + ": a collection has at least one chunk";
    if (number == 0 || number > count) return chunkText(number, count) + ": numbers go from 1 to the count";
    if (number == 1 && state.received != 0)
        return chunkText(number, count) + " while " + describe() +
               " of an earlier collection are in the buffer: it must be freed first";
    if (state.received != 0 && count != state.count)
        return chunkText(number, count) + ": the collection began with a count of " +
               std::to_string(state.count);
    if (number != state.received + 1)
        return chunkText(number, count) + " out of order: expected chunk " +
               std::to_string(state.received + 1);
    if (chunk.empty() || chunk.size() > CHUNK || (number < count && chunk.size() != CHUNK))
        return chunkText(number, count) + " has " + std::to_string(chunk.size()) + " bytes, expected " +
               (number < count ? "16384" : "1 to 16384");
    if (std::size_t{count} * CHUNK > m_limit + CHUNK - 1)
        return chunkText(number, count) + ": " + std::to_string(std::size_t{count} * CHUNK) +
               " bytes announced, the buffer has " + std::to_string(m_limit);

    if (state.received == 0) writeWholeFile(m_file, Bytes(HEAD_SIZE, 0));
    std::fstream file(m_file, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(HEAD_SIZE + state.received * CHUNK));
    file.write(reinterpret_cast<char const*>(chunk.data()), static_cast<std::streamsize>(chunk.size()));
    std::uint8_t bytes[HEAD_SIZE];
    putLittle(bytes, 4, count);
    putLittle(bytes + 4, 4, number);
    file.seekp(0);
    file.write(reinterpret_cast<char const*>(bytes), HEAD_SIZE);
    file.close();
    if (!file) throw MachineError(m_file.string() + " can't be written");
    return {};
}

bool CollectBuffer::drop() {
    bool const held = head().received != 0;
    std::error_code ignored;
    std::filesystem::remove(m_file, ignored);
    return held;
}

bool CollectBuffer::complete() const {
    Head const state = head();
    return state.count != 0 && state.received == state.count;
}

std::string CollectBuffer::describe() const {
    Head const state = head();
    if (state.received == 0) return "nothing";
    return std::to_string(state.received) + " of " + std::to_string(state.count) + " chunks";
}

Bytes CollectBuffer::contents() const {
    Bytes bytes = readWholeFile(m_file);
    bytes.erase(bytes.begin(),
                bytes.begin() + static_cast<std::ptrdiff_t>(std::min(HEAD_SIZE, bytes.size())));
    return bytes;
}

}  // namespace simulator
