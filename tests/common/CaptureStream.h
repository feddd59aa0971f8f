#ifndef TESTS_COMMON_CAPTURE_STREAM_H
#define TESTS_COMMON_CAPTURE_STREAM_H

#include <string>
#include <vector>

#include "common/debug_logger.h"

// Keeps each piece that it accepts in a record that outlives it.
class CaptureStream : public Common::OutputStream {
  public:
    struct Lines {
        std::vector<std::string> pieces;

        std::string text() const {
            std::string all;
            for (std::string const& piece : pieces)
                all += piece;
            return all;
        }
        std::size_t count(std::string const& part) const {
            std::size_t n = 0;
            for (std::string const& piece : pieces)
                n += piece.find(part) != std::string::npos ? 1 : 0;
            return n;
        }
    };

    explicit CaptureStream(Lines& lines) : m_lines(lines) {}
    void Accept(char const* data, unsigned int const& length) override {
        m_lines.pieces.emplace_back(data, length);
    }

    static void attach(Lines& lines, int mask) {
        Common::DebugLogger::RegisterDebugOutputStream(
            mask, Common::shared_ptr<Common::OutputStream>(new CaptureStream(lines)));
    }

  private:
    Lines& m_lines;
};

#endif
