/// Drives and tapes of a controller's maps: making them, and what its records tell of them.

#include <algorithm>
#include <cstdio>

#include "simulator/controller_units.h"

namespace simulator {

namespace {

constexpr unsigned MOST_DEVICES = 4096;
constexpr unsigned FIXED_MAP = 128;
constexpr std::size_t RECORD = 512;  ///< before the extended maps

// bDeviceType of the identify record, by DriveInterface.
constexpr std::uint8_t DEVICE_TYPES[] = {0, 1, 2, 3, 4};
constexpr std::uint8_t HARDWARE_ERROR = 5;        ///< bLastFailureReason
constexpr std::uint8_t FAILED = 1;                ///< bDeviceFlags
constexpr std::uint8_t NOT_CONFIGURED = 2;        ///< bMoreDeviceFlags
constexpr std::uint8_t WRITE_BUFFER_5_AND_7 = 3;  ///< bYetMoreDeviceFlags
constexpr std::uint8_t LINK_6_GBPS = 0x0A;
constexpr std::size_t ERASE_ENTRY = 4;
constexpr std::size_t ERASE_ENTRIES_AT = 512;

std::string fiveDigits(unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, "%05u", number);
    return text;
}

}  // namespace

/// An object, or a list of objects; one with "count" is that many, numbered on.
void ControllerUnits::readMapped(Object const& device, char const* key, char const* kind) {
    auto const given = device.find(key);
    if (!given) return;
    std::vector<Value> const objects = given->json().is_object() ? std::vector<Value>{*given} : given->list();
    unsigned next = 0;
    for (Value const& value : objects) {
        Object const object(value);
        bool const many = object.has("count");
        auto const count = static_cast<unsigned>(object.numberOr("count", 1, MOST_DEVICES));
        auto const first = static_cast<unsigned>(object.numberOr("index", next, MOST_DEVICES - 1));
        if (count > MOST_DEVICES - first)
            object.at("count").refuse("indices below " + std::to_string(MOST_DEVICES));
        if (many && (object.has("sas_address") || object.has("address")))
            object.at("count").refuse("no count where an address is given");
        for (unsigned index = first; index < first + count; ++index) {
            nlohmann::json one = value.json();
            one.erase("count");
            one["index"] = index;
            if (many && one.contains("name") && one["name"].is_string())
                one["name"] = one["name"].get<std::string>() + "-" + std::to_string(index);
            if (!one.contains("serial"))
                one["serial"] = "VQ" +
                                toHex({reinterpret_cast<std::uint8_t const*>(m_place.device.data()),
                                       std::min<std::size_t>(m_place.device.size(), 4)}) +
                                fiveDigits(index);
            else if (many && one["serial"].is_string())
                one["serial"] = one["serial"].get<std::string>() + fiveDigits(index);
            readOne(std::move(one), value.where(), kind);
        }
        next = first + count;
    }
}

void ControllerUnits::readOne(nlohmann::json object, std::string const& where, char const* kind) {
    readPhysical(Value(object, where), kind, nullptr);
}

void ControllerUnits::findLimit(Object const& device) {
    unsigned last = 0;
    for (Unit const& unit : m_units)
        if (unit.inMaps) last = std::max(last, unit.index());
    m_limit = (last / FIXED_MAP + 1) * FIXED_MAP;
    auto const identify = device.find("identify");
    if (!identify || !identify->json().is_object()) return;
    if (auto const told = Object(*identify).find("wMaximumPhysicalDevicesSupported"))
        if (told->json().is_number() || told->json().is_string())
            m_limit = static_cast<unsigned>(told->number(0xFFFF));
}

/// Boxes tell which drives are in them. Also refuses an index that two devices have.
void ControllerUnits::placeInBoxes() {
    for (std::size_t box = 0; box < m_boxes.all().size(); ++box)
        for (unsigned const number : std::vector<unsigned>(m_boxes.all()[box].drives))
            for (Unit& unit : m_units) {
                if (!unit.inMaps || unit.index() != number) continue;
                unit.inBox = true;
                unit.box = box;
                if (!unit.present(0)) m_boxes.remove(box, number);
            }
    std::vector<unsigned> mapped;
    for (Unit const& unit : m_units)
        if (unit.inMaps) mapped.push_back(unit.index());
    std::sort(mapped.begin(), mapped.end());
    auto const has = [&](unsigned index) { return std::binary_search(mapped.begin(), mapped.end(), index); };
    std::string twice;
    if (auto const found = std::adjacent_find(mapped.begin(), mapped.end()); found != mapped.end())
        twice = std::to_string(*found);
    for (Unit const& unit : m_units) {
        if (unit.isVolume || unit.inMaps || mapped.empty()) continue;
        if (has(unit.index())) twice = std::to_string(unit.index());
    }
    if (!twice.empty())
        throw ScenarioError("device " + m_place.device + ": found the index " + twice +
                            " a second time, expected drives and tapes to have indices of their own");
}

void ControllerUnits::markMaps(Filler& identify, Bytes& extended) const {
    std::size_t const size = (m_limit + 7) / 8;
    Bytes maps(3 * size);  // present, external, no disk
    auto const mark = [&](std::size_t map, unsigned index) {
        static constexpr char const* FIXED[][2] = {{"pbBigDrivePresentMap", "dwDrivePresentMap"},
                                                   {"pbBigExternalDriveMap", "dwExternalDriveMap"},
                                                   {"pbBigNonDiskMap", "dwNonDiskMap"}};
        if (index < m_limit) maps[map * size + index / 8] |= static_cast<std::uint8_t>(1U << index % 8);
        identify.mark(FIXED[map][0], index).mark(FIXED[map][1], index);
    };
    for (ControllerBoxes::Box const& box : m_boxes.all()) {
        bool const external = ControllerBoxes::isExternal(box);
        for (auto const& processor : box.processors)
            mark(2, processor.index);
        for (unsigned const expander : box.expanders)
            mark(2, expander);
        for (unsigned const index : box.drives) {
            mark(0, index);
            if (external) mark(1, index);
        }
    }
    for (Unit const& unit : m_units) {
        if (!unit.inMaps || !unit.present(0)) continue;
        mark(0, unit.index());
        if (unit.drive == nullptr) mark(2, unit.index());
    }
    if (m_limit <= FIXED_MAP) return;
    identify.number("wMaximumPhysicalDevicesSupported", m_limit)
        .number("wOffsetToExtendedDrivePresentMap", RECORD)
        .number("wOffsetToExtendedExternalDriveMap", RECORD + size)
        .number("wOffsetToExtendedNonDiskMap", RECORD + 2 * size)
        .number("dwTotalStructureLength", RECORD + maps.size());
    extended = std::move(maps);
}

void ControllerUnits::markRoles(Filler& configuration, Bytes& extended, unsigned logicalDrive) const {
    std::size_t const size = m_limit > FIXED_MAP ? (m_limit + 7) / 8 : 0;
    extended.resize(2 * size);  // data, spares
    unsigned data = 0;
    for (Unit const& unit : m_units) {
        if (unit.drive == nullptr || unit.drive->setup().logicalDrive != logicalDrive) continue;
        DriveRole const role = unit.drive->setup().role;
        if (role == DriveRole::Unassigned) continue;
        bool const spare = role == DriveRole::Spare;
        configuration.mark(spare ? "pbBigSpareAssignmentMap" : "pbBigDriveAssignmentMap", unit.index())
            .mark(spare ? "dwSpareAssignmentMap" : "dwDriveAssignmentMap", unit.index());
        if (size != 0 && unit.index() < m_limit)
            extended[(spare ? size : 0) + unit.index() / 8] |=
                static_cast<std::uint8_t>(1U << unit.index() % 8);
        if (!spare) ++data;
    }
    if (size != 0)
        configuration.number("wMaximumPhysicalDevicesSupported", m_limit)
            .number("wOffsetToExtendedDriveAssignmentMap", RECORD)
            .number("wOffsetToExtendedSpareAssignmentMap", RECORD + size)
            .number("dwTotalStructureLength", RECORD + extended.size());
    if (data != 0) configuration.number("wPhysicalDrives", data).number("wAssignedDrives", data);
}

Drive* ControllerUnits::drive(unsigned number) const {
    for (Unit const& unit : m_units)
        if (unit.drive != nullptr && unit.index() == number) return unit.drive;
    return nullptr;
}

void ControllerUnits::putDrive(Filler& record, Unit const& unit) const {
    Drive const& drive = *unit.drive;
    Drive::Setup const& setup = drive.setup();
    std::string model = drive.identity().vendor;
    model.resize(8, ' ');
    record.text("sDriveModel", model + drive.identity().product)
        .text("sDriveFirmwareRevision", drive.version())
        .number("wBlockSize", setup.blockSize)
        .number("dwTotalBlocks", std::min<std::uint64_t>(setup.blocks, 0xFFFFFFFF))
        .number("dwReservedBlocks", 65536)
        .number("qwBIGTotalBlockCount", setup.blocks)
        .number("dwRPM", setup.rotation)
        .number("bDeviceType", DEVICE_TYPES[static_cast<std::size_t>(setup.interface)])
        .number("bSATAVersion", drive.isSata() ? 3 : 0)
        .number("bLastFailureReason", setup.state == DriveState::Failing ? HARDWARE_ERROR : 0)
        .number("bDeviceFlags", setup.state == DriveState::Failing ? FAILED : 0)
        .number("bMoreDeviceFlags", setup.role == DriveRole::Unassigned ? NOT_CONFIGURED : 0)
        .number("bYetMoreDeviceFlags", WRITE_BUFFER_5_AND_7)
        .number("wPHYCount", setup.interface == DriveInterface::Parallel ? 0 : 1)
        .number("bPhysicalBay", setup.bay)
        .number("wCurrentQDepthLimit", 32)
        .number("bCurrentTemperature", 35)
        .number("bTemperatureThreshold", 60)
        .number("bMaximumTemperature", 41)
        .number("bLogicalBlocksPerPhysicalBlock", 1)
        .number("wPowerOnHours", std::min(setup.wear.powerOnHours, 0xFFFFU))
        .number("wPercentEnduranceUsed", setup.wear.percent)
        .number("bDriveAuthentication", static_cast<std::uint8_t>(setup.authentication))
        .number("bActiveCarrierAuthentication",
                static_cast<std::uint8_t>(setup.carrier ? setup.carrier->authentication
                                                        : Authentication::NotSupported))
        .number("bActiveCarrierApplicationVersion", drive.carrierVersion())
        .number("bActiveCarrierBootloaderVersion", setup.carrier ? setup.carrier->bootloader : 0);
    if (setup.interface != DriveInterface::Parallel) {
        *record.at(196) = 5;                   // at the other end of its phy: a controller
        putLittle(record.at(708), 2, 0xFFFF);  // which has no index
        *record.at(1224) = LINK_6_GBPS;
    }
    if (!unit.inBox) record.text("sPhysicalPort", "1I").number("bPhysicalBox", 1);
}

std::optional<Bytes> ControllerUnits::statistics(unsigned number) const {
    Drive const* const found = drive(number);
    if (found == nullptr || !found->present(0)) return std::nullopt;
    Filler record(MNP_STATISTICS);
    record.number("dwPowerOnMinutes", 60ULL * found->setup().wear.powerOnHours)
        .number("dwSpinupCycles", found->setup().wear.powerCycles);
    return finishRecord(MNP_STATISTICS, record.take(), found->setup().statistics);
}

/// Behind the record four bytes for each drive: status, pattern, percent, zero.
Bytes ControllerUnits::eraseProgress() const {
    Filler record(ERASE_STATE);
    if (std::none_of(m_units.begin(), m_units.end(), [](Unit const& unit) { return unit.inMaps; }))
        return record.number("dwTotalStructureLength", RECORD).number("dwFixedStructureLength", 22).take();
    record.number("wOffsetToPhysicalDriveEraseState", ERASE_ENTRIES_AT)
        .number("wMaximumPhysicalDevicesSupported", m_limit)
        .number("wMaximumLogicalDevicesSupported", 64)
        .number("dwTotalStructureLength", ERASE_ENTRIES_AT + ERASE_ENTRY * m_limit)
        .number("dwFixedStructureLength", 22);
    Bytes whole = record.take();
    whole.resize(ERASE_ENTRIES_AT + ERASE_ENTRY * m_limit);
    for (Unit const& unit : m_units) {
        if (unit.drive == nullptr || unit.index() >= m_limit) continue;
        std::uint8_t* const entry = &whole[ERASE_ENTRIES_AT + ERASE_ENTRY * unit.index()];
        entry[0] = static_cast<std::uint8_t>(unit.drive->setup().erase.status);
        entry[1] = static_cast<std::uint8_t>(unit.drive->setup().erase.pattern);
        entry[2] = static_cast<std::uint8_t>(unit.drive->setup().erase.percent);
    }
    return whole;
}

}  // namespace simulator
