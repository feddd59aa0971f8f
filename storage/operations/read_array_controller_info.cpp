#include "storage/operations/read_array_controller_info.h"

#include <cstring>

#include "command/cache.h"
#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "core/device_finder.h"
#include "core/operation_context.h"
#include "core/tolkmod.h"
#include "storage/operations/configured_units.h"
#include "storage/operations/controller_common.h"
#include "storage/operations/identify_flags.h"
#include "storage/operations/publish.h"
#include "storage/operations/write_allowed_controller_discovery.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using Records::IDENTIFY_CONTROLLER;

/// Highest major version of a drive configuration that this library understands.
constexpr std::uint8_t KNOWN_CONFIGURATION = 16;

/// With this firmware the management commands of the controllers below are not safe.
constexpr char DEFECTIVE_FIRMWARE[] = "2.04";
constexpr char const* DEFECTIVE_CONTROLLERS[] = {
    Names::ATTR_VALUE_CONTROLLER_NAME_ASPEN,
    Names::ATTR_VALUE_CONTROLLER_NAME_BEECH,
    Names::ATTR_VALUE_CONTROLLER_NAME_CYPRESS,
};

/// The plain-adapter line of the BIRCH family.
constexpr char const* PLAIN_ADAPTERS[] = {
    Names::ATTR_VALUE_CONTROLLER_NAME_BIRCH_H4,  Names::ATTR_VALUE_CONTROLLER_NAME_BIRCH_H4I,
    Names::ATTR_VALUE_CONTROLLER_NAME_BIRCH_H8,  Names::ATTR_VALUE_CONTROLLER_NAME_BIRCH_H8I,
    Names::ATTR_VALUE_CONTROLLER_NAME_BIRCH_H16, Names::ATTR_VALUE_CONTROLLER_NAME_BIRCH_H16I,
};

template <std::size_t Count>
bool isOneOf(Common::string const& name, char const* const (&names)[Count]) {
    for (char const* candidate : names) {
        if (name == candidate) {
            return true;
        }
    }
    return false;
}

char const* adapterType(Common::string const& name, Common::string const& family) {
    if (family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_UNKNOWN) {
        return Names::ATTR_VALUE_ADAPTER_TYPE_GENERIC_ARRAY_CONTROLLER;
    }
    return isOneOf(name, PLAIN_ADAPTERS) ? Names::ATTR_VALUE_ADAPTER_TYPE_VAULT_HBA
                                         : Names::ATTR_VALUE_ADAPTER_TYPE_VAULT_LINE;
}

void checkState(Schema::ArrayController& controller, Common::string const& name, Common::string const& family,
                bool identified) {
    if (isOneOf(name, DEFECTIVE_CONTROLLERS) &&
        controller.hasAttributeAndIs(Names::ATTR_NAME_FIRMWARE_VERSION, DEFECTIVE_FIRMWARE)) {
        controller.SetControllerStatusNotOk(
            Names::ATTR_VALUE_CONTROLLER_STATE_OUTRIDER_204_FIRMWARE_NEEDS_UPGRADE);
    }
    if (name == Names::ATTR_VALUE_CONTROLLER_NAME_GENERIC ||
        family == Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_UNKNOWN) {
        controller.SetControllerStatusNotOk(Names::ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_NOT_RECOGNIZED);
    }
    if (!identified) {
        controller.SetControllerStatusNotOk(
            Names::ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_COMMUNICATION_ERROR);
    }
}

void publishModes(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify) {
    if (isEvenMoreControllerFlagsValid(identify) &&
        (fromWire(identify.dwEvenMoreControllerFlags) & IdentifyFlags::ZMR_MODE) != 0) {
        controller.SetControllerStatusNotOk(Names::ATTR_VALUE_CONTROLLER_STATE_UNSUPPORTED_ZMR_MODE);
    }
    publishControllerAndHBAModeInfo(controller, identify);
    if (isVaultlineMode(identify)) {
        publishDisabledConfigInfo(controller, identify);
    }
    if (!isControllerModeValid(identify) || identify.bControllerMode == IdentifyFlags::MODE_ABSENT) {
        return;
    }
    switch (identify.bControllerMode) {
        case IdentifyFlags::MODE_VAULTLINE:
        case IdentifyFlags::MODE_MIXED:
            publish(controller, Names::ATTR_NAME_CONTROLLER_MODE,
                    Names::ATTR_VALUE_CONTROLLER_MODE_VAULTLINE);
            break;
        case IdentifyFlags::MODE_HBA:
            publish(controller, Names::ATTR_NAME_CONTROLLER_MODE, Names::ATTR_VALUE_CONTROLLER_MODE_HBA);
            break;
        default:
            controller.SetControllerStatusNotOk(
                Names::ATTR_VALUE_CONTROLLER_STATE_UNSUPPORTED_CONTROLLER_MODE);
            break;
    }
}

/// A configuration of a newer major version was written by a newer stack than this one.
void checkConfigurationVersions(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify) {
    forEachConfiguredUnit(controller, identify, [&](std::uint16_t, SenseConfiguration const& configuration) {
        if (configuration.record().bConfigModMajorVer <= KNOWN_CONFIGURATION) return true;
        controller.SetControllerStatusNotOk(
            Names::ATTR_VALUE_CONTROLLER_STATE_NEED_UPDATED_STORAGEMOD_VERSION);
        return false;
    });
}

void fail(Core::OperationReturn& result) {
    result.Receive(Core::Attribute(Interface::TOLKMod::OperationReturn::ATTR_NAME_STATUS,
                                   Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE));
}

/// One stage: send the command, and publish its record if everything went well so far.
template <typename Command, typename Publish>
void readStage(Schema::ArrayController& controller, Core::OperationReturn& result, Publish publishRecord) {
    if (!result) {
        return;
    }
    Command command;
    DeviceCommandReturn::executeCommand(command, controller, result);
    if (result && !holdsWhole(command, "Record of a controller")) {
        fail(result);
    }
    if (result) {
        publishRecord(controller, command.record());
    }
}

void readArrayModeRecords(Schema::ArrayController& controller, IDENTIFY_CONTROLLER const& identify,
                          Common::string const& family, Core::OperationReturn& result) {
    Common::string const location = controller.getValueFor(Names::ATTR_NAME_LOCATION);
    Records::SUBSYSTEM_PARAMETERS subsystem = {};
    readStage<SenseControllerCommand<SenseSubsystemInformationTrait>>(
        controller, result,
        [&](Schema::ArrayController& device, Records::SUBSYSTEM_PARAMETERS const& record) {
            subsystem = record;
            publishSubsystemSystemInfo(device, record);
        });
    if (location != Names::ATTR_VALUE_LOCATION_REMOTE) {
        readStage<SenseControllerCommand<SenseRedundantParameterTrait>>(controller, result,
                                                                        publishRedundantControllerParameters);
    }
    readStage<SenseControllerCacheConfigStatusBase>(
        controller, result, [&](Schema::ArrayController& device, Records::CACHE_CONFIG_STATUS const& record) {
            publishAcceleratorInfo(device, record, subsystem);
        });
    if (location == Names::ATTR_VALUE_LOCATION_LOCAL) {
        readStage<SenseControllerCommand<SenseControllerParametersTrait>>(
            controller, result,
            [&](Schema::ArrayController& device, Records::CONTROLLER_PARAMETERS const& record) {
                publishParameterInfo(device, record, identify.wTaskFlags);
            });
    }
    readStage<SenseControllerCommand<SenseSurfaceStatusTrait>>(controller, result, publishSurfaceStatusInfo);
    if (family != Names::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR) {
        readStage<SenseControllerCommand<SenseMNPStatusTrait>>(controller, result, publishMNPStatusInfo);
    }
}

bool& busScanAllowed() {
    static bool allowed = false;
    return allowed;
}

}  // namespace

bool WriteBusRescanType::isBusScanAllowed() {
    return busScanAllowed();
}

void WriteBusRescanType::allowBusScan(bool allowed) {
    busScanAllowed() = allowed;
}

Core::OperationReturn ReadArrayControllerInfo::visit(Schema::ArrayController& controller) {
    Core::OperationReturn result;
    SenseControllerCommand<IdentifyControllerTrait> command;
    DeviceCommandReturn::executeCommand(command, controller, result);
    if (result && !holdsWhole(command, "Identify record")) {
        fail(result);
    }
    bool const identified = static_cast<bool>(result);
    IDENTIFY_CONTROLLER const& identify = command.record();

    Common::shared_ptr<Core::OperationContext> const context = getOperationContext();
    if (context && context->isBottomUpReenumerateContext()) {
        if (identified && isVaultlineMode(identify)) {
            publishDriveTypeCounts(controller);
        }
        return result;
    }
    if (WriteBusRescanType::isBusScanAllowed() && GetDiscoveryRescanOption()) {
        controller.rescanScsiBus();
    }
    publish(controller, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_OK);
    controller.Clear(Names::ATTR_NAME_CONTROLLER_STATE);

    Common::string const name = controller.getValueFor(Names::ATTR_NAME_CONTROLLER_NAME);
    Common::string const family = WriteAllowedControllerDiscovery::controllerNameToFamilyString(name);
    publish(controller, Names::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY, family);
    publish(controller, Names::ATTR_NAME_ADAPTER_TYPE, adapterType(name, family));
    publish(controller, Names::ATTR_NAME_MARKETING_NAME, ArrayControllerMarketingNameFor(&controller));
    checkState(controller, name, family, identified);
    if (!identified) {
        // What the buffer holds is no reply, and nothing is to be read out of it.
        return result;
    }
    controller.Clear(Names::ATTR_NAME_ENCRYPTION_CONFIG_LOCKOUT);
    controller.Clear(Names::ATTR_NAME_CONTROLLER_MODE);
    if (name == Names::ATTR_VALUE_CONTROLLER_NAME_HAZEL &&
        fromWire(identify.dwFixedStructureLength) >=
            KSL_MEMBER_END(IDENTIFY_CONTROLLER, dwEncryptionStatus) &&
        (fromWire(identify.dwEncryptionStatus) & IdentifyFlags::CONFIG_LOCKOUT) != 0) {
        publish(controller, Names::ATTR_NAME_ENCRYPTION_CONFIG_LOCKOUT,
                Names::ATTR_VALUE_ENCRYPTION_CONFIG_LOCKOUT_TRUE);
    }
    publishModes(controller, identify);
    checkConfigurationVersions(controller, identify);
    publishIdentifyInfo(controller, identify);
    if (isVaultlineMode(identify)) {
        readArrayModeRecords(controller, identify, family, result);
        if (result) {
            readEncryptionInfo(controller);
            readPowerInfo(controller);
        }
    }
    return result;
}

}  // namespace Operations
