#include "sysmod/boot_utils.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "common/conversion.h"
#include "sysmod/directory.h"
#include "sysmod/efi_boot.h"
#include "sysmod/pci_function.h"
#include "sysmod/system_calls.h"

namespace Core::SysMod::BootUtils {
namespace {

constexpr char PCI_DEVICES[] = "/sys/bus/pci/devices";

/// Number of a root bridge "pci0000:0b": what the kernel took from the firmware, or its bus without that.
std::uint32_t rootNumber(std::string const& root) {
    std::string const text = FMDirectory("/sys/devices/" + root + "/firmware_node").firstLine("uid");
    unsigned number = 0;
    if (std::sscanf(text.c_str(), "%u", &number) != 1) {
        std::sscanf(root.c_str(), "pci%*x:%x", &number);
    }
    return number;
}

/// Where the kernel shows a function, in the firmware's terms: the directories that its link on the bus leads
/// through are the root bridge, the bridges and the function.
bool isAt(std::string const& name, EfiPciPath const& wanted) {
    std::string target;
    if (!systemCalls().readLink(std::string(PCI_DEVICES) + "/" + name, target)) {
        return false;
    }
    std::vector<EfiPciPath::Step> steps;
    bool hasRoot = false;
    for (std::size_t start = 0; start < target.size();) {
        std::size_t const end = std::min(target.find('/', start), target.size());
        std::string const part = target.substr(start, end - start);
        start = end + 1;
        unsigned device = 0;
        unsigned function = 0;
        if (part.rfind("pci", 0) == 0) {
            hasRoot = rootNumber(part) == wanted.root;
        } else if (std::sscanf(part.c_str(), "%*x:%*x:%x.%x", &device, &function) == 2) {
            steps.push_back({static_cast<std::uint8_t>(device), static_cast<std::uint8_t>(function)});
        }
    }
    return hasRoot && steps == wanted.steps;
}

}  // namespace

bool IsBootController(Common::string const& subsystemIdentifier, Common::string const& slot) {
    std::optional<EfiPciPath> const wanted = bootPciPath();
    if (!wanted) {
        return false;
    }
    char identity[16];
    std::snprintf(identity, sizeof identity, "%08X", Conversion::toNumber<unsigned int>(subsystemIdentifier));
    std::string slotName(slot.c_str());
    if (slotName.rfind("S:", 0) == 0) {
        slotName.erase(0, 2);
    }
    unsigned twins = 0;
    bool isBoot = false;
    bool isNamed = false;
    for (std::string const& name : FMDirectory(PCI_DEVICES).GetChildren()) {
        auto const function = readPciFunction(std::string(PCI_DEVICES) + "/" + name);
        if (!function || function->subsystem != identity) {
            continue;
        }
        ++twins;
        std::string const ownSlot = pciSlot(function->location);
        if (isAt(name, *wanted) && (ownSlot.empty() || ownSlot == slotName)) {
            isBoot = true;
            isNamed = !ownSlot.empty();
        }
    }
    return isBoot && (isNamed || twins == 1);
}

}  // namespace Core::SysMod::BootUtils
