#include "core/device_composite.h"

namespace Core {

DeviceComposite::DeviceComposite(DeviceComposite const& other) : Device(other) {}

DeviceComposite::~DeviceComposite() {
    for (Common::shared_ptr<Device> const& child : m_children) {
        if (child->m_parent == this) child->m_parent = nullptr;
    }
}

Device::ChildIterator DeviceComposite::beginChild() const {
    Lock lock(mutex());
    return m_children.begin();
}

Device::ChildIterator DeviceComposite::endChild() const {
    Lock lock(mutex());
    return m_children.end();
}

bool DeviceComposite::addChildImpl(Common::shared_ptr<Device> child) {
    m_children.push_back(child);
    return true;
}

Device::ChildIterator DeviceComposite::removeChildImpl(Common::shared_ptr<Device> child) {
    DeviceList::iterator found = m_children.begin();
    while (found != m_children.end() && *found != child)
        ++found;
    return m_children.erase(found);
}

}  // namespace Core
