#pragma once

#include <cstdio>

#include "common/data_buffer.h"
#include "common/global_static_allocator.h"
#include "common/list.h"
#include "common/string.h"

namespace Common {

// A sink of text. Streams come from the fixed pool: `new` of one may be null. A stream registered with
// DebugLogger runs under the logger's mutex and must not log.
class OutputStream : public virtual GlobalStaticAllocator {
  public:
    virtual ~OutputStream() = default;
    // `length` bytes at `data`; null `data` counts as no bytes. A stream that fails doesn't report.
    virtual void Accept(char const* data, unsigned int const& length) = 0;
};

// The console takes its data as a format without arguments: "%%" prints "%". Any other
// conversion would read arguments that nobody passed: it is refused and written as it stands. Ends at
// `length` or at a zero byte.
class OutputStreamToConsole : public OutputStream {
  public:
    void Accept(char const* data, unsigned int const& length) override;
};

// To DebugLogger::LogCommand, with the console's rule for percent signs. Not to be registered with
// DebugLogger itself.
class OutputStreamToLog : public OutputStream {
  public:
    void Accept(char const* data, unsigned int const& length) override;
};

// Flushes each write. Without an open file it does nothing. The destructor closes.
class OutputStreamToFile : public OutputStream {
  public:
    explicit OutputStreamToFile(bool const& append);  // closed until Open
    OutputStreamToFile(char const* path, bool const& append);
    explicit OutputStreamToFile(char const*) = delete;  // would be taken for a bool
    OutputStreamToFile(OutputStreamToFile const&) = delete;
    OutputStreamToFile& operator=(OutputStreamToFile const&) = delete;
    ~OutputStreamToFile() override;

    // Closes what was open. True when the file is open.
    bool Open(char const* path, bool const& append);
    bool Open(char const* path) { return Open(path, m_append); }
    bool isOpen() const { return m_file != nullptr; }

    void Accept(char const* data, unsigned int const& length) override;

  private:
    void Close();

    std::FILE* m_file;
    bool m_append;
};

class OutputStreamToBuffer : public virtual DataBuffer, public virtual OutputStream {
  public:
    static constexpr unsigned int CHUNK_SIZE = 8192;

    OutputStreamToBuffer() = default;

    void Accept(char const* data, unsigned int const& length) override;

    // Moves the chunks behind the text collected so far.
    void Collect() override;

    unsigned int size() const;
    bool empty() const { return size() == 0; }
    void Clear();
    unsigned int chunkCount() const { return m_chunks.size(); }

    // Collect first, then give the whole text.
    string const& buffer();
    char const* c_str();

    // From `position` up to the next delimiter, without it, or to the end when none follows. Empty past
    // the end. Collects first.
    string getSubStr(unsigned int position, char const* delimiter, unsigned int delimiterLength);

  private:
    struct Chunk {
        char bytes[CHUNK_SIZE];
    };

    list<Chunk> m_chunks;
    unsigned int m_used = 0;  // bytes in the last chunk
    string m_collected;
};

}  // namespace Common
