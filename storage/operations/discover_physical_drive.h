#pragma once

#include "command/devices.h"
#include "core/named_operation.h"
#include "storage/operations/filter_controller_status.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each disk that is right below a controller or a cage, with its number and what the
/// configuration uses it for. Fails, and makes none, when the controller doesn't identify itself.
class DiscoverPhysicalDrive
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_PHYSICAL_DRIVES,
                                  Core::DeviceOperation::eDiscovery,
                                  FilterControllerStatusNoEncryptionLockoutCheck,
                                  Schema::VisitorArrayController, Schema::VisitorDriveCage> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Core::OperationReturn visit(Schema::DriveCage& cage) override;

  private:
    static Core::OperationReturn discover(Core::Device& parent, BMICDevice& commands);
};

/// Makes a device of each tape drive in the same places. What is no disk is asked for what it is; one that
/// doesn't answer is a tape drive if the list of physical devices says so.
class DiscoverTapeDrive
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_TAPE_DRIVES,
                                  Core::DeviceOperation::eDiscovery,
                                  FilterControllerStatusNoEncryptionLockoutCheck,
                                  Schema::VisitorArrayController, Schema::VisitorDriveCage> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Core::OperationReturn visit(Schema::DriveCage& cage) override;

  private:
    static Core::OperationReturn discover(Core::Device& parent, BMICDevice& commands);
};

}  // namespace Operations
