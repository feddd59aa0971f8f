#pragma once

#include "core/named_operation.h"
#include "flash/controller_filters.h"
#include "flash/vocabulary.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// Writes a controller's firmware. Takes the image's address and size as decimal text; the image is borrowed.
/// Background activity is paused meanwhile, and stays paused when the flash fails.
///
/// Arguments (Interface::FlashMod::ArrayController): ATTR_NAME_BUFFER_ADDRESS, ATTR_NAME_BUFFER_SIZE, and
/// optionally ATTR_NAME_TOFU, which is obeyed on every controller. A size of 0 is a success that sends
/// nothing. The image isn't looked at: its validity is the caller's affair and the controller's.
class WriteFlashArrayControllerFirmware
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE,
                                  Core::DeviceOperation::eWrite, FilterFirmwareLock,
                                  Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    /// Offers ATTR_NAME_FIRMWARE_FILE_NAME, and ATTR_NAME_TOFU where the controller can update without
    /// downtime.
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

/// Restarts a controller's firmware. A success whatever the controller says: it may be gone before it
/// answers.
class WriteSoftResetArrayController
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER,
                                  Core::DeviceOperation::eWrite, FilterPresence,
                                  Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
};

/// Switches between a controller's two ROM images.
class WriteToggleActiveRomImage
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE,
                                  Core::DeviceOperation::eWrite, FilterRecoveryRom,
                                  Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
};

}  // namespace Operations
