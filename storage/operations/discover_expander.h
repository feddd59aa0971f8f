#pragma once

#include "core/named_operation.h"
#include "storage/operations/filter_controller_status.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each SAS expander behind a controller: those that an enclosure's record lists below the
/// enclosure, the others below the controller. As for processors, one that the list of physical devices
/// doesn't have is passed over, and an enclosure without a box index fails. Behind a plain adapter an
/// enclosure has none.
class DiscoverExpander
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_EXPANDERS,
                                  Core::DeviceOperation::eDiscovery,
                                  FilterControllerStatusNoEncryptionLockoutCheck,
                                  Schema::VisitorArrayController, Schema::VisitorStorageEnclosure> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Core::OperationReturn visit(Schema::StorageEnclosure& enclosure) override;
};

}  // namespace Operations
