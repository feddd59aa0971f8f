#pragma once

#include "core/device_operation.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// Sets the flags of the global capability mask, one for each argument with the action eSET whose name it
/// knows. A value that is neither the flag's enable nor its disable value is a failure, and ends the scan.
class WriteSetCapabilityMask : public Core::DeviceOperation, public Schema::VisitorModRoot {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eWrite; }
};

}  // namespace Operations
