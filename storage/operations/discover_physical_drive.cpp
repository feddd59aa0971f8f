#include "storage/operations/discover_physical_drive.h"

#include "storage/operations/drive_maps.h"
#include "storage/operations/drive_roles.h"
#include "storage/operations/listed_devices.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/publish.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/enclosure.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;
using Schema::PhysicalDrive;

void publishStandIn(Core::Device& drive, PhysicalDrive::EnDriveType type, unsigned short number,
                    DriveRoles const& roles) {
    if (type == PhysicalDrive::eSpare) {
        publish(drive, Names::ATTR_NAME_IS_ACTIVE_SPARE,
                roles.activeSpare.test(number) ? Names::ATTR_VALUE_IS_ACTIVE_SPARE_TRUE
                                               : Names::ATTR_VALUE_IS_ACTIVE_SPARE_FALSE);
    } else if (type == PhysicalDrive::eData) {
        publish(drive, Names::ATTR_NAME_TRANSIENT_DATA_DRIVE,
                roles.transientData.test(number) ? Names::ATTR_VALUE_TRANSIENT_DATA_DRIVE_TRUE
                                                 : Names::ATTR_VALUE_TRANSIENT_DATA_DRIVE_FALSE);
    }
}

}  // namespace

Core::OperationReturn DiscoverPhysicalDrive::visit(Schema::ArrayController& controller) {
    return discover(controller, controller);
}

Core::OperationReturn DiscoverPhysicalDrive::visit(Schema::DriveCage& cage) {
    return discover(cage, cage);
}

Core::OperationReturn DiscoverPhysicalDrive::discover(Core::Device& parent, BMICDevice& commands) {
    Core::OperationReturn result;
    DriveMaps maps;
    if (!readDriveMaps(parent, commands, maps, result) || !maps.disks.any()) return result;
    Common::shared_ptr<Core::Device> const controller = storageSystemFinder(parent.getDevicePtr());
    if (!controller) return result;
    DriveRoles const roles = DiscoverDataAndSpareDrives(commands, maps.identify, *controller);
    auto const list = maps.disks.numbers();
    std::vector<unsigned short> const numbers(list.begin(), list.end());
    ListedDevices const devices(controller, PhysicalDeviceIterator::DRIVE_TYPE, numbers);
    for (unsigned short const number : numbers) {
        PhysicalDrive::EnDriveType const type = roles.typeOf(number);
        Common::shared_ptr<Core::Device> const drive(
            new PhysicalDrive(devices.handleOf(number), number, type));
        publishStandIn(*drive, type, number, roles);
        parent.receive(drive);
    }
    return result;
}

}  // namespace Operations
