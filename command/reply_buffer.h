#pragma once

#include "common/copy_ptr.h"

// A command's data: the reply it waits for or the payload it carries. Copies are deep.
class ReplyBuffer {
  public:
    // `length` zero bytes.
    explicit ReplyBuffer(unsigned int length);

    unsigned char* data() { return m_block.get(); }
    unsigned char const* data() const { return m_block.get(); }
    // What a request is told of. Behind it the storage may go on with zeros, see Assign.
    unsigned int length() const { return m_length; }

    // At least `length` bytes; what is new is zero, what was there stays. Never shrinks.
    void Grow(unsigned int length);
    // Exactly `length` bytes, copied from `data`; null for zeros. The storage keeps at least the bytes that
    // the buffer was made with, so that a record over it stays whole.
    void Assign(unsigned char const* data, unsigned int length);

  private:
    void Allocate(unsigned int storage, unsigned char const* contents, unsigned int count);

    Common::copy_ptr<unsigned char> m_block;
    unsigned int m_length;
    unsigned int m_minimum;
};
