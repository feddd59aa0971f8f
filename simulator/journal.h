#pragma once

/// The machine's journal: one JSON object a line, appended with one write each.

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "simulator/bytes.h"

namespace simulator {

/// `event` says which members mean something: an "exchange" (a request that reached a node) has them all but
/// `text`; "open" (a node that couldn't be opened) has device, node and outcome; "sleep", "power-cycle",
/// "firmware" and "machine" have `text`.
struct JournalEntry {
    std::uint64_t sequence = 0;
    std::uint64_t microseconds = 0;  ///< virtual time at which it began; kept to a millisecond
    std::string event;
    std::string device;
    std::string node;
    std::string unit;  ///< name of a target behind the device, empty for the device itself
    std::string text;

    std::uint64_t exchange = 0;  ///< counted from 1 since the run began
    std::string request;         ///< "SG_IO", "XQRTH_PASSTHRU", ...
    std::uint32_t number = 0;    ///< request number
    Bytes block;                 ///< command block
    std::string command;         ///< decoded name, "FLASH CONTROLLER FIRMWARE"
    std::string direction;       ///< "none", "in", "out", "both"
    std::uint64_t length = 0;    ///< size of the caller's buffer
    std::uint64_t timeoutMilliseconds = 0;
    std::string outcome;  ///< "good", "underrun", "errno EIO", "status 2 sense 5/24/00", ...
    int error = 0;
    int scsiStatus = 0;
    int commandStatus = 0;
    int senseKey = 0;
    int asc = 0;
    int ascq = 0;
    std::uint64_t dataLength = 0;  ///< bytes that crossed, either way
    std::uint32_t dataCrc = 0;     ///< their CRC-32
    Bytes dataFirst;               ///< the first 16 of them
    std::string fault;             ///< the rule that struck, as JSON text
    std::vector<std::string> errors;
    std::vector<std::string> notes;
};

nlohmann::json toJson(JournalEntry const& entry);
/// Throws nlohmann::json::exception when `json` isn't an entry.
JournalEntry toEntry(nlohmann::json const& json);

/// All entries of a file; a line that isn't an entry becomes one of event "unreadable" with its text.
std::vector<JournalEntry> readJournal(std::filesystem::path const& file);

/// Aligned lines for people: number, time, device, command, size, outcome; errors and notes below.
void printJournal(std::vector<JournalEntry> const& entries, std::ostream& out);

/// errno as text: "EIO", or "errno 1234" when it has no name.
std::string errorName(int error);

}  // namespace simulator
