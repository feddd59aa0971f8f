#pragma once

#include <climits>
#include <cstddef>

#include "command/endian.h"
#include "common/conversion.h"
#include "common/string.h"
#include "core/device.h"
#include "storage/schema/code_table.h"
#include "storage/schema/identity.h"

/// What the operations that turn records into attributes share.
namespace Operations {

using Schema::CodeRow;
using Schema::decimalText;
using Schema::publish;
using Schema::valueOf;

/// A number of a record that its command leaves in wire order.
template <typename Number>
Number fromWire(Number wire) {
    return ConvertLittleEndianToValue<Number>(wire);
}

/// A text member of a record: neither terminated nor of its full length, filled with blanks or zeros.
template <typename Byte, std::size_t Size>
Common::string memberText(Byte const (&member)[Size]) {
    static_assert(sizeof(Byte) == 1);
    char text[Size + 1] = {};
    for (std::size_t i = 0; i < Size && member[i] != 0; ++i) {
        text[i] = static_cast<char>(member[i]);
    }
    return Common::string(text).Trim();
}

/// Publishes a text; an empty one takes away what an earlier discovery left of the attribute.
inline void publishOrClear(Core::Device& device, char const* attribute, Common::string const& text) {
    if (text.empty()) {
        device.Clear(attribute);
    } else {
        publish(device, attribute, text);
    }
}

/// Where a member ends in its record: what a record has to reach for the member to exist.
#define KSL_MEMBER_END(Record, member) \
    static_cast<unsigned>(offsetof(Records::Record, member) + sizeof(Records::Record::member))

/// One attribute that is copied from a record: its name, and how its text is made. The attribute is absent
/// for an empty text and for a member behind the end of the record.
template <typename Record>
struct PublishRow {
    char const* attribute;
    Common::string (*text)(Record const& record);
    unsigned end = 0;  ///< KSL_MEMBER_END of the member; 0 for one that every record has
};

/// `reach`: how far the record tells that it reaches.
template <typename Record, std::size_t Count>
void publishRows(Core::Device& device, PublishRow<Record> const (&rows)[Count], Record const& record,
                 unsigned reach = UINT_MAX) {
    for (PublishRow<Record> const& row : rows) {
        publishOrClear(device, row.attribute, row.end <= reach ? row.text(record) : Common::string());
    }
}

/// One attribute that is a bit of a record.
template <typename Record>
struct FlagRow {
    char const* attribute;
    char const* whenSet;
    char const* whenClear;
    bool (*isSet)(Record const& record);
    unsigned end = 0;  ///< as above
};

template <typename Record, std::size_t Count>
void publishRows(Core::Device& device, FlagRow<Record> const (&rows)[Count], Record const& record,
                 unsigned reach = UINT_MAX) {
    for (FlagRow<Record> const& row : rows) {
        publishOrClear(device, row.attribute,
                       row.end > reach     ? ""
                       : row.isSet(record) ? row.whenSet
                                           : row.whenClear);
    }
}

/// The first columns of a FlagRow for an attribute of the namespace `Names`: a fact, or a setting.
#define KSL_FACT(attribute) \
    Names::ATTR_NAME_##attribute, Names::ATTR_VALUE_##attribute##_TRUE, Names::ATTR_VALUE_##attribute##_FALSE
#define KSL_SETTING(attribute)                                             \
    Names::ATTR_NAME_##attribute, Names::ATTR_VALUE_##attribute##_ENABLED, \
        Names::ATTR_VALUE_##attribute##_DISABLED

}  // namespace Operations
