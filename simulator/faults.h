#pragma once

/// The fault plan: which exchange fails, and how. The rules' JSON form is described in README.md.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "simulator/exchange.h"
#include "simulator/value.h"

namespace simulator {

enum class FaultKind {
    Errno,          ///< the call fails; the device did nothing
    Status,         ///< SCSI status and sense; the device did nothing
    CommandStatus,  ///< the pass-through's command status; the device did nothing
    Truncate,       ///< a part of the reply only
    Corrupt,        ///< some bytes changed, of the reply or of what was sent
    RandomReply,    ///< a reply of random bytes, as long as asked for
    Delay,          ///< virtual time passes first
    Vanish,         ///< ENODEV from now until a power cycle
};

struct FaultRule {
    // What it matches; all that are set must fit.
    std::optional<std::string> device;
    std::optional<std::string> unit;  ///< behind the device
    std::optional<std::string> commandName;
    std::optional<std::uint8_t> opcode;
    std::optional<std::uint64_t> nth;       ///< the first match that strikes, from 1
    std::optional<std::uint64_t> exchange;  ///< the first exchange of the run that strikes, from 1
    std::optional<std::uint64_t> times;     ///< how often it strikes; once with nth or exchange, else always

    FaultKind kind = FaultKind::Errno;
    int error = 0;
    std::uint8_t scsiStatus = 0;
    std::uint16_t commandStatus = 0;
    Sense sense;
    std::uint64_t seed = 0;
    std::uint64_t microseconds = 0;
    std::size_t length = 0;          ///< Truncate: bytes left ...
    std::optional<double> fraction;  ///< ... or this share of them

    std::string text;  ///< the rule as JSON, for the journal
};

/// The rules of one run with their counters. The first rule that strikes decides.
class FaultPlan {
  public:
    /// Appends the rules of a JSON list; throws ScenarioError.
    void add(Value const& rules);

    /// Counts an exchange and says which rule strikes it; null when none does. The pointer is valid until
    /// the next add().
    FaultRule const* next(std::string const& device, std::string const& unit, std::string const& commandName,
                          std::uint8_t opcode);
    std::uint64_t exchanges() const { return m_exchanges; }

    /// The counters as text of a constant length and back, so that several processes can count together.
    std::string counters() const;
    void setCounters(std::string const& text);

  private:
    std::vector<FaultRule> m_rules;
    std::vector<std::uint64_t> m_matches;  ///< by rule
    std::uint64_t m_exchanges = 0;
};

/// Changes some bytes of `data`, always at least one if there is any.
void corrupt(std::span<std::uint8_t> data, std::uint64_t seed);

}  // namespace simulator
