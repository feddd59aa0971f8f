#pragma once

/// Files of a machine that belong to no single device: block devices, the tables of mounted file systems, and
/// the firmware's boot entries.

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "simulator/device.h"
#include "simulator/value.h"

namespace simulator {

struct BlockDevice {
    struct Partition {
        unsigned number = 0;
        std::uint64_t start = 0;
        std::uint64_t size = 0;
    };
    std::string name;        ///< as in sysfs, "sda" or "xqrth!c0d0"
    std::string parent;      ///< PCI address that it is behind, or empty
    std::string port;        ///< directories between the function and the disk, "ata1/host0"
    std::uint64_t size = 0;  ///< blocks of 512 bytes, as the following
    bool removable = false;
    std::map<std::string, std::string> attributes;  ///< files of the device: vendor, model, type, unique_id
    std::vector<Partition> partitions;
};

struct BootEntry {
    unsigned number = 0;
    std::string device;  ///< name of the device that it boots from; empty for `raw`
    bool active = true;
    Bytes raw;  ///< contents of the variable, its four bytes of attributes included
};

struct MachineFiles {
    std::vector<BlockDevice> blockDevices;
    std::string mountTable;       ///< /etc/mtab
    std::string fileSystemTable;  ///< /etc/fstab
    bool hasBoot = false;         ///< whether the firmware is EFI
    std::vector<unsigned> bootOrder;
    std::vector<BootEntry> bootEntries;
};

/// Reads "block_devices", "mtab", "fstab" and "boot" of a scenario.
MachineFiles readMachineFiles(Object const& scenario, std::vector<std::unique_ptr<Device>> const& devices);

/// Makes the files below `root`, in which the devices' own are there already.
void makeMachineFiles(std::filesystem::path const& root, MachineFiles const& files,
                      std::vector<std::unique_ptr<Device>> const& devices);

}  // namespace simulator
