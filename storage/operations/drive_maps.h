#pragma once

#include "command/devices.h"
#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "core/device.h"
#include "core/operation_return.h"
#include "storage/schema/drive_map.h"

namespace Operations {

/// Which physical devices are right below a controller or a cage. A controller has those that are in no cage;
/// a cage has those in its bays.
struct DriveMaps {
    Common::copy_ptr<Records::IDENTIFY_CONTROLLER> identify;
    Schema::PhysicalDriveMap disks;
    Schema::PhysicalDriveMap others;  ///< tapes among them, and what else is no disk
};

/// Reads the maps for `parent`, a controller or a cage, which is also whom to ask. False, with the failure in
/// `result`, when the controller doesn't identify itself: then nothing is known of any drive.
bool readDriveMaps(Core::Device& parent, BMICDevice& commands, DriveMaps& maps,
                   Core::OperationReturn& result);

}  // namespace Operations
