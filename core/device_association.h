#pragma once

#include "common/list.h"
#include "common/local_static_allocator.h"
#include "common/shared_ptr.h"
#include "common/string.h"

namespace Core {

class Device;
class DeviceAssociation;

// Lists are walked by const iterators. They survive insertions; an erased entry's are dead.
typedef Common::list<Common::shared_ptr<Device>> DeviceList;
typedef DeviceList::const_iterator DeviceIterator;
typedef Common::list<Common::shared_ptr<DeviceAssociation>> AssociationList;
typedef AssociationList::const_iterator AssociationIterator;

// Takes devices: a parent its children, an association its members.
class DeviceSubscriber {
  public:
    virtual ~DeviceSubscriber() = default;
    virtual bool receive(Common::shared_ptr<Device> device) = 0;
    // Returns the iterator behind the removed entry.
    virtual DeviceIterator clear(Common::shared_ptr<Device> device) = 0;
};

class DeviceAssociationSubscriber {
  public:
    virtual ~DeviceAssociationSubscriber() = default;
    virtual bool receive(Common::shared_ptr<DeviceAssociation> association) = 0;
    virtual AssociationIterator clear(Common::shared_ptr<DeviceAssociation> association) = 0;
};

// Marks classes that create associations.
class DeviceAssociationPublisher {
  public:
    virtual ~DeviceAssociationPublisher() = default;
};

// A named link from the device that holds it to devices anywhere in the tree. It keeps its members alive:
// two devices associated with each other are released only after their associations were deleted.
class DeviceAssociation : public DeviceSubscriber,
                          public Common::LocalStaticAllocator<DeviceAssociation, 1000> {
  public:
    explicit DeviceAssociation(Common::string const& name);
    ~DeviceAssociation() override;

    Common::string name() const { return m_name; }
    DeviceIterator beginDevice() const;
    DeviceIterator endDevice() const;
    unsigned size() const;

    // Appends without looking for duplicates; true. A null device is refused and logged: false.
    bool receive(Common::shared_ptr<Device> device) override;
    // Removes the first entry that is this very object; the end when there is none.
    DeviceIterator clear(Common::shared_ptr<Device> device) override;

  private:
    Common::string m_name;
    DeviceList m_devices;
};

}  // namespace Core
