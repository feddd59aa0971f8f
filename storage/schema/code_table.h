#pragma once

#include <cstddef>

namespace Schema {

/// One code of a record and the attribute value that stands for it.
struct CodeRow {
    unsigned code;
    char const* value;
};

/// The value of a code; `unknown` when the table doesn't have it.
template <std::size_t Count>
char const* valueOf(CodeRow const (&rows)[Count], unsigned code, char const* unknown) {
    for (CodeRow const& row : rows) {
        if (row.code == code) return row.value;
    }
    return unknown;
}

}  // namespace Schema
