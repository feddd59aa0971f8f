#include "storage/schema/adapters.h"
#include "command/cache_state.h"
#include "storage/operations/discover_controllers.h"
#include "sysmod/device_handle.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using Adapters = StorageTest;

constexpr char FAILED[] = "FAILED_ARRAY_CONTROLLER";
constexpr char PLAIN[] = "HBA";

/// The operation isn't among those that a run switches on, so it is performed as it stands.
std::string discoverFailed(Core::Device& root) {
    return status(root.perform(OperationPointer(new Operations::DiscoverFailedArrayController)));
}

TEST_F(Adapters, AControllerThatDoesNotAnswerIsAFailedOne) {
    json const slot = {{"pci", {{"slot", "4"}}}};
    start({{"devices",
            {controller("mute", "0000:06:00.0", "0x3354", slot), controller("gone", "0000:07:00.0", "0x3303"),
             controller("good", "0000:08:00.0", "0x3356")}}});
    addFault(R"({"match": {"device": "mute", "command": "0x12"}, "action": {"errno": "EIO"}})");
    addFault(R"({"match": {"device": "gone"}, "action": {"vanish": true}})");
    discover();
    EXPECT_EQ(Strings{"SERIAL-good"}, controllers("ATTR_NAME_CONTROLLER_SERIAL_NUMBER"));
    std::size_t const before = journalSize();
    ASSERT_EQ("ATTR_VALUE_STATUS_SUCCESS", discoverFailed(*root));
    auto const failed = below(*root, FAILED);
    ASSERT_EQ(2U, failed.size());
    struct Row {
        char const* name;
        char const* values[2];
    };
    static Row const rows[] = {
        {"ATTR_NAME_UNIQUE_ID", {"FAC:0000060000", "FAC:0000070000"}},
        {"ATTR_NAME_CONTROLLER_NAME",
         {"ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4", "ATTR_VALUE_CONTROLLER_NAME_ALDER8"}},
        {"ATTR_NAME_MARKETING_NAME",
         {"VQ Vaultline TR56 Controller", "VQ Vaultline TR14i Embedded Controller"}},
        {"ATTR_NAME_SLOT", {"4", "0b"}},
        {"ATTR_NAME_PCI_BUS", {"06", "07"}},
        {"ATTR_NAME_DRIVER_ENABLES_TARN",
         {"ATTR_VALUE_DRIVER_ENABLES_TARN_FALSE", "ATTR_VALUE_DRIVER_ENABLES_TARN_FALSE"}},
        {"ATTR_NAME_FIRMWARE_VERSION", {ABSENT, ABSENT}},
    };
    for (Row const& row : rows) {
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_EQ(row.values[i], attribute(*failed[i], row.name)) << row.name;
    }
    for (std::string const& line : exchanges(before))
        EXPECT_EQ("120000005f00 in 95", line) << "nothing is sent but the question who answers";
    EXPECT_EQ(0U, door->openNodes());

    EXPECT_FALSE(failed.front()->receive(DevicePointer(new Schema::FailedArrayController("child"))));
    EXPECT_EQ(failed.front()->beginChild(), failed.front()->endChild()) << "it can have no children";
    EXPECT_EQ("ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE", discoverFailed(*failed.front()));
    discover();
    EXPECT_EQ(0U, below(*root, FAILED).size()) << "no operation of the run confirms it";
}

/// What the bus shows of a function decides what becomes of it.
TEST_F(Adapters, FunctionsOfTheBus) {
    struct Row {
        char const* what;
        json device;
        std::size_t controllers;
        std::size_t failed;
        std::size_t plain;
    };
    auto const sysfs = [](json const& files) { return json{{"sysfs", files}}; };
    json const dangling = {{"dangling", true}};
    Row const rows[] = {
        {"as it should be", json::object(), 1, 0, 0},
        {"block driver", {{"pci", {{"driver", "xqrth"}}}}, 1, 0, 0},
        {"block driver of an older kernel", {{"pci", {{"driver", "xqrth"}}}, {"layout", "old"}}, 1, 0, 0},
        {"another generic driver", {{"pci", {{"driver", "vqahcisr"}}}}, 1, 0, 0},
        {"no node", {{"node_present", false}}, 0, 1, 0},
        {"the SCSI device isn't a controller", sysfs({{"type", "0"}}), 0, 0, 1},
        {"a type that begins alike", sysfs({{"type", "1"}}), 0, 0, 1},
        {"no type", sysfs({{"type", nullptr}}), 0, 0, 1},
        {"a type that leads nowhere", sysfs({{"type", dangling}}), 0, 0, 1},
        {"not mass storage", {{"pci", {{"class", 0x020000}}}}, 0, 0, 0},
        {"no class", sysfs({{"class", nullptr}}), 0, 0, 0},
        {"an empty class", sysfs({{"class", ""}}), 0, 0, 0},
        {"a vendor class", {{"pci", {{"class", 0xFF0000}}}}, 1, 0, 0},
        {"no vendor", sysfs({{"vendor", nullptr}}), 0, 0, 0},
        {"a short vendor", sysfs({{"vendor", "0x1E"}}), 0, 0, 0},
        {"a vendor that is no number", sysfs({{"vendor", "0xWXYZ"}}), 0, 0, 0},
        {"a vendor without its mark", sysfs({{"vendor", "1E5C001"}}), 0, 0, 0},
        {"a subsystem that leads nowhere", sysfs({{"subsystem_device", dangling}}), 0, 0, 0},
        {"no driver", sysfs({{"driver", nullptr}}), 0, 0, 0},
        {"a driver that isn't a link", sysfs({{"driver", "vqsa"}}), 0, 0, 0},
        {"a driver of another kind", sysfs({{"driver", dangling}}), 0, 0, 0},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        json scenario = oneController();
        // Not by merging: a file's null, which stands for no such file, would be lost.
        json& device = scenario["devices"][0];
        if (row.device.contains("sysfs")) {
            device["pci"]["sysfs"] = row.device["sysfs"];
        } else {
            device.merge_patch(row.device);
        }
        start(scenario);
        discover();
        EXPECT_EQ(row.controllers, controllers().size());
        EXPECT_EQ(row.plain, below(*root, PLAIN).size());
        discoverFailed(*root);
        EXPECT_EQ(row.failed, below(*root, FAILED).size());
    }
}

/// A function of a listed driver that shows no controller is a plain adapter, and nothing is sent to it.
TEST_F(Adapters, APlainAdapter) {
    discover({{"devices",
               {{{"name", "hba"},
                 {"kind", "pci_function"},
                 {"pci",
                  {{"address", "0000:2a:1e.3"},
                   {"vendor", "0x1E5C"},
                   {"device", "0x89AB"},
                   {"subsystem_device", "0xCDEF"},
                   {"driver", "vqsa"},
                   {"slot", "6"}}}}}}});
    auto const adapters = below(*root, PLAIN);
    ASSERT_EQ(1U, adapters.size());
    std::pair<char const*, char const*> const expected[] = {
        {"ATTR_NAME_ADAPTER_TYPE", "ATTR_VALUE_ADAPTER_TYPE_GENERIC_HBA"},
        {"ATTR_NAME_UNIQUE_ID", "HBA:00002A1E03"},
        {"ATTR_NAME_SUBSYSTEM_ID", "509398511"},
        {"ATTR_NAME_SUBSYSTEM_ID_HEX", "1E5CCDEF"},
        {"ATTR_NAME_DEVICE_ID", "509381035"},
        {"ATTR_NAME_DEVICE_ID_HEX", "1E5C89AB"},
        {"ATTR_NAME_PCI_DOMAIN", "0000"},
        {"ATTR_NAME_PCI_BUS", "2A"},
        {"ATTR_NAME_PCI_DEVICE", "1E"},
        {"ATTR_NAME_PCI_FUNCTION", "03"},
        {"ATTR_NAME_STATUS", ABSENT},
        {"ATTR_NAME_MARKETING_NAME", ABSENT},
    };
    for (auto const& [name, value] : expected)
        EXPECT_EQ(value, attribute(*adapters.front(), name)) << name;
    EXPECT_EQ(Strings{}, exchanges());
}

/// What the adapter tells in its configuration comes with its handle.
TEST_F(Adapters, ACsmiAdapter) {
    using namespace Core::SysMod;
    start({{"devices", json::array()}});
    PropertyTable table;
    table[DeviceType] = "CSMI_HBA";
    table[SubsystemIdentity] = "1E5C89AB";
    table[UniqueKey] = "KEY";
    table[AdapterSlot] = "UNKNOWN";
    table[FirmwareVersion] = "5.06";
    table[RomVersion] = "7.08";
    table[14] = "SN-4711";
    SetCommandCacheState(true);
    AdapterListCache& lists = adapterListCache();
    lists.csmiAdapters.clear();
    lists.csmiAdapters.push_back(toDeviceInfo(table));
    lists.valid = true;
    discover();
    SetCommandCacheState(false);
    ClearModRootCache();
    SetDiscoveryRescanOption(true);
    auto const adapters = below(*root, PLAIN);
    ASSERT_EQ(1U, adapters.size());
    std::pair<char const*, char const*> const expected[] = {
        {"ATTR_NAME_ADAPTER_TYPE", "ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA"},
        {"ATTR_NAME_SLOT", "ATTR_VALUE_SLOT_UNKNOWN"},
        {"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_OK"},
        {"ATTR_NAME_MARKETING_NAME", "Host Bus Adapter"},
        {"ATTR_NAME_FIRMWARE_VERSION", "5.06"},
        {"ATTR_NAME_OPTION_ROM_VERSION", "7.08"},
        {"ATTR_NAME_SERIAL_NUMBER", "SN-4711"},
        {"ATTR_NAME_PCI_DOMAIN", ABSENT},
    };
    for (auto const& [name, value] : expected)
        EXPECT_EQ(value, attribute(*adapters.front(), name)) << name;
}

TEST_F(Adapters, AnEmptyMachineIsAnEmptyTree) {
    start({{"devices", json::array()}});
    auto const results = discover();
    EXPECT_EQ(root->beginChild(), root->endChild());
    for (auto const& result : results)
        EXPECT_TRUE(result);
}

}  // namespace
}  // namespace storage_test
