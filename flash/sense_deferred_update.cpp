#include "flash/sense_deferred_update.h"

#include <cstring>

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/device.h"
#include "core/tolkmod.h"
#include "flash/image_arguments.h"
#include "flash/vocabulary_enclosure.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Arguments = Interface::FlashMod::PhysicalDrive;
namespace Results = Interface::TOLKMod::OperationReturn;
namespace Reasons = Interface::FlashMod::UnavailableOperationReason;
namespace Controller = Interface::StorageMod::ArrayController;
namespace Drive = Interface::StorageMod::PhysicalDrive;

constexpr unsigned int PAGE_SIZE = 156;

/// Kinds of drives, and the versions of deferred updates that serve them.
struct InterfaceRow {
    char const* interface;
    bool withSasOnly;
};

constexpr InterfaceRow INTERFACES[] = {
    {Drive::ATTR_VALUE_INTERFACE_SAS, true},
    {Drive::ATTR_VALUE_INTERFACE_SAS_SSD, true},
    {Drive::ATTR_VALUE_INTERFACE_SATA, false},
    {Drive::ATTR_VALUE_INTERFACE_SATA_SSD, false},
};

bool isServed(Common::string const& version, Common::string const& interface) {
    bool const sasOnly = version == Controller::ATTR_VALUE_DDFF_VERSION_SAS_ONLY;
    if (!sasOnly && version != Controller::ATTR_VALUE_DDFF_VERSION_SAS_AND_SATA) {
        return false;
    }
    for (InterfaceRow const& row : INTERFACES) {
        if (interface == row.interface) {
            return row.withSasOnly || !sasOnly;
        }
    }
    return false;
}

}  // namespace

Core::FilterReturn FilterDeferredUpdate::applyImpl(Common::shared_ptr<Core::Device> device) const {
    Core::FilterReturn verdict;
    Common::shared_ptr<Core::Device> const parent = device->pParent();
    if (!parent ||
        !parent->hasAttributeAndIs(Interface::TOLKMod::Device::ATTR_NAME_TYPE,
                                   Controller::ATTR_VALUE_TYPE_ARRAY_CONTROLLER) ||
        !parent->hasAttribute(Controller::ATTR_NAME_DDFF_VERSION)) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_DDFF_VERSION_NOT_AVAILABLE;
    } else if (!isServed(parent->getValueFor(Controller::ATTR_NAME_DDFF_VERSION),
                         device->getValueFor(Drive::ATTR_NAME_INTERFACE))) {
        verdict = Reasons::ATTR_VALUE_UNAVAILABLE_REASON_DRIVE_TYPE_NOT_SUPPORTED_BY_DDFF;
    }
    return verdict;
}

Core::OperationReturn SenseDeferredUpdate::visit(Schema::PhysicalDrive& drive) {
    Core::OperationReturn result;
    if (!demandArguments(*this, {Arguments::ATTR_NAME_BUFFER_ADDRESS, Arguments::ATTR_NAME_BUFFER_SIZE},
                         result)) {
        return result;
    }
    auto const address =
        Conversion::toNumber<unsigned long long>(getArgValue(Arguments::ATTR_NAME_BUFFER_ADDRESS));
    if (Conversion::toNumber<unsigned int>(getArgValue(Arguments::ATTR_NAME_BUFFER_SIZE)) != PAGE_SIZE) {
        DeviceCommandReturn::ArgumentProblem(Results::ATTR_VALUE_STATUS_ARGUMENT_INVALID,
                                             Arguments::ATTR_NAME_BUFFER_SIZE, result);
    } else if (address == 0) {
        DeviceCommandReturn::ArgumentProblem(Results::ATTR_VALUE_STATUS_ARGUMENT_INVALID,
                                             Arguments::ATTR_NAME_BUFFER_ADDRESS, result);
    }
    if (!result) {
        return result;
    }
    auto const number =
        Conversion::toNumber<unsigned short>(drive.getValueFor(Drive::ATTR_NAME_DEVICE_NUMBER));
    // The drive passes it up to the controller that it hangs behind.
    SensePhysicalDriveCommand<SenseDeferredUpdateStatusTrait, false> command(number);
    DeviceCommandReturn::executeCommand(command, static_cast<BMICDevice&>(drive), result);
    if (result && command.receivedLength() != PAGE_SIZE) {
        Common::DebugLogger::LogCommand("Deferred update status refused: %u bytes came, %u expected",
                                        command.receivedLength(), PAGE_SIZE);
        result.Receive(Core::Attribute(Results::ATTR_NAME_STATUS, Results::ATTR_VALUE_STATUS_FAILURE));
    }
    if (result) {
        std::memcpy(reinterpret_cast<void*>(static_cast<std::uintptr_t>(address)), command.buffer().data(),
                    PAGE_SIZE);
    }
    return result;
}

}  // namespace Operations
