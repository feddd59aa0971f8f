#pragma once

/// Devices and volumes behind an array controller, the boxes that they are in, and the controller's reports
/// of them.
///
/// Long form of both reports (byte 1 of the command block is 2): 0 4 length of the list, high byte first;
/// 4 1 the form; from 8 the entries.
///   REPORT PHYSICAL LUNS, 32 bytes: 0 8 address; 8 8 SAS address; 16 8 parent's; 24 2 index, high byte
///   first;
///                                   26 1 type; 27 1 phy; 28 1 parent's phy
///   REPORT LOGICAL LUNS, 24 bytes:  0 8 address; 8 16 identity
/// The short form (byte 1 is 0) has the addresses alone.

#include <optional>

#include "simulator/controller_boxes.h"
#include "simulator/drive.h"

namespace simulator {

class ControllerUnits {
  public:
    /// Reads "physical_devices", "drives", "tapes", "boxes" and "volumes" of a device. Throws ScenarioError.
    ControllerUnits(Object const& device, TargetPlace const& place);

    ControllerBoxes const& boxes() const { return m_boxes; }
    /// What is behind the controller and keeps something.
    std::vector<ScsiTarget*> targets() const;
    /// IDENTIFY PHYSICAL DRIVE and PASS THROUGH SPECIAL INQUIRY of an index; nothing when no device that is
    /// present has it.
    std::optional<Bytes> identify(unsigned index, std::uint64_t now) const;
    std::optional<Bytes> specialInquiry(unsigned index, std::uint64_t now) const;

    /// How many devices the controller's maps have room for.
    unsigned limit() const { return m_limit; }
    /// Writes the maps of the identify record, the extended ones behind it.
    void markMaps(Filler& identify, Bytes& extended) const;
    /// Writes which drives a logical drive has, likewise.
    void markRoles(Filler& configuration, Bytes& extended, unsigned logicalDrive) const;
    /// The drive of the maps that has a number; null when none has.
    Drive* drive(unsigned number) const;
    /// SENSE MNP STATISTICS of a drive, and SENSE DRIVE ERASE PROGRESS of all.
    std::optional<Bytes> statistics(unsigned number) const;
    Bytes eraseProgress() const;

    /// Answers 0xC2 and 0xC3.
    Reply report(Command const& command) const;
    /// Whether the report of physical devices has one of this index.
    bool hasIndex(unsigned index) const;
    /// What is at an address; null when nothing is. A volume that is hidden from the host also answers to the
    /// address of one that isn't.
    ScsiTarget* find(std::array<std::uint8_t, 8> const& address) const;

  private:
    struct Unit {
        std::array<std::uint8_t, 8> address{};
        Bytes entry;  ///< of the long form
        std::shared_ptr<ScsiTarget> target;
        InquiryIdentity expander;  ///< of a unit without a target
        bool isVolume = false;
        Drive* drive = nullptr;  ///< the target, if it is one of the maps
        bool inMaps = false;     ///< a drive or tape of "drives" and "tapes"
        bool inBox = false;      ///< what it is in is m_boxes' element `box`, or nothing is known of it
        std::size_t box = 0;
        RecordOverride identify;
        RecordOverride specialInquiry;

        bool present(std::uint64_t now) const { return !target || target->present(now); }
        InquiryIdentity const& identity() const { return target ? target->identity() : expander; }
        unsigned index() const;
    };
    /// `kind` is empty for a device that tells its own. Returns the unit's index.
    unsigned readPhysical(Value const& value, std::string const& kind, ControllerBoxes::Box const* box);
    void readMapped(Object const& device, char const* key, char const* kind);
    void readOne(nlohmann::json object, std::string const& where, char const* kind);
    void findLimit(Object const& device);
    void placeInBoxes();
    void putDrive(Filler& record, Unit const& unit) const;
    void readBox(Value const& value);
    void readVolume(Value const& value);
    Unit const* findIndex(unsigned index, std::uint64_t now) const;

    TargetPlace m_place;
    unsigned m_limit = 128;
    ControllerBoxes m_boxes;
    std::vector<Unit> m_units;
};

}  // namespace simulator
