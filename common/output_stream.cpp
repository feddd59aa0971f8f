#include "common/output_stream.h"

#include <cstring>
#include <memory>

#include "common/debug_logger.h"

namespace Common {

namespace {

// What printf(data) would give where `data` has no conversion but "%%".
string formatWithoutArguments(char const* data, unsigned int length) {
    unsigned int const end = data != nullptr ? static_cast<unsigned int>(strnlen(data, length)) : 0;
    auto text = std::make_unique<char[]>(std::size_t{end} + 1);
    unsigned int n = 0;
    for (unsigned int i = 0; i < end; ++i) {
        text[n++] = data[i];
        if (data[i] == '%' && i + 1 < end && data[i + 1] == '%') ++i;
    }
    return string(text.get(), n);
}

}  // namespace

void OutputStreamToConsole::Accept(char const* data, unsigned int const& length) {
    string const text = formatWithoutArguments(data, length);
    std::fwrite(text.c_str(), 1, text.size(), stdout);
}

void OutputStreamToLog::Accept(char const* data, unsigned int const& length) {
    if (data == nullptr) {
        DebugLogger::LogMessage(1, nullptr, true, true);
        return;
    }
    DebugLogger::LogCommand("%s", formatWithoutArguments(data, length).c_str());
}

OutputStreamToFile::OutputStreamToFile(bool const& append) : m_file(nullptr), m_append(append) {}

OutputStreamToFile::OutputStreamToFile(char const* path, bool const& append)
    : m_file(nullptr), m_append(append) {
    Open(path, append);
}

OutputStreamToFile::~OutputStreamToFile() {
    Close();
}

bool OutputStreamToFile::Open(char const* path, bool const& append) {
    Close();
    m_append = append;
    m_file = std::fopen(path, append ? "ab" : "wb");
    return m_file != nullptr;
}

void OutputStreamToFile::Close() {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = nullptr;
}

void OutputStreamToFile::Accept(char const* data, unsigned int const& length) {
    if (m_file == nullptr || data == nullptr) return;
    std::fwrite(data, 1, length, m_file);
    std::fflush(m_file);
}

void OutputStreamToBuffer::Accept(char const* data, unsigned int const& length) {
    unsigned int left = data != nullptr ? length : 0;
    while (left > 0) {
        if (m_chunks.empty() || m_used == CHUNK_SIZE) {
            m_chunks.push_back(Chunk());
            m_used = 0;
        }
        unsigned int const n = left < CHUNK_SIZE - m_used ? left : CHUNK_SIZE - m_used;
        list<Chunk>::iterator last = m_chunks.end();
        --last;
        std::memcpy(last->bytes + m_used, data, n);
        m_used += n;
        data += n;
        left -= n;
    }
}

unsigned int OutputStreamToBuffer::size() const {
    unsigned int const chunks = m_chunks.size();
    unsigned int const full = chunks < 2 ? 0 : (chunks - 1) * CHUNK_SIZE;
    return full + m_used + m_collected.size();
}

void OutputStreamToBuffer::Collect() {
    if (m_chunks.empty()) return;
    unsigned int const total = size();
    auto text = std::make_unique<char[]>(total);
    std::memcpy(text.get(), m_collected.c_str(), m_collected.size());
    unsigned int n = m_collected.size();
    for (list<Chunk>::const_iterator i = m_chunks.begin(); n < total; ++i) {
        unsigned int const part = total - n < CHUNK_SIZE ? total - n : CHUNK_SIZE;
        std::memcpy(text.get() + n, i->bytes, part);
        n += part;
    }
    m_collected.assign(text.get(), total);
    m_chunks.clear();
    m_used = 0;
}

void OutputStreamToBuffer::Clear() {
    m_chunks.clear();
    m_used = 0;
    m_collected.clear();
}

string const& OutputStreamToBuffer::buffer() {
    Collect();
    return m_collected;
}

char const* OutputStreamToBuffer::c_str() {
    return buffer().c_str();
}

string OutputStreamToBuffer::getSubStr(unsigned int position, char const* delimiter,
                                       unsigned int delimiterLength) {
    string const& text = buffer();
    if (position >= text.size()) return string();
    unsigned int const end = text.find(delimiter, position, delimiterLength);
    return text.substr(position, (end != string::npos ? end : text.size()) - position);
}

}  // namespace Common
