#include "simulator/record_filler.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::size_t LARGEST_RECORD = 65536;

}  // namespace

RecordOverride readOverride(Object const& object, std::string const& key) {
    auto const value = object.find(key);
    return value ? RecordOverride{value->json(), value->where()} : RecordOverride{};
}

Bytes finishRecord(RecordLayout const& layout, Bytes record, RecordOverride const& override) {
    setFields(layout, record, Value(override.json, override.where));
    if (Field const* total = findField(layout, "dwTotalStructureLength")) {
        std::uint64_t const length = getLittle(&record[total->offset], total->size);
        record.resize(std::max<std::size_t>(record.size(), std::min<std::uint64_t>(length, LARGEST_RECORD)),
                      0);
    }
    return record;
}

Filler& Filler::number(std::string_view name, std::uint64_t value) {
    Field const& field = *findField(m_layout, name);
    putLittle(&m_record[field.offset], field.size, value);
    return *this;
}

Filler& Filler::text(std::string_view name, std::string_view value) {
    Field const& field = *findField(m_layout, name);
    putText(&m_record[field.offset], field.size, value);
    return *this;
}

Filler& Filler::big(std::string_view name, std::uint64_t value) {
    Field const& field = *findField(m_layout, name);
    putBig(&m_record[field.offset], 8, value);
    return *this;
}

Filler& Filler::blankTexts() {
    for (Field const& field : m_layout.fields)
        if (field.kind == FieldKind::Text) putText(&m_record[field.offset], field.size, "");
    return *this;
}

Filler& Filler::mark(std::string_view name, unsigned bit) {
    Field const& field = *findField(m_layout, name);
    if (bit < 8U * field.size) m_record[field.offset + bit / 8] |= static_cast<std::uint8_t>(1U << bit % 8);
    return *this;
}

}  // namespace simulator
