#include "storage/operations/controller_common.h"

#include <cstddef>

#include "storage/controller_models.h"
#include "storage/operations/publish.h"
#include "storage/operations/write_allowed_controller_discovery.h"
#include "storage/vocabulary/array_controller.h"
#include "sysmod/crc32.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;

constexpr char GENERAL_NAME[] = "Array Controller";

/// Stands for an enclosure location that isn't known.
constexpr char NO_ENCLOSURE_LOCATION[] = "-1";

constexpr char const* ENCLOSURE_LOCATIONS[] = {
    Names::ATTR_NAME_CABINET, Names::ATTR_NAME_CELL,       Names::ATTR_NAME_IO_CABINET,
    Names::ATTR_NAME_IO_BAY,  Names::ATTR_NAME_IO_CHASSIS,
};

bool startsWith(Common::string const& text, char const* start, unsigned length) {
    return text.size() >= length && text.substr(0, length) == start;
}

void publishFastPath(Core::Device& device, Common::string const& fastPath) {
    bool const isSupported = startsWith(fastPath, "YES", 3);
    bool const isEnabled = fastPath == "YES:ENABLED";
    publish(device, Names::ATTR_NAME_DRIVER_SUPPORTS_TARN,
            isSupported ? Names::ATTR_VALUE_DRIVER_SUPPORTS_TARN_TRUE
                        : Names::ATTR_VALUE_DRIVER_SUPPORTS_TARN_FALSE);
    publish(
        device, Names::ATTR_NAME_DRIVER_ENABLES_TARN,
        isEnabled ? Names::ATTR_VALUE_DRIVER_ENABLES_TARN_TRUE : Names::ATTR_VALUE_DRIVER_ENABLES_TARN_FALSE);
}

}  // namespace

Common::string locationKeyOf(AdapterProperties const& adapter, Common::CompoundList const& taken) {
    if (!adapter.slot.empty()) {
        Common::string const key = Common::string("SLOT_") + adapter.slot;
        if (!taken.contains(key)) {
            return key;
        }
    }
    if (adapter.hasPciLocation()) {
        Common::string const key = Common::string("DBDF_") + adapter.domain + "_" + adapter.bus + "_" +
                                   adapter.device + "_" + adapter.function;
        if (!taken.contains(key)) {
            return key;
        }
    }
    return decimalText(Core::SysMod::crc32(adapter.handle.c_str(), adapter.handle.size()));
}

void publishAdapterProperties(Core::Device& device, AdapterProperties const& adapter) {
    Common::string const subsystemId = decimalOfHex(adapter.subsystemIdHex);
    Common::string const name = WriteAllowedControllerDiscovery::controllerIDTostring(subsystemId);
    publish(device, Names::ATTR_NAME_LOCATION, Names::ATTR_VALUE_LOCATION_LOCAL);
    publish(device, Names::ATTR_NAME_DRIVER_NAME, adapter.driverName);
    publish(device, Names::ATTR_NAME_DRIVER_VERSION, adapter.driverVersion);
    publishFastPath(device, adapter.fastPath);
    publish(device, Names::ATTR_NAME_BUS_TYPE,
            WriteAllowedControllerDiscovery::busTypeToString(WriteAllowedControllerDiscovery::BUS_TYPE_PCI));
    publish(device, Names::ATTR_NAME_PCI_DOMAIN, adapter.domain);
    publish(device, Names::ATTR_NAME_PCI_BUS, adapter.bus);
    publish(device, Names::ATTR_NAME_PCI_DEVICE, adapter.device);
    publish(device, Names::ATTR_NAME_PCI_FUNCTION, adapter.function);
    publish(device, Names::ATTR_NAME_SLOT, adapter.slot);
    for (char const* attribute : ENCLOSURE_LOCATIONS) {
        publish(device, attribute, NO_ENCLOSURE_LOCATION);
    }
    publish(device, Names::ATTR_NAME_SUBSYSTEM_ID, subsystemId);
    publish(device, Names::ATTR_NAME_SUBSYSTEM_ID_HEX, adapter.subsystemIdHex);
    publish(device, Names::ATTR_NAME_DEVICE_ID, decimalOfHex(adapter.deviceIdHex));
    publish(device, Names::ATTR_NAME_DEVICE_ID_HEX, adapter.deviceIdHex);
    publish(device, Names::ATTR_NAME_CONTROLLER_NAME,
            name.empty() ? Common::string(Names::ATTR_VALUE_CONTROLLER_NAME_GENERIC) : name);
}

bool isControllerModeValid(Records::IDENTIFY_CONTROLLER const& identify) {
    return fromWire(identify.dwFixedStructureLength) >=
           offsetof(Records::IDENTIFY_CONTROLLER, bControllerMode) +
               sizeof(Records::IDENTIFY_CONTROLLER::bControllerMode);
}

bool isEvenMoreControllerFlagsValid(Records::IDENTIFY_CONTROLLER const& identify) {
    return fromWire(identify.dwFixedStructureLength) >=
           offsetof(Records::IDENTIFY_CONTROLLER, dwEvenMoreControllerFlags) +
               sizeof(Records::IDENTIFY_CONTROLLER::dwEvenMoreControllerFlags);
}

bool isVaultlineMode(Records::IDENTIFY_CONTROLLER const& identify) {
    return !isControllerModeValid(identify) || identify.bControllerMode == 0 || identify.bControllerMode == 2;
}

Common::string ArrayControllerMarketingNameFor(Core::Device* device) {
    Common::string const name = device->getValueFor(Names::ATTR_NAME_CONTROLLER_NAME);
    for (auto const& row : Interface::StorageMod::controllerModels()) {
        if (name == row.nameConstant) {
            return row.marketingName;
        }
    }
    return GENERAL_NAME;
}

}  // namespace Operations
