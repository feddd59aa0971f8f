#pragma once

#include "core/named_operation.h"
#include "storage/operations/bus_parameters.h"
#include "storage/operations/filter_controller_status.h"
#include "storage/schema/sas_devices.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each enclosure processor. An enclosure has those that its record lists, or, behind a SAS
/// adapter, those of its chassis; a controller has those that are in no enclosure. Behind a controller a
/// processor has the handle that the list of physical devices has for its number: one that isn't listed
/// can't be addressed, and is passed over with a line in the log. Fails on an enclosure without a box index.
class DiscoverSEP
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_SEPS,
                                  Core::DeviceOperation::eDiscovery,
                                  FilterControllerStatusNoEncryptionLockoutCheck,
                                  Schema::VisitorArrayController, Schema::VisitorStorageEnclosure> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Core::OperationReturn visit(Schema::StorageEnclosure& enclosure) override;
};

}  // namespace Operations
