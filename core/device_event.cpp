#include "core/device_event.h"

#include "common/debug_logger.h"
#include "core/device.h"

namespace Core {

void DeviceEventPublisher::Attach(Common::shared_ptr<DeviceEventSubscriber> subscriber) {
    if (!subscriber) {
        Common::DebugLogger::LogCommand("Device event subscriber refused: null, expected an object");
        return;
    }
    if (findSubscriber(subscriber) == m_subscribers.end()) m_subscribers.push_back(subscriber);
}

void DeviceEventPublisher::Notify(Common::shared_ptr<Device> device) {
    for (auto const& subscriber : m_subscribers) {
        // A copy: a subscriber may attach others.
        Common::shared_ptr<DeviceEventSubscriber> current = subscriber;
        current->OnDeviceEvent(device);
    }
}

DeviceEventPublisher::SubscriberList::iterator DeviceEventPublisher::findSubscriber(
    Common::shared_ptr<DeviceEventSubscriber> const& subscriber) {
    auto found = m_subscribers.begin();
    while (found != m_subscribers.end() && *found != subscriber)
        ++found;
    return found;
}

}  // namespace Core
