#include "simulator/controller_boxes.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr unsigned BUSES = 16;
constexpr unsigned INTERNAL_BUSES = 8;
constexpr std::size_t MOST_PATHS = 8;
constexpr unsigned MOST_DRIVES = 4096;
constexpr unsigned FIXED_MAP = 128;
constexpr std::size_t RECORD = 1024;
constexpr std::size_t MOST_LISTED = 16;  ///< places for processors' and expanders' numbers

ControllerBoxes::Path readPath(Object const& object, unsigned number) {
    ControllerBoxes::Path path;
    path.bus = static_cast<unsigned>(object.numberOr("bus", 0, BUSES - 1));
    path.target = static_cast<unsigned>(object.numberOr("target", 0, 15));
    path.number = static_cast<unsigned>(object.numberOr("number", number, 255));
    bool const internal = path.bus < INTERNAL_BUSES;
    std::string const port = std::to_string(path.bus % INTERNAL_BUSES + 1) + (internal ? "I" : "E");
    path.port = object.textOr("port", port, 2);
    path.failed = object.booleanOr("failed", false);
    return path;
}

}  // namespace

ControllerBoxes::Box ControllerBoxes::readBox(Object const& object) {
    Box box;
    box.paths.push_back(readPath(object, 1));
    if (auto const paths = object.find("paths")) {
        for (Value const& value : paths->list()) {
            Object const path(value);
            box.paths.push_back(readPath(path, box.paths[0].number));
            path.refuseOthers();
        }
        if (box.paths.size() > MOST_PATHS) paths->refuse("at most 7 paths more than the box's own");
    }
    box.activePath = static_cast<unsigned>(object.numberOr("active_path", 0, 255));
    box.bays = static_cast<unsigned>(object.numberOr("bays", 0, 255));
    box.inquiryValid = object.booleanOr("inquiry_valid", true);
    box.inquiry.peripheralType = 0x0D;
    box.inquiry.vendor = object.textOr("vendor", "VQ", 8);
    box.inquiry.product = object.textOr("product", "VIRTUAL BOX", 16);
    box.inquiry.revision = object.textOr("revision", "1.00", 4);
    box.serial = object.textOr("serial", "", 40);
    if (auto const drives = object.find("drives"))
        for (Value const& drive : drives->list())
            box.drives.push_back(static_cast<unsigned>(drive.number(MOST_DRIVES - 1)));
    box.overrides = readOverride(object, "bus_parameters");
    return box;
}

void ControllerBoxes::add(Box box, std::string const& where) {
    for (std::size_t i = 0; i < box.paths.size(); ++i) {
        Path const& path = box.paths[i];
        bool const twice =
            std::any_of(box.paths.begin(), box.paths.begin() + static_cast<std::ptrdiff_t>(i),
                        [&](Path const& each) { return each.bus == path.bus && each.target == path.target; });
        if (twice || find(path.bus, path.target) != nullptr)
            throw ScenarioError(where + ": found a second box at bus " + std::to_string(path.bus) +
                                ", target " + std::to_string(path.target) +
                                ", expected each path to have a place of its own");
    }
    m_boxes.push_back(std::move(box));
    Path const& place = m_boxes.back().paths[0];
    busParameters(place.bus, place.target);  // refuses bad members of the scenario now
}

void ControllerBoxes::remove(std::size_t box, unsigned drive) {
    std::erase(m_boxes[box].drives, drive);
}

ControllerBoxes::Box const* ControllerBoxes::find(unsigned bus, unsigned target) const {
    for (Box const& box : m_boxes)
        for (Path const& path : box.paths)
            if (path.bus == bus && path.target == target) return &box;
    return nullptr;
}

void ControllerBoxes::putPaths(Filler& record, Box const& box) {
    if (box.paths.size() < 2) return;
    record.number("bActivePathNumber", box.activePath);
    for (unsigned i = 0; i < box.paths.size(); ++i) {
        std::string const number = std::to_string(i + 1);
        record.mark("bRedundantPathPresentMap", i);
        if (box.paths[i].failed) record.mark("bRedundantPathFailureMap", i);
        record.text("sMultiPathPort" + number, box.paths[i].port);
        record.number("bMultiPathBox" + number, box.paths[i].number);
    }
}

std::optional<Bytes> ControllerBoxes::busParameters(unsigned bus, unsigned target, unsigned limit) const {
    Box const* const found = find(bus, target);
    if (found == nullptr) return std::nullopt;
    Box const& box = *found;
    Path const& path = *std::find_if(box.paths.begin(), box.paths.end(), [&](Path const& each) {
        return each.bus == bus && each.target == target;
    });
    Filler record(BUS_PARAMETERS);
    record.blankTexts()
        .number("bInquiryValid", box.inquiryValid ? 1 : 0)
        .number("bPhysicalBox", path.number)
        .number("bSCSITargetID", target)
        .text("sPhysicalPort", path.port)
        .number("bBayCount", box.bays)
        .text("sChassisSerialNumber", box.serial)
        .number("bSEPCount", std::min(box.processors.size(), MOST_LISTED))
        .number("bExpanderCount", std::min(box.expanders.size(), MOST_LISTED))
        .number("dwTotalStructureLength", RECORD)
        .number("wMaximumPhysicalDevicesSupported", limit)
        .number("dwFixedStructureLength", 998);
    if (box.inquiryValid) {
        record.at(0)[0] = box.inquiry.peripheralType;
        putText(record.at(8), 8, box.inquiry.vendor);
        putText(record.at(16), 16, box.inquiry.product);
        putText(record.at(32), 4, box.inquiry.revision);
    }
    for (unsigned const drive : box.drives) {
        record.mark("pbBigInstalledDriveMap", drive);
        record.mark("dwInstalledDriveMap", drive);
    }
    for (Box const& each : m_boxes)
        for (Path const& other : each.paths) {
            record.mark("pbBigBusMap", other.bus);
            record.mark("dwBusMap", other.bus);
            if (other.bus != bus) continue;
            record.mark("bInstalledBoxMap", other.target);
            record.mark("pbBigBoxMap", other.target);
        }
    for (std::size_t i = 0; i < std::min(box.processors.size(), MOST_LISTED); ++i) {
        record.at(325)[i] = static_cast<std::uint8_t>(box.processors[i].type);
        putLittle(record.at(341 + 2 * i), 2, box.processors[i].index);
    }
    for (std::size_t i = 0; i < std::min(box.expanders.size(), MOST_LISTED); ++i)
        putLittle(record.at(373 + 2 * i), 2, box.expanders[i]);
    putPaths(record, box);
    Bytes extended;
    if (limit > FIXED_MAP) {
        extended.resize((limit + 7) / 8);
        for (unsigned const drive : box.drives)
            if (drive < limit) extended[drive / 8] |= static_cast<std::uint8_t>(1U << drive % 8);
        record.number("wOffsetToExtendedInstalledDriveMap", RECORD)
            .number("dwTotalStructureLength", RECORD + extended.size());
    }
    Bytes whole = record.take();
    whole.insert(whole.end(), extended.begin(), extended.end());
    return finishRecord(BUS_PARAMETERS, std::move(whole), box.overrides);
}

bool ControllerBoxes::isExternal(Box const& box) {
    return std::none_of(box.paths.begin(), box.paths.end(),
                        [](Path const& path) { return path.bus < INTERNAL_BUSES; });
}

void ControllerBoxes::mark(Filler& identify) const {
    std::size_t expanders = 0;
    for (Box const& box : m_boxes) {
        expanders += box.expanders.size();
        for (Path const& path : box.paths)
            if (path.target < 8)
                identify.mark(path.bus < INTERNAL_BUSES ? "bInternalPortStatus" : "bExternalPortStatus",
                              8 * (path.bus % INTERNAL_BUSES) + path.target);
    }
    if (m_boxes.empty()) return;
    identify.number("bEnclosureCount", std::min<std::size_t>(m_boxes.size(), 255));
    identify.number("bExpanderCount", std::min<std::size_t>(expanders, 255));
}

}  // namespace simulator
