#include "flash/component_operations.h"

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "flash/image_arguments.h"
#include "flash/vocabulary_enclosure.h"
#include "storage/operations/choice_capability.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Drive = Interface::FlashMod::PhysicalDrive;
namespace Carrier = Interface::FlashMod::DriveActiveCarrier;
namespace Cache = Interface::FlashMod::FBWC;
namespace Results = Interface::TOLKMod::OperationReturn;
using Core::OperationReturn;
using DevicePointer = Common::shared_ptr<Core::Device>;

/// An offset has 24 bits in WRITE BUFFER, and 16 bits of 512-byte blocks in DOWNLOAD MICROCODE.
constexpr std::size_t LARGEST_BY_WRITE_BUFFER = std::size_t{1} << 24;
constexpr std::size_t LARGEST_BY_MICROCODE = std::size_t{1} << 25;

/// Beside the drive's number in the address field: the carrier, not the cache module.
constexpr std::uint32_t CARRIER_FLAG = 0x10000;

Common::shared_ptr<Core::Capability> withFile(char const* name) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    root->Subscribe(fileCapability(name));
    return root;
}

}  // namespace

OperationReturn WriteFlashPhysicalDrive::visit(Schema::PhysicalDrive& drive) {
    OperationReturn result;
    if (!demandArguments(
            *this,
            {Drive::ATTR_NAME_BUFFER_ADDRESS, Drive::ATTR_NAME_BUFFER_SIZE, Drive::ATTR_NAME_FLASH_TYPE},
            result)) {
        return result;
    }
    bool const byWriteBuffer =
        hasArgumentAndIs(Drive::ATTR_NAME_FLASH_TYPE, Drive::ATTR_VALUE_FLASH_TYPE_SCSI_WRITE_BUFFER);
    ImageSpan const image = readImage(*this, Drive::ATTR_NAME_BUFFER_ADDRESS, Drive::ATTR_NAME_BUFFER_SIZE,
                                      byWriteBuffer ? LARGEST_BY_WRITE_BUFFER : LARGEST_BY_MICROCODE, result);
    if (!result) return result;
    SCSIDevice& device = drive;
    if (byWriteBuffer) {
        FlashPhysicalDriveFirmware command(FlashPhysicalDriveFirmware::eChunks, image);
        DeviceCommandReturn::executeCommand(command, device, result);
    } else {
        SCSIATADownloadMicrocode command(image);
        DeviceCommandReturn::executeCommand(command, device, result);
    }
    return result;
}

Common::shared_ptr<Core::Capability> WriteFlashPhysicalDrive::getCapabilityPtr(DevicePointer device) {
    Common::shared_ptr<Core::Capability> const root = withFile(Drive::ATTR_NAME_FIRMWARE_FILE_NAME);
    char const* const type = device && Schema::isSata(*device)
                                 ? Drive::ATTR_VALUE_FLASH_TYPE_ATA_PASSTHRU_DOWNLOAD_MICROCODE
                                 : Drive::ATTR_VALUE_FLASH_TYPE_SCSI_WRITE_BUFFER;
    root->Subscribe(choiceCapability(Drive::ATTR_NAME_FLASH_TYPE, {type}, type, nullptr));
    return root;
}

OperationReturn WriteFlashDriveActiveCarrier::visit(Schema::PhysicalDrive& drive) {
    OperationReturn result;
    if (!demandArguments(*this, {Carrier::ATTR_NAME_BUFFER_ADDRESS, Carrier::ATTR_NAME_BUFFER_SIZE},
                         result)) {
        return result;
    }
    ImageSpan const image = readImage(*this, Carrier::ATTR_NAME_BUFFER_ADDRESS,
                                      Carrier::ATTR_NAME_BUFFER_SIZE, LARGEST_COMMAND, result);
    if (!result) return result;
    auto const number = Conversion::toNumber<unsigned short>(
        drive.getValueFor(Interface::StorageMod::PhysicalDrive::ATTR_NAME_DEVICE_NUMBER));
    DevicePointer const above = storageSystemFinder(drive.getDevicePtr());
    auto* const controller = dynamic_cast<Schema::ArrayController*>(above.get());
    if (controller == nullptr) {
        Common::DebugLogger::LogCommand("Carrier of drive %u refused: no array controller is above it",
                                        static_cast<unsigned>(number));
        result.Receive(Core::Attribute(Results::ATTR_NAME_STATUS, Results::ATTR_VALUE_STATUS_FAILURE));
        return result;
    }
    SetControllerCommand<FlashDriveActiveCarrierTrait> command;
    command.SetBuffer(image.bytes, static_cast<unsigned>(image.size));
    command.SetDetails(static_cast<std::uint32_t>(number & 0xFF) << 24 | CARRIER_FLAG);
    command.SetUnitHigh(static_cast<std::uint8_t>(number >> 8));
    DeviceCommandReturn::executeCommand(command, *controller, result);
    return result;
}

Common::shared_ptr<Core::Capability> WriteFlashDriveActiveCarrier::getCapabilityPtr(DevicePointer) {
    return withFile(Carrier::ATTR_NAME_FIRMWARE_FILE_NAME);
}

OperationReturn WriteFlashFBWC::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    if (!demandArguments(*this, {Cache::ATTR_NAME_BUFFER_ADDRESS, Cache::ATTR_NAME_BUFFER_SIZE}, result)) {
        return result;
    }
    ImageSpan const image = readImage(*this, Cache::ATTR_NAME_BUFFER_ADDRESS, Cache::ATTR_NAME_BUFFER_SIZE,
                                      LARGEST_COMMAND, result);
    if (!result) return result;
    SetControllerCommand<FlashFBWCTrait> command;
    command.SetBuffer(image.bytes, static_cast<unsigned>(image.size));
    DeviceCommandReturn::executeCommand(command, controller, result);
    return result;
}

Common::shared_ptr<Core::Capability> WriteFlashFBWC::getCapabilityPtr(DevicePointer) {
    return withFile(Cache::ATTR_NAME_FIRMWARE_FILE_NAME);
}

}  // namespace Operations
