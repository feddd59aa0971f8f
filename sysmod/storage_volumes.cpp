#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "sysmod/device_discovery.h"
#include "sysmod/device_handle.h"
#include "sysmod/directory.h"
#include "sysmod/pci_function.h"
#include "sysmod/system_calls.h"

namespace Interface::SysMod::Discovery {
namespace {

using Core::SysMod::FMDirectory;

constexpr char BLOCK_DEVICES[] = "/sys/block";
constexpr char NODES[] = "/dev/";
constexpr char BLOCK_DRIVER_DISK[] = "xqrth*";
constexpr char SCSI_DISK[] = "sd*";
constexpr char DISK_TYPE[] = "0";
/// Vendor that stands in front of the model of a translated ATA drive, and that of a controller's volumes.
constexpr char ATA_VENDOR[] = "ATA";
constexpr char VOLUME_VENDOR[] = "VQ";
constexpr std::size_t TABLE_LIMIT = 1U << 20;

std::string trimmed(std::string const& text) {
    return Common::string(text.c_str()).Trim().c_str();
}

/// The kernel writes "!" for a "/" in a disk's name.
std::string nodeOf(std::string name) {
    std::replace(name.begin(), name.end(), '!', '/');
    return NODES + name;
}

/// Name in sysfs of a node; empty for one that isn't in /dev, or whose name leads elsewhere.
std::string nameOf(Common::string const& node) {
    std::string name(node.c_str());
    if (name.rfind(NODES, 0) != 0 || name.find("..") != std::string::npos) {
        return std::string();
    }
    name.erase(0, sizeof NODES - 1);
    std::replace(name.begin(), name.end(), '/', '!');
    return name;
}

/// A partition's name is its disk's and a number, with a "p" between the two where the disk's ends in a
/// digit.
bool isPartitionOf(std::string const& name, std::string const& disk) {
    if (disk.empty() || name.rfind(disk, 0) != 0) {
        return false;
    }
    std::size_t at = disk.size();
    if (std::isdigit(static_cast<unsigned char>(disk.back())) != 0) {
        if (name.size() == at || name[at] != 'p') {
            return false;
        }
        ++at;
    }
    return at < name.size() && std::all_of(name.begin() + static_cast<std::ptrdiff_t>(at), name.end(),
                                           [](unsigned char c) { return std::isdigit(c) != 0; });
}

/// Names of the disks and partitions that are mounted or are swap space.
std::vector<std::string> usedNames() {
    std::vector<std::string> names;
    for (char const* file : {"/etc/mtab", "/etc/fstab"}) {
        std::string contents;
        if (!Core::SysMod::systemCalls().readFile(file, contents, TABLE_LIMIT)) {
            continue;
        }
        // mtab lists what is mounted; swap space is in fstab alone.
        bool const isMounted = std::string(file) == "/etc/mtab";
        std::istringstream lines(contents);
        for (std::string line; std::getline(lines, line);) {
            std::istringstream fields(line);
            std::string device;
            std::string place;
            std::string type;
            fields >> device >> place >> type;
            if (isMounted || type == "swap") {
                names.push_back(nameOf(device.c_str()));
            }
        }
    }
    return names;
}

/// Where the kernel has a disk in its device tree: the link to it, or on older kernels the link out of it.
std::string treePath(std::string const& name) {
    std::string const directory = std::string(BLOCK_DEVICES) + "/" + name;
    std::string target;
    if (!Core::SysMod::systemCalls().readLink(directory, target)) {
        Core::SysMod::systemCalls().readLink(directory + "/device", target);
    }
    return target;
}

/// The PCI function that a path of the device tree leads through last; empty when it leads through none.
std::string pciFunctionIn(std::string const& path) {
    std::string found;
    std::istringstream parts(path);
    for (std::string part; std::getline(parts, part, '/');) {
        if (Core::SysMod::matchesPattern(part, "????:??:??.?")) {
            found = part;
        }
    }
    return found;
}

/// How a disk is attached, by its name and what its driver shows.
char const* transportOf(std::string const& name, FMDirectory const& device, std::string const& path) {
    if (Core::SysMod::matchesPattern(name, BLOCK_DRIVER_DISK)) {
        return "RAID";
    }
    if (trimmed(device.firstLine("type")) != DISK_TYPE) {
        return "OTHER";
    }
    std::string const vendor = trimmed(device.firstLine("vendor"));
    if (vendor == VOLUME_VENDOR) {
        return "RAID";
    }
    if (vendor != ATA_VENDOR) {
        return "SCSI";
    }
    // On the kernel's own ATA ports there is no SCSI device; elsewhere an adapter translates.
    return path.find("/ata") != std::string::npos ? "ATA" : "SCSIPT";
}

bool readNumber(std::string const& path, unsigned long long& number) {
    std::string line;
    if (!Core::SysMod::systemCalls().readFirstLine(path, line) || line.empty() ||
        std::isdigit(static_cast<unsigned char>(line[0])) == 0) {
        return false;
    }
    number = std::strtoull(line.c_str(), nullptr, 10);
    return true;
}

/// False for a disk without an entry or a size.
bool readVolume(std::string const& name, std::vector<std::string> const& used,
                StorageVolumeInformation& information) {
    FMDirectory const directory(std::string(BLOCK_DEVICES) + "/" + name);
    FMDirectory const device(directory.path() + "/device");
    information = StorageVolumeInformation();
    if (name.empty() || !readNumber(directory.path() + "/size", information.blocks)) {
        return false;
    }
    information.removable = directory.firstLine("removable") == "1";
    information.inUse = std::any_of(used.begin(), used.end(), [&](std::string const& entry) {
        return entry == name || isPartitionOf(entry, name);
    });
    information.kind = transportOf(name, device, treePath(name));
    information.uniqueId = trimmed(device.firstLine("unique_id")).c_str();
    information.vendor = trimmed(device.firstLine("vendor")).c_str();
    information.model = trimmed(device.firstLine("model")).c_str();
    return true;
}

/// Directories of a disk's partitions: in its own directory, or on older kernels below its device's "block"
/// entries.
std::vector<std::string> partitionDirectories(std::string const& disk) {
    std::string const directory = std::string(BLOCK_DEVICES) + "/" + disk;
    std::vector<std::string> places = {directory};
    for (std::string const& name : FMDirectory(directory + "/device").GetChildren("block*")) {
        places.push_back(directory + "/device/" + name);
        places.push_back(directory + "/device/" + name + "/" + disk);
    }
    std::vector<std::string> found;
    for (std::string const& place : places) {
        for (std::string const& name : FMDirectory(place).GetChildren()) {
            bool const known = std::any_of(found.begin(), found.end(), [&](std::string const& path) {
                return Core::SysMod::baseName(path) == name;
            });
            if (!known && isPartitionOf(name, disk)) {
                found.push_back(place + "/" + name);
            }
        }
    }
    return found;
}

bool readExtent(std::string const& directory, StorageExtentInformation& information) {
    return readNumber(directory + "/start", information.firstBlock) &&
           readNumber(directory + "/size", information.blocks);
}

}  // namespace

void DiscoverStorageVolumes(Common::string const& handle, HandleList& volumes) {
    using namespace Core::SysMod;
    PropertyTable adapter;
    toPropertyTable(handle, adapter);
    std::vector<std::string> const used = usedNames();
    for (std::string const& name : FMDirectory(BLOCK_DEVICES).GetChildren()) {
        StorageVolumeInformation information;
        if ((!matchesPattern(name, BLOCK_DRIVER_DISK) && !matchesPattern(name, SCSI_DISK)) ||
            !readVolume(name, used, information) || information.blocks == 0 || information.removable) {
            continue;
        }
        std::string const function = pciFunctionIn(treePath(name));
        if (!handle.empty() && (function.empty() || adapter[PciLocation] != function.c_str())) {
            continue;
        }
        PropertyTable table;
        table[UniqueKey] = function.empty() ? "" : pciKey(function).c_str();
        table[NodePath] = nodeOf(name).c_str();
        table[IdentityBytes] = information.uniqueId;
        table[TransportKind] = information.kind;
        table[DeviceType] = "UNKNOWN";
        volumes.push_back(toDeviceInfo(table));
    }
}

bool GetStorageVolumeInformation(Common::string const& volumeHandle, StorageVolumeInformation& information) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(volumeHandle, table);
    return readVolume(nameOf(table[Core::SysMod::NodePath]), usedNames(), information);
}

void DiscoverStorageExtents(Common::string const& volumeHandle, HandleList& extents) {
    using namespace Core::SysMod;
    PropertyTable table;
    toPropertyTable(volumeHandle, table);
    std::string const disk = nameOf(table[NodePath]);
    std::vector<std::pair<unsigned long long, std::string>> found;
    for (std::string const& directory : partitionDirectories(disk)) {
        StorageExtentInformation information;
        if (readExtent(directory, information)) {
            found.emplace_back(information.firstBlock, baseName(directory));
        }
    }
    std::sort(found.begin(), found.end());
    for (auto const& [start, name] : found) {
        table[NodePath] = nodeOf(name).c_str();
        extents.push_back(toDeviceInfo(table));
    }
}

bool GetStorageExtentInformation(Common::string const& extentHandle, StorageExtentInformation& information) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(extentHandle, table);
    std::string const name = nameOf(table[Core::SysMod::NodePath]);
    for (std::string const& disk : FMDirectory(BLOCK_DEVICES).GetChildren()) {
        if (!isPartitionOf(name, disk)) {
            continue;
        }
        for (std::string const& directory : partitionDirectories(disk)) {
            if (Core::SysMod::baseName(directory) == name) {
                return readExtent(directory, information);
            }
        }
    }
    return false;
}

}  // namespace Interface::SysMod::Discovery
