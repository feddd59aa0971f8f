#pragma once

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "simulator/machine.h"
#include "simulator/rom_image.h"

namespace simulator {

/// A controller's firmware: what runs, and the images in its active and its inactive ROM. Three files hold
/// images, of which two are the ROMs and the third is where the next image goes: what a ROM holds changes
/// only when the state that says so is saved, so a program killed in between loses nothing.
class ControllerFirmware {
  public:
    /// Versions that a new machine begins with; without `inactive` that ROM is empty.
    struct Versions {
        std::string running;
        std::string active;
        std::optional<std::string> inactive;
    };

    ControllerFirmware(std::filesystem::path directory, std::string device, std::string family,
                       Versions versions);

    std::string const& family() const { return m_family; }
    std::string const& running() const { return m_running.version; }
    /// Empty when that ROM is.
    std::string const& version(Rom rom) const { return image(rom).version; }
    Bytes contents(Rom rom) const;
    /// Whether what runs isn't what is in the active ROM.
    bool restartNeeded() const;

    void initialise();
    /// Puts an image in the place of the inactive one and makes it the active one.
    void store(Bytes const& bytes, ImageInfo const& info);
    /// False, and nothing changes, when the inactive ROM is empty.
    bool toggle();
    /// What is in the active ROM runs. Whether that is a change.
    bool restart();

    nlohmann::json save() const;
    void load(nlohmann::json const& state);

  private:
    struct Image {
        std::string version;
        std::uint32_t crc = 0;  ///< of the whole image: two builds of one version differ
        std::string source;     ///< "factory" or "flash"
        unsigned file = 0;
    };
    Image const& image(Rom rom) const { return rom == Rom::Active ? m_active : m_inactive; }
    std::filesystem::path file(unsigned number) const;
    Image write(unsigned number, Bytes const& bytes, std::string const& version,
                std::string const& source) const;
    static nlohmann::json toJson(Image const& image);
    static Image fromJson(nlohmann::json const& json);

    std::filesystem::path m_directory;
    std::string m_device;
    std::string m_family;
    Versions m_factory;
    Image m_running;
    Image m_active;
    Image m_inactive;
};

}  // namespace simulator
