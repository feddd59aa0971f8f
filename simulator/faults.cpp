#include "simulator/faults.h"

#include <string.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace simulator {

namespace {

int errnoOf(Value const& value) {
    if (value.json().is_string())
        for (int error = 1; error < 134; ++error)
            if (char const* name = ::strerrorname_np(error); name != nullptr && value.text() == name)
                return error;
    if (value.json().is_string()) value.refuse("the name of an errno, like \"EIO\"");
    return static_cast<int>(value.number(133, 1));
}

void readMatch(Object const& match, FaultRule& rule) {
    if (auto const device = match.find("device")) rule.device = device->text();
    if (auto const unit = match.find("unit")) rule.unit = unit->text();
    if (auto const command = match.find("command")) {
        bool const numeric = !command->json().is_string() || command->text().starts_with("0x");
        if (numeric)
            rule.opcode = static_cast<std::uint8_t>(command->number(255));
        else
            rule.commandName = command->text();
    }
    if (auto const nth = match.find("nth")) rule.nth = nth->number(UINT64_MAX, 1);
    if (auto const exchange = match.find("exchange")) rule.exchange = exchange->number(UINT64_MAX, 1);
    match.refuseOthers();
}

void readSense(Object const& action, FaultRule& rule) {
    auto const sense = action.find("sense");
    if (!sense) return;
    std::vector<Value> const codes = sense->list();
    if (codes.size() != 3) sense->refuse("a list of three numbers: sense key, ASC, ASCQ");
    rule.sense = {static_cast<std::uint8_t>(codes[0].number(15)),
                  static_cast<std::uint8_t>(codes[1].number(255)),
                  static_cast<std::uint8_t>(codes[2].number(255))};
}

void readTruncation(Value const& value, FaultRule& rule) {
    if (value.json().is_number_float()) {
        double const fraction = value.json().get<double>();
        if (!(fraction >= 0.0 && fraction < 1.0))
            value.refuse("a fraction from 0 to below 1, or a number of bytes");
        rule.fraction = fraction;
    } else {
        rule.length = value.number(UINT32_MAX);
    }
}

void readAction(Object const& action, FaultRule& rule) {
    int found = 0;
    auto const asked = [&](char const* key) {
        auto const value = action.find(key);
        if (value) ++found;
        return value;
    };
    if (auto const value = asked("errno")) {
        rule.kind = FaultKind::Errno;
        rule.error = errnoOf(*value);
    }
    if (auto const value = asked("scsi_status")) {
        rule.kind = FaultKind::Status;
        rule.scsiStatus = static_cast<std::uint8_t>(value->number(255, 1));
        readSense(action, rule);
    }
    if (auto const value = asked("command_status")) {
        rule.kind = FaultKind::CommandStatus;
        rule.commandStatus = static_cast<std::uint16_t>(value->number(0xFFFF, 1));
    }
    if (auto const value = asked("truncate")) {
        rule.kind = FaultKind::Truncate;
        readTruncation(*value, rule);
    }
    if (auto const value = asked("corrupt")) {
        rule.kind = FaultKind::Corrupt;
        rule.seed = value->number(UINT64_MAX);
    }
    if (auto const value = asked("random_reply")) {
        rule.kind = FaultKind::RandomReply;
        rule.seed = value->number(UINT64_MAX);
    }
    if (auto const value = asked("delay")) {
        rule.kind = FaultKind::Delay;
        if (!value->json().is_number() || value->json().get<double>() < 0 ||
            value->json().get<double>() > 1e6)
            value->refuse("seconds from 0 to 1000000");
        rule.microseconds = static_cast<std::uint64_t>(value->json().get<double>() * 1e6);
    }
    if (auto const value = asked("vanish")) {
        rule.kind = FaultKind::Vanish;
        if (!value->boolean()) value->refuse("true");
    }
    if (found != 1)
        throw ScenarioError(
            action.where() + ": found " + std::to_string(found) +
            " actions, expected exactly one of errno, scsi_status, command_status, truncate, corrupt, "
            "random_reply, delay, vanish");
    action.refuseOthers();
}

}  // namespace

void FaultPlan::add(Value const& rules) {
    std::vector<FaultRule> added;
    for (Value const& value : rules.list()) {
        FaultRule rule;
        Object const object(value);
        if (auto const match = object.find("match")) readMatch(Object(*match), rule);
        readAction(Object(object.at("action")), rule);
        if (auto const times = object.find("times")) rule.times = times->number(UINT64_MAX, 1);
        object.refuseOthers();
        if (!rule.times && (rule.nth || rule.exchange)) rule.times = 1;
        rule.text = value.json().dump();
        added.push_back(std::move(rule));
    }
    for (FaultRule& rule : added)
        m_rules.push_back(std::move(rule));
    m_matches.resize(m_rules.size(), 0);
}

FaultRule const* FaultPlan::next(std::string const& device, std::string const& unit,
                                 std::string const& commandName, std::uint8_t opcode) {
    ++m_exchanges;
    FaultRule const* striking = nullptr;
    for (std::size_t i = 0; i < m_rules.size(); ++i) {
        FaultRule const& rule = m_rules[i];
        if (rule.device && *rule.device != device) continue;
        if (rule.unit && *rule.unit != unit) continue;
        if (rule.commandName && *rule.commandName != commandName) continue;
        if (rule.opcode && *rule.opcode != opcode) continue;
        if (rule.exchange && m_exchanges < *rule.exchange) continue;
        std::uint64_t const match = ++m_matches[i];
        std::uint64_t const first = rule.nth.value_or(1);
        bool const strikes = match >= first && (!rule.times || match - first < *rule.times);
        // A rule for exchange k strikes at k or never: not at the next exchange that happens to fit.
        bool const late = rule.exchange && m_exchanges - *rule.exchange >= rule.times.value_or(1);
        if (strikes && !late && striking == nullptr) striking = &rule;
    }
    return striking;
}

std::string FaultPlan::counters() const {
    std::string text;
    auto const add = [&](std::uint64_t count) {
        char number[24];
        text.append(number, static_cast<std::size_t>(std::snprintf(number, sizeof number, "%020llu\n",
                                                                   static_cast<unsigned long long>(count))));
    };
    add(m_exchanges);
    for (std::uint64_t const count : m_matches)
        add(count);
    return text;
}

void FaultPlan::setCounters(std::string const& text) {
    std::istringstream in(text);
    std::uint64_t count = 0;
    if (in >> count) m_exchanges = count;
    for (std::uint64_t& match : m_matches)
        if (in >> count) match = count;
}

void corrupt(std::span<std::uint8_t> data, std::uint64_t seed) {
    // One byte in every 512: no two changes can undo each other.
    RandomBytes random(seed);
    for (std::size_t block = 0; block < data.size(); block += 512) {
        std::size_t const size = std::min<std::size_t>(512, data.size() - block);
        std::uint64_t const value = random.next();
        data[block + (value >> 8) % size] ^= static_cast<std::uint8_t>(1 + value % 255);
    }
}

}  // namespace simulator
