#include "sysmod/pci_function.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "common/process_mutex.h"
#include "common/scoped_mutex_lock.h"
#include "sysmod/directory.h"
#include "sysmod/system_calls.h"

namespace Core::SysMod {
namespace {

constexpr char PCI_SLOTS[] = "/sys/bus/pci/slots";

/// An identity text is longer than this: "0x", four digits and the kernel's line end.
constexpr std::size_t IDENTITY_MINIMUM = 6;

bool isMassStorage(std::string const& classText) {
    std::string const start = classText.substr(0, 4);
    return start == "0x01" || start == "0xff";
}

/// Characters 2 to 5 of an identity file in upper case; nothing when the text isn't one. The kernel writes
/// "0x1234" and a line end, so the text counts with its line end.
std::optional<std::string> readIdentity(FMDirectory const& directory, char const* name) {
    std::string text;
    if (!systemCalls().readFile(directory.path() + "/" + name, text, 64) || text.size() <= IDENTITY_MINIMUM ||
        text.compare(0, 2, "0x") != 0) {
        return std::nullopt;
    }
    std::string digits = text.substr(2, 4);
    if (!std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isxdigit(c) != 0; })) {
        return std::nullopt;
    }
    std::transform(digits.begin(), digits.end(), digits.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return digits;
}

/// The type of a driver of the list, or nothing. A look-up in the list writes the key that it keeps, whose
/// text counts its shares without atomic operations, and the first one fills the list. The device model and
/// the management objects walk the machine each in threads of their own, so a look-up is theirs one at a
/// time, from the making of the key to its end.
std::optional<Interface::SysMod::Discovery::EnStorageAdapterType> typeOfDriver(std::string const& driver) {
    using Common::Synchronization::ProcessMutex;
    static ProcessMutex mutex;
    Common::Synchronization::ScopedMutexLock<ProcessMutex> const lock(mutex);
    auto& known = Interface::SysMod::Discovery::StorageAdapterDriverWhiteList();
    auto const row = known.find(Common::string(driver.c_str()));
    if (!(row != known.end())) {
        return std::nullopt;
    }
    return (*row).second;
}

}  // namespace

std::optional<PciFunction> readPciFunction(std::string const& path) {
    FMDirectory const directory(path);
    PciFunction function;
    function.directory = path;
    function.location = baseName(path);
    function.classText = directory.firstLine("class");
    if (!isMassStorage(function.classText)) {
        return std::nullopt;
    }
    auto const vendor = readIdentity(directory, "vendor");
    auto const device = readIdentity(directory, "device");
    auto const subsystemVendor = readIdentity(directory, "subsystem_vendor");
    auto const subsystemDevice = readIdentity(directory, "subsystem_device");
    if (!vendor || !device || !subsystemVendor || !subsystemDevice) {
        return std::nullopt;
    }
    function.identity = *vendor + *device;
    function.subsystem = *subsystemVendor + *subsystemDevice;

    std::string driverPath;
    if (!systemCalls().readLink(path + "/driver", driverPath)) {
        return std::nullopt;
    }
    function.driver = baseName(driverPath);
    auto const type = typeOfDriver(function.driver);
    if (!type) {
        return std::nullopt;
    }
    function.type = *type;
    function.driverVersion = FMDirectory(path + "/driver/module").firstLine("version");
    return function;
}

std::string pciKey(std::string const& location) {
    unsigned domain = 0;
    unsigned bus = 0;
    unsigned device = 0;
    unsigned number = 0;
    if (std::sscanf(location.c_str(), "%8x:%2x:%2x.%2x", &domain, &bus, &device, &number) != 4) {
        return location;
    }
    char key[24];
    std::snprintf(key, sizeof key, "%04X%02X%02X%02X", domain, bus & 0xFF, device & 0xFF, number & 0xFF);
    return key;
}

std::string pciSlot(std::string const& location) {
    std::string const address = location.substr(0, location.rfind('.'));
    FMDirectory const slots(PCI_SLOTS);
    for (std::string const& slot : slots.GetChildren()) {
        if (!address.empty() && FMDirectory(slots.path() + "/" + slot).firstLine("address") == address) {
            return slot;
        }
    }
    return std::string();
}

}  // namespace Core::SysMod
