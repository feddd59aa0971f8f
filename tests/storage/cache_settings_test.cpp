// The reply cache, worked by its operation on a tree of a virtual machine.

#include "storage/operations/write_cache_settings.h"

#include "command/controller_command.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/sas_devices.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using Arguments = std::vector<std::pair<char const*, char const*>>;

class CacheSettings : public StorageTest {
  protected:
    ~CacheSettings() override {
        SetCommandCacheState(false);
        ClearModRootCache();
    }

    Core::OperationReturn set(DevicePointer const& device, Arguments const& arguments) {
        OperationPointer const operation(new Operations::WriteCacheSettings);
        for (auto const& [name, value] : arguments)
            operation->SetArgument(Core::DeviceOperation::eSET, name, value);
        return device->perform(operation);
    }
    Core::OperationReturn setAll(char const* deviceDefault) {
        return set(root, {{"ATTR_NAME_COMMAND_CACHE", "ATTR_VALUE_COMMAND_CACHE_ENABLED"},
                          {"ATTR_NAME_DEVICE_CACHE_DEFAULT", deviceDefault}});
    }
    /// How many exchanges two identify commands take.
    std::size_t identifyTwice() {
        auto& controller = dynamic_cast<Schema::ArrayController&>(only());
        std::size_t const before = exchanges().size();
        for (int i = 0; i < 2; ++i) {
            SenseControllerCommand<IdentifyControllerTrait> identify;
            EXPECT_TRUE(identify(controller));
            EXPECT_EQ(3U, identify.record().bPCIEGeneration);
        }
        return exchanges().size() - before;
    }
    /// What the capability says holds now, by argument.
    std::string current(DevicePointer const& device) {
        std::string text;
        auto const capability = Operations::WriteCacheSettings().getCapabilityPtr(device);
        for (auto choice = capability->beginChild(); choice != capability->endChild(); ++choice) {
            for (auto value = (*choice)->beginChild(); value != (*choice)->endChild(); ++value) {
                if (attribute(**value, "ATTR_NAME_CURRENT_VALUE") == "ATTR_VALUE_CURRENT_VALUE_TRUE")
                    text += attribute(**value, attribute(**choice, "ATTR_NAME_ATTRIBUTE_NAME").c_str()) + " ";
            }
        }
        return text;
    }
};

TEST_F(CacheSettings, ServesADiscoveredControllerFromMemoryOnceItIsOn) {
    start(oneController());
    EXPECT_TRUE(setAll("ATTR_VALUE_DEVICE_CACHE_DEFAULT_ENABLED"));
    EXPECT_EQ("ATTR_VALUE_COMMAND_CACHE_ENABLED ATTR_VALUE_DEVICE_CACHE_DEFAULT_ENABLED ", current(root));
    EXPECT_TRUE(GetDefaultInheritanceFlag());
    discover();
    DevicePointer const controller = controllers().front();
    EXPECT_EQ(0U, identifyTwice()) << "discovery has identified it already";
    EXPECT_EQ("ATTR_VALUE_DEVICE_CACHE_ENABLED ", current(controller));

    EXPECT_TRUE(set(controller, {{"ATTR_NAME_CLEAR_DEVICE_CACHE", "ATTR_VALUE_CLEAR_DEVICE_CACHE_FALSE"}}));
    EXPECT_EQ(0U, identifyTwice());
    EXPECT_TRUE(set(controller, {{"ATTR_NAME_CLEAR_DEVICE_CACHE", "ATTR_VALUE_CLEAR_DEVICE_CACHE_TRUE"}}));
    EXPECT_EQ(1U, identifyTwice()) << "still on, but empty";
    EXPECT_TRUE(set(controller, {{"ATTR_NAME_DEVICE_CACHE", "ATTR_VALUE_DEVICE_CACHE_DISABLED"}}));
    EXPECT_EQ(2U, identifyTwice());
    EXPECT_EQ("ATTR_VALUE_DEVICE_CACHE_DISABLED ", current(controller));
    EXPECT_TRUE(set(controller, {{"ATTR_NAME_DEVICE_CACHE", "ATTR_VALUE_DEVICE_CACHE_ENABLED"}}));
    EXPECT_EQ(1U, identifyTwice());

    EXPECT_TRUE(set(root, {{"ATTR_NAME_COMMAND_CACHE", "ATTR_VALUE_COMMAND_CACHE_DISABLED"}}));
    EXPECT_EQ(2U, identifyTwice());
    EXPECT_FALSE(GetDefaultInheritanceFlag());
}

TEST_F(CacheSettings, LeavesControllersAloneWithTheDefaultOff) {
    start(oneController());
    EXPECT_TRUE(setAll("ATTR_VALUE_DEVICE_CACHE_DEFAULT_DISABLED"));
    discover();
    EXPECT_EQ(2U, identifyTwice());
    EXPECT_TRUE(GetCommandCacheState());
}

TEST_F(CacheSettings, RefusesWhatIsIncompleteAndChangesNothing) {
    discover(oneController());
    DevicePointer const controller = controllers().front();
    struct Row {
        DevicePointer device;
        Arguments arguments;
        char const* status;
        char const* argument;
    };
    Row const rows[] = {
        {root, {}, "ATTR_VALUE_STATUS_ARGUMENT_MISSING", "ATTR_NAME_COMMAND_CACHE"},
        {root,
         {{"ATTR_NAME_COMMAND_CACHE", "ATTR_VALUE_COMMAND_CACHE_ENABLED"}},
         "ATTR_VALUE_STATUS_ARGUMENT_MISSING",
         "ATTR_NAME_DEVICE_CACHE_DEFAULT"},
        {root,
         {{"ATTR_NAME_COMMAND_CACHE", "ATTR_VALUE_COMMAND_CACHE_ENABLED"},
          {"ATTR_NAME_DEVICE_CACHE_DEFAULT", "yes"}},
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_DEVICE_CACHE_DEFAULT"},
        {controller, {}, "ATTR_VALUE_STATUS_ARGUMENT_MISSING", "ATTR_NAME_DEVICE_CACHE"},
        {controller,
         {{"ATTR_NAME_DEVICE_CACHE", "ATTR_VALUE_DEVICE_CACHE_ENABLED"},
          {"ATTR_NAME_CLEAR_DEVICE_CACHE", "1"}},
         "ATTR_VALUE_STATUS_ARGUMENT_INVALID",
         "ATTR_NAME_CLEAR_DEVICE_CACHE"},
    };
    for (Row const& row : rows) {
        auto const result = set(row.device, row.arguments);
        EXPECT_EQ(row.status, status(result));
        EXPECT_EQ(row.argument, attribute(result, "ATTR_NAME_ARGUMENT_NAME"));
        EXPECT_FALSE(GetCommandCacheState());
        EXPECT_EQ("ATTR_VALUE_DEVICE_CACHE_DISABLED ", current(controller));
    }
    Operations::WriteCacheSettings const operation;
    EXPECT_TRUE(operation.pFilter()->apply(root));
    EXPECT_TRUE(operation.pFilter()->apply(controller));
    EXPECT_FALSE(operation.pFilter()->apply(DevicePointer(new Schema::Phy(0))));
}

}  // namespace
}  // namespace storage_test
