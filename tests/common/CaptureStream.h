#pragma once

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

    CaptureStream(Lines& lines, std::string const& prefix) : m_lines(lines), m_prefix(prefix) {}
    void Accept(char const* data, unsigned int const& length) override {
        m_lines.pieces.push_back(m_prefix + std::string(data, length));
    }

    static void attach(Lines& lines, int mask, std::string const& prefix = "") {
        Common::DebugLogger::RegisterDebugOutputStream(
            mask, Common::shared_ptr<Common::OutputStream>(new CaptureStream(lines, prefix)));
    }

  private:
    Lines& m_lines;
    std::string m_prefix;
};
