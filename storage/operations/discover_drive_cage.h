#pragma once

#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each cage of an enclosure behind a controller, with the drives in it. A duplex box is
/// two cages, one for each half of its bays. A cage that doesn't answer is passed over.
class DiscoverDriveCage : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_DRIVE_CAGES,
                                                      Core::DeviceOperation::eDiscovery, Core::NullFilter,
                                                      Schema::VisitorStorageEnclosure> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::StorageEnclosure& enclosure) override;
};

}  // namespace Operations
