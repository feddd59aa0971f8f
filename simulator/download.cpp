#include "simulator/download.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

#include "simulator/error.h"
#include "simulator/files.h"
#include "simulator/rom_image.h"
#include "simulator/s_record.h"

namespace simulator {

namespace {

constexpr std::uint64_t LARGEST_IMAGE = 16 * 1024 * 1024;
constexpr std::size_t SECTOR = 512;
constexpr std::size_t LENGTH_AT = 36;  ///< payload length in an image's head

bool isHead(std::span<std::uint8_t const> data) {
    std::string_view const magic = "KSLROM1\n";
    return data.size() >= IMAGE_HEADER_SIZE && std::equal(magic.begin(), magic.end(), data.begin());
}

}  // namespace

std::string Download::refuse(std::string problem) {
    drop();
    return problem;
}

std::string Download::readHead(std::span<std::uint8_t const> data) {
    if (!isHead(data)) return "the first chunk doesn't begin with an image's head";
    m_total = IMAGE_HEADER_SIZE + getLittle(&data[LENGTH_AT], 4);
    if (m_total <= LARGEST_IMAGE) return {};
    return "an image of " + std::to_string(m_total) + " bytes announced, expected at most " +
           std::to_string(LARGEST_IMAGE);
}

void Download::append(std::span<std::uint8_t const> data) {
    if (m_received == 0) {
        writeWholeFile(m_file, data);
    } else {
        std::fstream file(m_file, std::ios::binary | std::ios::in | std::ios::out);
        file.seekp(static_cast<std::streamoff>(m_received));
        file.write(reinterpret_cast<char const*>(data.data()), static_cast<std::streamsize>(data.size()));
        file.close();
        if (!file) throw MachineError(m_file.string() + " can't be written");
    }
    m_received += data.size();
}

std::string Download::addBlock(std::optional<std::size_t> offset, std::size_t chunk,
                               std::span<std::uint8_t const> data) {
    // Without offsets the head of an image is all that tells a new beginning.
    bool const begins = offset ? *offset == 0 : isHead(data);
    if (begins || whole()) drop();
    if (offset && *offset != m_received)
        return refuse("chunk at offset " + std::to_string(*offset) + ", expected " +
                      std::to_string(m_received));
    if (m_received == 0)
        if (std::string problem = readHead(data); !problem.empty()) return refuse(std::move(problem));
    std::uint64_t const left = m_total - m_received;
    std::uint64_t const expected = std::min<std::uint64_t>(left, chunk);
    if (data.size() != expected)
        return refuse("chunk at offset " + std::to_string(m_received) + " has " +
                      std::to_string(data.size()) + " bytes, expected " + std::to_string(expected));
    append(data);
    return {};
}

std::string Download::addSectors(std::size_t offset, std::size_t chunk, std::span<std::uint8_t const> data) {
    if (data.empty() || data.size() % SECTOR != 0)
        return refuse("chunk of " + std::to_string(data.size()) + " bytes, expected whole sectors");
    std::uint64_t left = m_total - m_received;
    if (offset == 0) {
        drop();
        if (std::string problem = readHead(data); !problem.empty()) return refuse(std::move(problem));
        left = m_total;
    }
    // A chunk too long by a sector or more goes on as it is, to be refused for its length.
    if (left < data.size() && data.size() - left < SECTOR) {
        auto const padding = data.subspan(left);
        if (std::any_of(padding.begin(), padding.end(), [](auto byte) { return byte != 0; }))
            return refuse("the last sector isn't filled with zeros behind the image's end");
        data = data.first(left);
    }
    return addBlock(offset, chunk, data);
}

std::string Download::addRecords(std::span<std::uint8_t const> text) {
    std::string_view const lines(reinterpret_cast<char const*>(text.data()), text.size());
    bool const begins = lines.starts_with("S0");
    if (begins || m_ended) drop();
    SRecordReader reader;
    reader.address = m_received;
    reader.records = m_records;
    if (std::string problem = reader.read(lines); !problem.empty()) return refuse(std::move(problem));
    if (m_received + reader.image.size() > LARGEST_IMAGE)
        return refuse("an image of more than " + std::to_string(LARGEST_IMAGE) + " bytes");
    if (!reader.image.empty()) append(reader.image);
    m_records = reader.records;
    m_ended = reader.ended;
    return {};
}

bool Download::whole() const {
    return m_ended || (m_total != 0 && m_received == m_total);
}

Bytes Download::contents() const {
    if (m_received == 0) return {};
    Bytes bytes = readWholeFile(m_file);
    bytes.resize(m_received);
    return bytes;
}

std::string Download::describe() const {
    if (!begun()) return "nothing";
    if (m_total != 0) return std::to_string(m_received) + " of " + std::to_string(m_total) + " bytes";
    return std::to_string(m_records) + " data records";
}

void Download::drop() {
    std::error_code ignored;
    std::filesystem::remove(m_file, ignored);
    forget();
}

nlohmann::json Download::save() const {
    return {{"received", m_received}, {"total", m_total}, {"records", m_records}, {"ended", m_ended}};
}

void Download::load(nlohmann::json const& state) {
    m_received = state.at("received").get<std::uint64_t>();
    m_total = state.at("total").get<std::uint64_t>();
    m_records = state.at("records").get<std::uint64_t>();
    m_ended = state.at("ended").get<bool>();
}

}  // namespace simulator
