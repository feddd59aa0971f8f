#pragma once

#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Tells whether the machine boots from a controller. Needs the attributes of discovery and of
/// ReadArrayControllerInfo; sends nothing.
class ReadArrayControllerBootableStatus
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_READ_ARRAY_CONTROLLER_BOOTABLE_STATUS,
                                  Core::DeviceOperation::eRead, Core::NullFilter,
                                  Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
};

}  // namespace Operations
