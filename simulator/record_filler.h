#pragma once

/// Making a reply: a record's layout, sensible contents, then what a scenario sets by name.

#include <string_view>

#include "simulator/fields.h"

namespace simulator {

/// What a scenario sets in one record; it outlives the document it came from.
struct RecordOverride {
    nlohmann::json json = nlohmann::json::object();
    std::string where;
};

RecordOverride readOverride(Object const& object, std::string const& key);

/// Applies what the scenario sets. A record that announces a greater length than it has is that long.
Bytes finishRecord(RecordLayout const& layout, Bytes record, RecordOverride const& override);

/// A record of its layout's size, to be filled by member names.
class Filler {
  public:
    explicit Filler(RecordLayout const& layout) : m_layout(layout), m_record(layout.size, 0) {}

    Filler& number(std::string_view name, std::uint64_t value);
    Filler& text(std::string_view name, std::string_view value);
    /// Eight bytes, most significant first.
    Filler& big(std::string_view name, std::uint64_t value);
    /// All text members that nothing is said about are blank, not zero.
    Filler& blankTexts();
    std::uint8_t* at(std::size_t offset) { return &m_record[offset]; }
    /// Sets bit `bit` of a map that begins at a member.
    Filler& mark(std::string_view name, unsigned bit);
    Bytes take() { return std::move(m_record); }

  private:
    RecordLayout const& m_layout;
    Bytes m_record;
};

}  // namespace simulator
