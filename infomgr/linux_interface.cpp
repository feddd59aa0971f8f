/// The management objects' view of Linux: adapters by the walk that the rest of the library takes too.

#include <string>

#include "infomgr/adapter_device.h"
#include "infomgr/os_interface.h"
#include "sysmod/discovery.h"
#include "sysmod/system_calls.h"

namespace OperatingSystem {
namespace {

constexpr char PCI_DEVICES[] = "/sys/bus/pci/devices";

template <class Device>
void append(Interface::SysMod::Discovery::HandleList const& handles, DeviceList& devices) {
    for (auto handle = handles.begin(); handle != handles.end(); ++handle) {
        devices.push_back(boost::shared_ptr<ManageableDevice>(new Device(*handle)));
    }
}

class LinuxInterface : public OsInterface {
  public:
    DeviceList findDevices(std::uint32_t objectType) override {
        Interface::SysMod::Discovery::HandleList controllers;
        Interface::SysMod::Discovery::HandleList sasAdapters;
        Interface::SysMod::Discovery::HandleList plainAdapters;
        Interface::SysMod::Discovery::DiscoverStorageAdapters(controllers, sasAdapters, plainAdapters);
        DeviceList devices;
        if (objectType == InfoMgr::ARRAY_CONTROLLER) {
            append<ArrayControllerDevice>(controllers, devices);
        } else if (objectType == InfoMgr::SAS_ADAPTER) {
            append<SasAdapterDevice>(sasAdapters, devices);
        }
        return devices;
    }
};

}  // namespace

OsInterface* OsInterface::instance() {
    static LinuxInterface& system = *new LinuxInterface;
    std::vector<std::string> functions;
    return Core::SysMod::systemCalls().listDirectory(PCI_DEVICES, functions) ? &system : nullptr;
}

}  // namespace OperatingSystem
