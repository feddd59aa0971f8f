#pragma once

#include <cstdint>
#include <vector>

#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "common/list.h"
#include "storage/schema/drive_map.h"
#include "storage/schema/forward_device.h"
#include "storage/schema/node.h"

namespace Schema {

/// Where a controller finds a cage: a bus, and the target number of the cage's processor on it.
struct CageLocation {
    std::uint8_t bus = 0;
    std::uint8_t target = 0;

    bool operator==(CageLocation const&) const = default;
};

/// A processor that a controller's record of a box lists, with the box's code of its type.
struct ListedSep {
    unsigned short number;
    unsigned char type;
};

/// What the records of a box's places list, by number on the controller.
struct BoxContents {
    std::vector<ListedSep> seps;
    std::vector<unsigned short> expanders;
    PhysicalDriveMap drives;

    bool hasSep(unsigned short number) const;
    bool hasExpander(unsigned short number) const;
    /// Adds what isn't there yet.
    void add(BoxContents const& more);
};

/// A box of drives. `location` is ATTR_VALUE_LOCATION_INTERNAL or _EXTERNAL.
class StorageEnclosure : public Node<StorageEnclosure, Core::DeviceComposite, 9, ForwardDevice> {
  public:
    /// Behind a controller, at the place that `boxIndex` tells: ((bus + 1) * 16) | target in eight bits.
    StorageEnclosure(std::uint8_t boxNumber, Common::string const& serialNumber,
                     Common::string const& location, std::uint8_t boxIndex);
    /// Behind a plain adapter, which has no places: the box index is 0.
    StorageEnclosure(std::uint8_t boxNumber, Common::string const& serialNumber,
                     Common::string const& location);

    /// "SE:", box index, box number, and the serial number where the box has one: another box in the same
    /// place is another device.
    Common::string uniqueIdentifier() const;
    /// The places of its cages: its own, which the box index tells.
    Common::list<CageLocation> const& driveCageLocationList() const { return m_cages; }
    /// Other places under which the controller lists the same box: second paths. They have no cages of their
    /// own, but a place may list processors that the others don't.
    Common::list<CageLocation> const& otherPlaces() const { return m_otherPlaces; }
    void AddPlace(CageLocation const& place) { m_otherPlaces.push_back(place); }

    /// What was listed in it when it was found: later looks at it may fail, and must not put its devices
    /// elsewhere.
    BoxContents const& contents() const { return m_contents; }
    void AddContents(BoxContents const& contents) { m_contents.add(contents); }
    /// What its own place told when it was found; null behind a plain adapter.
    Common::copy_ptr<Records::SENSE_BUS_PARAMETERS> const& record() const { return m_record; }
    void SetRecord(Common::copy_ptr<Records::SENSE_BUS_PARAMETERS> const& record) { m_record = record; }

  protected:
    Common::string toStringImpl() const override { return uniqueIdentifier(); }
    void takeOver(StorageEnclosure const& twin) override {
        m_otherPlaces = twin.m_otherPlaces;
        m_contents = twin.m_contents;
        m_record = twin.m_record;
    }

  private:
    std::uint8_t m_boxNumber;
    std::uint8_t m_boxIndex;
    Common::string m_serialNumber;
    Common::list<CageLocation> m_cages;
    Common::list<CageLocation> m_otherPlaces;
    BoxContents m_contents;
    Common::copy_ptr<Records::SENSE_BUS_PARAMETERS> m_record;
};

/// The drive bays of an enclosure, or of one half of a duplex enclosure. `port` is the controller's port in
/// two characters. The halves of one box are told apart by ATTR_NAME_DUPLEX_LOCATION: publish it before
/// offering the device to a parent.
class DriveCage : public Node<DriveCage, Core::DeviceComposite, 9, ForwardDevice> {
  public:
    DriveCage(std::uint8_t bus, std::uint8_t target, Common::string const& port,
              PhysicalDriveMap const& installedDrives);

    std::uint8_t busNumber() const { return m_location.bus; }
    std::uint8_t targetNumber() const { return m_location.target; }
    /// The drives in the bays, by their index on the controller.
    PhysicalDriveMap const& installedDriveList() const { return m_installedDrives; }

  protected:
    Common::string toStringImpl() const override;
    void takeOver(DriveCage const& twin) override { m_installedDrives = twin.m_installedDrives; }

  private:
    CageLocation m_location;
    Common::string m_port;
    PhysicalDriveMap m_installedDrives;
};

}  // namespace Schema
