#include "flash/component_filters.h"

#include <algorithm>
#include <iterator>

#include "common/conversion.h"
#include "core/device.h"
#include "core/tolkmod.h"
#include "flash/nvram.h"
#include "flash/vocabulary.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/physical_drive.h"
#include "storage/vocabulary/results.h"

namespace Operations {
namespace {

namespace Controller = Interface::StorageMod::ArrayController;
namespace Drive = Interface::StorageMod::PhysicalDrive;
namespace Reasons = Interface::FlashMod::UnavailableOperationReason;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr char CARRIER_COMMENT[] = "The controller doesn't pass firmware on to the carriers of its drives";

/// Families whose controllers pass firmware on to carriers and cache modules.
constexpr char const* COMPONENT_FAMILIES[] = {
    Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD,
    Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_CEDAR,
};

/// Families whose controllers reach memory on their I2C bus, and the oldest firmware that does.
struct NvramFamilyRow {
    char const* family;
    float minimum;  ///< 0: any
};
constexpr NvramFamilyRow NVRAM_FAMILIES[] = {
    {Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD, 0},
    {Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_CEDAR, 0.02F},
    {Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_BIRCH, 0},
};

bool isComponentFamily(DevicePointer const& controller) {
    return controller &&
           controller->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE,
                                         Controller::ATTR_VALUE_TYPE_ARRAY_CONTROLLER) &&
           std::any_of(std::begin(COMPONENT_FAMILIES), std::end(COMPONENT_FAMILIES), [&](char const* family) {
               return controller->hasAttributeAndIs(Controller::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY, family);
           });
}

struct ModeRow {
    char const* attribute;
    char const* supported;
};
constexpr ModeRow OFFSETS = {Drive::ATTR_NAME_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_7,
                             Drive::ATTR_VALUE_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_7_TRUE};
constexpr ModeRow OTHER_MODES[] = {
    {Drive::ATTR_NAME_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_5,
     Drive::ATTR_VALUE_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_5_TRUE},
    {Drive::ATTR_NAME_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_D,
     Drive::ATTR_VALUE_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_D_TRUE},
    {Drive::ATTR_NAME_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_E,
     Drive::ATTR_VALUE_DRIVE_SUPPORTS_WRITE_BUFFER_MODE_E_TRUE},
};

}  // namespace

Core::FilterReturn FilterDriveFlash::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    auto const supports = [&](ModeRow const& mode) {
        return device->hasAttributeAndIs(mode.attribute, mode.supported);
    };
    if (!Schema::isSata(*device) && !supports(OFFSETS) &&
        std::any_of(std::begin(OTHER_MODES), std::end(OTHER_MODES), supports)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_OPERATION_NOT_SUPPORTED;
    }
    return verdict;
}

Core::FilterReturn FilterDriveActiveCarrier::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (!isComponentFamily(storageSystemFinder(device))) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_OPERATION_NOT_SUPPORTED;
        verdict.Publish(
            verdict,
            Core::Attribute(
                Interface::StorageMod::UnavailableOperationReason::ATTR_NAME_UNAVAILABLE_REASON_COMMENT,
                CARRIER_COMMENT));
    } else if (!device->hasAttributeAndIs(Drive::ATTR_NAME_CARRIER_AUTHENTICATION_STATUS,
                                          Drive::ATTR_VALUE_CARRIER_AUTHENTICATION_STATUS_OK)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_CARRIER_AUTHENTICATION_STATUS_NOT_OK;
    }
    return verdict;
}

Core::FilterReturn FilterFBWC::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    if (!isComponentFamily(device)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_OPERATION_NOT_SUPPORTED;
    } else if (!device->hasAttributeAndIs(Controller::ATTR_NAME_FLASHLIGHT_SUPPORTED,
                                          Controller::ATTR_VALUE_FLASHLIGHT_SUPPORTED_TRUE)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_WRITE_CACHE_NOT_SUPPORTED;
    } else if (!device->hasAttributeAndIs(Controller::ATTR_NAME_FLASHLIGHT_INSTALLED,
                                          Controller::ATTR_VALUE_FLASHLIGHT_INSTALLED_TRUE)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_WRITE_CACHE_NOT_INSTALLED;
    }
    return verdict;
}

Core::FilterReturn FilterNVRAM::applyImpl(DevicePointer device) const {
    Core::FilterReturn verdict;
    auto const row =
        std::find_if(std::begin(NVRAM_FAMILIES), std::end(NVRAM_FAMILIES), [&](NvramFamilyRow const& family) {
            return device->hasAttributeAndIs(Controller::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY, family.family);
        });
    if (row == std::end(NVRAM_FAMILIES)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_OPERATION_NOT_SUPPORTED;
        return verdict;
    }
    auto const version =
        Conversion::toNumber<float>(device->getValueFor(Controller::ATTR_NAME_FIRMWARE_VERSION));
    if (version < row->minimum) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_REQUIRE_CONTROLLER_FIRMWARE_UPGRADE;
    } else if (answeringI2CIdentities(*device).empty()) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_NVRAM_NOT_FOUND;
    }
    return verdict;
}

}  // namespace Operations
