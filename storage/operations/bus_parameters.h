#pragma once

#include <cstdint>
#include <vector>

#include "command/controller_command.h"
#include "storage/schema/enclosure.h"

namespace Operations {

/// Asks a controller about a box: command block byte 2 is the bus, byte 3 the box's target number on it.
class SenseBox : public SenseControllerCommand<SenseBusParametersTrait> {
  public:
    SenseBox(std::uint8_t bus, std::uint8_t box) {
        SetDetails(static_cast<std::uint32_t>(bus) << 24 | static_cast<std::uint32_t>(box) << 16);
    }
    explicit SenseBox(Schema::CageLocation const& place) : SenseBox(place.bus, place.target) {}

    /// False also for a reply that was cut, in its fixed part or, twice, in its map.
    bool answers(BMICDevice& controller);
};

/// Buses of a controller: 0 to 7 are its internal ports, 8 to 15 its external ones.
inline constexpr std::uint8_t INTERNAL_BUSES = 8;
inline constexpr std::uint8_t BUSES = 16;
/// Places on one bus: the box index has four bits for them.
inline constexpr unsigned BOXES_PER_BUS = 16;

/// A place that answered.
struct Box {
    Schema::CageLocation place;
    Common::copy_ptr<Records::SENSE_BUS_PARAMETERS> parameters;
    Schema::PhysicalDriveMap installedDrives;
};

/// The drives in the bays of a place, out of its reply.
Schema::PhysicalDriveMap installedDrives(SenseBox const& sense);

/// ((bus + 1) * 16) | target in eight bits, and back.
std::uint8_t boxIndexOf(std::uint8_t bus, std::uint8_t target);
Schema::CageLocation placeOfBoxIndex(std::uint8_t boxIndex);

/// Every place that answers: those that the identify reply's port status marks, a byte for each bus and a bit
/// for each target up to 7, and those behind them that a box's own map adds to its bus. A place that doesn't
/// answer is passed over. Without an identify record nothing is known: false, with the failure in `result`.
bool walkBoxes(BMICDevice& controller, std::vector<Box>& boxes, Core::OperationReturn& result);
/// The same for those who have the identify record.
std::vector<Box> walkBoxes(BMICDevice& controller, Records::IDENTIFY_CONTROLLER const& identify);

/// All places under which a controller lists an enclosure, that of its box index first.
std::vector<Schema::CageLocation> placesOf(Schema::StorageEnclosure const& enclosure, std::uint8_t boxIndex);
/// Whether an enclosure is at a place. `family` is the controller's ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY.
/// Whatever has bays is one: every bus that the walk reaches is a bus of boxes.
bool isEnclosure(Box const& box, Common::string const& family);

/// What the records of a box list, each list cut where the record ends: counts beyond that are refused with a
/// line in the log.
Schema::BoxContents contentsOf(Records::SENSE_BUS_PARAMETERS const& parameters);
/// The same of all places of an enclosure as they answer now, and of when it was found: a look that fails
/// takes nothing away. What an enclosure ahead of it below the same controller lists is left out: a box
/// without a serial number stands in the tree once for each of its paths, and its devices must not.
Schema::BoxContents contentsNow(Schema::StorageEnclosure& enclosure, Core::Device const& controller,
                                std::uint8_t boxIndex);
/// Of all enclosures that this discovery found below a controller.
Schema::BoxContents contentsOfEnclosures(Core::Device const& controller);
/// Of those ahead of one below the same controller.
Schema::BoxContents contentsAheadOf(Schema::StorageEnclosure const& enclosure,
                                    Core::Device const& controller);

/// A text member as it came, blanks included, up to the first zero.
template <typename Byte, std::size_t Size>
Common::string wholeText(Byte const (&member)[Size]) {
    std::size_t length = 0;
    while (length < Size && member[length] != 0)
        ++length;
    return Common::string(reinterpret_cast<char const*>(member), 0, static_cast<unsigned>(length));
}

}  // namespace Operations
