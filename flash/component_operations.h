#pragma once

#include "core/named_operation.h"
#include "flash/component_filters.h"
#include "flash/vocabulary.h"
#include "storage/schema/visitors.h"

namespace Operations {

// Each takes the image's address and size as decimal text; the image is borrowed. Every argument is checked
// before anything is sent.

/// Writes a drive's own firmware, in chunks. ATTR_NAME_FLASH_TYPE (Interface::FlashMod::PhysicalDrive) says
/// how: SCSI_WRITE_BUFFER, and anything else is ATA DOWNLOAD MICROCODE.
class WriteFlashPhysicalDrive
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_FLASH_PHYSICAL_DRIVE,
                                  Core::DeviceOperation::eWrite, FilterDriveFlash,
                                  Schema::VisitorPhysicalDrive> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::PhysicalDrive& drive) override;
    /// Offers the file, and the flash type that the drive's interface takes.
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

/// Writes the firmware of the microcontroller in a drive's carrier, through the controller: one command, at
/// most 65,535 bytes (Interface::FlashMod::DriveActiveCarrier).
class WriteFlashDriveActiveCarrier
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER,
                                  Core::DeviceOperation::eWrite, FilterDriveActiveCarrier,
                                  Schema::VisitorPhysicalDrive> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::PhysicalDrive& drive) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

/// Writes the firmware of the flash-backed write cache's microcontroller: one command, at most 65,535 bytes
/// (Interface::FlashMod::FBWC).
class WriteFlashFBWC
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_FLASH_FBWC,
                                  Core::DeviceOperation::eWrite, FilterFBWC, Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

}  // namespace Operations
