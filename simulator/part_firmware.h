#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "simulator/bytes.h"
#include "simulator/rom_image.h"

namespace simulator {

/// The firmware of a drive, a carrier or a cache module: what runs, and what is stored and may wait for a
/// restart. A part that was never flashed has no file and no state, so that a thousand drives cost nothing.
class PartFirmware {
  public:
    /// `base` is where its files are, less their endings; images are for `family` only.
    PartFirmware(std::filesystem::path base, std::string family, std::string version);

    std::string const& family() const { return m_family; }
    std::string const& running() const { return m_running.version; }
    std::string const& stored() const { return m_stored.version; }
    bool restartNeeded() const { return m_running.crc != m_stored.crc; }
    /// Never flashed.
    bool pristine() const { return m_file == FACTORY; }
    /// The image that is stored.
    Bytes contents() const;

    /// What is wrong with an image for this part, or an empty text; `info` is what it says of itself.
    std::string check(std::span<std::uint8_t const> image, std::size_t longestVersion, ImageInfo& info) const;
    void store(Bytes const& image, ImageInfo const& info);
    /// What is stored runs. Whether that is a change.
    bool restart();

    nlohmann::json save() const;
    void load(nlohmann::json const& state);
    /// As it left the factory.
    void reset();

  private:
    struct Image {
        std::string version;
        std::uint32_t crc = 0;
    };
    static constexpr unsigned FACTORY = 2;  ///< as m_file: none
    Bytes factoryImage() const;
    std::filesystem::path file(unsigned number) const;

    std::filesystem::path m_base;
    std::string m_family;
    std::string m_factoryVersion;
    Image m_running;
    Image m_stored;
    unsigned m_file = FACTORY;  ///< of two that take turns: what is stored changes with the saved state only
};

/// Something in a device that has firmware of its own.
struct FirmwarePart {
    std::string name;  ///< within the device: "carrier"
    std::string kind;
    PartFirmware const* firmware;
};

/// What is wrong with a version that a record has one byte for, or an empty text.
std::string byteVersionProblem(std::string const& version);

}  // namespace simulator
