#include "simulator/value.h"

#include <algorithm>

namespace simulator {

using nlohmann::json;

namespace {

std::string shown(json const& value) {
    std::string text = value.is_object() ? "an object" : value.is_array() ? "a list" : value.dump();
    if (text.size() > 60) text = text.substr(0, 57) + "...";
    return text;
}

std::string joined(std::vector<std::string> const& words) {
    std::string text;
    for (std::string const& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

}  // namespace

void Value::refuse(std::string const& expected) const {
    throw ScenarioError(m_where + ": found " + shown(*m_json) + ", expected " + expected);
}

std::string Value::text(std::size_t longest) const {
    if (!m_json->is_string() || m_json->get_ref<std::string const&>().size() > longest)
        refuse("a text of at most " + std::to_string(longest) + " bytes");
    return m_json->get<std::string>();
}

std::string Value::choice(std::vector<std::string> const& choices) const {
    if (!m_json->is_string() ||
        std::find(choices.begin(), choices.end(), m_json->get<std::string>()) == choices.end())
        refuse("one of " + joined(choices));
    return m_json->get<std::string>();
}

bool Value::boolean() const {
    if (!m_json->is_boolean()) refuse("true or false");
    return m_json->get<bool>();
}

std::uint64_t Value::number(std::uint64_t greatest, std::uint64_t least) const {
    std::string const expected = "a number from " + std::to_string(least) + " to " +
                                 std::to_string(greatest) + ", or such a number as a text like \"0x1F\"";
    std::uint64_t number = 0;
    if (m_json->is_number_integer() && (m_json->is_number_unsigned() || m_json->get<std::int64_t>() >= 0)) {
        number = m_json->get<std::uint64_t>();
    } else if (m_json->is_string()) {
        std::string const text = m_json->get<std::string>();
        bool const hexadecimal =
            text.size() > 2 && text.size() <= 18 && text[0] == '0' && (text[1] | 0x20) == 'x';
        if (!hexadecimal || text.find_first_not_of("0123456789abcdefABCDEF", 2) != std::string::npos)
            refuse(expected);
        number = std::stoull(text, nullptr, 16);
    } else {
        refuse(expected);
    }
    if (number < least || number > greatest) refuse(expected);
    return number;
}

std::vector<Value> Value::list() const {
    if (!m_json->is_array()) refuse("a list");
    std::vector<Value> values;
    for (std::size_t i = 0; i < m_json->size(); ++i)
        values.emplace_back((*m_json)[i], m_where + "[" + std::to_string(i) + "]");
    return values;
}

Object::Object(Value const& value) : m_value(value) {
    if (!value.json().is_object()) value.refuse("an object");
}

Value Object::at(std::string const& key) const {
    std::optional<Value> const value = find(key);
    if (!value) throw ScenarioError(where() + ": found no \"" + key + "\", expected one");
    return *value;
}

std::optional<Value> Object::find(std::string const& key) const {
    m_asked.insert(key);
    auto const found = m_value.json().find(key);
    if (found == m_value.json().end()) return std::nullopt;
    return Value(*found, where() + "." + key);
}

std::string Object::textOr(std::string const& key, std::string const& fallback, std::size_t longest) const {
    std::optional<Value> const value = find(key);
    return value ? value->text(longest) : fallback;
}

std::uint64_t Object::numberOr(std::string const& key, std::uint64_t fallback, std::uint64_t greatest) const {
    std::optional<Value> const value = find(key);
    return value ? value->number(greatest) : fallback;
}

bool Object::booleanOr(std::string const& key, bool fallback) const {
    std::optional<Value> const value = find(key);
    return value ? value->boolean() : fallback;
}

std::vector<std::pair<std::string, Value>> Object::all() const {
    std::vector<std::pair<std::string, Value>> members;
    for (auto const& [key, value] : m_value.json().items()) {
        m_asked.insert(key);
        members.emplace_back(key, Value(value, where() + "." + key));
    }
    return members;
}

void Object::refuseOthers() const {
    for (auto const& [key, value] : m_value.json().items())
        if (m_asked.count(key) == 0)
            throw ScenarioError(where() + ": found the key \"" + key.substr(0, 60) + "\", expected one of " +
                                joined({m_asked.begin(), m_asked.end()}));
}

json parseJson(std::string const& text, std::string const& name) {
    try {
        return json::parse(text);
    } catch (json::exception const& error) {
        // The library's words give line and column; its own error number in brackets helps nobody.
        std::string words = error.what();
        if (auto const end = words.find("] "); end != std::string::npos) words = words.substr(end + 2);
        throw ScenarioError(name + ": not a JSON document: " + words);
    }
}

}  // namespace simulator
