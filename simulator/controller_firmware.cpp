#include "simulator/controller_firmware.h"

#include <nlohmann/json.hpp>

#include "simulator/files.h"

namespace simulator {

namespace {

/// Size of the images that a new machine's ROMs hold.
constexpr std::size_t FACTORY_IMAGE_SIZE = 4096;
constexpr unsigned FILES = 3;

std::span<std::uint8_t const> bytesOf(std::string const& text) {
    return {reinterpret_cast<std::uint8_t const*>(text.data()), text.size()};
}

}  // namespace

ControllerFirmware::ControllerFirmware(std::filesystem::path directory, std::string device,
                                       std::string family, Versions versions)
    : m_directory(std::move(directory)),
      m_device(std::move(device)),
      m_family(std::move(family)),
      m_factory(std::move(versions)) {}

std::filesystem::path ControllerFirmware::file(unsigned number) const {
    return m_directory / (m_device + ".rom" + std::to_string(number));
}

ControllerFirmware::Image ControllerFirmware::write(unsigned number, Bytes const& bytes,
                                                    std::string const& version,
                                                    std::string const& source) const {
    writeWholeFile(file(number), bytes);
    return {version, crc32(bytes), source, number};
}

Bytes ControllerFirmware::contents(Rom rom) const {
    return image(rom).version.empty() ? Bytes() : readWholeFile(file(image(rom).file));
}

bool ControllerFirmware::restartNeeded() const {
    return m_running.version != m_active.version || m_running.crc != m_active.crc;
}

void ControllerFirmware::initialise() {
    auto const factory = [&](std::string const& version, unsigned number) {
        std::uint64_t const seed = crc32(bytesOf(m_device + version));
        return write(number, makeImage(m_family, version, FACTORY_IMAGE_SIZE, seed), version, "factory");
    };
    m_active = factory(m_factory.active, 0);
    m_inactive = m_factory.inactive ? factory(*m_factory.inactive, 1) : Image{"", 0, "", 1};
    m_running = m_active;
    if (m_factory.running != m_factory.active) m_running = {m_factory.running, 0, "factory", 0};
}

void ControllerFirmware::store(Bytes const& bytes, ImageInfo const& info) {
    unsigned const spare = FILES - m_active.file - m_inactive.file;
    m_inactive = write(spare, bytes, info.version, "flash");
    std::swap(m_active, m_inactive);
}

bool ControllerFirmware::toggle() {
    if (m_inactive.version.empty()) return false;
    std::swap(m_active, m_inactive);
    return true;
}

bool ControllerFirmware::restart() {
    bool const changes = restartNeeded();
    m_running = m_active;
    return changes;
}

nlohmann::json ControllerFirmware::toJson(Image const& image) {
    return {{"version", image.version}, {"crc32", image.crc}, {"source", image.source}, {"file", image.file}};
}

ControllerFirmware::Image ControllerFirmware::fromJson(nlohmann::json const& json) {
    return {json.at("version").get<std::string>(), json.at("crc32").get<std::uint32_t>(),
            json.at("source").get<std::string>(), json.at("file").get<unsigned>() % FILES};
}

nlohmann::json ControllerFirmware::save() const {
    return {{"running", toJson(m_running)},
            {"active_rom", toJson(m_active)},
            {"inactive_rom", toJson(m_inactive)}};
}

void ControllerFirmware::load(nlohmann::json const& state) {
    m_running = fromJson(state.at("running"));
    m_active = fromJson(state.at("active_rom"));
    m_inactive = fromJson(state.at("inactive_rom"));
}

}  // namespace simulator
