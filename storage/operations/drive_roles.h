#pragma once

#include "command/devices.h"
#include "command/records/all_records.h"
#include "common/copy_ptr.h"
#include "core/device.h"
#include "storage/schema/drive_map.h"
#include "storage/schema/drives.h"

namespace Operations {

/// What a controller's configuration uses its drives for, by their number.
struct DriveRoles {
    Schema::PhysicalDriveMap data{Schema::DriveMap::MOST_DEVICES};
    Schema::PhysicalDriveMap spare{Schema::DriveMap::MOST_DEVICES};
    /// Of the spares, those in the place of a failed drive.
    Schema::PhysicalDriveMap activeSpare{Schema::DriveMap::MOST_DEVICES};
    /// Of the data drives, those that the unit wasn't configured with: they stand in for a while.
    Schema::PhysicalDriveMap transientData{Schema::DriveMap::MOST_DEVICES};

    Schema::PhysicalDrive::EnDriveType typeOf(unsigned short number) const;
};

/// Goes through the logical configuration. The arrays of the tree tell it, but for deleted ones; where no
/// arrays were discovered, the controller's own configuration of its units does. What can't be read leaves
/// its drives unassigned.
DriveRoles DiscoverDataAndSpareDrives(BMICDevice& commands,
                                      Common::copy_ptr<Records::IDENTIFY_CONTROLLER> const& identify,
                                      Core::Device const& controller);

}  // namespace Operations
