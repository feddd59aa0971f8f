#include "simulator/controller_parts.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace simulator {

namespace {

constexpr std::size_t NVRAM_SIZE = 256;
constexpr std::size_t CACHE_IMAGE_LIMIT = 49152;
constexpr std::uint64_t FLASH_TIME = 2'000'000;

}  // namespace

ControllerParts::ControllerParts(Object const& device, std::filesystem::path const& firmware,
                                 std::string const& name) {
    if (auto const value = device.find("cache_firmware")) {
        Object const object(*value);
        auto const version = object.at("version").number(255, 1);
        m_cache.emplace(firmware / (name + ".cache"), object.textOr("family", "FBWC", IMAGE_FAMILY_SIZE),
                        std::to_string(version));
        object.refuseOthers();
    }
    if (auto const list = device.find("i2c_nvram"))
        for (Value const& value : list->list()) {
            Object const object(value);
            Value const id = object.at("id");
            Bytes contents;
            if (auto const text = object.find("contents"))
                if (!text->json().is_string() ||
                    !fromHex(text->json().get_ref<std::string const&>(), contents) ||
                    contents.size() > NVRAM_SIZE)
                    text->refuse("at most 256 bytes as hexadecimal text");
            contents.resize(NVRAM_SIZE, 0xFF);
            if (!m_nvram.emplace(static_cast<unsigned>(id.number(255)), std::move(contents)).second)
                id.refuse("an identity of its own");
            object.refuseOthers();
        }
}

unsigned ControllerParts::cacheVersion() const {
    return m_cache ? static_cast<unsigned>(std::stoul(m_cache->running())) : 0;
}

std::vector<FirmwarePart> ControllerParts::parts() const {
    if (!m_cache) return {};
    return {{"cache", "cache_module", &*m_cache}};
}

Reply ControllerParts::flashCache(Bytes const& image) {
    if (!m_cache)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, "no cache module that takes firmware");
    std::string problem;
    ImageInfo info;
    if (image.size() > CACHE_IMAGE_LIMIT)
        problem = "an image of " + std::to_string(image.size()) + " bytes, a cache module takes " +
                  std::to_string(CACHE_IMAGE_LIMIT);
    if (problem.empty()) problem = m_cache->check(image, 3, info);
    if (problem.empty()) problem = byteVersionProblem(info.version);
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    std::string const before = m_cache->running();
    m_cache->store(image, info);
    m_cache->restart();
    Reply reply;
    reply.microseconds = FLASH_TIME;
    reply.events.push_back("cache module firmware " + info.version + " (" + std::to_string(image.size()) +
                           " bytes) runs, before it " + before);
    return reply;
}

Reply ControllerParts::readNvram(unsigned id) const {
    auto const found = m_nvram.find(id);
    // Asking is how one learns what is there: no error in the journal.
    if (found == m_nvram.end()) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    Reply reply;
    reply.data = found->second;
    return reply;
}

Reply ControllerParts::writeNvram(unsigned id, Bytes const& data) {
    auto const found = m_nvram.find(id);
    std::string problem;
    if (found == m_nvram.end())
        problem = "NVRAM " + std::to_string(id) + " doesn't answer on the I2C bus";
    else if (data.empty() || data.size() > NVRAM_SIZE)
        problem =
            std::to_string(data.size()) + " bytes for NVRAM " + std::to_string(id) + ", expected 1 to 256";
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    std::copy(data.begin(), data.end(), found->second.begin());
    return {};
}

nlohmann::json ControllerParts::save() const {
    nlohmann::json state = nlohmann::json::object();
    if (m_cache) state["cache"] = m_cache->save();
    for (auto const& [id, contents] : m_nvram)
        state["nvram"][std::to_string(id)] = toHex(contents);
    return state;
}

void ControllerParts::load(nlohmann::json const& state) {
    if (m_cache) m_cache->load(state.at("cache"));
    for (auto& [id, contents] : m_nvram) {
        Bytes bytes;
        if (fromHex(state.at("nvram").at(std::to_string(id)).get<std::string>(), bytes) &&
            bytes.size() == NVRAM_SIZE)
            contents = std::move(bytes);
    }
}

}  // namespace simulator
