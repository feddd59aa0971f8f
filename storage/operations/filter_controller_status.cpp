#include "storage/operations/filter_controller_status.h"

#include "core/device.h"
#include "core/tolkmod.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/results.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
namespace Reasons = Interface::StorageMod::UnavailableOperationReason;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr char STATUS_COMMENT[] =
    "Controller attr ATTR_NAME_STATUS is not OK, or ATTR_NAME_CONTROLLER_STATE is NOT_PRESENT";
constexpr char HBA_MODE_COMMENT[] =
    "No controller is in HBA mode, or scheduled to be in HBA mode after the next reboot";

void comment(Core::FilterReturn& verdict, char const* text) {
    verdict.Publish(verdict, Common::pair<Common::string, Core::AttributeValue>(
                                 Reasons::ATTR_NAME_UNAVAILABLE_REASON_COMMENT, text));
}

bool isController(DevicePointer const& device) {
    return device->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE,
                                     Names::ATTR_VALUE_TYPE_ARRAY_CONTROLLER);
}

}  // namespace

Core::FilterReturn FilterControllerStatusNoEncryptionLockoutCheck::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (!isController(device)) {
        return verdict;
    }
    if (!device->hasAttribute(Names::ATTR_NAME_STATUS)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_CONTROLLER_NOT_READY;
    } else if (!device->hasAttributeAndIs(Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK) ||
               device->hasAttributeAndIs(Names::ATTR_NAME_CONTROLLER_STATE,
                                         Names::ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_NOT_PRESENT)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_CONTROLLER_STATUS_NOT_OK;
        comment(verdict, STATUS_COMMENT);
    }
    return verdict;
}

Core::FilterReturn FilterControllerStatus::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict = FilterControllerStatusNoEncryptionLockoutCheck::applyImpl(device);
    if (verdict && device->hasAttributeAndIs(Names::ATTR_NAME_ENCRYPTION_CONTROLLER_LOCKED,
                                             Names::ATTR_VALUE_ENCRYPTION_CONTROLLER_LOCKED_TRUE)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_ENCRYPTION_CONTROLLER_LOCKED;
    }
    return verdict;
}

Core::FilterReturn FilterControllerStatusHBAMode::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (device->hasAttributeAndIs(Names::ATTR_NAME_HBA_MODE_ENABLED,
                                  Names::ATTR_VALUE_HBA_MODE_ENABLED_TRUE) ||
        device->hasAttributeAndIs(Names::ATTR_NAME_CONTROLLER_MODE, Names::ATTR_VALUE_CONTROLLER_MODE_HBA)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_CONTROLLER_IN_HBA_MODE;
        comment(verdict, HBA_MODE_COMMENT);
    }
    return verdict;
}

}  // namespace Operations
