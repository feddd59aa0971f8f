#pragma once

#include <vector>

#include "common/string.h"
#include "core/device.h"

namespace Operations {

/// Handles of the devices of one type behind a controller, by their index. An index that isn't listed, or
/// listed for several devices, has an empty handle, over which nothing is sent, and a line in the log: never
/// the controller's own or another device's, to which the firmware would go.
class ListedDevices {
  public:
    /// `deviceType` as in PhysicalDeviceIterator.
    ListedDevices(Common::shared_ptr<Core::Device> const& controller, unsigned char deviceType);

    /// At least once.
    bool has(unsigned short index) const;
    Common::string handleOf(unsigned short index) const;

  private:
    unsigned char m_type;
    std::vector<Common::string> m_handles;
    std::vector<unsigned short> m_ambiguous;  ///< listed for several devices
};

}  // namespace Operations
