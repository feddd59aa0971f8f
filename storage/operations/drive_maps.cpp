#include "storage/operations/drive_maps.h"

#include <algorithm>

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "storage/operations/bus_parameters.h"
#include "storage/operations/controller_common.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/enclosure.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

using Schema::PhysicalDriveMap;

PhysicalDriveMap onlyThoseOf(PhysicalDriveMap const& all, PhysicalDriveMap const& of) {
    PhysicalDriveMap common(all.size());
    for (unsigned short const number : all.numbers()) {
        if (of.test(number)) common.set(number);
    }
    return common;
}

using SenseIdentify = SenseControllerCommand<IdentifyControllerTrait>;
constexpr char IDENTIFY[] = "Identify record";

/// With both maps: half of them has half of the drives, by whose number a controller's memory is written.
bool isWhole(SenseIdentify const& identify) {
    return holdsWhole(identify, IDENTIFY) &&
           !PhysicalDriveMap::isCut(PhysicalDriveMap::ePresent, replyOf(identify)) &&
           !PhysicalDriveMap::isCut(PhysicalDriveMap::eNonDisk, replyOf(identify));
}

}  // namespace

bool readDriveMaps(Core::Device& parent, BMICDevice& commands, DriveMaps& maps,
                   Core::OperationReturn& result) {
    SenseIdentify identify;
    DeviceCommandReturn::executeCommand(identify, commands, result);
    if (result && !isWhole(identify)) {
        makeRoomForTotal(identify, IDENTIFY);
        DeviceCommandReturn::executeCommand(identify, commands, result);
        if (result && !isWhole(identify)) {
            result.Receive(Core::Attribute(Interface::TOLKMod::OperationReturn::ATTR_NAME_STATUS,
                                           Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE));
        }
    }
    if (!result) return false;
    maps.identify = identify.recordCopy();
    auto const reply = replyOf(identify);
    PhysicalDriveMap nonDisk;
    nonDisk.InitializeDriveMap(PhysicalDriveMap::eNonDisk, reply);
    PhysicalDriveMap present;
    present.InitializeDriveMap(PhysicalDriveMap::ePresent, reply);
    // Where one of the two was refused, nothing tells disks from tape drives behind it.
    unsigned const known = std::min(present.size(), nonDisk.size());
    present.limitTo(known);
    nonDisk.limitTo(known);
    if (auto const* const cage = dynamic_cast<Schema::DriveCage const*>(&parent)) {
        maps.disks = cage->installedDriveList();
        for (unsigned short const number : maps.disks.numbers()) {
            if (number < known) continue;
            Common::DebugLogger::LogCommand("Drive %u of a cage refused: the controller serves %u devices",
                                            static_cast<unsigned>(number), known);
        }
        maps.disks.limitTo(known);
        maps.disks -= nonDisk;
        maps.others = onlyThoseOf(nonDisk, cage->installedDriveList());
        return true;
    }
    maps.disks = present;
    maps.disks -= nonDisk;
    maps.others = nonDisk;
    // The enclosures in the tree tell what is in their cages. Asking the places anew could find a box that
    // its own discovery missed, and leave its drives to a cage that isn't there: they would be lost.
    PhysicalDriveMap const inCages = contentsOfEnclosures(parent).drives;
    maps.disks -= inCages;
    maps.others -= inCages;
    return true;
}

}  // namespace Operations
