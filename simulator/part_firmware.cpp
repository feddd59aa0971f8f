#include "simulator/part_firmware.h"

#include <nlohmann/json.hpp>

#include "simulator/files.h"

namespace simulator {

namespace {

constexpr std::size_t FACTORY_IMAGE_SIZE = 4096;

}  // namespace

std::string byteVersionProblem(std::string const& version) {
    bool const digits = !version.empty() && version.size() <= 3 &&
                        version.find_first_not_of("0123456789") == std::string::npos;
    if (digits && std::stoul(version) >= 1 && std::stoul(version) <= 255) return {};
    return "image of version \"" + version + "\", expected a number from 1 to 255";
}

PartFirmware::PartFirmware(std::filesystem::path base, std::string family, std::string version)
    : m_base(std::move(base)), m_family(std::move(family)), m_factoryVersion(std::move(version)) {
    reset();
}

std::filesystem::path PartFirmware::file(unsigned number) const {
    return m_base.string() + ".part" + std::to_string(number);
}

Bytes PartFirmware::factoryImage() const {
    auto const* const letters = reinterpret_cast<std::uint8_t const*>(m_factoryVersion.data());
    return makeImage(m_family, m_factoryVersion, FACTORY_IMAGE_SIZE,
                     crc32({letters, m_factoryVersion.size()}));
}

Bytes PartFirmware::contents() const {
    return m_file == FACTORY ? factoryImage() : readWholeFile(file(m_file));
}

std::string PartFirmware::check(std::span<std::uint8_t const> image, std::size_t longestVersion,
                                ImageInfo& info) const {
    std::string problem = checkImage(image, info);
    if (problem.empty() && info.family != m_family)
        problem = "image for \"" + info.family + "\", this is \"" + m_family + "\"";
    if (problem.empty() && (info.version.empty() || info.version.size() > longestVersion))
        problem = "image of version \"" + info.version + "\", expected 1 to " +
                  std::to_string(longestVersion) + " characters";
    return problem;
}

void PartFirmware::store(Bytes const& image, ImageInfo const& info) {
    unsigned const next = m_file == 0 ? 1 : 0;
    writeWholeFile(file(next), image);
    m_file = next;
    m_stored = {info.version, crc32(image)};
}

bool PartFirmware::restart() {
    bool const changes = restartNeeded();
    m_running = m_stored;
    return changes;
}

void PartFirmware::reset() {
    // No image has this checksum but one in four billion: the factory's isn't made to find out.
    m_running = m_stored = {m_factoryVersion, 0};
    m_file = FACTORY;
}

nlohmann::json PartFirmware::save() const {
    return {{"running", {{"version", m_running.version}, {"crc32", m_running.crc}}},
            {"stored", {{"version", m_stored.version}, {"crc32", m_stored.crc}}},
            {"file", m_file}};
}

void PartFirmware::load(nlohmann::json const& state) {
    auto const image = [&](char const* key) {
        return Image{state.at(key).at("version").get<std::string>(),
                     state.at(key).at("crc32").get<std::uint32_t>()};
    };
    m_running = image("running");
    m_stored = image("stored");
    m_file = state.at("file").get<unsigned>() % 3;
}

}  // namespace simulator
