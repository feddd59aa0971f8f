#include "storage/schema/adapters.h"

#include "storage/vocabulary/device_types.h"

namespace Schema {

namespace Types = Interface::StorageMod;

FailedArrayController::FailedArrayController(Common::string const& handle)
    : Node(Types::FailedArrayController::ATTR_VALUE_TYPE_FAILED_ARRAY_CONTROLLER), m_handle(handle) {}

Common::string FailedArrayController::toStringImpl() const {
    return "FAC:" + adapterKey(m_handle);
}

HostBusAdapter::HostBusAdapter(Common::string const& handle)
    : Node(Types::HostBusAdapter::ATTR_VALUE_TYPE_HBA, ConcreteSCSIDevice(handle)) {}

Common::string HostBusAdapter::toStringImpl() const {
    return "HBA:" + adapterKey(handle());
}

}  // namespace Schema
