#pragma once

#include <cstdint>
#include <vector>

#include "core/named_operation.h"
#include "flash/component_filters.h"
#include "flash/vocabulary.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// The I2C identities under which a controller's memory answers, ascending: each of the 256 is read once.
/// Empty for a device that takes no management commands, and as soon as the controller isn't reached.
std::vector<std::uint8_t> answeringI2CIdentities(Core::Device& controller);

/// Writes a memory on the controller's I2C bus. Takes the image's address and size, at most 65,535 bytes, and
/// ATTR_NAME_BMIC_I2C_ID, 0 to 255 (Interface::FlashMod::NVRAM), as decimal text.
class WriteFlashNVRAM : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_FLASH_NVRAM,
                                                    Core::DeviceOperation::eWrite, FilterNVRAM,
                                                    Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

/// Reads 256 bytes of such a memory into the file ATTR_NAME_OUTPUT_FILE_NAME. A file that can't be opened
/// isn't written, and that is no failure.
class ReadNVRAM
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_READ_NVRAM, Core::DeviceOperation::eWrite,
                                  FilterNVRAM, Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

}  // namespace Operations
