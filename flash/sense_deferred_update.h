#pragma once

#include "core/filter.h"
#include "core/named_operation.h"
#include "flash/vocabulary.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// Admits drives right below a controller whose firmware can tell about deferred updates of their kind.
class FilterDeferredUpdate : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Reads the state of a drive's deferred firmware update, 156 bytes that are the drive firmware's own. Takes
/// ATTR_NAME_BUFFER_ADDRESS and ATTR_NAME_BUFFER_SIZE (Interface::FlashMod::PhysicalDrive) of the caller's
/// buffer, as decimal text; the size must be exactly 156. The buffer is written only when all went well.
class SenseDeferredUpdate
    : public Core::NamedOperation<Interface::FlashMod::OPERATION_SENSE_DEFERRED_UPDATE_STATUS,
                                  Core::DeviceOperation::eWrite, FilterDeferredUpdate,
                                  Schema::VisitorPhysicalDrive> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::PhysicalDrive& drive) override;
};

}  // namespace Operations
