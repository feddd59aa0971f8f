#include "storage/operations/read_physical_drive_info.h"

#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/operations/publish.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/presentation.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;
namespace Results = Interface::TOLKMod::OperationReturn;

/// The controller doesn't know the command, or not for that index: an invalid command by its own status, or
/// an illegal request.
bool isNotSupported(Core::OperationReturn const& result) {
    constexpr char INVALID_COMMAND[] = "4";
    constexpr char ILLEGAL_REQUEST[] = "5";
    return result.hasAttributeAndIs(Results::ATTR_NAME_SCSI_COMMAND_STATUS, INVALID_COMMAND) ||
           result.hasAttributeAndIs(Results::ATTR_NAME_SCSI_SENSE_KEY, ILLEGAL_REQUEST);
}

/// What an earlier discovery left of another use of the drive.
void clearOtherRoles(Core::Device& drive) {
    if (!drive.hasAttributeAndIs(Names::ATTR_NAME_DRIVE_TYPE, Names::ATTR_VALUE_DRIVE_TYPE_SPARE)) {
        drive.Clear(Names::ATTR_NAME_IS_ACTIVE_SPARE);
    }
    if (!drive.hasAttributeAndIs(Names::ATTR_NAME_DRIVE_TYPE, Names::ATTR_VALUE_DRIVE_TYPE_DATA)) {
        drive.Clear(Names::ATTR_NAME_TRANSIENT_DATA_DRIVE);
    }
}

}  // namespace

Core::OperationReturn ReadPhysicalDriveInfo::visit(Schema::PhysicalDrive& drive) {
    Core::OperationReturn result;
    Common::shared_ptr<Core::Device> const self = drive.getDevicePtr();
    DriveReply reply;
    clearOtherRoles(drive);
    Schema::PhysicalDrive::identifyPhysicalDrive(self, drive, drive.physicalDriveNumber(), reply.record,
                                                 result, &reply.received);
    // Up to the type of device: less doesn't tell whether the drive works, nor whether it rotates.
    constexpr unsigned NEEDED = KSL_MEMBER_END(PHYSICAL_DRIVE_STATUS, bDeviceType);
    if (result && reply.received < NEEDED) {
        Common::DebugLogger::LogCommand(
            "Identify reply of drive %u refused: %u bytes came, at least %u expected",
            static_cast<unsigned>(drive.physicalDriveNumber()), reply.received, NEEDED);
        result.Receive(Core::Attribute(Results::ATTR_NAME_STATUS, Results::ATTR_VALUE_STATUS_FAILURE));
        return result;
    }
    if (!result) {
        if (isNotSupported(result)) {
            publish(drive, Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_NOT_SUPPORTED);
        }
        return result;
    }
    reply.controller = storageSystemFinder(self);
    publishDriveStatus(drive, reply);
    ReadParallelPhysicalDriveInfo(drive, reply);
    readEraseProgress(drive, reply);
    ReadMNPInfo(reply.controller, drive);
    publishOrClear(drive, Names::ATTR_NAME_MARKETING_BLOCKS,
                   StoragePres::PhysicalDrive::marketingBlocksFor(drive));
    publishOrClear(drive, Names::ATTR_NAME_LOCATION_HINT, StoragePres::PhysicalDrive::locationHintFor(self));
    return result;
}

}  // namespace Operations
