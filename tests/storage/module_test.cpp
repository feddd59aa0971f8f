#include "command/controller_command.h"
#include "core/operation_registry.h"
#include "storage/operations/command_access.h"
#include "storage/operations/discover_controllers.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/mod_root.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using Module = StorageTest;

Strings namesOf(Core::OperationList const& operations) {
    Strings names;
    for (auto const& operation : operations)
        names.push_back(str(operation->name()));
    return names;
}

TEST_F(Module, SwitchingOnIsOrderedAndOnceAndIgnoresWhatIsUnknown) {
    auto const& root = Core::DeviceOperationRegistry<Schema::ModRoot>::sm_operations;
    auto const& controller = Core::DeviceOperationRegistry<Schema::ArrayController>::sm_operations;
    Strings const expectedRoot = {"OPERATION_DISCOVER_HOST_BUS_ADAPTERS",
                                  "OPERATION_DISCOVER_ARRAY_CONTROLLERS",
                                  "OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY"};
    Strings const expectedController = {"OPERATION_READ_BMIC_COMMAND", "OPERATION_WRITE_BMIC_COMMAND",
                                        "OPERATION_READ_ARRAY_CONTROLLER_INFO"};
    EXPECT_EQ(expectedRoot, namesOf(root));
    EXPECT_EQ(expectedController, namesOf(controller));
    std::pair<char const*, char const*> const pairs[] = {
        {"ATTR_VALUE_TYPE_MOD_ROOT", "OPERATION_DISCOVER_ARRAY_CONTROLLERS"},
        {"ATTR_VALUE_TYPE_ARRAY_CONTROLLER", "OPERATION_READ_ARRAY_CONTROLLER_INFO"},
        {"ATTR_VALUE_TYPE_ARRAY_CONTROLLER", "OPERATION_READ_ARRAY_CONTROLLER_PRESENTATION"},
        {"ATTR_VALUE_TYPE_MOD_ROOT", "OPERATION_READ_ARRAY_CONTROLLER_INFO"},
        {"ATTR_VALUE_TYPE_ARRAY_CONTROLLER", "OPERATION_DISCOVER_ARRAY_CONTROLLERS"},
        {"ATTR_VALUE_TYPE_NOTHING", "OPERATION_DISCOVER_ARRAY_CONTROLLERS"},
        {"", ""},
    };
    for (auto const& [type, operation] : pairs)
        Core::Device::RegisterOperation(type, operation);
    Interface::StorageMod::InitializeModule();
    EXPECT_EQ(expectedRoot, namesOf(root));
    EXPECT_EQ(expectedController, namesOf(controller));
}

TEST_F(Module, TheRootKnowsWhatItIs) {
    start({{"devices", json::array()}});
    std::string const first = attribute(*root, "ATTR_NAME_UNIQUE_ID");
    EXPECT_EQ("ATTR_VALUE_TYPE_MOD_ROOT", attribute(*root, "ATTR_NAME_TYPE"));
    EXPECT_TRUE(root->hasAttribute("ATTR_NAME_TOLKMOD_VERSION"));
    restart();
    std::string const second = attribute(*root, "ATTR_NAME_UNIQUE_ID");
    ASSERT_EQ("MR:", first.substr(0, 3));
    EXPECT_EQ("MR:" + std::to_string(std::stoul(first.substr(3)) + 1), second) << "a running number";
}

/// A visitor of another device type doesn't reach it, and nothing is sent.
TEST_F(Module, AnOperationReachesItsOwnTypeOnly) {
    start(oneController());
    discover();
    DevicePointer const adapter(new Schema::HostBusAdapter(""));
    DevicePointer const failed(new Schema::FailedArrayController(""));
    struct Row {
        char const* what;
        Core::DeviceOperation* operation;
        DevicePointer device;
    };
    Row const rows[] = {
        {"info of the root", new Operations::ReadArrayControllerInfo, root},
        {"info of an adapter", new Operations::ReadArrayControllerInfo, adapter},
        {"info of a failed controller", new Operations::ReadArrayControllerInfo, failed},
        {"controllers of a controller", new Operations::DiscoverArrayController, controllers().front()},
        {"adapters of a controller", new Operations::DiscoverHostBusAdapter, controllers().front()},
    };
    std::size_t const before = journalSize();
    for (Row const& row : rows) {
        EXPECT_EQ("ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE",
                  status(row.device->perform(OperationPointer(row.operation))))
            << row.what;
    }
    EXPECT_EQ(before, journalSize());
}

TEST_F(Module, ACopyOfTheTreeIsATreeOfItsOwn) {
    discover(oneController());
    DevicePointer const copy = root->clone();
    auto child = copy->beginChild();
    ASSERT_NE(child, copy->endChild());
    EXPECT_NE(controllers().front().get(), (*child).get());
    EXPECT_EQ("AC:SLOT_1", attribute(**child, "ATTR_NAME_UNIQUE_ID"));
    EXPECT_TRUE(*controllers().front() == **child);
    Core::DeviceFactory::ReleaseRoot(copy);
    EXPECT_EQ(1U, controllers().size());
}

/// The limits that a controller tells are believed within bounds; loops over unit numbers end by them.
TEST(ArrayControllerLimits, AreBelievedWithinBounds) {
    struct Row {
        unsigned short logical;
        unsigned short physical;
        unsigned expectedLogical;
        unsigned expectedPhysical;
    };
    static Row const rows[] = {
        {0, 0, 32, 128}, {64, 200, 64, 200}, {1, 1, 1, 1}, {256, 4096, 256, 4096}, {65535, 65535, 32, 128},
    };
    for (Row const& row : rows) {
        Schema::ArrayController controller("", false, 128, 32, "key");
        Common::copy_ptr<Records::IDENTIFY_CONTROLLER> identify(new Records::IDENTIFY_CONTROLLER());
        identify->wMaximumLogicalDevicesSupported = row.logical;
        identify->wMaximumPhysicalDevicesSupported = row.physical;
        controller.InitializeSupport(identify);
        EXPECT_EQ(row.expectedLogical, controller.maxLogicalUnits());
        EXPECT_EQ(row.expectedPhysical, controller.maxPhysicalUnits());
    }
}

class CommandOperation : public StorageTest {
  protected:
    CommandOperation() { discover(oneController()); }

    Core::OperationReturn perform(char const* name, char const* address) {
        OperationPointer const operation = only().getOperation(name);
        if (address != nullptr)
            operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BMIC_COMMAND", address);
        return only().perform(operation);
    }
    static std::string addressOf(BmicCommand& command) {
        return std::to_string(reinterpret_cast<std::uintptr_t>(&command));
    }
};

TEST_F(CommandOperation, SendsACommandOfTheCaller) {
    SenseControllerCommand<IdentifyControllerTrait> identify;
    NoTransferControllerCommand<ResumeBackgroundActivityTrait> resume;
    std::size_t before = journalSize();
    EXPECT_TRUE(perform("OPERATION_READ_BMIC_COMMAND", addressOf(identify).c_str()));
    EXPECT_EQ(Strings{"26000000000011020000 in 512"}, exchanges(before));
    EXPECT_EQ(3U, identify.record().bPCIEGeneration);
    before = journalSize();
    EXPECT_TRUE(perform("OPERATION_WRITE_BMIC_COMMAND", addressOf(resume).c_str()));
    EXPECT_EQ(Strings{"27000000000099000000 none 0"}, exchanges(before));
}

TEST_F(CommandOperation, TellsOfAFailure) {
    addFault(R"({"match": {"command": "0x11"}, "action": {"scsi_status": 2, "sense": [4, 68, 3]}})");
    SenseControllerCommand<IdentifyControllerTrait> identify;
    auto const result = perform("OPERATION_READ_BMIC_COMMAND", addressOf(identify).c_str());
    EXPECT_FALSE(result);
    EXPECT_EQ("2", attribute(result, "ATTR_NAME_SCSI_STATUS"));
    EXPECT_EQ("4", attribute(result, "ATTR_NAME_SCSI_SENSE_KEY"));
    EXPECT_EQ("68", attribute(result, "ATTR_NAME_SCSI_ASC"));
    EXPECT_EQ("3", attribute(result, "ATTR_NAME_SCSI_ASCQ"));
}

TEST_F(CommandOperation, RefusesWhatIsNoCommand) {
    struct Row {
        char const* address;
        char const* status;
    };
    static Row const rows[] = {
        {nullptr, "ATTR_VALUE_STATUS_ARGUMENT_MISSING"},
        {"0", "ATTR_VALUE_STATUS_ARGUMENT_INVALID"},
        {"", "ATTR_VALUE_STATUS_ARGUMENT_INVALID"},
        {"no address", "ATTR_VALUE_STATUS_ARGUMENT_INVALID"},
    };
    std::size_t const before = journalSize();
    for (Row const& row : rows) {
        for (char const* name : {"OPERATION_READ_BMIC_COMMAND", "OPERATION_WRITE_BMIC_COMMAND"}) {
            auto const result = perform(name, row.address);
            EXPECT_EQ(row.status, status(result));
            EXPECT_EQ("ATTR_NAME_BMIC_COMMAND", attribute(result, "ATTR_NAME_ARGUMENT_NAME"));
        }
    }
    EXPECT_EQ(before, journalSize());
}

TEST_F(CommandOperation, WorksOnlyWhereManagementCommandsDo) {
    SenseControllerCommand<IdentifyControllerTrait> identify;
    OperationPointer const operation(new Operations::ReadBMICCommand);
    EXPECT_FALSE(operation->pFilter()->apply(root));
    EXPECT_TRUE(operation->pFilter()->apply(controllers().front()));
    operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BMIC_COMMAND",
                           addressOf(identify).c_str());
    EXPECT_EQ("ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE", status(root->perform(operation)));
}

}  // namespace
}  // namespace storage_test
