#pragma once

#include <vector>

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

/// Handles of the devices of one type behind a controller, by their index. An index that isn't listed, or
/// listed for several devices, has an empty handle, over which nothing is sent, and a line in the log: never
/// the controller's own or another drive's, to which a drive's firmware would go.
class ListedDevices {
  public:
    /// `deviceType` as in PhysicalDeviceIterator.
    ListedDevices(Common::shared_ptr<Core::Device> const& controller, unsigned char deviceType);

    /// At least once.
    bool has(unsigned short index) const;
    Common::string handleOf(unsigned short index) const;

  private:
    std::vector<Common::string> m_handles;
    std::vector<unsigned short> m_ambiguous;  ///< listed for several devices
};

}  // namespace Operations
