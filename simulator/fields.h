#pragma once

/// The members of the records that a virtual controller answers with, so that a scenario can set each of them
/// by its name. These tables are the simulator's own: nothing of the program under test is shared.

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/bytes.h"
#include "simulator/value.h"

namespace simulator {

enum class FieldKind : std::uint8_t {
    Number,    ///< little-endian, as wide as the member
    Words,     ///< list of 16-bit little-endian numbers
    Text,      ///< filled up with blanks
    Raw,       ///< bytes as hexadecimal text, filled up with zeros
    Reserved,  ///< as Raw; zero unless set
    Record,    ///< one or several records of `element`
};

struct RecordLayout;

struct Field {
    std::uint16_t offset;
    std::uint16_t size;
    FieldKind kind;
    std::string_view name;
    RecordLayout const* element = nullptr;
};

struct RecordLayout {
    std::string_view name;
    std::size_t size;
    std::span<Field const> fields;
};

extern RecordLayout const IDENTIFY_CONTROLLER;
extern RecordLayout const IDENTIFY_LOGICAL_DRIVE;
extern RecordLayout const LOGICAL_DRIVE_CONFIGURATION;
extern RecordLayout const LOGICAL_DRIVE_STATUS;
extern RecordLayout const LOGICAL_DRIVE_GEOMETRY;
extern RecordLayout const SUBSYSTEM_INFORMATION;
extern RecordLayout const PHYSICAL_PORT;
extern RecordLayout const ADDITIONAL_PHYSICAL_PORT;
extern RecordLayout const MANAGED_CABLE;
extern RecordLayout const CACHE_CONFIGURATION;
extern RecordLayout const CONTROLLER_PARAMETERS;
extern RecordLayout const REDUNDANT_PARAMETERS;
extern RecordLayout const SURFACE_STATUS;
extern RecordLayout const MNP_STATUS;
extern RecordLayout const MNP_STATISTICS;
extern RecordLayout const ERASE_STATE;
extern RecordLayout const BOARD_POWER;
extern RecordLayout const POWER_MODE;
extern RecordLayout const BOX_INQUIRY;
extern RecordLayout const BOX_ALARM;
extern RecordLayout const BUS_PARAMETERS;
extern RecordLayout const PHYSICAL_DEVICE;
extern RecordLayout const SPECIAL_INQUIRY;
/// The encryption status pages: their numbers and layouts.
struct EncryptionPage {
    unsigned number;
    RecordLayout layout;
};
extern std::span<EncryptionPage const> const ENCRYPTION_PAGES;

/// Null when there is no member of that name.
Field const* findField(RecordLayout const& layout, std::string_view name);

/// Members of `record` as the object `values` says: {"member": value, ...}. A number takes a number, a text a
/// text, a list a list, a record an object or a list of them, and everything may be given as
/// {"hex": "00 ff"}. A key "@<offset>" sets bytes at any offset, also past the layout's size: the record then
/// grows. Throws ScenarioError for what doesn't fit.
void setFields(RecordLayout const& layout, Bytes& record, Value const& values);

}  // namespace simulator
