#include "storage/operations/write_cache_settings.h"

#include "command/cache.h"
#include "command/device_command_return.h"
#include "core/tolkmod.h"
#include "storage/operations/choice_capability.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/mod_root.h"
#include "storage/vocabulary/array_controller_codes.h"
#include "storage/vocabulary/array_controller_names.h"
#include "storage/vocabulary/mod_root.h"

namespace Operations {
namespace {

namespace Root = Interface::StorageMod::ModRoot;
namespace Controller = Interface::StorageMod::ArrayController;
namespace Status = Interface::TOLKMod::OperationReturn;

}  // namespace

Core::FilterReturn FilterCacheOwner::applyImpl(Common::shared_ptr<Core::Device> device) const {
    Core::FilterReturn verdict;
    if (dynamic_cast<Schema::ModRoot const*>(device.get()) == nullptr &&
        dynamic_cast<Schema::ArrayController const*>(device.get()) == nullptr) {
        verdict =
            Interface::TOLKMod::UnavailableOperationReason::ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE;
    }
    return verdict;
}

/// False, with the problem in `result`, unless the argument is there and has one of the two values.
bool WriteCacheSettings::readSwitch(char const* argument, char const* on, char const* off, bool& value,
                                    Core::OperationReturn& result) const {
    if (!hasArgument(argument)) {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_MISSING, argument, result);
        return false;
    }
    value = hasArgumentAndIs(argument, on);
    if (!value && !hasArgumentAndIs(argument, off)) {
        DeviceCommandReturn::ArgumentProblem(Status::ATTR_VALUE_STATUS_ARGUMENT_INVALID, argument, result);
        return false;
    }
    return true;
}

Core::OperationReturn WriteCacheSettings::visit(Schema::ModRoot&) {
    Core::OperationReturn result;
    bool isOn = false;
    bool isDeviceDefaultOn = false;
    if (!readSwitch(Root::ATTR_NAME_COMMAND_CACHE, Root::ATTR_VALUE_COMMAND_CACHE_ENABLED,
                    Root::ATTR_VALUE_COMMAND_CACHE_DISABLED, isOn, result)) {
        return result;
    }
    if (isOn &&
        !readSwitch(Root::ATTR_NAME_DEVICE_CACHE_DEFAULT, Root::ATTR_VALUE_DEVICE_CACHE_DEFAULT_ENABLED,
                    Root::ATTR_VALUE_DEVICE_CACHE_DEFAULT_DISABLED, isDeviceDefaultOn, result)) {
        return result;
    }
    SetDefaultInheritanceFlag(isOn);
    SetCommandCacheState(isOn);
    SetDefaultCacheFlag(isDeviceDefaultOn);
    return result;
}

Core::OperationReturn WriteCacheSettings::visit(Schema::ArrayController& controller) {
    Core::OperationReturn result;
    bool const clears = hasArgument(Controller::ATTR_NAME_CLEAR_DEVICE_CACHE);
    bool const sets = !clears || hasArgument(Controller::ATTR_NAME_DEVICE_CACHE);
    bool isOn = false;
    bool isToBeCleared = false;
    if (sets && !readSwitch(Controller::ATTR_NAME_DEVICE_CACHE, Controller::ATTR_VALUE_DEVICE_CACHE_ENABLED,
                            Controller::ATTR_VALUE_DEVICE_CACHE_DISABLED, isOn, result)) {
        return result;
    }
    if (clears &&
        !readSwitch(Controller::ATTR_NAME_CLEAR_DEVICE_CACHE, Controller::ATTR_VALUE_CLEAR_DEVICE_CACHE_TRUE,
                    Controller::ATTR_VALUE_CLEAR_DEVICE_CACHE_FALSE, isToBeCleared, result)) {
        return result;
    }
    if (sets) SetCacheStateForDevice(controller.handle(), isOn);
    if (isToBeCleared) ClearCacheContentsForDevice(controller.handle(), true);
    return result;
}

Common::shared_ptr<Core::Capability> WriteCacheSettings::getCapabilityPtr(
    Common::shared_ptr<Core::Device> device) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    if (auto const* const controller = dynamic_cast<Schema::ArrayController const*>(device.get())) {
        root->Subscribe(choiceCapability(
            Controller::ATTR_NAME_DEVICE_CACHE,
            {Controller::ATTR_VALUE_DEVICE_CACHE_ENABLED, Controller::ATTR_VALUE_DEVICE_CACHE_DISABLED},
            nullptr,
            GetCacheStateForDevice(controller->handle()) ? Controller::ATTR_VALUE_DEVICE_CACHE_ENABLED
                                                         : Controller::ATTR_VALUE_DEVICE_CACHE_DISABLED));
        root->Subscribe(choiceCapability(
            Controller::ATTR_NAME_CLEAR_DEVICE_CACHE,
            {Controller::ATTR_VALUE_CLEAR_DEVICE_CACHE_TRUE, Controller::ATTR_VALUE_CLEAR_DEVICE_CACHE_FALSE},
            Controller::ATTR_VALUE_CLEAR_DEVICE_CACHE_FALSE, nullptr));
    } else {
        root->Subscribe(choiceCapability(
            Root::ATTR_NAME_COMMAND_CACHE,
            {Root::ATTR_VALUE_COMMAND_CACHE_ENABLED, Root::ATTR_VALUE_COMMAND_CACHE_DISABLED}, nullptr,
            GetCommandCacheState() ? Root::ATTR_VALUE_COMMAND_CACHE_ENABLED
                                   : Root::ATTR_VALUE_COMMAND_CACHE_DISABLED));
        root->Subscribe(choiceCapability(
            Root::ATTR_NAME_DEVICE_CACHE_DEFAULT,
            {Root::ATTR_VALUE_DEVICE_CACHE_DEFAULT_ENABLED, Root::ATTR_VALUE_DEVICE_CACHE_DEFAULT_DISABLED},
            nullptr,
            GetDefaultCacheFlag() ? Root::ATTR_VALUE_DEVICE_CACHE_DEFAULT_ENABLED
                                  : Root::ATTR_VALUE_DEVICE_CACHE_DEFAULT_DISABLED));
    }
    return root;
}

}  // namespace Operations
