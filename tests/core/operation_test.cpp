#include <stdexcept>

#include "core/capability.h"
#include "core/operation_context.h"
#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::Capability;
using Core::CapabilityClass;
using Core::CapabilityInstance;
using Core::DeviceOperation;
using Core::OperationReturn;

namespace {

typedef DeviceOperation::Argument Argument;

// "<action>:<name>=<value>" of each argument.
Texts argumentsOf(DeviceOperation const& operation) {
    Texts result;
    for (auto a = operation.beginArgument(); a != operation.endArgument(); ++a) {
        result.push_back(std::to_string(static_cast<int>(a->first)) + ":" + str(a->second.first) + "=" +
                         str(a->second.second.text()));
    }
    return result;
}

struct PerformTest : Fixture {
    PerformTest()
        : operation(new ScriptedOperation("OPERATION_X", DeviceOperation::eWrite)), shared(operation) {}
    ScriptedOperation* operation;
    OperationPtr shared;
};

TEST_F(PerformTest, NamesTheDeviceAndTheOperation) {
    operation->m_body = [](Core::Device&) {
        OperationReturn other;
        other.Receive(Core::Attribute("ATTR_NAME_UNIQUE_ID", "another device"));
        other.Receive(Core::Attribute("ATTR_NAME_OPERATION_NAME", "another operation"));
        return other;
    };
    OperationReturn const result = root->perform(shared);
    EXPECT_TRUE(result);
    EXPECT_TRUE(result.hasAttributeAndIs("ATTR_NAME_UNIQUE_ID", "MR:0"));
    EXPECT_TRUE(result.hasAttributeAndIs("ATTR_NAME_OPERATION_NAME", "OPERATION_X"));
    EXPECT_FALSE(result.hasAttribute("ATTR_NAME_PERFORM_TIME"));
}

TEST_F(PerformTest, ArgumentsDoNotReachTheNextRun) {
    operation->m_body = [this](Core::Device&) { return OperationReturn(operation->getArgValue("A")); };
    operation->SetArgument(DeviceOperation::eSET, "A", "first");
    EXPECT_TRUE(root->perform(shared).hasAttributeAndIs("ATTR_NAME_STATUS", "first"));
    EXPECT_TRUE(root->perform(shared).hasAttributeAndIs("ATTR_NAME_STATUS", ""));

    operation->m_body = [](Core::Device&) -> OperationReturn { throw std::runtime_error("from below"); };
    operation->SetArgument(DeviceOperation::eSET, "A", "second");
    EXPECT_THROW(root->perform(shared), std::runtime_error);
    EXPECT_EQ(argumentsOf(*operation), Texts{});
}

TEST_F(PerformTest, StaleDeviceRunsNothingButClearsArguments) {
    DevicePtr const child = add(root, "c");
    DevicePtr const grandchild = add(child, "c.1");
    root->clear(child);
    operation->SetArgument(DeviceOperation::eSET, "A", "1");
    OperationReturn const result = grandchild->perform(shared);
    EXPECT_TRUE(result.hasAttributeAndIs("ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_DEVICE_DELETED"));
    EXPECT_TRUE(result.hasAttributeAndIs("ATTR_NAME_OPERATION_NAME", "OPERATION_X"));
    EXPECT_EQ(operation->m_ranOn, Texts{});
    EXPECT_EQ(argumentsOf(*operation), Texts{});
}

TEST_F(PerformTest, UnsupportedKindIsNotReachable) {
    DevicePtr const leaf(new Leaf("leaf"));
    root->receive(leaf);
    EXPECT_TRUE(leaf->perform(shared).hasAttributeAndIs("ATTR_NAME_STATUS",
                                                        "ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE"));
}

TEST_F(PerformTest, NullOperationIsRefused) {
    LogCapture log(1);
    EXPECT_TRUE(root->perform(OperationPtr())
                    .hasAttributeAndIs("ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_NOT_SUPPORTED"));
    EXPECT_EQ(log.lines(), Texts{"Operation refused on MR:0: null, expected an operation"});
}

TEST_F(PerformTest, OnlyAFailureLogsItsAttributes) {
    LogCapture log(1);
    root->perform(shared);
    EXPECT_EQ(log.lines(), Texts{"Performing Operation:  OPERATION_X"});

    operation->m_body = [](Core::Device&) {
        OperationReturn result("ATTR_VALUE_STATUS_FAILURE");
        result.Receive(Core::Attribute("ATTR_NAME_A", "100%s"));
        return result;
    };
    root->perform(shared);
    EXPECT_EQ(log.lines(),
              (Texts{"Performing Operation:  OPERATION_X", "Performing Operation:  OPERATION_X",
                     "ATTR_NAME_A = 100%s", "ATTR_NAME_OPERATION_NAME = OPERATION_X",
                     "ATTR_NAME_STATUS = ATTR_VALUE_STATUS_FAILURE", "ATTR_NAME_UNIQUE_ID = MR:0", ""}));
}

TEST_F(PerformTest, ProfilingTimesAndLogsGoodResultsToo) {
    Interface::TOLKMod::InitializeModule(false, true);
    Interface::TOLKMod::InitializeModule(true, false);
    EXPECT_FALSE(Interface::TOLKMod::debugXMLFileEnabled()) << "the second start-up changes nothing";
    LogCapture log(1);
    OperationReturn const result = root->perform(shared);
    std::string const time = str(result.getValueFor("ATTR_NAME_PERFORM_TIME"));
    EXPECT_EQ(time.find('.'), time.size() - 7) << time << ": seconds with six decimals";
    EXPECT_TRUE(log.contains("ATTR_NAME_STATUS = ATTR_VALUE_STATUS_SUCCESS"));
    OperationReturn const last = *reenumerate().begin();
    EXPECT_TRUE(last.hasAttribute("ATTR_NAME_PERFORM_TIME"));
}

TEST(DeviceOperation, EqualNameAndTypeMakeItEqual) {
    ScriptedOperation const read("A", DeviceOperation::eRead);
    EXPECT_TRUE(read == ScriptedOperation("A", DeviceOperation::eRead, 8));
    EXPECT_FALSE(read == ScriptedOperation("A", DeviceOperation::eWrite));
    EXPECT_FALSE(read == ScriptedOperation("B", DeviceOperation::eRead));
}

TEST(DeviceOperation, SetArgumentReplacesOnlyAnEqualOne) {
    ScriptedOperation operation("X", DeviceOperation::eWrite);
    operation.SetArgument(DeviceOperation::eSET, "A", "1");
    operation.SetArgument(DeviceOperation::eSET, "B", "b");
    operation.SetArgument(DeviceOperation::eSET, "A", "1");
    EXPECT_EQ(argumentsOf(operation), (Texts{"8:B=b", "8:A=1"})) << "moved to the end";

    operation.SetArgument(DeviceOperation::eSET, "A", "2");
    operation.SetArgument(DeviceOperation::eRelative, "A", "1");
    operation.SetArgument(DeviceOperation::eSET, "A", 1u);
    EXPECT_EQ(argumentsOf(operation), (Texts{"8:B=b", "8:A=1", "8:A=2", "4:A=1", "8:A=1"}));
    EXPECT_EQ(str(operation.getArgValue("A")), "1") << "the earlier entry is read";
    EXPECT_FALSE(operation.hasArgumentAndIs("A", "2"));
    EXPECT_TRUE(operation.hasArgumentAndIs("B", "b"));
    EXPECT_FALSE(operation.hasArgumentAndIs("B", "B"));

    operation.ClearArgument(Argument(DeviceOperation::eSET, Core::Attribute("A", 1u)));
    operation.ClearArgument(Argument(DeviceOperation::eSET, Core::Attribute("A", 2u)));
    EXPECT_EQ(argumentsOf(operation), (Texts{"8:B=b", "8:A=1", "8:A=2", "4:A=1"}));
    operation.SetArgument(*operation.beginArgument());
    EXPECT_EQ(argumentsOf(operation), (Texts{"8:A=1", "8:A=2", "4:A=1", "8:B=b"}));
    operation.ClearArgumentList();
    EXPECT_FALSE(operation.hasArgument("A"));
    EXPECT_EQ(str(operation.getArgAnyValue("A").text()), "");
    EXPECT_FALSE(operation.hasArgumentAndIs("A", ""));
}

Common::shared_ptr<Capability> argumentClass(char const* name, char const* action) {
    return Common::shared_ptr<Capability>(new CapabilityClass(name, "ATTR_VALUE_INSTANCE_TYPE_STRING",
                                                              "ATTR_VALUE_CARDINALITY_SINGLE", action,
                                                              "ATTR_VALUE_INSTANCE_RANGE_CLOSED"));
}

Common::shared_ptr<Capability> instance(char const* value, bool isDefault) {
    return Common::shared_ptr<Capability>(new CapabilityInstance(value, isDefault, false));
}

// MODE of the given action: fast, with the sub-class LEVEL { low, high }, and slow; then SIZE { 1 }.
struct Defaults {
    char const* action;
    char const* defaultMode;
    char const* defaultLevel;
    char const* suppliedMode;
    int result;
    Texts arguments;
};

void fillAndCheck(Defaults const& c) {
    Common::shared_ptr<Capability> const root(new Capability);
    Common::shared_ptr<Capability> const mode = argumentClass("MODE", c.action);
    Common::shared_ptr<Capability> const level = argumentClass("LEVEL", "ATTR_VALUE_ACTION_BOTH");
    Common::shared_ptr<Capability> const size = argumentClass("SIZE", "ATTR_VALUE_ACTION_ABSOLUTE");
    root->Subscribe(mode);
    root->Subscribe(size);
    for (char const* value : {"fast", "slow"})
        mode->Subscribe(instance(value, value == std::string(c.defaultMode)));
    (*mode->beginChild())->Subscribe(level);
    for (char const* value : {"low", "high"}) {
        level->Subscribe(instance(value, value == std::string(c.defaultLevel)));
    }
    size->Subscribe(instance("1", true));

    ScriptedOperation operation("X", DeviceOperation::eWrite);
    operation.m_capability = root;
    if (c.suppliedMode != nullptr) operation.SetArgument(DeviceOperation::eSET, "MODE", c.suppliedMode);
    EXPECT_EQ(operation.setDefaultArguments(DevicePtr()), c.result);
    EXPECT_EQ(argumentsOf(operation), c.arguments);
}

TEST(SetDefaultArguments, FillsWhatTheCallerLeftOut) {
    char const* const absolute = "ATTR_VALUE_ACTION_ABSOLUTE";
    Defaults const cases[] = {
        {absolute, "slow", "", nullptr, 0, {"8:MODE=slow", "8:SIZE=1"}},
        {absolute, "fast", "low", nullptr, 0, {"8:MODE=fast", "8:LEVEL=low", "8:SIZE=1"}},
        {"ATTR_VALUE_ACTION_BOTH", "slow", "", nullptr, 0, {"8:MODE=slow", "8:SIZE=1"}},
        // No default: reported, the rest is filled all the same.
        {absolute, "", "", nullptr, 1, {"8:SIZE=1"}},
        {absolute, "fast", "", nullptr, 1, {"8:MODE=fast", "8:SIZE=1"}},
        // The caller's value decides which sub-classes apply.
        {absolute, "slow", "high", "fast", 0, {"8:MODE=fast", "8:LEVEL=high", "8:SIZE=1"}},
        {absolute, "fast", "high", "slow", 0, {"8:MODE=slow", "8:SIZE=1"}},
        {absolute, "fast", "high", "other", 2, {"8:MODE=other", "8:SIZE=1"}},
        // Relative: every instance, the default one marked.
        {"ATTR_VALUE_ACTION_RELATIVE",
         "slow",
         "low",
         nullptr,
         0,
         {"4:MODE=fast", "8:LEVEL=low", "1:MODE=slow", "8:SIZE=1"}},
        // None: nothing is set, but a default's sub-classes are followed.
        {"ATTR_VALUE_ACTION_NONE", "fast", "low", nullptr, 0, {"8:LEVEL=low", "8:SIZE=1"}},
        {"ATTR_VALUE_ACTION_NONE", "slow", "low", nullptr, 0, {"8:SIZE=1"}},
    };
    for (Defaults const& c : cases) {
        SCOPED_TRACE(std::string(c.action) + " " + c.defaultMode + " " +
                     (c.suppliedMode ? c.suppliedMode : ""));
        fillAndCheck(c);
    }
}

TEST(SetDefaultArguments, UnknownValueOutweighsAMissingDefault) {
    for (bool const missingFirst : {true, false}) {
        Common::shared_ptr<Capability> const root(new Capability);
        Common::shared_ptr<Capability> const missing = argumentClass("MISSING", "ATTR_VALUE_ACTION_ABSOLUTE");
        Common::shared_ptr<Capability> const unknown = argumentClass("UNKNOWN", "ATTR_VALUE_ACTION_ABSOLUTE");
        root->Subscribe(missingFirst ? missing : unknown);
        root->Subscribe(missingFirst ? unknown : missing);
        ScriptedOperation operation("X", DeviceOperation::eWrite);
        operation.m_capability = root;
        operation.SetArgument(DeviceOperation::eSET, "UNKNOWN", "v");
        EXPECT_EQ(operation.setDefaultArguments(DevicePtr()), 2);
    }
}

TEST(SetDefaultArguments, OperationWithoutCapabilitiesNeedsNothing) {
    ScriptedOperation operation("X", DeviceOperation::eWrite);
    EXPECT_EQ(operation.setDefaultArguments(DevicePtr()), 0);
    EXPECT_EQ(argumentsOf(operation), Texts{});
}

TEST(OperationContext, ItemsAreReplaced) {
    Core::OperationContext context;
    EXPECT_FALSE(context.hasContextItem("I"));
    EXPECT_EQ(str(context.getContextItemValue("I")), "");
    context.addContextItem("I", "1");
    context.addContextItem("I", "2");
    EXPECT_EQ(str(context.getContextItemValue("I")), "2");
    EXPECT_EQ(str(Core::OperationContext::ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID),
              "ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID");
}

}  // namespace
