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

ControllerUnits::ControllerUnits(Object const& device, TargetPlace const& place) : m_place(place) {
    if (auto const list = device.find("physical_devices"))
        for (Value const& value : list->list())
            readPhysical(value, "", nullptr);
    readMapped(device, "drives", "drive");
    readMapped(device, "tapes", "tape");
    findLimit(device);
    if (auto const list = device.find("boxes"))
        for (Value const& value : list->list())
            readBox(value);
    if (auto const list = device.find("volumes"))
        for (Value const& value : list->list())
            readVolume(value);
    placeInBoxes();
    joinTargets(targets(), device.where());
    for (Unit const& unit : m_units) {  // refuses bad members of the scenario now
        if (unit.isVolume || (unit.identify.json.empty() && unit.specialInquiry.json.empty())) continue;
        identify(unit.index(), 0);
        specialInquiry(unit.index(), 0);
    }
}

unsigned ControllerUnits::Unit::index() const {
    return static_cast<unsigned>(getBig(&entry[24], 2));
}

void ControllerUnits::readBox(Value const& value) {
    Object const object(value);
    ControllerBoxes::Box box = ControllerBoxes::readBox(object);
    if (auto const list = object.find("seps"))
        for (Value const& sep : list->list()) {
            unsigned const index = readPhysical(sep, "enclosure_processor", &box);
            auto const type = static_cast<unsigned>(Object(sep).numberOr("sep_type", 1, 255));
            box.processors.push_back({index, type});
        }
    if (auto const list = object.find("expanders"))
        for (Value const& expander : list->list())
            box.expanders.push_back(readPhysical(expander, "expander", &box));
    object.refuseOthers();
    m_boxes.add(std::move(box), value.where());
}

unsigned ControllerUnits::readPhysical(Value const& value, std::string const& given,
                                       ControllerBoxes::Box const* box) {
    Object const object(value);
    Unit unit;
    unit.entry.resize(32);
    auto const index = static_cast<unsigned>(object.numberOr("index", m_units.size(), 0xFFFF));
    putBig(&unit.entry[24], 2, index);
    unit.inMaps = given == "drive" || given == "tape";
    if ((box == nullptr && !unit.inMaps) || object.has("address"))
        unit.address = readAddressText(object.at("address"));
    else  // any address will do that no other device has
        unit.address = {
            static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(index >> 8), 0, 0, 0, 0, 0, 1};
    std::copy(unit.address.begin(), unit.address.end(), unit.entry.begin());
    TargetPlace place = m_place;
    place.hasIndex = true;
    place.index = index;
    auto const* const letters = reinterpret_cast<std::uint8_t const*>(m_place.device.data());
    std::uint64_t const deviceCode = crc32({letters, m_place.device.size()});
    if (unit.inMaps) place.worldWideName = 0x51E5E00000000000U | (deviceCode & 0xFFFFFFF) << 16 | index;
    if (box != nullptr) {
        unit.inBox = true;
        unit.box = m_boxes.all().size();
        place.port = box->paths[0].port;
        place.box = box->paths[0].number;
        place.chassisSerial = box->serial;
        place.worldWideName = 0x51E5D00000000000U | deviceCode << 8 | (index & 0xFF);
    }
    if (auto const address = object.find("sas_address")) {
        auto const bytes = readAddressText(*address);
        place.worldWideName = getBig(bytes.data(), bytes.size());
    }
    putBig(&unit.entry[8], 8, place.worldWideName);
    if (auto const address = object.find("parent_sas_address")) {
        auto const bytes = readAddressText(*address);
        std::copy(bytes.begin(), bytes.end(), unit.entry.begin() + 16);
    }
    unit.entry[27] = static_cast<std::uint8_t>(object.numberOr("phy", 0, 255));
    unit.entry[28] = static_cast<std::uint8_t>(object.numberOr("parent_phy", 0, 255));
    if (given == "enclosure_processor") object.numberOr("sep_type", 1, 255);  // the box's record tells it
    unit.identify = readOverride(object, "identify");
    unit.specialInquiry = readOverride(object, "special_inquiry");
    std::string const kind = given.empty() ? object.at("kind").text() : given;
    std::uint8_t code = EXPANDER_CODE;
    if (kind != "expander") {
        unit.target = given.empty() ? makeScsiTarget(object, place) : makeScsiTarget(object, place, given);
        for (TypeRow const& row : TYPES)
            if (row.kind == kind) code = row.code;
        if (unit.inMaps) unit.drive = dynamic_cast<Drive*>(unit.target.get());
    } else {
        unit.expander.peripheralType = 0x0D;
        unit.expander.vendor = object.textOr("vendor", "VQ", 8);
        unit.expander.product = object.textOr("product", "VIRTUAL EXPANDER", 16);
        unit.expander.revision = object.textOr("revision", "1.00", 4);
        unit.expander.serial = object.textOr("serial", "", 32);
        unit.expander.worldWideName = place.worldWideName;
    }
    unit.entry[26] = static_cast<std::uint8_t>(object.numberOr("type", code, 255));
    object.refuseOthers();
    m_units.push_back(std::move(unit));
    return index;
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
    TargetPlace place = m_place;
    place.worldWideName = getBig(&unit.entry[8], 8);
    unit.target = makeScsiTarget(object, place);
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
        if (unit.isVolume != (command.block[0] == REPORT_LOGICAL) || !unit.present(command.now)) continue;
        std::size_t const size = form == LONG_FORM ? unit.entry.size() : unit.address.size();
        reply.data.insert(reply.data.end(), unit.entry.begin(),
                          unit.entry.begin() + static_cast<std::ptrdiff_t>(size));
    }
    putBig(reply.data.data(), 4, reply.data.size() - 8);
    if (reply.data.size() > allocation) reply.data.resize(allocation);
    return reply;
}

bool ControllerUnits::hasIndex(unsigned index) const {
    return std::any_of(m_units.begin(), m_units.end(),
                       [&](Unit const& unit) { return !unit.isVolume && unit.index() == index; });
}

std::vector<ScsiTarget*> ControllerUnits::targets() const {
    std::vector<ScsiTarget*> found;
    for (Unit const& unit : m_units)
        if (unit.target && !unit.target->name().empty()) found.push_back(unit.target.get());
    return found;
}

ControllerUnits::Unit const* ControllerUnits::findIndex(unsigned index, std::uint64_t now) const {
    for (Unit const& unit : m_units)
        if (!unit.isVolume && unit.index() == index && unit.present(now)) return &unit;
    return nullptr;
}

std::optional<Bytes> ControllerUnits::identify(unsigned index, std::uint64_t now) const {
    Unit const* const unit = findIndex(index, now);
    if (unit == nullptr) return std::nullopt;
    InquiryIdentity const& identity = unit->identity();
    Filler record(PHYSICAL_DEVICE);
    record.blankTexts()
        .text("sDriveModel", identity.product)
        .text("sDriveSerialNumber", identity.serial)
        .text("sDriveFirmwareRevision", identity.revision)
        .number("bPhysicalBay", 0xFF)
        .number("bPhysicalBox", 0xFF)
        .number("bDeviceType", unit->entry[26])
        .big("bWWID", identity.worldWideName);
    if (unit->inBox) {
        ControllerBoxes::Box const& box = m_boxes.all()[unit->box];
        ControllerBoxes::Path const& path = box.paths[0];
        record.number("bSCSIBus", path.bus)
            .number("bSCSIID", path.target)
            .text("sPhysicalPort", path.port)
            .number("bPhysicalBox", path.number)
            .number("bBoxIndex", path.index());
        ControllerBoxes::putPaths(record, box);
    }
    if (unit->drive != nullptr) putDrive(record, *unit);
    return finishRecord(PHYSICAL_DEVICE, record.take(), unit->identify);
}

std::optional<Bytes> ControllerUnits::specialInquiry(unsigned index, std::uint64_t now) const {
    Unit const* const unit = findIndex(index, now);
    if (unit == nullptr) return std::nullopt;
    InquiryIdentity const& identity = unit->identity();
    Filler record(SPECIAL_INQUIRY);
    record.number("dwNumberInquiryCommands", 2);
    for (std::size_t const at : {std::size_t{14}, std::size_t{546}}) {
        *record.at(at) = identity.peripheralType;
        putText(record.at(at + 8), 8, identity.vendor);
        putText(record.at(at + 16), 16, identity.product);
        putText(record.at(at + 32), 4, identity.revision);
    }
    *record.at(280) = identity.peripheralType;
    *record.at(281) = 0x80;
    *record.at(283) = static_cast<std::uint8_t>(identity.serial.size());
    putText(record.at(284), 64, identity.serial);
    return finishRecord(SPECIAL_INQUIRY, record.take(), unit->specialInquiry);
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
