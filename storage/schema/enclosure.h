#pragma once

#include <cstdint>

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

/// A box of drives. `boxIndex` is its place on the controller, ((bus + 1) * 16) | target in eight bits, and 0
/// behind a plain adapter; `location` is ATTR_VALUE_LOCATION_INTERNAL or _EXTERNAL.
class StorageEnclosure : public Node<StorageEnclosure, Core::DeviceComposite, 9, ForwardDevice> {
  public:
    StorageEnclosure(std::uint8_t boxNumber, Common::string const& serialNumber,
                     Common::string const& location, std::uint8_t boxIndex);

    /// "SE:", box index, box number, and the serial number where the box has one: another box in the same
    /// place is another device.
    Common::string uniqueIdentifier() const;
    /// The places of its cages: first its own, which the box index tells; more where discovery found more.
    Common::list<CageLocation> const& driveCageLocationList() const { return m_cages; }
    /// Once for each location; a known one is no second cage.
    void AddDriveCageLocation(CageLocation const& cage);

  protected:
    Common::string toStringImpl() const override { return uniqueIdentifier(); }
    void takeOver(StorageEnclosure const& twin) override { m_cages = twin.m_cages; }

  private:
    std::uint8_t m_boxNumber;
    std::uint8_t m_boxIndex;
    Common::string m_serialNumber;
    Common::list<CageLocation> m_cages;
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
