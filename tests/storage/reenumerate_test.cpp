// Bringing one side of a controller up to date, with discoveries that make what a test tells them to.

#include "storage/operations/write_storage_reenumerate.h"

#include <functional>
#include <map>

#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/enclosure.h"
#include "storage/schema/logical.h"
#include "storage/schema/sas_devices.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using namespace Schema;

struct Discovery {
    std::function<std::vector<Core::Device*>()> finds;
    unsigned runs = 0;
    bool fails = false;
};

/// By operation name.
std::map<std::string, Discovery>& discoveries() {
    static std::map<std::string, Discovery> s_discoveries;
    return s_discoveries;
}

class FakeDiscovery : public Core::DeviceOperation {
  public:
    explicit FakeDiscovery(std::string const& name) : m_name(name) {}
    using Core::DeviceOperation::visit;
    Core::OperationReturn visit(Core::Device& device) override {
        Discovery& discovery = discoveries()[m_name];
        ++discovery.runs;
        if (discovery.fails) return Core::OperationReturn("ATTR_VALUE_STATUS_FAILURE");
        for (Core::Device* const found : discovery.finds())
            device.receive(DevicePointer(found));
        return Core::OperationReturn();
    }

  protected:
    Common::string nameImpl() const override { return m_name.c_str(); }
    EnType eTypeImpl() const override { return eDiscovery; }

  private:
    std::string m_name;
};

class Reenumeration : public StorageTest {
  protected:
    Reenumeration() : m_before(operations()) {
        discoveries().clear();
        discoveries()["OPERATION_DISCOVER_STORAGE_ENCLOSURES"].finds = [] {
            return std::vector<Core::Device*>{new StorageEnclosure(1, "", "", 0x11),
                                              new StorageEnclosure(2, "", "", 0x12)};
        };
        discoveries()["OPERATION_DISCOVER_ARRAYS"].finds = [] {
            LogicalDriveMap drives;
            drives.set(0);
            return std::vector<Core::Device*>{new Array(0, drives, {}, {}, {}),
                                              new Array(1, drives, {}, {}, {})};
        };
        discoveries()["OPERATION_DISCOVER_SEPS"].finds = [] {
            return std::vector<Core::Device*>{new SEP("")};
        };
        for (auto const& [name, discovery] : discoveries())
            operations().push_back(OperationPointer(new FakeDiscovery(name)));
        discover(oneController());
        for (auto& [name, discovery] : discoveries())
            discovery.runs = 0;
    }
    ~Reenumeration() override {
        powerOff();
        operations() = m_before;
    }

    static Core::OperationList& operations() {
        return Core::DeviceOperationRegistry<ArrayController>::sm_operations;
    }
    std::string perform(char const* type) {
        OperationPointer const operation(new Operations::WriteStorageReenumerate);
        if (type != nullptr)
            operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_REENUMERATE_TYPE", type);
        return status(only().perform(operation));
    }
    /// The children of the controller by identifier.
    std::map<std::string, DevicePointer> below() {
        std::map<std::string, DevicePointer> found;
        for (auto child = only().beginChild(); child != only().endChild(); ++child)
            found[str((*child)->toString())] = *child;
        return found;
    }

  private:
    Core::OperationList m_before;
};

TEST_F(Reenumeration, RenewsTheSideThatItIsAskedFor) {
    struct Row {
        char const* type;
        char const* runs;  // arrays, processors, enclosures
        bool arraysAreNew;
        bool boxesAreNew;
    };
    static Row const rows[] = {
        {"ATTR_VALUE_REENUMERATE_TYPE_LOGICAL", "100", true, false},
        {"ATTR_VALUE_REENUMERATE_TYPE_PHYSICAL", "011", false, true},
        {"ATTR_VALUE_REENUMERATE_TYPE_DEFAULT", "111", false, false},
        {nullptr, "111", false, false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.type != nullptr ? row.type : "no argument");
        auto const before = below();
        ASSERT_EQ(5U, before.size());
        for (auto& [name, discovery] : discoveries())
            discovery.runs = 0;
        EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", perform(row.type));
        std::string const order = std::to_string(discoveries()["OPERATION_DISCOVER_ARRAYS"].runs) +
                                  std::to_string(discoveries()["OPERATION_DISCOVER_SEPS"].runs) +
                                  std::to_string(discoveries()["OPERATION_DISCOVER_STORAGE_ENCLOSURES"].runs);
        EXPECT_EQ(row.runs, order);
        auto const after = below();
        ASSERT_EQ(5U, after.size());
        EXPECT_EQ(row.arraysAreNew, before.at("ARR:1").get() != after.at("ARR:1").get());
        EXPECT_EQ(row.boxesAreNew, before.at("SE:18_2").get() != after.at("SE:18_2").get());
        for (auto const& [identifier, device] : after)
            EXPECT_TRUE(device->isValid()) << identifier;
        // Whoever held a device that was made anew learns that it is gone.
        EXPECT_EQ(!row.arraysAreNew, before.at("ARR:1")->isValid());
        EXPECT_EQ(!row.boxesAreNew, before.at("SE:18_2")->isValid());
    }
}

TEST_F(Reenumeration, DropsWhatIsGoneOnThatSideOnly) {
    discoveries()["OPERATION_DISCOVER_ARRAYS"].finds = [] { return std::vector<Core::Device*>{}; };
    discoveries()["OPERATION_DISCOVER_STORAGE_ENCLOSURES"].finds = [] {
        return std::vector<Core::Device*>{new StorageEnclosure(1, "", "", 0x11)};
    };
    EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", perform("ATTR_VALUE_REENUMERATE_TYPE_PHYSICAL"));
    EXPECT_EQ(4U, below().size());
    EXPECT_EQ(0U, below().count("SE:18_2"));
    EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", perform("ATTR_VALUE_REENUMERATE_TYPE_LOGICAL"));
    EXPECT_EQ(2U, below().size());
}

TEST_F(Reenumeration, TellsOfAFailedStepAndRunsTheOthers) {
    discoveries()["OPERATION_DISCOVER_STORAGE_ENCLOSURES"].fails = true;
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", perform("ATTR_VALUE_REENUMERATE_TYPE_PHYSICAL"));
    EXPECT_EQ(1U, discoveries()["OPERATION_DISCOVER_SEPS"].runs);
    EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", perform("ATTR_VALUE_REENUMERATE_TYPE_LOGICAL"));
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE", perform(nullptr));
    EXPECT_EQ("ATTR_VALUE_STATUS_ARGUMENT_INVALID", perform("ATTR_VALUE_REENUMERATE_TYPE_"));
}

TEST_F(Reenumeration, IsForControllersOfThisMachine) {
    Operations::WriteStorageReenumerate const operation;
    DevicePointer const controller = controllers().front();
    EXPECT_TRUE(operation.pFilter()->apply(controller));
    controller->Receive(Core::Attribute("ATTR_NAME_LOCATION", "ATTR_VALUE_LOCATION_REMOTE"));
    auto const verdict = operation.pFilter()->apply(controller);
    EXPECT_FALSE(verdict);
    EXPECT_TRUE(verdict.hasAttribute("ATTR_NAME_UNAVAILABLE_REASON"));
    auto const choice = *Operations::WriteStorageReenumerate().getCapabilityPtr(controller)->beginChild();
    EXPECT_EQ("ATTR_NAME_REENUMERATE_TYPE", attribute(*choice, "ATTR_NAME_ATTRIBUTE_NAME"));
    EXPECT_EQ("ATTR_VALUE_REENUMERATE_TYPE_DEFAULT",
              attribute(**choice->beginChild(), "ATTR_NAME_REENUMERATE_TYPE"));
}

}  // namespace
}  // namespace storage_test
