#pragma once

/// Reading of JSON that people write: every accessor checks what it finds and refuses it with a message that
/// names the file, the place, the value found and the value expected.

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "simulator/error.h"

namespace simulator {

/// A value and where it stands. The JSON itself is borrowed.
class Value {
  public:
    Value(nlohmann::json const& json, std::string where) : m_json(&json), m_where(std::move(where)) {}

    nlohmann::json const& json() const { return *m_json; }
    std::string const& where() const { return m_where; }

    /// Throws ScenarioError "<where>: found <value>, expected <expected>".
    [[noreturn]] void refuse(std::string const& expected) const;

    std::string text(std::size_t longest = 256) const;
    /// Text that is one of `choices`.
    std::string choice(std::vector<std::string> const& choices) const;
    bool boolean() const;
    /// A number, or a text like "0x1E5C".
    std::uint64_t number(std::uint64_t greatest, std::uint64_t least = 0) const;
    std::vector<Value> list() const;

  private:
    nlohmann::json const* m_json;
    std::string m_where;
};

/// A JSON object whose keys are asked for one by one; those nobody asked for are refused at the end.
class Object {
  public:
    explicit Object(Value const& value);

    Value at(std::string const& key) const;
    std::optional<Value> find(std::string const& key) const;
    bool has(std::string const& key) const { return find(key).has_value(); }
    std::string textOr(std::string const& key, std::string const& fallback, std::size_t longest = 256) const;
    std::uint64_t numberOr(std::string const& key, std::uint64_t fallback, std::uint64_t greatest) const;
    bool booleanOr(std::string const& key, bool fallback) const;

    /// Every key with its value, all of them counted as asked for.
    std::vector<std::pair<std::string, Value>> all() const;
    /// Throws ScenarioError when a key was never asked for; the message lists those that were.
    void refuseOthers() const;
    std::string const& where() const { return m_value.where(); }

  private:
    Value m_value;
    mutable std::set<std::string> m_asked;
};

/// Parses `text`; `name` stands in messages. Throws ScenarioError.
nlohmann::json parseJson(std::string const& text, std::string const& name);

}  // namespace simulator
