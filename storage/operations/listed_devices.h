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

    /// The same, read a second time when the first list lacks one of `expected`: one look that fails or is
    /// cut must not take a device's address.
    ListedDevices(Common::shared_ptr<Core::Device> const& controller, unsigned char deviceType,
                  std::vector<unsigned short> const& expected);

    /// At least once.
    bool has(unsigned short index) const;
    /// Whether a device that a box lists is there: not if there is a list of devices, and it isn't in it,
    /// which has a line in the log. Where no list came at all nobody can tell.
    bool mayHave(unsigned short index) const;
    Common::string handleOf(unsigned short index) const;

  private:
    void read(Common::shared_ptr<Core::Device> const& controller);

    unsigned char m_type;
    bool m_isUnread = true;  ///< the list has no device of any type
    std::vector<Common::string> m_handles;
    std::vector<unsigned short> m_ambiguous;  ///< listed for several devices
};

}  // namespace Operations
