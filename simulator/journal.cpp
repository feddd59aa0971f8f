#include "simulator/journal.h"

#include <string.h>

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

namespace simulator {

using nlohmann::json;

namespace {

std::string number(std::uint32_t value, int digits) {
    std::ostringstream text;
    text << "0x" << std::uppercase << std::hex << std::setfill('0') << std::setw(digits) << value;
    return text.str();
}

std::uint32_t fromNumber(json const& value) {
    return static_cast<std::uint32_t>(std::stoul(value.get<std::string>(), nullptr, 16));
}

Bytes hexBytes(json const& value) {
    Bytes bytes;
    fromHex(value.get<std::string>(), bytes);
    return bytes;
}

std::string seconds(std::uint64_t microseconds) {
    std::ostringstream text;
    text << microseconds / 1000000 << '.' << std::setfill('0') << std::setw(3) << microseconds / 1000 % 1000;
    return text.str();
}

/// "left", or "left/front" for what is behind it.
std::string place(JournalEntry const& entry) {
    return entry.unit.empty() ? entry.device : entry.device + "/" + entry.unit;
}

}  // namespace

json toJson(JournalEntry const& entry) {
    json line = {{"seq", entry.sequence},
                 {"time", static_cast<double>(entry.microseconds / 1000) / 1000.0},
                 {"event", entry.event}};
    if (!entry.device.empty()) line["device"] = entry.device;
    if (!entry.node.empty()) line["node"] = entry.node;
    if (!entry.unit.empty()) line["unit"] = entry.unit;
    if (!entry.text.empty()) line["text"] = entry.text;
    if (!entry.outcome.empty()) line["outcome"] = entry.outcome;
    if (entry.error != 0) line["errno"] = entry.error;
    if (entry.event == "exchange") {
        line["exchange"] = entry.exchange;
        line["request"] = entry.request;
        line["number"] = number(entry.number, 4);
        line["block"] = toHex(entry.block, " ");
        line["command"] = entry.command;
        line["direction"] = entry.direction;
        line["length"] = entry.length;
        line["timeout_ms"] = entry.timeoutMilliseconds;
        if (entry.error == 0) {
            line["scsi_status"] = entry.scsiStatus;
            line["command_status"] = entry.commandStatus;
            if (entry.scsiStatus != 0) line["sense"] = {entry.senseKey, entry.asc, entry.ascq};
        }
        if (entry.dataLength != 0)
            line["data"] = {{"length", entry.dataLength},
                            {"crc32", number(entry.dataCrc, 8)},
                            {"first", toHex(entry.dataFirst, " ")}};
    }
    if (!entry.fault.empty()) line["fault"] = entry.fault;
    if (!entry.errors.empty()) line["errors"] = entry.errors;
    if (!entry.notes.empty()) line["notes"] = entry.notes;
    return line;
}

JournalEntry toEntry(json const& line) {
    JournalEntry entry;
    entry.sequence = line.at("seq").get<std::uint64_t>();
    entry.microseconds = static_cast<std::uint64_t>(line.at("time").get<double>() * 1000.0 + 0.5) * 1000;
    entry.event = line.at("event").get<std::string>();
    entry.device = line.value("device", "");
    entry.node = line.value("node", "");
    entry.unit = line.value("unit", "");
    entry.text = line.value("text", "");
    entry.outcome = line.value("outcome", "");
    entry.error = line.value("errno", 0);
    entry.fault = line.value("fault", "");
    entry.errors = line.value("errors", std::vector<std::string>());
    entry.notes = line.value("notes", std::vector<std::string>());
    if (entry.event != "exchange") return entry;
    entry.exchange = line.at("exchange").get<std::uint64_t>();
    entry.request = line.at("request").get<std::string>();
    entry.number = fromNumber(line.at("number"));
    entry.block = hexBytes(line.at("block"));
    entry.command = line.at("command").get<std::string>();
    entry.direction = line.at("direction").get<std::string>();
    entry.length = line.at("length").get<std::uint64_t>();
    entry.timeoutMilliseconds = line.at("timeout_ms").get<std::uint64_t>();
    entry.scsiStatus = line.value("scsi_status", 0);
    entry.commandStatus = line.value("command_status", 0);
    if (auto const sense = line.find("sense"); sense != line.end()) {
        entry.senseKey = sense->at(0).get<int>();
        entry.asc = sense->at(1).get<int>();
        entry.ascq = sense->at(2).get<int>();
    }
    if (auto const data = line.find("data"); data != line.end()) {
        entry.dataLength = data->at("length").get<std::uint64_t>();
        entry.dataCrc = fromNumber(data->at("crc32"));
        entry.dataFirst = hexBytes(data->at("first"));
    }
    return entry;
}

std::vector<JournalEntry> readJournal(std::filesystem::path const& file) {
    std::vector<JournalEntry> entries;
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line)) {
        try {
            entries.push_back(toEntry(json::parse(line)));
        } catch (std::exception const&) {
            JournalEntry entry;
            entry.event = "unreadable";
            entry.text = line;
            entries.push_back(entry);
        }
    }
    return entries;
}

void printJournal(std::vector<JournalEntry> const& entries, std::ostream& out) {
    std::size_t deviceWidth = 6;
    std::size_t commandWidth = 7;
    for (JournalEntry const& entry : entries) {
        deviceWidth = std::max(deviceWidth, place(entry).size());
        commandWidth = std::max(commandWidth, entry.command.size());
    }
    commandWidth = std::min<std::size_t>(commandWidth, 44);
    for (JournalEntry const& entry : entries) {
        out << std::right << std::setw(6) << entry.sequence << "  " << std::setw(10)
            << seconds(entry.microseconds) << "  " << std::left << std::setw(static_cast<int>(deviceWidth))
            << place(entry) << "  ";
        if (entry.event == "exchange") {
            out << std::setw(static_cast<int>(commandWidth)) << entry.command << "  " << std::setw(5)
                << entry.direction << std::right << std::setw(7) << entry.length << "  " << std::left
                << entry.outcome << "  [" << entry.request << " " << toHex(entry.block, " ") << "]";
        } else {
            out << entry.event;
            if (!entry.node.empty()) out << " " << entry.node;
            if (!entry.outcome.empty()) out << ": " << entry.outcome;
            if (!entry.text.empty()) out << ": " << entry.text;
        }
        out << '\n';
        if (!entry.fault.empty()) out << "        fault: " << entry.fault << '\n';
        for (std::string const& error : entry.errors)
            out << "        ERROR: " << error << '\n';
        for (std::string const& note : entry.notes)
            out << "        note: " << note << '\n';
    }
}

std::string errorName(int error) {
    char const* name = ::strerrorname_np(error);
    return name != nullptr ? name : "errno " + std::to_string(error);
}

}  // namespace simulator
