#include "core/operation_registry.h"

#include <memory>

#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::DeviceOperation;
using Core::OperationList;
using Core::OperationTables;

namespace {

// Makes operations of a given name; counts itself.
struct NamedCreator : Core::DeviceOperationCreatorBase {
    explicit NamedCreator(std::string const& name) : m_name(name) { ++alive; }
    ~NamedCreator() override { --alive; }
    OperationPtr createOperationPtr() override {
        return OperationPtr(new ScriptedOperation(m_name.c_str(), DeviceOperation::eRead));
    }
    static int alive;
    std::string m_name;
};
int NamedCreator::alive = 0;

struct RegistryTest : testing::Test {
    RegistryTest() : tables(new OperationTables) {}
    ~RegistryTest() override {
        tables.reset();
        EXPECT_EQ(NamedCreator::alive, 0);
    }

    void declare(char const* type, std::string const& name) {
        tables->RegisterOperation(type, new NamedCreator(name));
    }
    static Texts namesIn(OperationList const& operations) {
        Texts names;
        for (OperationPtr const& operation : operations)
            names.push_back(str(operation->name()));
        return names;
    }

    std::unique_ptr<OperationTables> tables;
    OperationList first, second;
};

TEST_F(RegistryTest, APairMayBeDeclaredBeforeItsOperation) {
    tables->RegisterSchema("T1", first);
    EXPECT_TRUE(tables->RegisterSchemaOperationDependency("T1", "A"));
    tables->Activate("T1", "A");
    EXPECT_EQ(namesIn(first), Texts{});
    declare("T1", "A");
    tables->Activate("T1", "A");
    EXPECT_EQ(namesIn(first), Texts{"A"});
}

TEST_F(RegistryTest, OnlyActivatedPairsExistInOrderOfActivation) {
    tables->RegisterSchema("T1", first);
    tables->RegisterSchema("T2", second);
    for (char const* name : {"A", "B", "C"})
        declare("T1", name);
    declare("T2", "A");
    EXPECT_EQ(namesIn(first), Texts{}) << "declared isn't activated";

    tables->Activate("T1", "C");
    tables->Activate("T1", "A");
    tables->Activate("T1", "C");
    tables->Activate("T2", "B");
    tables->Activate("T2", "A");
    EXPECT_EQ(namesIn(first), (Texts{"C", "A"}));
    EXPECT_EQ(namesIn(second), Texts{"A"});
    EXPECT_NE(first.begin()->get(), second.begin()->get()) << "each class has an object of its own";
}

TEST_F(RegistryTest, UnknownPairsAreIgnoredSilently) {
    tables->RegisterSchema("T1", first);
    declare("T1", "A");
    declare("T2", "A");  // a type that nobody entered
    EXPECT_TRUE(tables->RegisterSchemaOperationDependency("T1", "NO_CREATOR"));
    LogCapture log(255);
    tables->Activate("T1", "B");
    tables->Activate("T2", "A");
    tables->Activate("T1", "NO_CREATOR");
    tables->Activate("T3", "A");
    EXPECT_EQ(namesIn(first), Texts{});
    EXPECT_EQ(log.lines(), Texts{});
}

TEST_F(RegistryTest, RepeatedDeclarationsAddNothing) {
    tables->RegisterSchema("T1", first);
    tables->RegisterSchema("T1", second);
    declare("T1", "A");
    declare("T1", "A");
    declare("T2", "A");
    EXPECT_FALSE(tables->RegisterSchemaOperationDependency("T1", "A"));
    EXPECT_EQ(tables->typeCount(), 1u);
    EXPECT_EQ(tables->dependencyCount(), 2u);
    EXPECT_EQ(tables->creatorCount(), 1u);
    EXPECT_EQ(NamedCreator::alive, 1);
    tables->Activate("T1", "A");
    EXPECT_EQ(namesIn(first), Texts{"A"}) << "the first list of a type stays";
}

TEST_F(RegistryTest, FullTablesRefuseAndKeepWhatTheyHold) {
    for (unsigned i = 0; i < 30; ++i)
        tables->RegisterSchema(("T" + std::to_string(i)).c_str(), first);
    for (unsigned i = 0; i < 999; ++i) {
        EXPECT_TRUE(tables->RegisterSchemaOperationDependency("T0", ("D" + std::to_string(i)).c_str()));
    }
    LogCapture log(1);
    tables->RegisterSchema("T29", second);
    tables->RegisterSchema("T30", second);
    declare("T1", "LAST");
    declare("T1", "TOO_MANY");
    EXPECT_EQ(
        log.lines(),
        (Texts{"T30 refused: the type registry has 30 rows in use, expected fewer than 30",
               "TOO_MANY refused: the table of types and operations has 1000 rows in use, expected fewer "
               "than 1000"}));
    EXPECT_EQ(tables->typeCount(), 30u);
    EXPECT_EQ(tables->dependencyCount(), 1000u);
    EXPECT_EQ(NamedCreator::alive, 1);
    tables->Activate("T1", "LAST");
    tables->Activate("T1", "TOO_MANY");
    EXPECT_EQ(namesIn(first), Texts{"LAST"});
}

// A name cut to the size of its row would match another name.
TEST_F(RegistryTest, NamesThatDoNotFitTheirRowAreRefused) {
    std::string const fits(99, 'x');
    std::string const tooLong = fits + "y";
    Common::string const withZero("AB\0C", 4);
    tables->RegisterSchema(fits.c_str(), first);
    {
        LogCapture log(1);
        tables->RegisterSchema(tooLong.c_str(), second);
        EXPECT_FALSE(tables->RegisterSchemaOperationDependency(fits.c_str(), tooLong.c_str()));
        EXPECT_FALSE(tables->RegisterSchemaOperationDependency(tooLong.c_str(), "A"));
        EXPECT_FALSE(tables->RegisterSchemaOperationDependency(fits.c_str(), withZero));
        EXPECT_EQ(log.lines()[0],
                  "Device type " + tooLong + " refused: length 100, expected at most 99 without a zero byte");
        EXPECT_EQ(log.lines().size(), 4u);
    }
    declare(fits.c_str(), tooLong);
    declare(fits.c_str(), fits);
    tables->Activate(fits.c_str(), fits.c_str());
    tables->Activate(fits.c_str(), tooLong.c_str());
    EXPECT_EQ(namesIn(first), Texts{fits});
    EXPECT_EQ(namesIn(second), Texts{});
}

TEST_F(RegistryTest, CreatorsThatMakeNothingAreRefused) {
    struct Nothing : Core::DeviceOperationCreatorBase {
        OperationPtr createOperationPtr() override { return OperationPtr(); }
    };
    LogCapture log(1);
    tables->RegisterOperation("T1", nullptr);
    tables->RegisterOperation("T1", new Nothing);
    EXPECT_EQ(log.lines(), (Texts{"Operation of T1 refused: null, expected a creator",
                                  "Operation of T1 refused: its creator made none"}));
    EXPECT_EQ(tables->dependencyCount(), 0u);
}

struct ProcessOperation : ScriptedOperation {
    ProcessOperation() : ScriptedOperation("OPERATION_OF_THE_PROCESS", eRead) {}
};

TEST(ProcessRegistry, ActivatesForADeviceClass) {
    OperationList& operations = Node::sm_operations;
    operations.clear();
    Core::RegisterSchema("PROCESS_TYPE", operations);
    Core::RegisterOperation("PROCESS_TYPE", new Core::DeviceOperationCreator<ProcessOperation>);
    Core::Device::RegisterOperation("PROCESS_TYPE", "OPERATION_OF_THE_PROCESS");
    Core::Device::RegisterOperation("PROCESS_TYPE", "OPERATION_OF_THE_PROCESS");
    ASSERT_EQ(operations.size(), 1u);

    Node device("d");
    Core::OperationRegistry& registry = device;
    EXPECT_EQ(str((*registry.beginRegisteredOperation())->name()), "OPERATION_OF_THE_PROCESS");
    registry.RegisterOperation(OperationPtr(new ProcessOperation));
    EXPECT_EQ(operations.size(), 2u);
    operations.clear();
    EXPECT_TRUE(registry.beginRegisteredOperation() == registry.endRegisteredOperation());
}

}  // namespace
