#include "flash/controller_filters.h"

#include "core/device.h"
#include "core/tolkmod.h"
#include "flash/vocabulary.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/host_bus_adapter.h"

namespace Operations {
namespace {

namespace Controller = Interface::StorageMod::ArrayController;
namespace Types = Interface::StorageMod;
namespace Reasons = Interface::FlashMod::UnavailableOperationReason;
namespace CoreReasons = Interface::TOLKMod::UnavailableOperationReason;
using DevicePointer = Common::shared_ptr<Core::Device>;

bool isType(DevicePointer const& device, char const* type) {
    return device->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE, type);
}

}  // namespace

Core::FilterReturn FilterPresence::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (device->hasAttributeAndIs(Controller::ATTR_NAME_CONTROLLER_STATE,
                                  Controller::ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_NOT_PRESENT)) {
        verdict = CoreReasons::ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN;
    }
    return verdict;
}

Core::FilterReturn FilterFirmwareLock::applyImpl(DevicePointer device) const {
    if (device->hasAttributeAndIs(Controller::ATTR_NAME_ENCRYPTION_FW_LOCKED,
                                  Controller::ATTR_VALUE_ENCRYPTION_FW_LOCKED_TRUE)) {
        Core::FilterReturn verdict;
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_ENCRYPTION_FW_LOCKED;
        return verdict;
    }
    return FilterPresence::applyImpl(device);
}

Core::FilterReturn FilterRecoveryRom::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (device->hasAttributeAndIs(Controller::ATTR_NAME_RECOVERY_ROM_SUPPORTED,
                                  Controller::ATTR_VALUE_RECOVERY_ROM_SUPPORTED_FALSE)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_RECOVERY_ROM_NOT_SUPPORTED;
    }
    return verdict;
}

Core::FilterReturn FilterBackgroundActivity::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    bool const isCsmiAdapter =
        isType(device, Types::HostBusAdapter::ATTR_VALUE_TYPE_HBA) &&
        device->hasAttributeAndIs(Types::HostBusAdapter::ATTR_NAME_ADAPTER_TYPE,
                                  Types::HostBusAdapter::ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA);
    if (!isCsmiAdapter && !isType(device, Controller::ATTR_VALUE_TYPE_ARRAY_CONTROLLER) &&
        !isType(device, Types::SEP::ATTR_VALUE_TYPE_SEP) &&
        !isType(device, Types::PhysicalDrive::ATTR_VALUE_TYPE_NON_VAULTLINE_PHYSICAL_DRIVE)) {
        verdict = CoreReasons::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
    }
    return verdict;
}

}  // namespace Operations
