#pragma once

#include "core/named_operation.h"
#include "storage/schema/drives.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Makes a device of each drive behind a plain adapter, and of each that shares its expander with the
/// processors of an enclosure there. An adapter's device without a SAS address makes none. A drive that
/// doesn't answer is in the tree all the same.
class DiscoverNonVaultlinePhysicalDrive
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_DISCOVER_NON_VAULTLINE_PHYSICAL_DRIVES,
                                  Core::DeviceOperation::eDiscovery, Core::NullFilter,
                                  Schema::VisitorHostBusAdapter, Schema::VisitorStorageEnclosure> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::HostBusAdapter& adapter) override;
    Core::OperationReturn visit(Schema::StorageEnclosure& enclosure) override;

  private:
    static void discover(Core::Device& parent, Common::string const& handle);
    static void ReadSASDeviceInfo(Common::shared_ptr<Core::Device> drive);
    /// False where the drive's identity doesn't come whole; nothing is published then.
    static bool ReadSATADeviceInfo(Common::shared_ptr<Core::Device> drive);
};

}  // namespace Operations
