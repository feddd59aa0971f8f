#include "flash/sep_filters.h"

#include "common/conversion.h"
#include "core/device.h"
#include "core/tolkmod.h"
#include "flash/sep_products.h"
#include "flash/vocabulary.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/host_bus_adapter.h"

namespace Operations {
namespace {

namespace Controller = Interface::StorageMod::ArrayController;
namespace Adapter = Interface::StorageMod::HostBusAdapter;
namespace Reasons = Interface::FlashMod::UnavailableOperationReason;
namespace CoreReasons = Interface::TOLKMod::UnavailableOperationReason;
using DevicePointer = Common::shared_ptr<Core::Device>;

/// The oldest firmware of a controller that passes a flash on to enclosure processors. A name's row decides
/// before its family's; a controller without either passes nothing on.
struct FirmwareRow {
    char const* attribute;
    char const* value;
    float minimum;
};

#define KSL_BY_NAME(name, minimum)                                                                    \
    FirmwareRow {                                                                                     \
        Controller::ATTR_NAME_CONTROLLER_NAME, Controller::ATTR_VALUE_CONTROLLER_NAME_##name, minimum \
    }
#define KSL_BY_FAMILY(family, minimum)                                          \
    FirmwareRow {                                                               \
        Controller::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY,                       \
            Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_##family, minimum \
    }

constexpr FirmwareRow CONTROLLER_FIRMWARE[] = {
    KSL_BY_NAME(ROWAN8, 1.72F),   KSL_BY_NAME(ELM4, 1.94F),          KSL_BY_NAME(ELM4E, 1.94F),
    KSL_BY_NAME(ELM8, 1.94F),     KSL_BY_NAME(ROWAN4, 1.94F),        KSL_BY_NAME(ASPEN, 2.49F),
    KSL_BY_NAME(ALDER2, 1.54F),   KSL_BY_NAME(ALDER4, 1.54F),        KSL_BY_NAME(ALDER8, 1.54F),
    KSL_BY_NAME(ALDER8E, 1.54F),  KSL_BY_NAME(ALDER16, 1.54F),       KSL_BY_NAME(QBX_FIR4, 1.54F),
    KSL_BY_NAME(QBX_FIR8, 1.54F), KSL_BY_FAMILY(DOGWOOD, 1.54F),     KSL_BY_FAMILY(CEDAR, 0.02F),
    KSL_BY_FAMILY(BIRCH, 0.01F),  KSL_BY_FAMILY(QBX_HARRIER, 0.01F),
};

#undef KSL_BY_NAME
#undef KSL_BY_FAMILY

bool hasType(DevicePointer const& device, char const* type) {
    return device && device->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE, type);
}

bool isController(DevicePointer const& device) {
    return hasType(device, Controller::ATTR_VALUE_TYPE_ARRAY_CONTROLLER);
}

bool passesFlashesOn(Core::Device const& controller) {
    auto const version =
        Conversion::toNumber<float>(controller.getValueFor(Controller::ATTR_NAME_FIRMWARE_VERSION));
    for (FirmwareRow const& row : CONTROLLER_FIRMWARE) {
        if (controller.hasAttributeAndIs(row.attribute, row.value)) return version >= row.minimum;
    }
    return false;
}

/// Null for an adapter whose processors can be reached.
char const* adapterRefusal(DevicePointer const& adapter) {
    if (isController(adapter)) {
        if (!adapter->hasAttributeAndIs(Controller::ATTR_NAME_LOCATION,
                                        Controller::ATTR_VALUE_LOCATION_LOCAL)) {
            return CoreReasons::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
        }
        return passesFlashesOn(*adapter)
                   ? nullptr
                   : Reasons::ATTR_VALUE_UNAVAILABLE_REASON_REQUIRE_CONTROLLER_FIRMWARE_UPGRADE;
    }
    bool const isServed = hasType(adapter, Adapter::ATTR_VALUE_TYPE_HBA) &&
                          adapter->hasAttributeAndIs(Adapter::ATTR_NAME_ADAPTER_TYPE,
                                                     Adapter::ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA);
    return isServed ? nullptr : CoreReasons::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
}

/// A processor behind a controller needs its firmware; behind anything else it is reached directly.
char const* pathRefusal(DevicePointer const& sep) {
    DevicePointer const adapter = storageSystemFinder(sep);
    return isController(adapter) && !passesFlashesOn(*adapter)
               ? Reasons::ATTR_VALUE_UNAVAILABLE_REASON_REQUIRE_CONTROLLER_FIRMWARE_UPGRADE
               : nullptr;
}

char const* flashRefusal(DevicePointer const& sep) {
    if (!checkIsSEPModelRegisteredForFlashing(sep)) {
        return Reasons::ATTR_VALUE_UNAVAILABLE_REASON_SEP_NOT_FLASHABLE;
    }
    if (!checkSEPFWVersion(sep)) {
        return Reasons::ATTR_VALUE_UNAVAILABLE_REASON_SEP_FIRMWARE_BELOW_MINIMUM_REVISION;
    }
    return pathRefusal(sep);
}

char const* resetRefusal(DevicePointer const& sep) {
    // Old firmware would show as a model that can't be reset, too: its own reason goes first.
    if (!checkIsSEPModelRegisteredForFlashing(sep)) {
        return Reasons::ATTR_VALUE_UNAVAILABLE_REASON_SEP_CANNOT_BE_RESET;
    }
    if (!checkSEPFWVersion(sep)) {
        return Reasons::ATTR_VALUE_UNAVAILABLE_REASON_SEP_FIRMWARE_BELOW_MINIMUM_REVISION;
    }
    if (!checkIsSEPModelResetable(sep)) return Reasons::ATTR_VALUE_UNAVAILABLE_REASON_SEP_CANNOT_BE_RESET;
    return pathRefusal(sep);
}

Core::FilterReturn verdictOf(char const* refusal) {
    Core::FilterReturn verdict;
    if (refusal != nullptr) verdict = refusal;
    return verdict;
}

}  // namespace

Core::FilterReturn WriteFlashSEPFirmwareFilter::applyImpl(DevicePointer device) const {
    bool const isSep = hasType(device, Interface::StorageMod::SEP::ATTR_VALUE_TYPE_SEP);
    return verdictOf(isSep ? flashRefusal(device) : adapterRefusal(device));
}

Core::FilterReturn WriteResetSEPFilter::applyImpl(DevicePointer device) const {
    return verdictOf(resetRefusal(device));
}

}  // namespace Operations
