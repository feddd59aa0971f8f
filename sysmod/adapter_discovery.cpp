#include <map>
#include <string>

#include "common/debug_logger.h"
#include "sysmod/command_handlers.h"
#include "sysmod/csmi_adapter.h"
#include "sysmod/device_handle.h"
#include "sysmod/directory.h"
#include "sysmod/discovery.h"
#include "sysmod/pci_function.h"
#include "sysmod/system_calls.h"

namespace Interface::SysMod::Discovery {

using Core::SysMod::FMDirectory;
using Core::SysMod::PciFunction;

namespace {

constexpr char PCI_DEVICES[] = "/sys/bus/pci/devices";
constexpr char CONTROLLER_ROUTE[] = "QRTH:0000000000000000";
constexpr char ARRAY_CONTROLLER_TYPE[] = "12";
/// The host and target directories between a function and its SCSI devices: host, target, device, and some
/// room for buses between.
constexpr int SEARCH_DEPTH = 8;

struct DriverRow {
    char const* driver;
    EnStorageAdapterType type;
};

constexpr DriverRow DRIVERS[] = {
    {"xqrth", EnStorageAdapterType::BlockDriverController},
    {"vqsa", EnStorageAdapterType::GenericDriverController},
    {"vqvsa", EnStorageAdapterType::GenericDriverController},
    {"vqvsac", EnStorageAdapterType::GenericDriverController},
    {"vqvsag", EnStorageAdapterType::GenericDriverController},
    {"vqvsaw", EnStorageAdapterType::GenericDriverController},
    {"vqdsa", EnStorageAdapterType::GenericDriverController},
    {"vqdsac", EnStorageAdapterType::GenericDriverController},
    {"vqdsag", EnStorageAdapterType::GenericDriverController},
    {"vqdsaw", EnStorageAdapterType::GenericDriverController},
    {"vqahcisr", EnStorageAdapterType::GenericDriverController},
    {"mpt2sas", EnStorageAdapterType::SasAdapter},
};

/// Where a controller's node and its device directory are; both empty when the function shows none.
struct ControllerNode {
    std::string node;
    std::string deviceDirectory;
};

/// "disk0/xqrth<n>/c<n>d0", or "block:xqrth!c<n>d0" beside it on older kernels.
ControllerNode findBlockDriverNode(PciFunction const& function) {
    std::string const disk = function.directory + "/disk0";
    for (std::string const& host : FMDirectory(disk).GetChildren("xqrth*")) {
        std::string const directory = disk + "/" + host;
        for (std::string const& name : FMDirectory(directory).GetChildren("c*d0")) {
            return {"/dev/xqrth/" + name, directory + "/" + name};
        }
    }
    // On older kernels the name is "block:xqrth!" and the disk's name; the part up to the "!" is cut.
    for (std::string const& name : FMDirectory(function.directory).GetChildren("block:xqrth!c*d0")) {
        return {"/dev/xqrth/" + name.substr(name.find('!') + 1), function.directory + "/" + name};
    }
    return {};
}

/// Searches the tree below a function for "scsi_generic/sg<n>" of a device of the controller's type. Links
/// aren't followed: sysfs's back links would lead in circles.
ControllerNode findGenericNode(std::string const& directory, int depth) {
    for (std::string const& name : FMDirectory(directory + "/scsi_generic").GetChildren("sg*")) {
        if (FMDirectory(directory).firstLine("type").substr(0, 2) == ARRAY_CONTROLLER_TYPE) {
            return {"/dev/" + name, directory};
        }
    }
    if (depth == 0) {
        return {};
    }
    for (std::string const& name : FMDirectory(directory).GetChildren()) {
        std::string const path = directory + "/" + name;
        std::string target;
        if (Core::SysMod::systemCalls().readLink(path, target)) {
            continue;
        }
        ControllerNode const found = findGenericNode(path, depth - 1);
        if (!found.node.empty()) {
            return found;
        }
    }
    return {};
}

ControllerNode findController(PciFunction const& function) {
    switch (function.type) {
        case EnStorageAdapterType::BlockDriverController:
            return findBlockDriverNode(function);
        case EnStorageAdapterType::GenericDriverController:
            return findGenericNode(function.directory, SEARCH_DEPTH);
        case EnStorageAdapterType::SasAdapter:
            break;
    }
    // A device of the controller's type behind a SAS adapter is an external array's, not the adapter itself.
    return {};
}

/// Confirms a controller by INQUIRY. True when it answered.
bool confirmController(Common::string const& node, Common::string const& id, PciFunction const& function) {
    Core::SysMod::OpenDeviceNode const opened(node, false);
    if (!opened.isOpen()) {
        Common::DebugLogger::LogCommand("Unable to open node for Vaultline. BaseID: %s. Node: %s", id.c_str(),
                                        node.c_str());
        return false;
    }
    constexpr unsigned char ALLOCATION = 0x5F;
    constexpr std::uint32_t TIMEOUT = 30;
    unsigned char block[6] = {0x12, 0, 0, 0, ALLOCATION, 0};
    unsigned char reply[ALLOCATION] = {};
    unsigned char sense[Command::SENSE_BUFFER_SIZE] = {};
    Core::SysMod::SCSICommandHandler handler;
    if (!handler.SendSCSICommand(opened, Command::EnTransferType::In, {block, sizeof block}, TIMEOUT,
                                 {reply, sizeof reply}, {sense, sizeof sense})) {
        Common::DebugLogger::LogCommand("SCSI Inquiry command failed. Code: %d. BaseID: %s. Node: %s",
                                        handler.lowLevelError(), id.c_str(), node.c_str());
        return false;
    }
    Common::DebugLogger::LogCommand(
        "Discovered Vaultline controller Controller. BaseID: %s. Node: %s. Driver ID: %s", id.c_str(),
        node.c_str(), function.driver.c_str());
    return true;
}

/// The attribute stands in the directory of the function or of the device behind it, as the driver likes.
Common::string fastPathOf(PciFunction const& function, ControllerNode const& controller) {
    for (std::string const& directory : {function.directory, controller.deviceDirectory}) {
        std::string line;
        if (Core::SysMod::systemCalls().readFirstLine(directory + "/vq_ssd_smart_path_status", line)) {
            return line == "enabled" ? "YES:ENABLED" : "YES:DISABLED";
        }
    }
    return "NO";
}

/// Descriptions by identity, for one walk: machines have many functions of few kinds, and the identifier
/// files are long.
using Descriptions = std::map<std::string, Common::string>;

Common::string descriptionOf(std::string const& identity, Descriptions& known) {
    auto const [row, isNew] = known.try_emplace(identity);
    if (isNew) {
        row->second = GetDeviceDescription(identity.c_str());
    }
    return row->second;
}

void fillTable(PciFunction const& function, Descriptions& descriptions,
               Common::string (&table)[Core::SysMod::PROPERTY_COUNT]) {
    using namespace Core::SysMod;
    table[PciIdentity] = function.identity.c_str();
    table[SubsystemIdentity] = function.subsystem.c_str();
    table[PciClass] = function.classText.c_str();
    table[UniqueKey] = pciKey(function.location).c_str();
    std::string const slot = pciSlot(function.location);
    table[AdapterSlot] = slot.empty() ? Common::string("UNKNOWN") : Common::string("S:") + slot.c_str();
    table[AdapterName] = function.driver.c_str();
    table[PciLocation] = function.location.c_str();
    table[PciLocationAgain] = function.location.c_str();
    table[DriverVersion] = function.driverVersion.c_str();
    table[FastPath] = "NO";
    table[Description] = descriptionOf(function.identity, descriptions);
    table[DescriptionAgain] = table[Description];
}

bool holdsKey(HandleList const& handles, Common::string const& key) {
    for (auto handle = handles.begin(); handle != handles.end(); ++handle) {
        if (Core::SysMod::getDeviceUniqueKey(*handle) == key) {
            return true;
        }
    }
    return false;
}

}  // namespace

Common::map<Common::string, EnStorageAdapterType>& StorageAdapterDriverWhiteList() {
    static Common::map<Common::string, EnStorageAdapterType> list;
    if (!(list.begin() != list.end())) {
        for (DriverRow const& row : DRIVERS) {
            list.insert(Common::pair<Common::string, EnStorageAdapterType>(row.driver, row.type));
        }
    }
    return list;
}

void DiscoverStorageAdapters(HandleList& controllers, HandleList& csmiAdapters, HandleList& plainAdapters) {
    using namespace Core::SysMod;
    discoverCsmiAdapters(csmiAdapters);
    Descriptions descriptions;
    FMDirectory const devices(PCI_DEVICES);
    for (std::string const& name : devices.GetChildren()) {
        std::optional<PciFunction> const function = readPciFunction(devices.path() + "/" + name);
        if (!function) {
            continue;
        }
        PropertyTable table;
        fillTable(*function, descriptions, table);
        ControllerNode const controller = findController(*function);
        if (controller.node.empty()) {
            // A SAS adapter that answered by CSMI stands in its own list already.
            if (!holdsKey(csmiAdapters, table[UniqueKey])) {
                table[DeviceType] = "DUMB_HBA";
                plainAdapters.push_back(toDeviceInfo(table));
            }
            continue;
        }
        table[NodePath] = controller.node.c_str();
        table[DeviceType] = "ARRAY_CONTROLLER";
        table[FastPath] = fastPathOf(*function, controller);
        if (confirmController(table[NodePath], table[UniqueKey], *function)) {
            table[Route] = CONTROLLER_ROUTE;
            table[AdapterStatus] = "OK";
        } else {
            table[AdapterStatus] = "FAILED";
        }
        controllers.push_back(toDeviceInfo(table));
    }
}

}  // namespace Interface::SysMod::Discovery
