#include "storage/schema/enclosure.h"

#include <algorithm>

#include "storage/vocabulary/drive_cage.h"
#include "storage/vocabulary/storage_enclosure.h"

namespace Schema {

namespace Box = Interface::StorageMod::StorageEnclosure;
namespace Cage = Interface::StorageMod::DriveCage;

bool BoxContents::hasSep(unsigned short number) const {
    return std::any_of(seps.begin(), seps.end(),
                       [number](ListedSep const& sep) { return sep.number == number; });
}

bool BoxContents::hasExpander(unsigned short number) const {
    return std::find(expanders.begin(), expanders.end(), number) != expanders.end();
}

void BoxContents::add(BoxContents const& more) {
    for (ListedSep const& sep : more.seps) {
        if (!hasSep(sep.number)) seps.push_back(sep);
    }
    for (unsigned short const number : more.expanders) {
        if (!hasExpander(number)) expanders.push_back(number);
    }
    drives |= more.drives;
}

StorageEnclosure::StorageEnclosure(std::uint8_t boxNumber, Common::string const& serialNumber,
                                   Common::string const& location, std::uint8_t boxIndex)
    : Node(Box::ATTR_VALUE_TYPE_STORAGE_ENCLOSURE, ForwardDevice()),
      m_boxNumber(boxNumber),
      m_boxIndex(boxIndex),
      m_serialNumber(serialNumber.Trim()) {
    publish(*this, Box::ATTR_NAME_BOX, decimalText(boxNumber));
    publish(*this, Box::ATTR_NAME_BOX_INDEX, decimalText(boxIndex));
    publish(*this, Box::ATTR_NAME_SERIAL_NUMBER, m_serialNumber);
    publish(*this, Box::ATTR_NAME_LOCATION, location);
    // Bus 15 wraps to 0 in the index's eight bits: taking one off and keeping four bits brings it back.
    m_cages.push_back({static_cast<std::uint8_t>(((boxIndex >> 4) - 1) & 0x0F),
                       static_cast<std::uint8_t>(boxIndex & 0x0F)});
}

StorageEnclosure::StorageEnclosure(std::uint8_t boxNumber, Common::string const& serialNumber,
                                   Common::string const& location)
    : StorageEnclosure(boxNumber, serialNumber, location, 0) {
    m_cages.clear();
}

Common::string StorageEnclosure::uniqueIdentifier() const {
    Common::string identifier = "SE:" + decimalText(m_boxIndex) + "_" + decimalText(m_boxNumber);
    if (!m_serialNumber.empty()) identifier += "_" + m_serialNumber;
    return identifier;
}

DriveCage::DriveCage(std::uint8_t bus, std::uint8_t target, Common::string const& port,
                     PhysicalDriveMap const& installedDrives)
    : Node(Cage::ATTR_VALUE_TYPE_DRIVE_CAGE, ForwardDevice()),
      m_location{bus, target},
      m_port(port.Trim()),
      m_installedDrives(installedDrives) {
    publish(*this, Cage::ATTR_NAME_BUS, decimalText(bus));
    publish(*this, Cage::ATTR_NAME_PORT, m_port);
}

Common::string DriveCage::toStringImpl() const {
    Common::string identifier =
        "DC:" + decimalText(m_location.bus) + "_" + decimalText(m_location.target) + "_" + m_port;
    if (hasAttribute(Cage::ATTR_NAME_DUPLEX_LOCATION)) {
        identifier += "_" + getValueFor(Cage::ATTR_NAME_DUPLEX_LOCATION);
    }
    return identifier;
}

}  // namespace Schema
