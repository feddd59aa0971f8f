#pragma once

/// A device of a virtual machine. A kind of device is a subclass with a row in scenario.cpp.

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "simulator/exchange.h"
#include "simulator/kernel_records.h"
#include "simulator/machine.h"
#include "simulator/scsi_target.h"

namespace simulator {

/// A PCI function as the file tree shows it.
struct PciFunction {
    std::string address;  ///< "0000:0b:00.0"
    std::uint16_t vendor = 0;
    std::uint16_t device = 0;
    std::uint16_t subsystemVendor = 0;
    std::uint16_t subsystemDevice = 0;
    std::uint32_t deviceClass = 0;  ///< 24 bits: base class, subclass, interface
    std::string driver;             ///< empty: no driver is bound
    std::string slot;               ///< name of the physical slot, empty when there is none
    /// Files of the scenario's own, by name: text, null for "not there", or {"dangling": true}.
    std::map<std::string, nlohmann::json> overrides;
};

/// What all kinds of devices have.
struct DeviceFrame {
    std::string name;
    std::string kind;
    PciFunction pci;
    unsigned instance = 0;    ///< number of the node
    bool oldLayout = false;   ///< how older kernels name a block driver's directory
    bool nodePresent = true;  ///< whether the node's file exists
    std::string fastPath;     ///< "enabled", "disabled" or empty: the driver doesn't tell
    /// "/dev/xqrth/c0d0", "/dev/sg0", or empty. Behind a ":" the number of a device that shares its node with
    /// others, "/dev/mpt2ctl:0".
    std::string node;

    /// The node's path without that number.
    std::string nodeFile() const { return node.substr(0, node.find(':')); }
};

class Device {
  public:
    explicit Device(DeviceFrame frame) : m_frame(std::move(frame)) {}
    virtual ~Device() = default;

    DeviceFrame const& frame() const { return m_frame; }

    /// Whether the node's driver knows a request.
    virtual bool answers(Request) const { return false; }
    /// A command's decoded name and the code that fault rules match.
    virtual std::string commandName(Command const&) const { return "unknown"; }
    virtual std::uint8_t opcode(Command const& command) const {
        return command.block.empty() ? 0 : command.block[0];
    }
    /// Carries out a command. The reply's data may be longer than there is room for.
    virtual Reply execute(Command const&) { return checkCondition(5, ASC_INVALID_OPERATION_CODE); }

    /// Makes the files and the state of a new machine.
    virtual void initialise() {}
    virtual void powerCycle(std::vector<std::string>& /*events*/) {}
    virtual nlohmann::json saveState() const { return nlohmann::json::object(); }
    virtual void loadState(nlohmann::json const&) {}

    virtual void summarise(DeviceSummary&) {}
    /// What is behind the device and keeps something, and what a command is for; null for the device itself.
    virtual std::vector<ScsiTarget*> targets() const { return {}; }
    virtual ScsiTarget* targetOf(Command const&) const { return nullptr; }
    /// Looks for what is new behind it.
    void scan(std::uint64_t now) {
        for (ScsiTarget* const target : targets())
            target->scan(now);
    }
    virtual Bytes romImage(Rom) { return {}; }
    virtual std::vector<FirmwarePart> parts() const { return {}; }

  private:
    DeviceFrame m_frame;
};

}  // namespace simulator
