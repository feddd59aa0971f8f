#include "storage/operations/drive_roles.h"

#include <algorithm>
#include <cstddef>

#include "storage/operations/configured_units.h"
#include "storage/schema/logical.h"

namespace Operations {
namespace {

using Schema::PhysicalDriveMap;
using Configuration = Records::LOGICAL_DRIVE_CONFIG;
using Status = Records::LOGICAL_DRIVE_STATUS;

template <class Command>
PhysicalDriveMap dataDrives(Command const& configuration) {
    PhysicalDriveMap map;
    map.InitializeDriveMap(replyOf(configuration), offsetof(Configuration, pbBigDriveAssignmentMap),
                           configuration.record().wOffsetToExtendedDriveAssignmentMap,
                           configuration.record().wMaximumPhysicalDevicesSupported);
    return map;
}

PhysicalDriveMap spareDrives(SenseConfiguration const& configuration) {
    PhysicalDriveMap map;
    map.InitializeDriveMap(replyOf(configuration), offsetof(Configuration, pbBigSpareAssignmentMap),
                           configuration.record().wOffsetToExtendedSpareAssignmentMap,
                           configuration.record().wMaximumPhysicalDevicesSupported);
    return map;
}

/// Drives change their places only in units that have spares: nothing is asked about others.
void readStandIns(BMICDevice& commands, std::uint16_t unit, PhysicalDriveMap const& data, DriveRoles& roles) {
    SenseLogicalDriveCommand<SenseLogicalDriveStatusTrait> status(unit);
    status.SetNumMaxRetries(OPTIONAL_REPEATS);
    if (status(commands) && holdsWhole(status, "Logical drive status")) {
        PhysicalDriveMap active;
        active.InitializeDriveMap(replyOf(status), offsetof(Status, pbBigActiveSpareMap),
                                  status.record().wOffsetToExtendedActiveSpareMap,
                                  status.record().wMaximumPhysicalDevicesSupported);
        roles.activeSpare |= active;
    }
    SenseLogicalDriveCommand<SenseOriginalLogicalDriveConfigurationTrait> original(unit);
    original.SetNumMaxRetries(OPTIONAL_REPEATS);
    if (original(commands) && holdsWhole(original, "Original logical drive configuration") &&
        original.record().wAssignedDrives != 0) {
        PhysicalDriveMap standIns = data;
        standIns -= dataDrives(original);
        roles.transientData |= standIns;
    }
}

}  // namespace

Schema::PhysicalDrive::EnDriveType DriveRoles::typeOf(unsigned short number) const {
    // A spare that took a drive's place stands in both lists, and stays a spare.
    if (spare.test(number)) return Schema::PhysicalDrive::eSpare;
    return data.test(number) ? Schema::PhysicalDrive::eData : Schema::PhysicalDrive::eUnassigned;
}

DriveRoles DiscoverDataAndSpareDrives(BMICDevice& commands,
                                      Common::copy_ptr<Records::IDENTIFY_CONTROLLER> const& identify,
                                      Core::Device const& controller) {
    DriveRoles roles;
    bool hasArrays = false;
    for (auto child = controller.beginChild(); child != controller.endChild(); ++child) {
        auto const* const array = dynamic_cast<Schema::Array const*>(child->get());
        if (array == nullptr) continue;
        hasArrays = true;
        if (array->isDeleted()) continue;
        roles.data |= array->dataDriveList();
        roles.spare |= array->spareDriveList();
        if (!array->spareDriveList().any()) continue;
        for (unsigned short const unit : array->logicalDriveMap().numbers())
            readStandIns(commands, unit, array->dataDriveList(), roles);
    }
    if (hasArrays) return roles;
    forEachConfiguredUnit(commands, *identify,
                          [&](std::uint16_t unit, SenseConfiguration const& configuration) {
                              PhysicalDriveMap const data = dataDrives(configuration);
                              PhysicalDriveMap const spares = spareDrives(configuration);
                              roles.data |= data;
                              roles.spare |= spares;
                              if (spares.any()) readStandIns(commands, unit, data, roles);
                              return true;
                          });
    return roles;
}

}  // namespace Operations
