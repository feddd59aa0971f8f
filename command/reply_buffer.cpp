#include "command/reply_buffer.h"

#include <algorithm>
#include <cstring>

ReplyBuffer::ReplyBuffer(unsigned int length) : m_length(length), m_minimum(length) {
    Allocate(length, nullptr, 0);
}

void ReplyBuffer::Grow(unsigned int length) {
    if (length <= m_length) return;
    Allocate(std::max(length, m_minimum), m_block.get(), m_length);
    m_length = length;
}

void ReplyBuffer::Assign(unsigned char const* data, unsigned int length) {
    Allocate(std::max(length, m_minimum), data, data != nullptr ? length : 0);
    m_length = length;
}

// At least one byte, so that there is always a block.
void ReplyBuffer::Allocate(unsigned int storage, unsigned char const* contents, unsigned int count) {
    unsigned int const size = std::max(storage, 1U);
    unsigned char* const fresh = new unsigned char[size]();
    if (count != 0) std::memcpy(fresh, contents, count);
    m_block = Common::copy_ptr<unsigned char>(fresh, size, true);
}
