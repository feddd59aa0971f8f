#include "flash/write_flash_sep_firmware.h"

#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "common/sleep.h"
#include "core/tolkmod.h"
#include "flash/image_arguments.h"
#include "flash/mode_ef_sep_flash_threadable.h"
#include "flash/sep_flash_run.h"
#include "flash/vocabulary_enclosure.h"
#include "storage/operations/choice_capability.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/host_bus_adapter.h"

namespace Operations {
namespace {

namespace Names = Interface::FlashMod::SEP;
namespace Cap = Interface::TOLKMod::Capability;
namespace Results = Interface::TOLKMod::OperationReturn;
using Common::DebugLogger;
using Core::OperationReturn;
using DevicePointer = Common::shared_ptr<Core::Device>;

/// Milliseconds. The same for every model, whatever its row says: this form takes no other wait.
constexpr unsigned SINGLE_RESET_WAIT = 135000;

bool hasType(DevicePointer const& device, char const* type) {
    return device && device->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE, type);
}

bool isOnHostBusAdapter(DevicePointer const& device) {
    return hasType(storageSystemFinder(device), Interface::StorageMod::HostBusAdapter::ATTR_VALUE_TYPE_HBA);
}

void flashSingle(ModeEFSEPFlashThreadable& object, bool resets) {
    object.PauseDeviceActivity();
    object.Flash();
    if (resets) {
        bool const mayReset = object.result() ||
                              object.result().hasAttributeAndIs(
                                  Results::ATTR_NAME_STATUS,
                                  Interface::FlashMod::OperationReturn::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
        if (mayReset) {
            object.Reset();
            DebugLogger::LogCommand("Waiting for the SEP to come back online after reset");
            Common::Synchronization::Sleep(SINGLE_RESET_WAIT);
            object.Ping();
        }
    }
    object.ResumeDeviceActivity();
}

Common::shared_ptr<Core::Capability> argumentClass(char const* name, char const* type,
                                                   char const* cardinality, char const* range) {
    return Common::shared_ptr<Core::Capability>(
        new Core::CapabilityClass(name, type, cardinality, Cap::ATTR_VALUE_ACTION_ABSOLUTE, range));
}

}  // namespace

OperationReturn WriteFlashSEPFirmware::visit(Schema::SEP& sep) {
    OperationReturn result;
    SepFlashRequest request;
    DevicePointer const device = sep.getDevicePtr();
    if (!readImageArguments(*this, request, result)) return result;
    if (!device) {
        DebugLogger::LogCommand("SEP %s refused: found without an adapter, expected below one",
                                sep.toString().c_str());
        return OperationReturn(Results::ATTR_VALUE_STATUS_FAILURE);
    }
    bool const behindController = !isOnHostBusAdapter(device);
    if (behindController) pauseController(sep, request.disablesHotplug);
    if (checkIsSEPModelRegisteredForFlashing(device) && checkSEPFWVersion(device)) {
        Common::string const product = getFlashProductID(device);
        FlashProductInfo info;
        lookupFlashInfo(device, info);
        DebugLogger::LogCommand("Flash started");
        if (info.flashMode == MODE_EF) {
            ModeEFSEPFlashThreadable object(device, product, request.image, behindController);
            flashSingle(object, request.resets);
            result = object.result();
        } else {
            // The other modes write in a thread's body only, which nothing runs here: such a device is
            // flashed through its adapter. That this is a success is what callers know.
            DebugLogger::LogCommand("SEP %s is not written: its model is flashed through its adapter",
                                    sep.toString().c_str());
            Mode7SEPFlashThreadable object(device, product, request.image, behindController);
            object.PauseDeviceActivity();
            object.Flash();
            object.ResumeDeviceActivity();
            result = object.result();
        }
    }
    if (result && behindController) resumeController(sep, request.disablesHotplug);
    return result;
}

OperationReturn WriteFlashSEPFirmware::visit(Schema::ArrayController& controller) {
    return visit(controller, &controller, controller);
}

OperationReturn WriteFlashSEPFirmware::visit(Schema::HostBusAdapter& adapter) {
    return visit(adapter, nullptr, adapter);
}

OperationReturn WriteFlashSEPFirmware::visit(Core::Device& device, BMICDevice* controller,
                                             SCSIDevice& adapter) {
    OperationReturn result;
    SepFlashRequest request;
    DevicePointer const pointer = device.getDevicePtr();
    if (!pointer) {
        DebugLogger::LogCommand("Adapter %s refused: it is in no tree", device.toString().c_str());
        return OperationReturn(Results::ATTR_VALUE_STATUS_FAILURE);
    }
    if (!readAdapterArguments(*this, pointer, request, result)) return result;
    if (controller != nullptr) pauseController(*controller, request.disablesHotplug);
    SepFlashRun run(request, controller != nullptr, adapter);
    if (request.isParallel) {
        run.flashInParallel();
    } else {
        run.flashSerially();
    }
    if (controller != nullptr) resumeController(*controller, request.disablesHotplug);
    return run.result();
}

Common::shared_ptr<Core::Capability> WriteFlashSEPFirmware::getCapabilityPtr(DevicePointer device) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    root->Subscribe(fileCapability(Names::ATTR_NAME_FIRMWARE_FILE_NAME));
    root->Subscribe(choiceCapability(Names::ATTR_NAME_RESET_SEP,
                                     {Names::ATTR_VALUE_RESET_SEP_TRUE, Names::ATTR_VALUE_RESET_SEP_FALSE},
                                     Names::ATTR_VALUE_RESET_SEP_FALSE, nullptr));
    root->Subscribe(choiceCapability(
        Names::ATTR_NAME_DISABLE_HOTPLUG_EVENTS,
        {Names::ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE, Names::ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_FALSE},
        Names::ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE, nullptr));
    if (device && !hasType(device, Interface::StorageMod::SEP::ATTR_VALUE_TYPE_SEP)) {
        setFlashOption(*root, device);
    }
    return root;
}

void WriteFlashSEPFirmware::setFlashOption(Core::Capability& root, DevicePointer const& device) const {
    auto const seps =
        argumentClass(Names::ATTR_NAME_UNIQUE_ID, Cap::ATTR_VALUE_INSTANCE_TYPE_DEVICE,
                      Cap::ATTR_VALUE_CARDINALITY_MULTIPLE, Cap::ATTR_VALUE_INSTANCE_RANGE_CLOSED);
    unsigned count = 0;
    for (DevicePointer const& sep : findSeps(device)) {
        if (!checkIsSEPModelRegisteredForFlashing(sep) || !checkSEPFWVersion(sep)) continue;
        seps->Subscribe(Common::shared_ptr<Core::Capability>(
            new Core::CapabilityInstance(sep->getValueFor(Names::ATTR_NAME_UNIQUE_ID), false, false)));
        ++count;
    }
    root.Subscribe(seps);
    root.Subscribe(
        choiceCapability(Names::ATTR_NAME_FLASH_TYPE,
                         {Names::ATTR_VALUE_FLASH_TYPE_SERIAL, Names::ATTR_VALUE_FLASH_TYPE_PARALLEL},
                         Names::ATTR_VALUE_FLASH_TYPE_PARALLEL, nullptr));
    auto const most =
        argumentClass(Names::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE, Cap::ATTR_VALUE_INSTANCE_TYPE_NUMERIC,
                      Cap::ATTR_VALUE_CARDINALITY_SINGLE, Cap::ATTR_VALUE_INSTANCE_RANGE_OPEN);
    most->Publish(*most, Core::Attribute(Cap::ATTR_NAME_MINIMUM_VALUE, "0"));
    most->Publish(*most, Core::Attribute(Cap::ATTR_NAME_MAXIMUM_VALUE, Conversion::toString(count)));
    root.Subscribe(most);
}

OperationReturn WriteResetSEP::visit(Schema::SEP& sep) {
    OperationReturn result;
    FlashSEPFirmware command(FlashSEPFirmware::eActivate, {}, 0);
    DeviceCommandReturn::executeCommand(command, static_cast<SCSIDevice&>(sep), result);
    return result;
}

}  // namespace Operations
