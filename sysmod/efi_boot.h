#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Core::SysMod {

/// Place of a PCI function as firmware writes it: a root bridge, then device and function of each bridge on
/// the way and of the function itself.
struct EfiPciPath {
    struct Step {
        std::uint8_t device = 0;
        std::uint8_t function = 0;
        bool operator==(Step const&) const = default;
    };
    std::uint32_t root = 0;  ///< ACPI unique identifier of the root bridge
    std::vector<Step> steps;
};

/// The PCI function of a load option (UEFI specification, EFI_LOAD_OPTION), without the four bytes of
/// variable attributes that the kernel puts in front. Nothing when the option isn't active, is cut off, or
/// names no PCI function.
std::optional<EfiPciPath> pciPathOfLoadOption(std::string const& option);

/// What the machine boots from: the first entry of its boot order that names a PCI function.
std::optional<EfiPciPath> bootPciPath();

}  // namespace Core::SysMod
