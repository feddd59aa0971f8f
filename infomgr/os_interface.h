#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <vector>

#include "infomgr/manageable_device.h"

namespace OperatingSystem {

using DeviceList = std::vector<boost::shared_ptr<ManageableDevice>>;

/// What the management objects want of an operating system.
class OsInterface {
  public:
    virtual ~OsInterface() = default;

    /// The running system's; it lives to the end of the process. Null where the kernel shows no PCI bus:
    /// nothing could be found there.
    static OsInterface* instance();

    /// Looks for the devices of an object type, in the order of the machine's own lists. Nothing is
    /// remembered between calls.
    virtual DeviceList findDevices(std::uint32_t objectType) = 0;
};

}  // namespace OperatingSystem
