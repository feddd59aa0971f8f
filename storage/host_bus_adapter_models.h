#pragma once

#include <cstdint>
#include <span>

/// The plain adapters that have a name of their own, one row each.
namespace Interface::StorageMod {

struct HostBusAdapterModel {
    std::uint32_t identifier;  ///< PCI subsystem vendor and device
    char const* nameConstant;  ///< value of ATTR_NAME_HBA_NAME
    char const* marketingName;
};

std::span<HostBusAdapterModel const> hostBusAdapterModels();

}  // namespace Interface::StorageMod
