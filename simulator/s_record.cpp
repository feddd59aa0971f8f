#include "simulator/s_record.h"

#include <algorithm>
#include <cstdio>

namespace simulator {

namespace {

constexpr std::size_t DATA_PER_LINE = 32;

/// Bytes of the address by type; 0 for a type that isn't there.
constexpr std::size_t ADDRESS_BYTES[] = {2, 2, 3, 4, 0, 2, 3, 4, 3, 2};

std::string makeLine(char type, std::uint32_t address, std::span<std::uint8_t const> data) {
    std::size_t const addressBytes = ADDRESS_BYTES[type - '0'];
    Bytes bytes(1 + addressBytes);
    bytes[0] = static_cast<std::uint8_t>(addressBytes + data.size() + 1);
    putBig(&bytes[1], addressBytes, address);
    bytes.insert(bytes.end(), data.begin(), data.end());
    std::uint8_t sum = 0;
    for (std::uint8_t const byte : bytes)
        sum = static_cast<std::uint8_t>(sum + byte);
    bytes.push_back(static_cast<std::uint8_t>(~sum));
    std::string line = {'S', type};
    for (char const digit : toHex(bytes))
        line += digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    return line + "\r\n";
}

}  // namespace

std::string parseSRecord(std::string_view line, SRecord& record) {
    std::string const shown(line.substr(0, 12));
    if (line.size() < 4 || line[0] != 'S') return "line \"" + shown + "\", expected an S-record";
    if (line[1] < '0' || line[1] > '9' || ADDRESS_BYTES[line[1] - '0'] == 0)
        return "line \"" + shown + "\": no such type of S-record";
    Bytes bytes;
    bool const hexadecimal = line.find(' ') == std::string_view::npos && fromHex(line.substr(2), bytes);
    if (!hexadecimal) return "line \"" + shown + "\": not pairs of hexadecimal digits";
    std::size_t const addressBytes = ADDRESS_BYTES[line[1] - '0'];
    if (bytes[0] != bytes.size() - 1 || bytes.size() < addressBytes + 2)
        return "line \"" + shown + "\": count " + std::to_string(bytes[0]) + ", found " +
               std::to_string(bytes.size() - 1) + " bytes";
    std::uint8_t sum = 0;
    for (std::uint8_t const byte : bytes)
        sum = static_cast<std::uint8_t>(sum + byte);
    if (sum != 0xFF) {
        auto const right = static_cast<std::uint8_t>(0xFF - (sum - bytes.back()));
        return "line \"" + shown + "\": checksum " + std::to_string(bytes.back()) + ", computed " +
               std::to_string(right);
    }
    record.type = line[1];
    record.address = static_cast<std::uint32_t>(getBig(&bytes[1], addressBytes));
    record.data.assign(bytes.begin() + 1 + static_cast<std::ptrdiff_t>(addressBytes), bytes.end() - 1);
    return {};
}

std::string makeSRecords(std::span<std::uint8_t const> image, std::string_view title) {
    auto const* const letters = reinterpret_cast<std::uint8_t const*>(title.data());
    std::string text = makeLine('0', 0, {letters, std::min<std::size_t>(title.size(), DATA_PER_LINE)});
    for (std::size_t at = 0; at < image.size(); at += DATA_PER_LINE)
        text += makeLine('3', static_cast<std::uint32_t>(at),
                         image.subspan(at, std::min(DATA_PER_LINE, image.size() - at)));
    return text + makeLine('7', 0, {});
}

std::string SRecordReader::read(std::string_view text) {
    while (!text.empty()) {
        std::size_t const length = text.find_first_of("\r\n");
        if (length == std::string_view::npos)
            return "line \"" + std::string(text.substr(0, 12)) + "\" has no end";
        SRecord record;
        if (std::string problem = parseSRecord(text.substr(0, length), record); !problem.empty())
            return problem;
        if (ended) return "a line behind the end record";
        text.remove_prefix(length);
        for (int i = 0; i < 2 && !text.empty() && (text[0] == '\r' || text[0] == '\n'); ++i)
            text.remove_prefix(1);
        if (record.type >= '1' && record.type <= '3') {
            if (record.address != address)
                return "data for address " + std::to_string(record.address) + ", expected address " +
                       std::to_string(address);
            image.insert(image.end(), record.data.begin(), record.data.end());
            address += record.data.size();
            ++records;
        } else if (record.type == '5' || record.type == '6') {
            if (record.address != records)
                return std::to_string(record.address) + " data records announced, " +
                       std::to_string(records) + " arrived";
        } else if (record.type >= '7') {
            ended = true;
        }
    }
    return {};
}

}  // namespace simulator
