#pragma once

#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each controller whose node answers, in slot order. A failure of one never aborts the
/// rest: a controller whose management commands fail is made all the same, and reading its information will
/// mark it.
class DiscoverArrayController
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_ARRAY_CONTROLLERS,
                                  Core::DeviceOperation::eDiscovery, Core::NullFilter,
                                  Schema::VisitorModRoot> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;
};

/// Makes a device of each controller that is on the bus and doesn't answer. Sends nothing.
class DiscoverFailedArrayController
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_FAILED_ARRAY_CONTROLLERS,
                                  Core::DeviceOperation::eDiscovery, Core::NullFilter,
                                  Schema::VisitorModRoot> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;
};

/// Makes a device of each plain adapter: those that answer CSMI first, then the generic ones.
class DiscoverHostBusAdapter
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_HOST_BUS_ADAPTERS,
                                  Core::DeviceOperation::eDiscovery, Core::NullFilter,
                                  Schema::VisitorModRoot> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;
};

}  // namespace Operations
