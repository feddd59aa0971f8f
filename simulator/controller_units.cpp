#include "simulator/controller_units.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::uint8_t REPORT_LOGICAL = 0xC2;
constexpr std::uint8_t LONG_FORM = 2;
constexpr std::size_t MODE_BYTE = 3;
constexpr std::uint8_t HIDDEN = 0x80;

/// Type codes of the physical report, by the kind of device.
struct TypeRow {
    char const* kind;
    std::uint8_t code;
};
constexpr TypeRow TYPES[] = {{"drive", 0}, {"tape", 1}, {"enclosure_processor", 6}, {"array_controller", 7}};
constexpr std::uint8_t EXPANDER_CODE = 5;

}  // namespace

ControllerUnits::ControllerUnits(Object const& device) {
    if (auto const list = device.find("physical_devices"))
        for (Value const& value : list->list())
            readPhysical(value);
    if (auto const list = device.find("volumes"))
        for (Value const& value : list->list())
            readVolume(value);
}

void ControllerUnits::readPhysical(Value const& value) {
    Object const object(value);
    Unit unit;
    unit.address = readAddressText(object.at("address"));
    unit.entry.resize(32);
    std::copy(unit.address.begin(), unit.address.end(), unit.entry.begin());
    std::uint64_t worldWideName = 0;
    if (auto const address = object.find("sas_address")) {
        auto const bytes = readAddressText(*address);
        worldWideName = getBig(bytes.data(), bytes.size());
        putBig(&unit.entry[8], 8, worldWideName);
    }
    if (auto const address = object.find("parent_sas_address")) {
        auto const bytes = readAddressText(*address);
        std::copy(bytes.begin(), bytes.end(), unit.entry.begin() + 16);
    }
    putBig(&unit.entry[24], 2, object.numberOr("index", m_units.size(), 0xFFFF));
    unit.entry[27] = static_cast<std::uint8_t>(object.numberOr("phy", 0, 255));
    unit.entry[28] = static_cast<std::uint8_t>(object.numberOr("parent_phy", 0, 255));
    std::string const kind = object.at("kind").text();
    std::uint8_t code = EXPANDER_CODE;
    if (kind != "expander") {
        unit.target = makeScsiTarget(object, worldWideName);
        for (TypeRow const& row : TYPES)
            if (row.kind == kind) code = row.code;
    }
    unit.entry[26] = static_cast<std::uint8_t>(object.numberOr("type", code, 255));
    object.refuseOthers();
    m_units.push_back(std::move(unit));
}

void ControllerUnits::readVolume(Value const& value) {
    Object const object(value);
    Unit unit;
    unit.isVolume = true;
    unit.address = readAddressText(object.at("address"));
    unit.entry.resize(24);
    std::copy(unit.address.begin(), unit.address.end(), unit.entry.begin());
    if (auto const identity = object.find("identity")) {
        Bytes bytes;
        if (!identity->json().is_string() || !fromHex(identity->text(), bytes) || bytes.size() != 16)
            identity->refuse("32 hexadecimal digits");
        std::copy(bytes.begin(), bytes.end(), unit.entry.begin() + 8);
    }
    unit.target = makeScsiTarget(object, getBig(&unit.entry[8], 8));
    object.refuseOthers();
    m_units.push_back(std::move(unit));
}

Reply ControllerUnits::report(Command const& command) const {
    if (command.block.size() != 12)
        return protocolError(
            ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
            "a command block of " + std::to_string(command.block.size()) + " bytes, expected 12");
    std::uint8_t const form = command.block[1];
    std::uint64_t const allocation = getBig(&command.block[6], 4);
    if (form != 0 && form != LONG_FORM)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "a report of form " + std::to_string(form) + ", expected 0 or 2");
    if (command.carrier == Carrier::PassThrough && allocation > command.bufferSize)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "an allocation length of " + std::to_string(allocation) + ", the buffer has " +
                                 std::to_string(command.bufferSize));
    Reply reply;
    reply.data.resize(8);
    reply.data[4] = form;
    for (Unit const& unit : m_units) {
        if (unit.isVolume != (command.block[0] == REPORT_LOGICAL)) continue;
        std::size_t const size = form == LONG_FORM ? unit.entry.size() : unit.address.size();
        reply.data.insert(reply.data.end(), unit.entry.begin(),
                          unit.entry.begin() + static_cast<std::ptrdiff_t>(size));
    }
    putBig(reply.data.data(), 4, reply.data.size() - 8);
    if (reply.data.size() > allocation) reply.data.resize(allocation);
    return reply;
}

bool ControllerUnits::hasIndex(unsigned index) const {
    return std::any_of(m_units.begin(), m_units.end(), [&](Unit const& unit) {
        return !unit.isVolume && getBig(&unit.entry[24], 2) == index;
    });
}

ScsiTarget* ControllerUnits::find(std::array<std::uint8_t, 8> const& address) const {
    for (Unit const& unit : m_units) {
        auto own = unit.address;
        if (own == address) return unit.target.get();
        own[MODE_BYTE] = static_cast<std::uint8_t>(own[MODE_BYTE] & ~HIDDEN);
        if (unit.isVolume && own == address) return unit.target.get();
    }
    return nullptr;
}

}  // namespace simulator
