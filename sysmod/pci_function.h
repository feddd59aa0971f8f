#pragma once

#include <optional>
#include <string>

#include "sysmod/discovery.h"

namespace Core::SysMod {

/// A mass storage function on the PCI bus with a driver of the list, as sysfs shows it.
struct PciFunction {
    std::string directory;      ///< its directory in sysfs
    std::string location;       ///< base name of that directory, "0000:0b:00.0"
    std::string classText;      ///< first line of "class"
    std::string identity;       ///< vendor and device, eight upper-case hexadecimal digits
    std::string subsystem;      ///< subsystem vendor and device, same form
    std::string driver;         ///< kernel driver's name
    std::string driverVersion;  ///< of the driver's module, empty when the kernel shows none
    Interface::SysMod::Discovery::EnStorageAdapterType type;
};

/// Reads one function. Nothing when it isn't mass storage, shows identities that are too short, has no
/// driver or one outside the list: such a function is passed over.
std::optional<PciFunction> readPciFunction(std::string const& directory);

/// "%04X%02X%02X%02X" of domain, bus, device and function; the text itself when it isn't such a location.
std::string pciKey(std::string const& location);

/// Number of the slot that holds `location`, by the kernel's list of slot addresses; empty when it has none.
std::string pciSlot(std::string const& location);

}  // namespace Core::SysMod
