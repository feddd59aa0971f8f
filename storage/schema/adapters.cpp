#include "storage/schema/adapters.h"

#include "core/tolkmod.h"
#include "storage/schema/identity.h"
#include "storage/vocabulary/device_types.h"
#include "sysmod/device_handle.h"

namespace Schema {
namespace {

namespace Types = Interface::StorageMod;

/// The key that stays with an adapter across discoveries: its place on the bus, or its node without one.
Common::string adapterKey(Common::string const& handle) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    return table[Core::SysMod::UniqueKey].empty() ? table[Core::SysMod::NodePath]
                                                  : table[Core::SysMod::UniqueKey];
}

}  // namespace

FailedArrayController::FailedArrayController(Common::string const& handle) : m_handle(handle) {
    publish(*this, Interface::TOLKMod::Device::ATTR_NAME_TYPE,
            Types::FailedArrayController::ATTR_VALUE_TYPE_FAILED_ARRAY_CONTROLLER);
}

bool FailedArrayController::operator==(Core::Device const& other) const {
    return isSameKindAndIdentity(*this, other);
}

Core::OperationReturn FailedArrayController::performImpl(Core::VisitorDevice&) {
    return Core::OperationReturn(
        Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE);
}

Common::string FailedArrayController::toStringImpl() const {
    return Common::string("FAC:") + adapterKey(m_handle);
}

HostBusAdapter::HostBusAdapter(Common::string const& handle) : ConcreteSCSIDevice(handle) {
    publish(*this, Interface::TOLKMod::Device::ATTR_NAME_TYPE, Types::HostBusAdapter::ATTR_VALUE_TYPE_HBA);
}

bool HostBusAdapter::operator==(Core::Device const& other) const {
    return isSameKindAndIdentity(*this, other);
}

Core::OperationReturn HostBusAdapter::performImpl(Core::VisitorDevice& visitor) {
    return Core::DispatchVisit<VisitorHostBusAdapter>(visitor, *this);
}

Common::string HostBusAdapter::toStringImpl() const {
    return Common::string("HBA:") + adapterKey(handle());
}

}  // namespace Schema
