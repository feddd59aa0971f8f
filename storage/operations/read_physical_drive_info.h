#pragma once

#include "command/devices.h"
#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "core/device.h"
#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Fills a drive behind a controller with what the controller tells of it. A drive that isn't identified
/// stays as it is; where the controller can't identify that index at all, its status says so.
class ReadPhysicalDriveInfo
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_READ_PHYSICAL_DRIVE_INFO,
                                  Core::DeviceOperation::eRead, Core::NullFilter,
                                  Schema::VisitorPhysicalDrive> {
  public:
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::PhysicalDrive& drive) override;
};

/// One identify reply, and where its drive is. Members behind `received` are absent.
struct DriveReply {
    Common::copy_ptr<Records::PHYSICAL_DRIVE_STATUS> record;
    unsigned received = 0;
    Common::shared_ptr<Core::Device> controller;  ///< null for a drive that has none above it

    bool controllerHas(char const* attribute, char const* value) const {
        return controller && controller->hasAttributeAndIs(attribute, value);
    }
};

// The stages, each of which leaves out what isn't answered.

/// Everything that the record tells but what follows.
void publishDriveStatus(Schema::PhysicalDrive& drive, DriveReply const& reply);
/// How fast a drive on a parallel bus transfers; takes it away from other drives.
void ReadParallelPhysicalDriveInfo(Core::Device& drive, DriveReply const& reply);
/// Counts of monitoring and performance.
void ReadMNPInfo(Common::shared_ptr<Core::Device> const& controller, Schema::PhysicalDrive& drive);
/// How far an erase has come, behind controllers that erase drives.
void readEraseProgress(Schema::PhysicalDrive& drive, DriveReply const& reply);

}  // namespace Operations
