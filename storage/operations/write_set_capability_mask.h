#pragma once

#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Sets the flags of the global capability mask, one for each argument with the action eSET whose name it
/// knows. A value that is neither the flag's enable nor its disable value is a failure, and ends the scan.
class WriteSetCapabilityMask
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_WRITE_SET_CAPABILITY_MASK,
                                  Core::DeviceOperation::eWrite, Core::NullFilter, Schema::VisitorModRoot> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;
};

}  // namespace Operations
