#include "core/device_finder.h"

#include "common/debug_logger.h"
#include "core/device.h"
#include "core/filter.h"

namespace Core {

void DeviceFinder::AddAttribute(Common::pair<Common::string, AttributeValue> const& attribute) {
    m_attributes.insert(attribute);
}

void DeviceFinder::AddOperation(Common::string const& name) {
    m_operations.push_back(name);
}

void DeviceFinder::AddAssociation(Common::string const& name) {
    m_associations.push_back(name);
}

void DeviceFinder::AddFilter(Common::shared_ptr<Filter> filter) {
    m_filters.push_back(filter);
}

Common::shared_ptr<Device> DeviceFinder::find(EnDirection direction) const {
    return find(m_root, direction);
}

Common::shared_ptr<Device> DeviceFinder::find(Common::shared_ptr<Device> start, EnDirection direction) const {
    if (!start) {
        Common::DebugLogger::LogCommand("Device search refused: no device to start from");
        return Common::shared_ptr<Device>();
    }
    if (!start->isValid()) return Common::shared_ptr<Device>();
    if (isMatchFound(start)) return start;

    if (direction == eUpward && start->hasParent()) return find(start->pParent(), direction);
    if (direction == eDownward) {
        for (Device::ChildIterator child = start->beginChild(); child != start->endChild(); ++child) {
            Common::shared_ptr<Device> found = find(*child, direction);
            if (found) return found;
        }
    }
    return Common::shared_ptr<Device>();
}

void DeviceFinder::find(DeviceList& out, EnDirection direction) const {
    if (!m_root) {
        Common::DebugLogger::LogCommand("Device search refused: no device to start from");
        return;
    }
    recursiveFind(m_root, out, direction);
}

void DeviceFinder::recursiveFind(Common::shared_ptr<Device> device, DeviceList& out,
                                 EnDirection direction) const {
    if (device->isValid()) findFrom(device, out, direction);
}

void DeviceFinder::findFrom(Common::shared_ptr<Device> device, DeviceList& out, EnDirection direction) const {
    if (isMatchFound(device)) out.push_back(device);

    if (direction == eUpward && device->hasParent()) {
        Common::shared_ptr<Device> parent = device->pParent();
        if (parent) recursiveFind(parent, out, direction);
    }
    if (direction == eDownward) {
        for (Device::ChildIterator child = device->beginChild(); child != device->endChild(); ++child) {
            recursiveFind(*child, out, direction);
        }
    }
}

bool DeviceFinder::isMatchFound(Common::shared_ptr<Device> const& device) const {
    // Cheap tests first; asking for an operation may run filters that ask hardware.
    return attributesMatch(*device) && operationsMatch(*device) && filtersMatch(device) &&
           associationsMatch(*device);
}

// Each group is counted through to the end, as operations and filters may act on the device they judge.

bool DeviceFinder::attributesMatch(Device const& device) const {
    unsigned matches = 0;
    for (auto const& attribute : m_attributes) {
        if (device.hasAttributeAndIs(attribute.first, attribute.second)) ++matches;
    }
    return matches == m_attributes.size();
}

bool DeviceFinder::operationsMatch(Device const& device) const {
    unsigned matches = 0;
    for (auto const& name : m_operations) {
        if (device.hasOperation(name)) ++matches;
    }
    return matches == m_operations.size();
}

bool DeviceFinder::filtersMatch(Common::shared_ptr<Device> const& device) const {
    unsigned matches = 0;
    for (auto const& filter : m_filters) {
        if (applyFilter(filter, device, "by a device search")) ++matches;
    }
    return matches == m_filters.size();
}

bool DeviceFinder::associationsMatch(Device const& device) const {
    unsigned matches = 0;
    for (auto const& name : m_associations) {
        if (device.hasAssociation(name)) ++matches;
    }
    return matches == m_associations.size();
}

void DeletedDeviceFinder::recursiveFind(Common::shared_ptr<Device> device, DeviceList& out,
                                        EnDirection direction) const {
    findFrom(device, out, direction);
}

}  // namespace Core
