#pragma once

/// An array controller's own NVRAM: 2,048 bytes that a power cycle doesn't change. Its commands come through
/// the pass-through to the controller, as sixteen bytes:
///
///   0  1  0x26 reads, 0x27 writes         6  1  0x42
///   2  2  offset, low byte first          8  1  0xD4
///   4  1  count of a write                9  1  1
///
/// and zeros. A read has offset and count 0 and brings all bytes; a write has as many bytes as it counts.

#include <map>

#include "simulator/exchange.h"
#include "simulator/value.h"

namespace simulator {

class ControllerNvram {
  public:
    static constexpr std::size_t SIZE = 2048;
    static constexpr std::uint8_t CODE = 0x42;  ///< byte 6

    /// Reads "nvram" of a device, an object of offsets and bytes; all others are zero. Throws ScenarioError.
    explicit ControllerNvram(Object const& device);

    /// What the journal calls a command of this code.
    static char const* commandName(Command const& command);
    Reply execute(Command const& command);

    /// The bytes that aren't zero, by offset.
    std::map<unsigned, unsigned> contents() const;
    nlohmann::json save() const;
    void load(nlohmann::json const& state);

  private:
    Bytes m_bytes = Bytes(SIZE, 0);
};

}  // namespace simulator
