#pragma once

#include "common/list.h"
#include "common/shared_ptr.h"

namespace Core {

class Device;

// Told about something that happens to a device.
class DeviceEventSubscriber {
  public:
    virtual ~DeviceEventSubscriber() = default;
    // `device` is null for a device that no parent holds.
    virtual void OnDeviceEvent(Common::shared_ptr<Device> device) = 0;
};

// The subscribers of one kind of device event, in order of attachment. There is no way to detach: a
// subscriber lives as long as its publisher.
class DeviceEventPublisher {
  public:
    // A subscriber already attached (the same pointer) isn't added again; a null one is refused and logged.
    void Attach(Common::shared_ptr<DeviceEventSubscriber> subscriber);
    void Notify(Common::shared_ptr<Device> device);

  private:
    typedef Common::list<Common::shared_ptr<DeviceEventSubscriber>> SubscriberList;
    SubscriberList::iterator findSubscriber(Common::shared_ptr<DeviceEventSubscriber> const& subscriber);

    SubscriberList m_subscribers;
};

}  // namespace Core
