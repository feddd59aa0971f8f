#pragma once

/// The device tree of a virtual machine, and what the tests ask of it. Attributes and operations are named by
/// literal text: their names are part of what is tested.

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "command/cache.h"
#include "command/commandmod.h"
#include "core/device.h"
#include "core/device_factory.h"
#include "core/tolkmod.h"
#include "simulator/in_process_door.h"
#include "storage/storagemod.h"
#include "tests/simulator/machine_fixture.h"

namespace storage_test {

using simulator_test::Bytes;
using simulator_test::json;
using Strings = std::vector<std::string>;
using DevicePointer = Common::shared_ptr<Core::Device>;
using OperationPointer = Common::shared_ptr<Core::DeviceOperation>;

constexpr char ABSENT[] = "(absent)";

inline std::string str(Common::string const& text) {
    return std::string(text.c_str(), text.size());
}

/// The text of an attribute, or ABSENT.
inline std::string attribute(Core::AttributeSource const& source, char const* name) {
    return source.hasAttribute(name) ? str(source.getValueFor(name)) : ABSENT;
}

inline std::string status(Core::OperationReturn const& result) {
    return attribute(result, "ATTR_NAME_STATUS");
}

/// A controller without a slot. `more` are members of the scenario's device; its "pci" is merged.
inline json controller(std::string const& name, std::string const& address, char const* subsystemDevice,
                       json const& more = json::object()) {
    json device = {{"name", name},
                   {"kind", "array_controller"},
                   {"product", "PRODUCT " + name},
                   {"family", "DOGWOOD"},
                   {"serial", "SERIAL-" + name},
                   {"firmware", {{"active", "6.40"}, {"inactive", "6.28"}}},
                   {"pci",
                    {{"address", address},
                     {"vendor", "0x1E5C"},
                     {"device", "0x3239"},
                     {"subsystem_vendor", "0x1E5C"},
                     {"subsystem_device", subsystemDevice},
                     {"driver", "vqsa"}}}};
    device.merge_patch(more);
    return device;
}

/// The most common scenario: one controller, "one" at 0000:0b:00.0 in slot 1, a DOGWOOD4 without more.
inline json oneController(json const& more = json::object(), char const* subsystemDevice = "0x3354") {
    json device = controller("one", "0000:0b:00.0", subsystemDevice, {{"pci", {{"slot", "1"}}}});
    device.merge_patch(more);
    return {{"devices", json::array({device})}};
}

/// "command block, direction and length" of an exchange.
inline std::string exchangeText(simulator::JournalEntry const& entry) {
    std::string text;
    char digits[4];
    for (auto const byte : entry.block) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
        text += digits;
    }
    return text + " " + entry.direction + " " + std::to_string(entry.length);
}

class StorageTest : public simulator_test::MachineTest {
  protected:
    StorageTest() {
        Interface::CommandMod::InitializeModule(false);
        Interface::TOLKMod::InitializeModule(false, false);
        Interface::StorageMod::InitializeModule();
        activate({{"MOD_ROOT", "DISCOVER_HOST_BUS_ADAPTERS"},
                  {"MOD_ROOT", "DISCOVER_ARRAY_CONTROLLERS"},
                  {"MOD_ROOT", "WRITE_ALLOWED_CONTROLLER_DISCOVERY"},
                  {"ARRAY_CONTROLLER", "READ_BMIC_COMMAND"},
                  {"ARRAY_CONTROLLER", "WRITE_BMIC_COMMAND"},
                  {"ARRAY_CONTROLLER", "READ_ARRAY_CONTROLLER_INFO"}});
    }
    ~StorageTest() override { powerOff(); }

    /// A new machine and a new tree, not yet discovered.
    void start(json const& scenario) {
        powerOff();
        make(scenario);
        enter();
    }
    /// The same machine in a new run, with a new tree.
    void restart() {
        powerOff();
        reopen();
        enter();
    }
    void powerOff() {
        Core::DeviceFactory::ForgetRoot();
        root = DevicePointer();
        door.reset();
    }
    /// Brings the tree up to date. Nothing may be left open afterwards.
    Core::Device::ResultList discover() {
        Core::Device::ResultList const results = root->Reenumerate(Core::Device::ReenumeratePredicate());
        EXPECT_EQ(0U, door->openNodes());
        return results;
    }
    void discover(json const& scenario) {
        start(scenario);
        discover();
    }

    /// Switches operations on: device type and operation, without what all types and operations begin with.
    static void activate(std::initializer_list<std::pair<char const*, char const*>> operations) {
        for (auto const& [type, operation] : operations) {
            Core::Device::RegisterOperation((std::string("ATTR_VALUE_TYPE_") + type).c_str(),
                                            (std::string("OPERATION_") + operation).c_str());
        }
    }

    /// The children of one type, without what all types begin with.
    static std::vector<DevicePointer> below(Core::Device const& parent, std::string const& type) {
        std::vector<DevicePointer> found;
        for (auto child = parent.beginChild(); child != parent.endChild(); ++child) {
            if (attribute(**child, "ATTR_NAME_TYPE") == "ATTR_VALUE_TYPE_" + type) found.push_back(*child);
        }
        return found;
    }
    std::vector<DevicePointer> controllers() const { return below(*root, "ARRAY_CONTROLLER"); }
    /// One attribute of each controller, in the tree's order.
    Strings controllers(char const* name) const {
        Strings values;
        for (DevicePointer const& device : controllers())
            values.push_back(attribute(*device, name));
        return values;
    }
    /// The only controller.
    Core::Device& only() const {
        auto const found = controllers();
        if (found.size() != 1) throw std::runtime_error(std::to_string(found.size()) + " controllers");
        return *found.front();
    }

    void addFault(char const* rule) { machine->addFaults(json::array({json::parse(rule)}), "test"); }

    /// What was sent to the nodes since the entry numbered `first` of the journal.
    Strings exchanges(std::size_t first = 0) const {
        Strings lines;
        auto const journal = machine->journal();
        for (std::size_t i = first; i < journal.size(); ++i) {
            if (journal[i].event == "exchange") lines.push_back(exchangeText(journal[i]));
        }
        return lines;
    }
    std::size_t sent(char const* text) const {
        std::size_t count = 0;
        for (std::string const& line : exchanges())
            count += line.find(text) != std::string::npos ? 1 : 0;
        return count;
    }
    std::size_t journalSize() const { return machine->journal().size(); }

    DevicePointer root;
    std::unique_ptr<simulator::InProcessDoor> door;

  private:
    void enter() {
        door = std::make_unique<simulator::InProcessDoor>(*machine);
        root = Core::DeviceFactory().pRoot();
    }
};

}  // namespace storage_test
