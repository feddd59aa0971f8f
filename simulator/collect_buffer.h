#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "simulator/bytes.h"

namespace simulator {

/// A controller's collection buffer and the judge of what goes into it: chunks 1 to N in order, N constant,
/// 16,384 bytes each but for the last, which has 1 to 16,384.
///
/// It lives in a file of its own that grows by a chunk at a time: an eight-byte head (chunks announced,
/// chunks received), then the data. The head is written last, so a chunk that was cut short isn't there.
class CollectBuffer {
  public:
    static constexpr std::size_t CHUNK = 16384;

    /// Collections that would pass `limit` bytes are refused.
    CollectBuffer(std::filesystem::path file, std::size_t limit);

    /// Takes chunk `number` of `count`. Returns what is out of protocol, or an empty text.
    std::string collect(unsigned number, unsigned count, std::span<std::uint8_t const> chunk);
    /// Drops what was collected; whether there was anything.
    bool drop();
    /// Whether all announced chunks are here.
    bool complete() const;
    /// "3 of 13 chunks", or "nothing".
    std::string describe() const;
    Bytes contents() const;

  private:
    struct Head {
        unsigned count = 0;  ///< 0: nothing is collected
        unsigned received = 0;
    };
    Head head() const;

    std::filesystem::path m_file;
    std::size_t m_limit;
};

}  // namespace simulator
