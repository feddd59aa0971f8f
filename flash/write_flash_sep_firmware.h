#pragma once

#include "core/named_operation.h"
#include "flash/sep_filters.h"
#include "flash/vocabulary.h"
#include "storage/schema/visitors.h"

class SCSIDevice;
class BMICDevice;

namespace Operations {

/// Writes the firmware of enclosure processors: of one, or of those of one product or those named behind an
/// adapter, one after the other or side by side. Takes the image's address and size as decimal text; the
/// image is borrowed.
///
/// Arguments (Interface::FlashMod::SEP): ATTR_NAME_BUFFER_ADDRESS and ATTR_NAME_BUFFER_SIZE; on an adapter
/// either ATTR_NAME_PRODUCT_ID or ATTR_NAME_UNIQUE_ID, the latter once for each device, and
/// ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE, the devices flashed at a time (0: as many as the model allows),
/// but for a serial run and a model that has a limit; ATTR_NAME_FLASH_TYPE, parallel unless told otherwise;
/// ATTR_NAME_RESET_SEP, no reset without it; ATTR_NAME_DISABLE_HOTPLUG_EVENTS, on without it.
///
/// Devices whose model or firmware can't be flashed are passed over and fail nothing. The result of several
/// devices has theirs in ATTR_NAME_OPERATION_RETURN_LIST; its status is success only when all theirs are.
class WriteFlashSEPFirmware
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_FLASH_SEP_FIRMWARE,
                                  Core::DeviceOperation::eWrite, WriteFlashSEPFirmwareFilter,
                                  Schema::VisitorSEP, Schema::VisitorArrayController,
                                  Schema::VisitorHostBusAdapter> {
  public:
    using NamedOperation::visit;
    /// Models that aren't written in mode 14 with a reset are not written at all: a success that sends no
    /// firmware. A failed flash leaves the controller paused.
    Core::OperationReturn visit(Schema::SEP& sep) override;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Core::OperationReturn visit(Schema::HostBusAdapter& adapter) override;

    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;

  private:
    /// `controller` is null for a host bus adapter.
    Core::OperationReturn visit(Core::Device& device, BMICDevice* controller, SCSIDevice& adapter);
    void setFlashOption(Core::Capability& root, Common::shared_ptr<Core::Device> const& device) const;
};

/// Resets one enclosure processor, which makes the firmware run that it has stored.
class WriteResetSEP
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_RESET_SEP,
                                  Core::DeviceOperation::eWrite, WriteResetSEPFilter, Schema::VisitorSEP> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::SEP& sep) override;
};

}  // namespace Operations
