#pragma once

#include "core/device_operation.h"

namespace Operations {

/// Runs a command that the caller made: the argument ATTR_NAME_BMIC_COMMAND (of
/// Interface::StorageMod::Device) holds the address of a BmicCommand, borrowed, as decimal text, as all
/// addresses travel. Works on every device that takes management commands. A missing argument is
/// ATTR_VALUE_STATUS_ARGUMENT_MISSING, an address of 0 or no number ATTR_VALUE_STATUS_ARGUMENT_INVALID.
class BMICCommandOperation : public Core::DeviceOperation {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Core::Device& device) override;

  protected:
    BMICCommandOperation() : DeviceOperation(eNever) {}
    Common::shared_ptr<Core::Filter> pFilterImpl() const override;
};

/// Listed by a reenumeration, which never runs it.
class ReadBMICCommand : public BMICCommandOperation {
  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eRead; }
};

class WriteBMICCommand : public BMICCommandOperation {
  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eWrite; }
};

}  // namespace Operations
