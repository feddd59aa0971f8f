#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>

#include "simulator/bytes.h"

namespace simulator {

/// Firmware on its way into an enclosure processor or a drive: what has arrived of an image, and the judge of
/// what comes next. The bytes are in a file of their own; what counts is as many of them as the saved state
/// says.
class Download {
  public:
    explicit Download(std::filesystem::path file) : m_file(std::move(file)) {}

    /// A chunk of an image: at `offset`, or without one behind the last. All but the last chunk have `chunk`
    /// bytes. Returns what is out of protocol, and has dropped everything then; or an empty text.
    std::string addBlock(std::optional<std::size_t> offset, std::size_t chunk,
                         std::span<std::uint8_t const> data);
    /// As addBlock(), of whole sectors: zeros fill the last one.
    std::string addSectors(std::size_t offset, std::size_t chunk, std::span<std::uint8_t const> data);
    /// Whole lines of S-records. As addBlock().
    std::string addRecords(std::span<std::uint8_t const> text);

    bool begun() const { return m_received != 0 || m_records != 0; }
    /// All of the image's length is here, or its end record.
    bool whole() const;
    Bytes contents() const;
    /// "4096 of 20000 bytes", or "nothing".
    std::string describe() const;
    void drop();
    /// Nothing has arrived, whatever the file holds.
    void forget() {
        m_received = m_total = m_records = 0;
        m_ended = false;
    }

    nlohmann::json save() const;
    void load(nlohmann::json const& state);

  private:
    void append(std::span<std::uint8_t const> data);
    std::string refuse(std::string problem);
    /// Takes the image's length out of its head.
    std::string readHead(std::span<std::uint8_t const> data);

    std::filesystem::path m_file;
    std::uint64_t m_received = 0;  ///< bytes of the image
    std::uint64_t m_total = 0;     ///< that its head announces; 0 for S-records
    std::uint64_t m_records = 0;   ///< data records
    bool m_ended = false;
};

}  // namespace simulator
