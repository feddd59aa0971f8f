#pragma once

#include "core/device_operation.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// Writes a controller's firmware. Takes the image's address and size as decimal text; the image is borrowed.
/// Background activity is paused meanwhile, and stays paused when the flash fails.
///
/// Arguments (Interface::FlashMod::ArrayController): ATTR_NAME_BUFFER_ADDRESS, ATTR_NAME_BUFFER_SIZE, and
/// optionally ATTR_NAME_TOFU, which is obeyed on every controller. A size of 0 is a success that sends
/// nothing. The image isn't looked at: its validity is the caller's affair and the controller's.
class WriteFlashArrayControllerFirmware : public Core::DeviceOperation,
                                          public Schema::VisitorArrayController {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    /// Offers ATTR_NAME_FIRMWARE_FILE_NAME, and ATTR_NAME_TOFU where the controller can update without
    /// downtime.
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eWrite; }
    Common::shared_ptr<Core::Filter> pFilterImpl() const override;
};

/// Restarts a controller's firmware. A success whatever the controller says: it may be gone before it
/// answers.
class WriteSoftResetArrayController : public Core::DeviceOperation, public Schema::VisitorArrayController {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eWrite; }
    Common::shared_ptr<Core::Filter> pFilterImpl() const override;
};

/// Switches between a controller's two ROM images.
class WriteToggleActiveRomImage : public Core::DeviceOperation, public Schema::VisitorArrayController {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eWrite; }
    Common::shared_ptr<Core::Filter> pFilterImpl() const override;
};

/// Pauses or resumes a controller's background activity. Takes ATTR_NAME_BACKGROUND_ACTIVITY_STATE and
/// optionally ATTR_NAME_DISABLE_HOTPLUG_EVENTS, which is on unless told otherwise.
class WriteBackgroundActivity : public Core::DeviceOperation, public Schema::VisitorArrayController {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eWrite; }
    Common::shared_ptr<Core::Filter> pFilterImpl() const override;
};

}  // namespace Operations
