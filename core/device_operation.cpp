#include "core/device_operation.h"

#include "core/device.h"

namespace Core {

DeviceOperation::DeviceOperation(EnTypeModifier modifier)
    : m_typeModifier(modifier), m_context(Device::DefaultOperationContext()) {}

Common::shared_ptr<Capability> DeviceOperation::getCapabilityPtr(Common::shared_ptr<Device>) {
    return Common::shared_ptr<Capability>(new Capability);
}

bool DeviceOperation::operator==(DeviceOperation const& other) const {
    return name() == other.name() && eType() == other.eType();
}

Common::shared_ptr<Filter> DeviceOperation::pFilterImpl() const {
    return Common::shared_ptr<Filter>(new NullFilter);
}

}  // namespace Core
