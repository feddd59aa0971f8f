#pragma once

#include <optional>
#include <string>

namespace simulator {

/// Which of a process's paths are the machine's. `path` is absolute; doubled and trailing slashes, "." and
/// ".." are resolved by name. Returns the path below the machine's root ("/sys/block/x" stays "/sys/block/x",
/// resolved), or nothing for a path of the host's.
///
/// The machine has /sys/bus/pci, the PCI part of /sys/devices, /sys/block, the EFI variables, /etc/mtab,
/// /etc/fstab, /dev/xqrth, /dev/sg<n>, /dev/mpt2ctl and, with `logs`, /var/ksl.
std::optional<std::string> machinePath(std::string const& path, bool logs);

/// Whether a machine's path is a device node's, or where one could be.
bool isNodePath(std::string const& path);

}  // namespace simulator
