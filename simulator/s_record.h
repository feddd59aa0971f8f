#pragma once

/// S-records: firmware as lines of text. "S", a type, a count of the bytes that follow, an address of 2, 3 or
/// 4 bytes, data, and a checksum that makes count, address, data and itself add up to 0xFF; all in
/// hexadecimal.
///   S0 header; S1, S2, S3 data; S5, S6 number of data records so far; S7, S8, S9 end

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "simulator/bytes.h"

namespace simulator {

struct SRecord {
    char type = '0';
    std::uint32_t address = 0;
    Bytes data;
};

/// Reads a line without its end. Returns what is wrong, or an empty text.
std::string parseSRecord(std::string_view line, SRecord& record);

/// Lines of 32 bytes of data from address 0 up, with header and end.
std::string makeSRecords(std::span<std::uint8_t const> image, std::string_view title);

/// What of an image has arrived so far, and what text must follow.
struct SRecordReader {
    Bytes image;                ///< data of this call, to be appended to what came before
    std::uint64_t address = 0;  ///< of the next data record
    std::uint64_t records = 0;  ///< data records so far
    bool ended = false;

    /// Whole lines, each with CR, LF or both. Returns what is wrong, or an empty text.
    std::string read(std::string_view text);
};

}  // namespace simulator
