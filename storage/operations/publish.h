#pragma once

#include <cstdio>

#include "command/endian.h"
#include "common/conversion.h"
#include "common/string.h"
#include "core/device.h"
#include "storage/schema/identity.h"

/// What the operations that turn records into attributes share.
namespace Operations {

using Schema::decimalText;
using Schema::publish;

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

/// One attribute that is copied from a record: its name, and how its text is made. An empty text publishes
/// nothing.
template <typename Record>
struct PublishRow {
    char const* attribute;
    Common::string (*text)(Record const& record);
};

template <typename Record, std::size_t Count>
void publishRows(Core::Device& device, PublishRow<Record> const (&rows)[Count], Record const& record) {
    for (PublishRow<Record> const& row : rows) {
        publish(device, row.attribute, row.text(record));
    }
}

}  // namespace Operations
