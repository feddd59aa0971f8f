#include "storage/operations/bus_parameters.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <iterator>

#include "command/device_command_return.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/operations/controller_common.h"
#include "storage/operations/publish.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

using Parameters = Records::SENSE_BUS_PARAMETERS;

constexpr char const* VENDORS[] = {"KESTAL  ", "VQ      "};
constexpr char SERVER_BRAND[] = "VAULTSRV";
constexpr unsigned SERVER_BRAND_SIZE = 8;
/// The backplane on which the family's controllers were evaluated; it has no bays to tell of.
constexpr char EVALUATION_BACKPLANE[] = "510027 EvBd 255 ";

constexpr unsigned STATUS_BITS = 8;

bool bit(unsigned char const* map, unsigned number) {
    return (map[number / 8] >> (number % 8) & 1) != 0;
}

unsigned char const* portStatus(Records::IDENTIFY_CONTROLLER const& identify, std::uint8_t bus) {
    return bus < INTERNAL_BUSES ? &identify.bInternalPortStatus[bus]
                                : &identify.bExternalPortStatus[bus - INTERNAL_BUSES];
}

unsigned countWithin(unsigned told, std::size_t room, char const* what) {
    if (told <= room) return told;
    Common::DebugLogger::LogCommand("A box tells of %u %s, its record has room for %u; the rest is refused",
                                    told, what, static_cast<unsigned>(room));
    return static_cast<unsigned>(room);
}

}  // namespace

bool SenseBox::answers(BMICDevice& controller) {
    constexpr char WHAT[] = "Record of a box";
    auto const isCut = [this] {
        Parameters const& told = record();
        return Schema::PhysicalDriveMap::isCut(
            receivedLength(), fromWire<std::uint16_t>(told.wOffsetToExtendedInstalledDriveMap),
            fromWire<std::uint16_t>(told.wMaximumPhysicalDevicesSupported),
            fromWire<std::uint32_t>(told.dwTotalStructureLength));
    };
    if (!(*this)(controller) || !holdsWhole(*this, WHAT)) return false;
    if (!isCut()) return true;
    makeRoomForTotal(*this, WHAT);
    return (*this)(controller) && holdsWhole(*this, WHAT) && !isCut();
}

std::uint8_t boxIndexOf(std::uint8_t bus, std::uint8_t target) {
    return static_cast<std::uint8_t>((bus + 1) * 16 | target);
}

Schema::CageLocation placeOfBoxIndex(std::uint8_t boxIndex) {
    // Bus 15 wraps to 0 in eight bits.
    return {static_cast<std::uint8_t>(((boxIndex >> 4) - 1) & 0x0F),
            static_cast<std::uint8_t>(boxIndex & 0x0F)};
}

Schema::PhysicalDriveMap installedDrives(SenseBox const& sense) {
    Parameters const& record = sense.record();
    Schema::PhysicalDriveMap map;
    map.InitializeDriveMap(replyOf(sense), offsetof(Parameters, pbBigInstalledDriveMap),
                           fromWire<std::uint16_t>(record.wOffsetToExtendedInstalledDriveMap),
                           fromWire<std::uint16_t>(record.wMaximumPhysicalDevicesSupported));
    return map;
}

bool walkBoxes(BMICDevice& controller, std::vector<Box>& boxes, Core::OperationReturn& result) {
    SenseControllerCommand<IdentifyControllerTrait> identify;
    DeviceCommandReturn::executeCommand(identify, controller, result);
    if (result && !holdsWhole(identify, "Identify record")) {
        result.Receive(Core::Attribute(Interface::TOLKMod::OperationReturn::ATTR_NAME_STATUS,
                                       Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE));
    }
    if (!result) return false;
    boxes = walkBoxes(controller, identify.record());
    return true;
}

std::vector<Box> walkBoxes(BMICDevice& controller, Records::IDENTIFY_CONTROLLER const& identify) {
    std::vector<Box> boxes;
    for (std::uint8_t bus = 0; bus < BUSES; ++bus) {
        std::bitset<BOXES_PER_BUS> marked(*portStatus(identify, bus));
        for (std::uint8_t target = 0; target < BOXES_PER_BUS; ++target) {
            if (!marked[target]) continue;
            SenseBox sense(bus, target);
            if (!sense.answers(controller)) continue;
            boxes.push_back({{bus, target}, sense.recordCopy(), installedDrives(sense)});
            for (unsigned behind = STATUS_BITS; behind < BOXES_PER_BUS; ++behind) {
                if (bit(sense.record().pbBigBoxMap, behind)) marked.set(behind);
            }
        }
    }
    return boxes;
}

std::vector<Schema::CageLocation> placesOf(Schema::StorageEnclosure const& enclosure, std::uint8_t boxIndex) {
    std::vector<Schema::CageLocation> places = {placeOfBoxIndex(boxIndex)};
    for (Schema::CageLocation const& place : enclosure.otherPlaces())
        places.push_back(place);
    return places;
}

bool isEnclosure(Box const& box, Common::string const& family) {
    Parameters const& record = *box.parameters;
    Common::string const vendor = wholeText(record.boxInquiryData.sVendorID);
    Common::string const product = wholeText(record.boxInquiryData.sProductID);
    if (record.bInquiryValid != 0) {
        bool const isOurs = std::any_of(std::begin(VENDORS), std::end(VENDORS),
                                        [&](char const* known) { return vendor == known; });
        if (isOurs && product.substr(0, SERVER_BRAND_SIZE) == SERVER_BRAND) return true;
        namespace Names = Interface::StorageMod::ArrayController;
        if (family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR &&
            product == EVALUATION_BACKPLANE) {
            return true;
        }
    }
    return record.bBayCount != 0;
}

Schema::BoxContents contentsOf(Parameters const& parameters) {
    Schema::BoxContents contents;
    unsigned const seps =
        countWithin(parameters.bSEPCount, std::size(parameters.bSEPDeviceTypes), "processors");
    for (unsigned i = 0; i < seps; ++i) {
        unsigned short const number = fromWire<std::uint16_t>(parameters.wSEPDeviceNumbers[i]);
        contents.seps.push_back({number, parameters.bSEPDeviceTypes[i]});
    }
    unsigned const expanders =
        countWithin(parameters.bExpanderCount, sizeof parameters.wExpanderDeviceNumbers / 2, "expanders");
    for (unsigned i = 0; i < expanders; ++i) {
        contents.expanders.push_back(fromWire<std::uint16_t>(parameters.wExpanderDeviceNumbers[i]));
    }
    return contents;
}

namespace {

template <class Take>
void forEachEnclosure(Core::Device const& controller, Take take) {
    for (auto child = controller.beginChild(); child != controller.endChild(); ++child) {
        auto const* const enclosure = dynamic_cast<Schema::StorageEnclosure const*>(child->get());
        // One that this discovery didn't find again is about to go.
        if (enclosure != nullptr && enclosure->isValid() && !take(*enclosure)) return;
    }
}

}  // namespace

Schema::BoxContents contentsOfEnclosures(Core::Device const& controller) {
    Schema::BoxContents contents;
    forEachEnclosure(controller, [&](Schema::StorageEnclosure const& enclosure) {
        contents.add(enclosure.contents());
        return true;
    });
    return contents;
}

Schema::BoxContents contentsAheadOf(Schema::StorageEnclosure const& enclosure,
                                    Core::Device const& controller) {
    Schema::BoxContents ahead;
    forEachEnclosure(controller, [&](Schema::StorageEnclosure const& other) {
        if (&other == &enclosure) return false;
        ahead.add(other.contents());
        return true;
    });
    return ahead;
}

Schema::BoxContents contentsNow(Schema::StorageEnclosure& enclosure, Core::Device const& controller,
                                std::uint8_t boxIndex) {
    Schema::BoxContents listed;
    for (Schema::CageLocation const& place : placesOf(enclosure, boxIndex)) {
        SenseBox sense(place);
        if (sense.answers(enclosure)) listed.add(contentsOf(sense.record()));
    }
    listed.add(enclosure.contents());
    Schema::BoxContents const ahead = contentsAheadOf(enclosure, controller);
    auto const refuse = [boxIndex](char const* what, unsigned short number) {
        Common::DebugLogger::LogCommand("%s %u of box index %u passed over: another box has it", what,
                                        static_cast<unsigned>(number), static_cast<unsigned>(boxIndex));
    };
    Schema::BoxContents own;
    for (Schema::ListedSep const& sep : listed.seps) {
        if (ahead.hasSep(sep.number)) {
            refuse("Processor", sep.number);
        } else {
            own.seps.push_back(sep);
        }
    }
    for (unsigned short const number : listed.expanders) {
        if (ahead.hasExpander(number)) {
            refuse("Expander", number);
        } else {
            own.expanders.push_back(number);
        }
    }
    return own;
}

}  // namespace Operations
