#pragma once

#include "command/devices.h"
#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Admits drives behind a controller that have pages of wear, and all drives behind plain adapters: those
/// say themselves what they have.
class FilterExtendedInfo : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Reads what a solid state drive tells of its wear: by log pages, or by ATA logs where its interface is
/// SATA. Fails when the drive doesn't tell which pages or logs it has; what else it doesn't answer is left
/// out.
class ReadSSDInfo
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_READ_EXTENDED_INFO,
                                  Core::DeviceOperation::eRead, FilterExtendedInfo,
                                  Schema::VisitorPhysicalDrive, Schema::VisitorNonVaultlinePhysicalDrive> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::PhysicalDrive& drive) override;
    Core::OperationReturn visit(Schema::NonVaultlinePhysicalDrive& drive) override;

  private:
    static Core::OperationReturn readBy(Common::shared_ptr<Core::Device> drive, bool isBehindController);
    static Core::OperationReturn PublishLogInfoSAS(Common::shared_ptr<Core::Device> drive);
    /// A controller takes ATA commands as command blocks; an adapter takes taskfiles.
    static Core::OperationReturn PublishLogInfoSATA(Common::shared_ptr<Core::Device> drive,
                                                    bool isBehindController);
};

}  // namespace Operations
