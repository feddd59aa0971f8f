#pragma once

#include "command/devices.h"
#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each phy of a SAS device behind a controller. A device without an index there has none.
class DiscoverPhy
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_PHYS,
                                  Core::DeviceOperation::eDiscovery, Core::NullFilter,
                                  Schema::VisitorPhysicalDrive, Schema::VisitorExpander, Schema::VisitorSEP> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::PhysicalDrive& drive) override;
    Core::OperationReturn visit(Schema::Expander& expander) override;
    Core::OperationReturn visit(Schema::SEP& sep) override;

  private:
    static Core::OperationReturn discover(Core::Device& device, BMICDevice& controller,
                                          unsigned short const& bmicIndex);
};

}  // namespace Operations
