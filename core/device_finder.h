#pragma once

#include "common/list.h"
#include "common/map.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/attribute_value.h"
#include "core/device.h"
#include "core/filter.h"

namespace Core {

// A query over the device tree: criteria first, then any number of searches. A finder without criteria
// matches every device. A search includes the device it starts from, and stops at stale devices: nothing
// behind one is visited. A finder takes no lock of its own.
//
// Testing for an operation catches up a deferred registration of write operations on the tested device.
class DeviceFinder {
  public:
    enum EnDirection {
        eSelf = 0,      // the starting device only
        eUpward = 1,    // through the parents
        eDownward = 2,  // through the children, depth first in child order, parents before their children
    };

    explicit DeviceFinder(Common::shared_ptr<Device> root) : m_root(root) {}
    virtual ~DeviceFinder() = default;

    // The device has the attribute with this value, compared by text. A second value for a name replaces
    // the first.
    void AddAttribute(Common::pair<Common::string, AttributeValue> const& attribute);
    void AddOperation(Common::string const& name);
    void AddAssociation(Common::string const& name);
    // A null filter refuses every device.
    void AddFilter(Common::shared_ptr<Filter> filter);

    // The first match, or null. A null starting device is logged and matches nothing.
    Common::shared_ptr<Device> find(EnDirection direction) const;
    Common::shared_ptr<Device> find(Common::shared_ptr<Device> start, EnDirection direction) const;
    // Appends all matches.
    void find(Common::list<Common::shared_ptr<Device>>& out, EnDirection direction) const;

  protected:
    virtual void recursiveFind(Common::shared_ptr<Device> device,
                               Common::list<Common::shared_ptr<Device>>& out, EnDirection direction) const;
    // recursiveFind() behind its test for stale devices.
    void findFrom(Common::shared_ptr<Device> device, Common::list<Common::shared_ptr<Device>>& out,
                  EnDirection direction) const;
    bool isMatchFound(Common::shared_ptr<Device> const& device) const;

  private:
    bool attributesMatch(Device const& device) const;
    bool operationsMatch(Device const& device) const;
    bool filtersMatch(Common::shared_ptr<Device> const& device) const;
    bool associationsMatch(Device const& device) const;

    Common::shared_ptr<Device> m_root;
    Common::map<Common::string, AttributeValue> m_attributes;
    Common::list<Common::string> m_operations;
    Common::list<Common::string> m_associations;
    Common::list<Common::shared_ptr<Filter>> m_filters;
};

// Finds stale devices too, as far as they can be reached from a pointer that is still held. Applies to
// searches for all matches; find() for the first one still stops at stale devices.
class DeletedDeviceFinder : public DeviceFinder {
  public:
    using DeviceFinder::DeviceFinder;

  protected:
    void recursiveFind(Common::shared_ptr<Device> device, Common::list<Common::shared_ptr<Device>>& out,
                       EnDirection direction) const override;
};

}  // namespace Core
