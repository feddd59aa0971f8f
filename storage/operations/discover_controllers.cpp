#include "storage/operations/discover_controllers.h"

#include <cstring>

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/debug_logger.h"
#include "storage/operations/controller_common.h"
#include "storage/operations/publish.h"
#include "storage/operations/write_allowed_controller_discovery.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/mod_root.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;

constexpr unsigned short LOGICAL_UNITS = 32;
constexpr unsigned short PHYSICAL_UNITS = 128;
constexpr char EMBEDDED_SLOT[] = "0b";
constexpr std::uint8_t NO_SLOT = 0xFF;

/// Firmware of this family tells its version as four digits: "0123" is 1.23 and "1234" is 12.34.
Common::string qbxVersion(Common::string const& text) {
    Common::string const digits = text.Trim();
    if (digits.size() != 4) {
        return digits;
    }
    Common::string version = digits[0] == '0' ? Common::string() : digits.substr(0, 1);
    version += digits.substr(1, 1);
    version += ".";
    version += digits.substr(2, 2);
    return version;
}

Common::string familyOf(Core::Device& device) {
    return WriteAllowedControllerDiscovery::controllerNameToFamilyString(
        device.getValueFor(Names::ATTR_NAME_CONTROLLER_NAME));
}

void publishFirmwareVersion(Schema::ArrayController& controller) {
    SenseControllerCommand<IdentifyControllerTrait> identify;
    Core::OperationReturn result;
    DeviceCommandReturn::executeCommand(identify, controller, result);
    if (!result || !holdsWhole(identify, "Identify record")) {
        return;
    }
    char text[sizeof(Records::IDENTIFY_CONTROLLER::sRAMFirmwareRev) + 1] = {};
    std::memcpy(text, identify.record().sRAMFirmwareRev, sizeof text - 1);
    Common::string version(text);
    if (familyOf(controller) == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR) {
        version = qbxVersion(version);
    }
    publish(controller, Names::ATTR_NAME_FIRMWARE_VERSION, version);
}

/// A slot that the bus doesn't tell is taken from the identify record.
void publishSlotFrom(Schema::ArrayController& controller, Records::IDENTIFY_CONTROLLER const& identify) {
    if (!controller.hasAttribute(Names::ATTR_NAME_SLOT) && identify.bPCISlot != 0 &&
        identify.bPCISlot != NO_SLOT) {
        publish(controller, Names::ATTR_NAME_SLOT, decimalText(identify.bPCISlot));
    }
}

/// Adds a controller to the tree, unless the mask of models leaves it out.
void offerIfEnabled(Schema::ModRoot& root, Common::shared_ptr<Core::Device> const& device) {
    if (!WriteAllowedControllerDiscovery::isControllerEnabled(
            device->getValueFor(Names::ATTR_NAME_CONTROLLER_NAME))) {
        return;
    }
    if (familyOf(*device) == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_ALDER) {
        publish(*device, Names::ATTR_NAME_SLOT, EMBEDDED_SLOT);
    }
    root.receive(device);
}

void discoverController(Schema::ModRoot& root, AdapterProperties const& adapter,
                        Common::string const& locationKey) {
    ConcreteBMICDevice device(adapter.handle, false, LOGICAL_UNITS, PHYSICAL_UNITS);
    SenseControllerCommand<SenseSubsystemInformationTrait> subsystem;
    subsystem(device);
    SenseControllerCommand<IdentifyControllerTrait> identify;
    bool const identified = identify(device) && holdsWhole(identify, "Identify record");

    Schema::ArrayController* const controller =
        new Schema::ArrayController(adapter.handle, false, PHYSICAL_UNITS, LOGICAL_UNITS, locationKey);
    Common::shared_ptr<Core::Device> const pointer(controller);
    if (identified) {
        controller->InitializeSupport(identify.recordCopy());
    }
    publishAdapterProperties(*controller, adapter);
    publishFirmwareVersion(*controller);
    if (identified) {
        publishSlotFrom(*controller, identify.record());
    }
    offerIfEnabled(root, pointer);
}

}  // namespace

Core::OperationReturn DiscoverArrayController::visit(Schema::ModRoot& root) {
    StorageAdapterIterator::List const adapters = StorageAdapterIterator().controllersBySlot();
    Common::CompoundList keys(false);
    for (auto handle = adapters.begin(); handle != adapters.end(); ++handle) {
        AdapterProperties const adapter(*handle);
        // A controller's key mustn't hang on whether its neighbour in the same slot answers.
        Common::string const key = locationKeyOf(adapter, keys);
        keys.Add(key);
        if (adapter.status == "OK") {
            discoverController(root, adapter, key);
        }
    }
    return Core::OperationReturn();
}

Core::OperationReturn DiscoverFailedArrayController::visit(Schema::ModRoot& root) {
    StorageAdapterIterator::List const adapters = StorageAdapterIterator().controllersBySlot();
    for (auto handle = adapters.begin(); handle != adapters.end(); ++handle) {
        AdapterProperties const adapter(*handle);
        if (adapter.status != "FAILED") {
            continue;
        }
        Common::shared_ptr<Core::Device> const device(new Schema::FailedArrayController(*handle));
        publishAdapterProperties(*device, adapter);
        publish(*device, Names::ATTR_NAME_DRIVER_ENABLES_TARN, Names::ATTR_VALUE_DRIVER_ENABLES_TARN_FALSE);
        publish(*device, Names::ATTR_NAME_MARKETING_NAME, ArrayControllerMarketingNameFor(device.get()));
        offerIfEnabled(root, device);
    }
    return Core::OperationReturn();
}

}  // namespace Operations
