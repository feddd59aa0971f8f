#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "simulator/device.h"
#include "simulator/faults.h"
#include "simulator/machine_files.h"

namespace simulator {

/// A machine as its scenario describes it; the format is in README.md.
struct Scenario {
    std::string name;
    std::vector<std::unique_ptr<Device>> devices;
    MachineFiles files;
    FaultPlan faults;
};

/// Reads and checks a scenario. The devices keep their files in `firmware`; none is touched here. Throws
/// ScenarioError.
Scenario readScenario(Value const& value, std::filesystem::path const& firmware);

/// The directory of a PCI function below the tree's root, "sys/devices/pci0000:0b/0000:0b:00.0".
std::filesystem::path pciDirectory(PciFunction const& pci);

/// Makes the file tree (sys, dev, var/ksl) below `root`.
void makeFileTree(std::filesystem::path const& root, std::vector<std::unique_ptr<Device>> const& devices);

}  // namespace simulator
