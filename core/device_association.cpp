#include "core/device_association.h"

#include "common/debug_logger.h"
#include "core/device.h"

namespace Core {

DeviceAssociation::DeviceAssociation(Common::string const& name) : m_name(name) {}

DeviceAssociation::~DeviceAssociation() = default;

DeviceIterator DeviceAssociation::beginDevice() const {
    return m_devices.begin();
}

DeviceIterator DeviceAssociation::endDevice() const {
    return m_devices.end();
}

unsigned DeviceAssociation::size() const {
    return m_devices.size();
}

bool DeviceAssociation::receive(Common::shared_ptr<Device> device) {
    if (!device) {
        Common::DebugLogger::LogCommand("Association %s refused a member: null, expected a device",
                                        m_name.c_str());
        return false;
    }
    m_devices.push_back(device);
    return true;
}

DeviceIterator DeviceAssociation::clear(Common::shared_ptr<Device> device) {
    DeviceList::iterator found = m_devices.begin();
    while (found != m_devices.end() && *found != device)
        ++found;
    return m_devices.erase(found);
}

}  // namespace Core
