#include "simulator/fields.h"

#include <algorithm>
#include <charconv>

namespace simulator {

namespace {

/// No reply is larger.
constexpr std::size_t LARGEST_RECORD = 65536;

Bytes hexOf(Value const& value, std::size_t size) {
    Bytes bytes;
    if (!value.json().is_string() || !fromHex(value.json().get_ref<std::string const&>(), bytes) ||
        bytes.size() > size)
        value.refuse("at most " + std::to_string(size) + " bytes as hexadecimal text");
    return bytes;
}

void setMember(Field const& field, std::span<std::uint8_t> place, Value const& value);

void setElements(Field const& field, std::span<std::uint8_t> place, Value const& value) {
    std::size_t const size = field.element->size;
    std::vector<Value> const elements = value.json().is_object() ? std::vector<Value>{value} : value.list();
    if (elements.size() > place.size() / size)
        value.refuse("at most " + std::to_string(place.size() / size) + " records");
    for (std::size_t i = 0; i < elements.size(); ++i) {
        for (auto const& [key, member] : Object(elements[i]).all()) {
            Field const* inner = findField(*field.element, key);
            if (inner == nullptr)
                throw ScenarioError(member.where() + ": no such member of " +
                                    std::string(field.element->name));
            setMember(*inner, place.subspan(i * size + inner->offset, inner->size), member);
        }
    }
}

void setMember(Field const& field, std::span<std::uint8_t> place, Value const& value) {
    if (value.json().is_object() && value.json().size() == 1 && value.json().contains("hex")) {
        Bytes const bytes = hexOf(Object(value).at("hex"), place.size());
        std::fill(place.begin(), place.end(), std::uint8_t{0});
        std::copy(bytes.begin(), bytes.end(), place.begin());
        return;
    }
    switch (field.kind) {
        case FieldKind::Number: {
            std::uint64_t const greatest =
                field.size >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << 8 * field.size) - 1;
            putLittle(place.data(), field.size, value.number(greatest));
            break;
        }
        case FieldKind::Words: {
            std::vector<Value> const words = value.list();
            if (words.size() > place.size() / 2)
                value.refuse("at most " + std::to_string(place.size() / 2) + " numbers");
            for (std::size_t i = 0; i < words.size(); ++i)
                putLittle(&place[2 * i], 2, words[i].number(0xFFFF));
            break;
        }
        case FieldKind::Text:
            putText(place.data(), place.size(), value.text(place.size()));
            break;
        case FieldKind::Raw:
        case FieldKind::Reserved: {
            Bytes const bytes = hexOf(value, place.size());
            std::fill(place.begin(), place.end(), std::uint8_t{0});
            std::copy(bytes.begin(), bytes.end(), place.begin());
            break;
        }
        case FieldKind::Record:
            setElements(field, place, value);
            break;
    }
}

void setAtOffset(Bytes& record, std::string const& key, Value const& value) {
    std::size_t offset = 0;
    auto const [end, error] = std::from_chars(key.data() + 1, key.data() + key.size(), offset);
    if (error != std::errc() || end != key.data() + key.size() || offset >= LARGEST_RECORD)
        throw ScenarioError(value.where() + ": found the key \"" + key +
                            "\", expected \"@\" and a decimal offset below " +
                            std::to_string(LARGEST_RECORD));
    Bytes const bytes = hexOf(value, LARGEST_RECORD - offset);
    if (record.size() < offset + bytes.size()) record.resize(offset + bytes.size(), 0);
    std::copy(bytes.begin(), bytes.end(), record.begin() + static_cast<std::ptrdiff_t>(offset));
}

}  // namespace

Field const* findField(RecordLayout const& layout, std::string_view name) {
    auto const found = std::find_if(layout.fields.begin(), layout.fields.end(),
                                    [&](Field const& field) { return field.name == name; });
    return found == layout.fields.end() ? nullptr : &*found;
}

void setFields(RecordLayout const& layout, Bytes& record, Value const& values) {
    for (auto const& [key, value] : Object(values).all()) {
        if (key.starts_with('@')) {
            setAtOffset(record, key, value);
            continue;
        }
        Field const* field = findField(layout, key);
        if (field == nullptr)
            throw ScenarioError(value.where() + ": no such member of " + std::string(layout.name) +
                                "; expected a member or \"@<offset>\"");
        setMember(*field, std::span(record).subspan(field->offset, field->size), value);
    }
}

}  // namespace simulator
