#include "storage/controller_models.h"

#include <algorithm>
#include <map>
#include <set>

#include "core/capability_finder.h"
#include "storage/host_bus_adapter_models.h"
#include "storage/operations/discover_controllers.h"
#include "storage/operations/write_allowed_controller_discovery.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using Operations::WriteAllowedControllerDiscovery;

TEST(ControllerModels, TheTableKeepsItsPromises) {
    std::set<std::string> names;
    std::set<std::string> models;
    std::set<std::string> marketingNames;
    std::set<std::uint32_t> identifiers;
    std::map<std::string, unsigned> families;
    for (auto const& row : Interface::StorageMod::controllerModels()) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_TRUE(models.insert(row.model).second) << row.model;
        EXPECT_TRUE(marketingNames.insert(row.marketingName).second) << row.marketingName;
        EXPECT_NE(0U, row.identifiers[0]) << row.name;
        for (std::uint32_t const identifier : row.identifiers) {
            if (identifier == 0) continue;
            EXPECT_TRUE(identifiers.insert(identifier).second) << row.name << " " << identifier;
        }
        EXPECT_EQ(std::string("ATTR_VALUE_CONTROLLER_NAME_") + row.name, row.nameConstant);
        ++families[row.family];
    }
    EXPECT_EQ(53U, names.size());
    EXPECT_EQ(92U, identifiers.size());
    EXPECT_EQ((std::map<std::string, unsigned>{
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_ALDER", 5},
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_ELM", 11},
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD", 13},
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_CEDAR", 9},
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_BIRCH", 10},
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_FIR", 2},
                  {"ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_HARRIER", 3},
              }),
              families);
    // Names that code elsewhere treats in a way of their own.
    for (char const* name : {"ASPEN", "BEECH", "CYPRESS", "HAZEL", "KITEWING_SAS", "BIRCH_H4", "BIRCH_H4I",
                             "BIRCH_H8", "BIRCH_H8I", "BIRCH_H16", "BIRCH_H16I"})
        EXPECT_TRUE(names.count(name)) << name;
}

TEST(ControllerModels, LookUpsGoByDecimalIdentifier) {
    struct Row {
        char const* identifier;
        char const* name;
        char const* family;
    };
    static Row const rows[] = {
        {"509358932", "ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4", "ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD"},
        {"509359188", "ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4", "ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_DOGWOOD"},
        {"509359043", "ATTR_VALUE_CONTROLLER_NAME_KITEWING_SAS",
         "ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_HARRIER"},
        {"1E5C3354", "", ""},
        {"0509358932", "", ""},
        {"0", "", ""},
        {"", "", ""},
        {"4294967295", "", ""},
    };
    for (Row const& row : rows) {
        Common::string const name = WriteAllowedControllerDiscovery::controllerIDTostring(row.identifier);
        EXPECT_EQ(row.name, str(name)) << row.identifier;
        EXPECT_EQ(row.family, str(WriteAllowedControllerDiscovery::controllerNameToFamilyString(name)));
    }
}

TEST(HostBusAdapterModels, KeysAreUnique) {
    std::set<std::uint32_t> identifiers;
    std::set<std::string> names;
    for (auto const& row : Interface::StorageMod::hostBusAdapterModels()) {
        EXPECT_TRUE(identifiers.insert(row.identifier).second) << row.nameConstant;
        EXPECT_TRUE(names.insert(row.nameConstant).second) << row.nameConstant;
        EXPECT_EQ(0U, std::string(row.nameConstant).find("ATTR_VALUE_HBA_NAME_"));
    }
}

class AllowedControllers : public StorageTest {
  protected:
    ~AllowedControllers() override { allow("ATTR_VALUE_MASK_TYPE_DISABLED", {}); }

    void allow(char const* maskType, Strings const& names) {
        OperationPointer const operation(new WriteAllowedControllerDiscovery);
        if (maskType != nullptr)
            operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_MASK_TYPE", maskType);
        for (std::string const& name : names) {
            operation->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_CONTROLLER_NAME",
                                   Common::string(name.c_str()));
        }
        if (!root) start({{"devices", json::array()}});
        EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", status(root->perform(operation)));
    }
};

TEST_F(AllowedControllers, TheMaskDecidesWhatIsDiscovered) {
    static constexpr char ENABLED[] = "ATTR_VALUE_MASK_TYPE_ENABLED";
    static constexpr char DISABLED[] = "ATTR_VALUE_MASK_TYPE_DISABLED";
    static constexpr char FOUR[] = "ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4";
    static constexpr char SIXTEEN[] = "ATTR_VALUE_CONTROLLER_NAME_DOGWOOD16";
    static constexpr char UNKNOWN[] = "ATTR_VALUE_CONTROLLER_NAME_GENERIC";
    struct Row {
        char const* maskType;
        Strings names;
        Strings serials;
    };
    static Row const rows[] = {
        {DISABLED, {}, {"SERIAL-a", "SERIAL-b", "SERIAL-c"}},
        {DISABLED, {FOUR}, {"SERIAL-b", "SERIAL-c"}},
        {DISABLED, {FOUR, SIXTEEN, UNKNOWN}, {}},
        {ENABLED, {}, {}},
        {ENABLED, {SIXTEEN}, {"SERIAL-b"}},
        {ENABLED, {FOUR, UNKNOWN}, {"SERIAL-a", "SERIAL-c"}},
        {ENABLED, {"DOGWOOD16"}, {}},
        {"ATTR_VALUE_MASK_TYPE_SOMETHING", {FOUR}, {}},
        {"", {}, {}},
        {nullptr, {FOUR}, {}},
    };
    start({{"devices",
            {controller("a", "0000:01:00.0", "0x3354"), controller("b", "0000:02:00.0", "0x3355"),
             controller("c", "0000:03:00.0", "0x7777")}}});
    discover();
    EXPECT_EQ(3U, controllers().size()) << "all, before anything is said";
    for (Row const& row : rows) {
        allow(row.maskType, row.names);
        discover();
        EXPECT_EQ(row.serials, controllers("ATTR_NAME_CONTROLLER_SERIAL_NUMBER"))
            << (row.maskType == nullptr ? "no mask type" : row.maskType);
    }
}

TEST_F(AllowedControllers, TheMaskHoldsForFailedControllersToo) {
    start({{"devices",
            {controller("a", "0000:01:00.0", "0x3354", {{"node_present", false}}),
             controller("b", "0000:02:00.0", "0x3355", {{"node_present", false}})}}});
    allow("ATTR_VALUE_MASK_TYPE_DISABLED", {"ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4"});
    root->perform(OperationPointer(new Operations::DiscoverFailedArrayController));
    auto const failed = below(*root, "FAILED_ARRAY_CONTROLLER");
    ASSERT_EQ(1U, failed.size());
    EXPECT_EQ("ATTR_VALUE_CONTROLLER_NAME_DOGWOOD16",
              attribute(*failed.front(), "ATTR_NAME_CONTROLLER_NAME"));
}

TEST_F(AllowedControllers, TheCapabilityOffersMaskTypeAndNames) {
    start({{"devices", json::array()}});
    discover();
    OperationPointer const operation = root->getOperation("OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY");
    ASSERT_TRUE(operation);
    auto const capability = operation->getCapabilityPtr(root);
    struct Row {
        char const* name;
        char const* cardinality;
        unsigned instances;
    };
    static Row const rows[] = {
        {"ATTR_NAME_MASK_TYPE", "ATTR_VALUE_CARDINALITY_SINGLE", 2},
        {"ATTR_NAME_CONTROLLER_NAME", "ATTR_VALUE_CARDINALITY_MULTIPLE", 0},
    };
    for (Row const& row : rows) {
        Core::CapabilityFinder finder(capability);
        finder.Add(Common::pair<Common::string, Core::AttributeValue>("ATTR_NAME_ATTRIBUTE_NAME", row.name));
        auto const found = finder.find();
        ASSERT_TRUE(found) << row.name;
        EXPECT_EQ(row.cardinality, attribute(*found, "ATTR_NAME_CARDINALITY"));
        unsigned instances = 0;
        for (auto child = found->beginChild(); child != found->endChild(); ++child)
            ++instances;
        EXPECT_EQ(row.instances, instances) << row.name;
    }
}

}  // namespace
}  // namespace storage_test
