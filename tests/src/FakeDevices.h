#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "common/cloneable.h"
#include "core/capability.h"
#include "core/device_composite.h"
#include "core/device_operation.h"

// Devices of a made-up kind and operations that record what they are asked to do, so that the checks of the
// front end run without hardware and without the storage module.

using DevicePointer = Common::shared_ptr<Core::Device>;

/// Attributes by name.
using Facts = std::vector<std::pair<char const*, char const*>>;

/// What one performance of a FakeOperation was given.
struct Performance {
    std::string device;  ///< toString() of the device
    std::map<std::string, std::string> arguments;
    std::string image;  ///< what lay at the address, for the size
};

/// Any operation. Succeeds, unless results are queued.
class FakeOperation : public Core::DeviceOperation {
  public:
    explicit FakeOperation(std::string name) : m_name(std::move(name)) {}

    Core::OperationReturn visit(Core::Device& device) override {
        if (onVisit) onVisit();
        Performance performance{device.toString().c_str(), {}, ""};
        for (auto argument = beginArgument(); argument != endArgument(); ++argument) {
            performance.arguments[argument->second.first.c_str()] = argument->second.second.text().c_str();
        }
        if (performance.arguments.count("ATTR_NAME_BUFFER_ADDRESS") != 0) {
            auto const address = std::stoull(performance.arguments["ATTR_NAME_BUFFER_ADDRESS"]);
            auto const size = std::stoull(performance.arguments["ATTR_NAME_BUFFER_SIZE"]);
            auto const* const bytes = reinterpret_cast<char const*>(static_cast<std::uintptr_t>(address));
            performance.image.assign(bytes, size);
            performance.arguments.erase("ATTR_NAME_BUFFER_ADDRESS");
        }
        performances.push_back(performance);
        if (results.empty()) return Core::OperationReturn();
        Core::OperationReturn const result = results.front();
        results.pop_front();
        return result;
    }

    Common::shared_ptr<Core::Capability> getCapabilityPtr(DevicePointer device) override {
        auto const root = Core::DeviceOperation::getCapabilityPtr(device);
        if (!offered.empty()) {
            root->Subscribe(Common::shared_ptr<Core::Capability>(
                new Core::CapabilityClass(offered.c_str(), "", "", "", "")));
        }
        return root;
    }

    std::string offered;  ///< the name of an argument among its capabilities
    std::function<void()> onVisit;
    std::vector<Performance> performances;
    std::deque<Core::OperationReturn> results;

  protected:
    Common::string nameImpl() const override { return m_name.c_str(); }
    EnType eTypeImpl() const override { return eWrite; }

  private:
    std::string m_name;
};

/// A device of any type, with operations of its own.
class FakeDevice : public Common::CloneableInherit<Core::DeviceComposite, DevicePointer, FakeDevice> {
  public:
    FakeDevice(char const* type, std::string id, Facts const& facts) : m_id(std::move(id)) {
        Receive(Core::Attribute("ATTR_NAME_TYPE", type));
        for (auto const& [name, value] : facts) {
            Receive(Core::Attribute(name, value));
        }
    }

    using Core::AttributeSource::Receive;
    using Core::DeviceComposite::receive;

    bool operator==(Core::Device const& other) const override { return other.toString() == toString(); }

    Common::shared_ptr<Core::DeviceOperation> getOperation(Common::string const& name) const override {
        for (auto const& operation : m_operations) {
            if (operation->name() == name) return operation;
        }
        return Common::shared_ptr<Core::DeviceOperation>();
    }

    /// The device keeps the operation; the reference is for the test to look at.
    FakeOperation& offer(char const* name) {
        auto* const operation = new FakeOperation(name);
        m_operations.push_back(Common::shared_ptr<Core::DeviceOperation>(operation));
        return *operation;
    }

  protected:
    Common::string toStringImpl() const override { return m_id.c_str(); }
    Core::OperationReturn performImpl(Core::VisitorDevice&) override { return Core::OperationReturn(); }

  private:
    std::string m_id;
    std::vector<Common::shared_ptr<Core::DeviceOperation>> m_operations;
};

/// A device and its pointer. Copies are the same device.
class Fake {
  public:
    Fake(char const* type, std::string id, Facts const& facts = {})
        : m_device(new FakeDevice(type, std::move(id), facts)), m_pointer(m_device) {}

    operator DevicePointer const&() const { return m_pointer; }
    FakeDevice& operator*() const { return *m_device; }
    FakeDevice* operator->() const { return m_device; }

    Fake& add(Fake const& child) {
        m_device->receive(DevicePointer(child));
        return *this;
    }

  private:
    FakeDevice* m_device;
    DevicePointer m_pointer;
};

inline Fake fakeController(Facts const& facts = {{"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", "SERIAL1"}}) {
    return Fake("ATTR_VALUE_TYPE_ARRAY_CONTROLLER", "controller", facts);
}

/// An enclosure processor that offers the flash operation; the WWID is its identity.
inline Fake fakeSep(char const* product, char const* revision, char const* wwid) {
    Fake sep("ATTR_VALUE_TYPE_SEP", wwid,
             {{"ATTR_NAME_PRODUCT_ID", product},
              {"ATTR_NAME_FIRMWARE_REVISION", revision},
              {"ATTR_NAME_WWID", wwid},
              {"ATTR_NAME_MARKETING_NAME", "Enclosure processor"}});
    sep->offer("OPERATION_WRITE_FLASH_SEP_FIRMWARE");
    return sep;
}

/// A failed operation whose one result is a failure word.
inline Core::OperationReturn failureWord(unsigned int word) {
    Core::OperationReturn element("ATTR_VALUE_STATUS_FAILURE");
    element.Receive(Core::Attribute("ATTR_NAME_ADDITIONAL_STATUS", word));
    Common::list<Core::OperationReturn> list;
    list.push_back(element);
    Core::OperationReturn result("ATTR_VALUE_STATUS_OPERATION_RETURN_LIST");
    result.Receive(Core::Attribute("ATTR_NAME_OPERATION_RETURN_LIST", list));
    return result;
}
