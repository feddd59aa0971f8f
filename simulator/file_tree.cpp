#include <cstdio>

#include "simulator/files.h"
#include "simulator/scenario.h"

namespace simulator {

namespace fs = std::filesystem;

namespace {

std::string hexText(unsigned value, int digits) {
    char text[32];
    std::snprintf(text, sizeof text, "0x%0*x", digits, value);
    return text;
}

/// The files of one directory, with the scenario's overrides in their place.
class Directory {
  public:
    Directory(fs::path path, std::map<std::string, nlohmann::json> const& overrides)
        : m_path(std::move(path)), m_overrides(overrides) {
        fs::create_directories(m_path);
    }

    void file(std::string const& name, std::string const& text) const {
        if (!overridden(name)) writeText(m_path / name, text + "\n");
    }
    void link(std::string const& name, fs::path const& target) const {
        if (!overridden(name)) fs::create_symlink(target, m_path / name);
    }
    /// Overrides of files that this directory hasn't of its own.
    void others(std::vector<std::string> const& elsewhere) const {
        for (auto const& [name, value] : m_overrides) {
            bool const other = std::find(elsewhere.begin(), elsewhere.end(), name) != elsewhere.end();
            if (!other && !fs::exists(fs::symlink_status(m_path / name))) overridden(name);
        }
    }

  private:
    bool overridden(std::string const& name) const {
        auto const found = m_overrides.find(name);
        if (found == m_overrides.end()) return false;
        if (found->second.is_string()) writeText(m_path / name, found->second.get<std::string>() + "\n");
        if (found->second.is_object()) fs::create_symlink("nowhere/to/be/found", m_path / name);
        return true;
    }

    fs::path m_path;
    std::map<std::string, nlohmann::json> const& m_overrides;
};

void makeFunction(fs::path const& root, DeviceFrame const& frame) {
    PciFunction const& pci = frame.pci;
    fs::path const path = pciDirectory(pci);
    Directory const directory(root / path, pci.overrides);
    directory.file("class", hexText(pci.deviceClass, 6));
    directory.file("vendor", hexText(pci.vendor, 4));
    directory.file("device", hexText(pci.device, 4));
    directory.file("subsystem_vendor", hexText(pci.subsystemVendor, 4));
    directory.file("subsystem_device", hexText(pci.subsystemDevice, 4));
    if (!pci.driver.empty()) {
        fs::create_directories(root / "sys/bus/pci/drivers" / pci.driver);
        directory.link("driver", fs::path("../../../bus/pci/drivers") / pci.driver);
    }
    if (!frame.fastPath.empty()) directory.file("vq_ssd_smart_path_status", frame.fastPath);
    directory.others({"type"});
    // As in a kernel's tree, the bus lists links and the directories are elsewhere.
    fs::create_symlink(fs::path("../../..") / path.lexically_relative("sys"),
                       root / "sys/bus/pci/devices" / pci.address);
    if (pci.slot.empty()) return;
    fs::path const slot = root / "sys/bus/pci/slots" / pci.slot;
    fs::create_directories(slot);
    writeText(slot / "address", pci.address.substr(0, pci.address.rfind('.')) + "\n");
}

void makeNode(fs::path const& root, DeviceFrame const& frame) {
    if (frame.node.empty()) return;
    fs::path const function = root / pciDirectory(frame.pci);
    std::string const n = std::to_string(frame.instance);
    if (frame.node.starts_with("/dev/sg")) {
        fs::path const scsi = function / ("host" + n) / ("target" + n + ":0:0") / (n + ":0:0:0");
        fs::create_directories(scsi / "scsi_generic" / ("sg" + n));
        auto const type = frame.pci.overrides.find("type");
        std::map<std::string, nlohmann::json> overrides;
        if (type != frame.pci.overrides.end()) overrides.insert(*type);
        Directory(scsi, overrides).file("type", "12");
    } else if (frame.node.find(':') != std::string::npos) {
        // The adapter's devices are behind its driver; the node is no entry of the function's.
    } else if (frame.oldLayout) {
        fs::create_directories(function / ("block:xqrth!c" + n + "d0"));
    } else {
        fs::create_directories(function / "disk0" / ("xqrth" + n) / ("c" + n + "d0"));
    }
    fs::path const node = root / fs::path(frame.nodeFile()).relative_path();
    fs::create_directories(node.parent_path());
    if (frame.nodePresent) writeText(node, "");
}

}  // namespace

fs::path pciDirectory(PciFunction const& pci) {
    return fs::path("sys/devices") / ("pci" + pci.address.substr(0, 7)) / pci.address;
}

void makeFileTree(fs::path const& root, std::vector<std::unique_ptr<Device>> const& devices) {
    try {
        for (char const* directory : {"sys/bus/pci/devices", "sys/bus/pci/drivers", "sys/bus/pci/slots",
                                      "sys/block", "dev", "var/ksl"})
            fs::create_directories(root / directory);
        for (auto const& device : devices) {
            makeFunction(root, device->frame());
            makeNode(root, device->frame());
        }
    } catch (fs::filesystem_error const& error) {
        throw MachineError(error.path1().string() + " can't be made: " + error.code().message());
    }
}

}  // namespace simulator
