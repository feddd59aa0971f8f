#pragma once

// How a wire record is declared. A record is a list of rows (offset, size in bytes, type, member name), and
// KSL_WIRE_RECORD makes everything else of it: the packed structure, compile-time checks of its size and of
// every member's place, and the rows of the run-time catalogue.
//
//     #define KSL_EXAMPLE(ONE, MANY) ONE(0, 4, DWORD, dwFirst) MANY(4, 16, char, sText)
//     KSL_WIRE_RECORD(EXAMPLE, 20)
//
// Multi-byte members stand in wire order (little-endian) until ProcessBuffer of the command's trait has
// turned them. Text is neither terminated nor trimmed: it may fill its member to the last byte.
//
// Members may be misaligned: read them by value, never bind a reference or pointer to one. The structures
// have the packed attribute rather than #pragma pack because g++ then refuses such a reference, or binds it
// to an aligned copy where it is const; under the pragma it silently binds to the misaligned member.

#include <cstddef>
#include <cstdint>
#include <span>

namespace Records {

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using QWORD = std::uint64_t;
using RESERVED = std::uint8_t;

// One member of a record.
struct MemberRow {
    unsigned offset;   // bytes from the start of the record
    unsigned size;     // bytes, of the whole array for an array
    char const* type;  // BYTE, WORD, DWORD, QWORD, RESERVED, char or the name of another record
    bool isArray;
    char const* name;                   //
    unsigned elementSize;               // bytes of one item
    std::span<MemberRow const> nested;  // members of `type` when it is a record
};

// RecordInfo<R>::name, ::size and ::members describe the record R.
template <class Record>
struct RecordInfo;

template <class Type>
constexpr std::span<MemberRow const> nestedRows() {
    if constexpr (requires { RecordInfo<Type>::members; }) {
        return RecordInfo<Type>::members;
    } else {
        return {};
    }
}

// Payload of a command whose contents are nobody's business here. Not part of the catalogue.
template <unsigned SIZE>
struct OPAQUE_PAYLOAD {
    BYTE pbPayload[SIZE];
};

template <unsigned SIZE>
struct RecordInfo<OPAQUE_PAYLOAD<SIZE>> {
    static constexpr char const* name = "OPAQUE_PAYLOAD";
    static constexpr unsigned size = SIZE;
    static constexpr MemberRow members[] = {{0, SIZE, "BYTE", true, "pbPayload", 1, {}}};
};

}  // namespace Records

// clang-format off
#define KSL_RECORD_FIELD(offset, size, type, name) type name;
#define KSL_RECORD_FIELDS(offset, size, type, name) type name[(size) / sizeof(type)];
#define KSL_RECORD_CHECK(offset, byteCount, type, name)                                  \
    static_assert(offsetof(Record, name) == (offset), #name " is not at its offset");    \
    static_assert(sizeof(Record::name) == (byteCount), #name " has not its size");
#define KSL_RECORD_ROW(offset, size, type, name) \
    {offset, size, #type, false, #name, sizeof(type), nestedRows<type>()},
#define KSL_RECORD_ROWS(offset, size, type, name) \
    {offset, size, #type, true, #name, sizeof(type), nestedRows<type>()},

// Use inside namespace Records, behind the rows in KSL_<NAME>(ONE, MANY).
#define KSL_WIRE_RECORD(NAME, SIZE)                                                      \
    struct [[gnu::packed]] NAME {                                                        \
        KSL_##NAME(KSL_RECORD_FIELD, KSL_RECORD_FIELDS)                                  \
    };                                                                                   \
    static_assert(sizeof(NAME) == (SIZE), #NAME " has not its size");                    \
    template <>                                                                          \
    struct RecordInfo<NAME> {                                                            \
        using Record = NAME;                                                             \
        static constexpr char const* name = #NAME;                                       \
        static constexpr unsigned size = SIZE;                                           \
        static constexpr MemberRow members[] = {KSL_##NAME(KSL_RECORD_ROW, KSL_RECORD_ROWS)}; \
        KSL_##NAME(KSL_RECORD_CHECK, KSL_RECORD_CHECK)                                   \
    };
// clang-format on
