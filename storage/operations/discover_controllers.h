#pragma once

#include "core/device_operation.h"
#include "storage/schema/visitors.h"

namespace Operations {

/// Makes a device of each controller whose node answers, in slot order. A failure of one never aborts the
/// rest: a controller whose management commands fail is made all the same, and reading its information will
/// mark it.
class DiscoverArrayController : public Core::DeviceOperation, public Schema::VisitorModRoot {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eDiscovery; }
};

/// Makes a device of each controller that is on the bus and doesn't answer. Sends nothing.
class DiscoverFailedArrayController : public Core::DeviceOperation, public Schema::VisitorModRoot {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eDiscovery; }
};

/// Makes a device of each plain adapter: those that answer CSMI first, then the generic ones.
class DiscoverHostBusAdapter : public Core::DeviceOperation, public Schema::VisitorModRoot {
  public:
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;

  protected:
    Common::string nameImpl() const override;
    EnType eTypeImpl() const override { return eDiscovery; }
};

}  // namespace Operations
