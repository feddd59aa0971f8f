#include <fstream>

#include "command/cache_state.h"
#include "sysmod/device_handle.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using ControllerDiscovery = StorageTest;
using Attributes = std::vector<std::pair<char const*, std::string>>;

void expectAttributes(Core::Device const& device, Attributes const& expected) {
    for (auto const& [name, value] : expected)
        EXPECT_EQ(value, attribute(device, name)) << name;
}

TEST_F(ControllerDiscovery, AControllerBringsEverythingThatItTells) {
    discover(oneController(
        {{"subsystem",
          {{"sCacheSerialNumber", "CACHE-9"},
           {"bInternalPortCount", 3},
           {"bExternalPortCount", 2},
           {"bControllerTemperature", 57}}},
         {"identify",
          {{"bHardwareRevision", 0x89},
           {"bCPURev", 0xAB},
           {"bCPLDRevision", 0xCD},
           {"wFirmwareBuildNumber", 0x1234},
           {"bExpandDisableCode", 7},
           {"bActiveROMStatus", 1},
           {"sOptionRomFWRev", "4.56"},
           {"wMaximumLogicalDevicesSupported", 99},
           {"wMaximumPhysicalDrivesPerLogicalUnit", 77}}},
         {"cache", {{"wTotalMemorySize", 9999}}},  // of the controller, not of its module
         {"cache_module",
          {{"wTotalMemorySize", 1000}, {"wNonBatteryBackedMemorySize", 300}, {"bPercentReadCache", 25}}},
         {"controller_parameters", {{"wQueueDepth", 0x89AB}}}}));
    ASSERT_EQ(1U, controllers().size());
    expectAttributes(only(),
                     {
                         {"ATTR_NAME_TYPE", "ATTR_VALUE_TYPE_ARRAY_CONTROLLER"},
                         {"ATTR_NAME_UNIQUE_ID", "AC:SLOT_1"},
                         {"ATTR_NAME_LOCATION", "ATTR_VALUE_LOCATION_LOCAL"},
                         {"ATTR_NAME_DRIVER_NAME", "vqsa"},
                         {"ATTR_NAME_BUS_TYPE", "ATTR_VALUE_BUS_TYPE_PCI"},
                         {"ATTR_NAME_PCI_DOMAIN", "0000"},
                         {"ATTR_NAME_PCI_BUS", "0B"},
                         {"ATTR_NAME_PCI_DEVICE", "00"},
                         {"ATTR_NAME_PCI_FUNCTION", "00"},
                         {"ATTR_NAME_SLOT", "1"},
                         {"ATTR_NAME_CABINET", "-1"},
                         {"ATTR_NAME_CELL", "-1"},
                         {"ATTR_NAME_IO_CABINET", "-1"},
                         {"ATTR_NAME_IO_BAY", "-1"},
                         {"ATTR_NAME_IO_CHASSIS", "-1"},
                         {"ATTR_NAME_SUBSYSTEM_ID", "509358932"},
                         {"ATTR_NAME_SUBSYSTEM_ID_HEX", "1E5C3354"},
                         {"ATTR_NAME_DEVICE_ID", "509358649"},
                         {"ATTR_NAME_DEVICE_ID_HEX", "1E5C3239"},
                         {"ATTR_NAME_CONTROLLER_NAME", "ATTR_VALUE_CONTROLLER_NAME_DOGWOOD4"},
                         {"ATTR_NAME_FIRMWARE_VERSION", "6.40"},
                         {"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_OK"},
                         {"ATTR_NAME_CONTROLLER_STATE", ABSENT},
                         {"ATTR_NAME_MARKETING_NAME", "VQ Vaultline TR56 Controller"},
                         {"ATTR_NAME_CONTROLLER_MODE", "ATTR_VALUE_CONTROLLER_MODE_VAULTLINE"},
                         {"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", "SERIAL-one"},
                         {"ATTR_NAME_CONTROLLER_CACHE_SERIAL_NUMBER", "CACHE-9"},
                         {"ATTR_NAME_PORTS_INTERNAL", "3"},
                         {"ATTR_NAME_PORTS_EXTERNAL", "2"},
                         {"ATTR_NAME_PORTS", "5"},
                         {"ATTR_NAME_CONTROLLER_TEMPERATURE", "57"},
                         {"ATTR_NAME_HARDWARE_REVISION", "137"},
                         {"ATTR_NAME_CPU_REVISION", "171"},
                         {"ATTR_NAME_CPLD_REVISION", "205"},
                         {"ATTR_NAME_FIRMWARE_BUILD", "4660"},
                         {"ATTR_NAME_INACTIVE_FIRMWARE_REVISION", "6.28"},
                         {"ATTR_NAME_OPTION_ROM_VERSION", "4.56"},
                         {"ATTR_NAME_MAX_LOGICAL_VOLUMES", "99"},
                         {"ATTR_NAME_MAX_DRIVES_PER_ARRAY", "77"},
                         {"ATTR_NAME_VENDOR_ID", "VQ"},
                         {"ATTR_NAME_PRODUCT_ID", "PRODUCT one"},
                         {"ATTR_NAME_RECOVERY_ROM_SUPPORTED", "ATTR_VALUE_RECOVERY_ROM_SUPPORTED_TRUE"},
                         {"ATTR_NAME_CONTROLLER_DISABLED_CONFIG_STATUS",
                          "ATTR_VALUE_CONTROLLER_DISABLED_CONFIG_STATUS_REDUNDANCY_FAILED"},
                         {"ATTR_NAME_FIRMWARE_COMPILE_STAMP", "Jan 15 2024 10:30:00"},
                         {"ATTR_NAME_PCIE_GEN", "3"},
                         {"ATTR_NAME_PCIE_WIDTH", "8"},
                         {"ATTR_NAME_CACHE_SIZE_TOTAL", "1000"},
                         {"ATTR_NAME_CACHE_SIZE_TOTAL_NON_BBBWC", "300"},
                         {"ATTR_NAME_CACHE_SIZE_TOTAL_BBBWC", "700"},
                         {"ATTR_NAME_CACHE_RATIO_READ_PERCENT", "25"},
                         {"ATTR_NAME_QUEUE_DEPTH", "35243"},
                         {"ATTR_NAME_PHYSICAL_DRIVE_COUNT", "0"},
                     });
    EXPECT_EQ(0U, sent("27")) << "discovery writes nothing";
}

/// A controller of each family. What is told of it hangs on family and name.
TEST_F(ControllerDiscovery, FamiliesDiffer) {
    struct Row {
        char const* subsystemDevice;
        char const* name;
        char const* family;
        char const* adapterType;
        char const* marketingName;
        char const* slot;
        char const* temperature;
        char const* plainFirmware;  ///< ATTR_NAME_CEDAR_HBA_FIRMWARE_REV
        bool readsMonitoring;
    };
    static Row const rows[] = {
        {"0x3303", "ALDER8", "ALDER", "VAULT_LINE", "VQ Vaultline TR14i Embedded Controller", "0b", ABSENT,
         ABSENT, true},
        {"0x3423", "ELM2E", "ELM", "VAULT_LINE", "VQ Vaultline TR33 Controller", "1", ABSENT, ABSENT, true},
        {"0x3354", "DOGWOOD4", "DOGWOOD", "VAULT_LINE", "VQ Vaultline TR56 Controller", "1", "57", ABSENT,
         true},
        {"0x345C", "MAPLE8I", "DOGWOOD", "VAULT_LINE", "VQ Vaultline TR72i Embedded Controller", "1", "57",
         ABSENT, true},
        {"0x3376", "CEDAR16I", "CEDAR", "VAULT_LINE", "VQ Vaultline LD63i Embedded Controller", "1", "57",
         "9.87", true},
        {"0x3397", "BIRCH8", "BIRCH", "VAULT_LINE", "VQ Vaultline TR80 Controller", "1", ABSENT, ABSENT,
         true},
        {"0x3391", "BIRCH_H4", "BIRCH", "VAULT_HBA", "VQ Vaultline HB04 Host Bus Adapter", "1", ABSENT,
         ABSENT, true},
        {"0x3392", "BIRCH_H4I", "BIRCH", "VAULT_HBA", "VQ Vaultline HB04i Host Bus Adapter", "1", ABSENT,
         ABSENT, true},
        {"0x3393", "BIRCH_H8", "BIRCH", "VAULT_HBA", "VQ Vaultline HB08 Host Bus Adapter", "1", ABSENT,
         ABSENT, true},
        {"0x3394", "BIRCH_H8I", "BIRCH", "VAULT_HBA", "VQ Vaultline HB08i Host Bus Adapter", "1", ABSENT,
         ABSENT, true},
        {"0x3395", "BIRCH_H16", "BIRCH", "VAULT_HBA", "VQ Vaultline HB16 Host Bus Adapter", "1", ABSENT,
         ABSENT, true},
        {"0x3396", "BIRCH_H16I", "BIRCH", "VAULT_HBA", "VQ Vaultline HB16i Host Bus Adapter", "1", ABSENT,
         ABSENT, true},
        {"0x33B1", "QBX_FIR4", "QBX_FIR", "VAULT_LINE", "VQ QBX QF41 Storage Blade Controller", "1", ABSENT,
         ABSENT, false},
        {"0x33C3", "KITEWING_SAS", "QBX_HARRIER", "VAULT_LINE", "VQ ZenoS8c Shared Storage Controller", "1",
         ABSENT, ABSENT, true},
        {"0x7777", "GENERIC", "UNKNOWN", "GENERIC_ARRAY_CONTROLLER", "Array Controller", "1", ABSENT, ABSENT,
         true},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        discover(oneController(
            {{"subsystem", {{"bControllerTemperature", 57}, {"sHBAFirmwareRev", {{"hex", "39 2E 38 37"}}}}}},
            row.subsystemDevice));
        ASSERT_EQ(1U, controllers().size());
        expectAttributes(
            only(), {{"ATTR_NAME_CONTROLLER_NAME", std::string("ATTR_VALUE_CONTROLLER_NAME_") + row.name},
                     {"ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY",
                      std::string("ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_") + row.family},
                     {"ATTR_NAME_ADAPTER_TYPE", std::string("ATTR_VALUE_ADAPTER_TYPE_") + row.adapterType},
                     {"ATTR_NAME_MARKETING_NAME", row.marketingName},
                     {"ATTR_NAME_SLOT", row.slot},
                     {"ATTR_NAME_CONTROLLER_TEMPERATURE", row.temperature},
                     {"ATTR_NAME_CEDAR_HBA_FIRMWARE_REV", row.plainFirmware}});
        EXPECT_EQ(row.readsMonitoring, sent("26000000000072020000") == 1);
    }
}

TEST_F(ControllerDiscovery, FirmwareVersions) {
    struct Row {
        char const* subsystemDevice;
        char const* running;
        char const* version;
    };
    static Row const rows[] = {
        // Four digits of the blade family are rewritten, everything else stays as it is.
        {"0x33B1", "0123", "1.23"}, {"0x33B2", "1234", "12.34"}, {"0x33B1", "0003", "0.03"},
        {"0x33B1", "0000", "0.00"}, {"0x33B1", "2.04", "2..04"}, {"0x3354", "0123", "0123"},
        {"0x3354", "1234", "1234"}, {"0x33C1", "0123", "0123"},  {"0x33B1", "123", "123"},
        {"0x3354", "6.4", "6.4 "},
    };
    for (Row const& row : rows) {
        discover(oneController({{"firmware", row.running}}, row.subsystemDevice));
        EXPECT_EQ(Strings{row.version}, controllers("ATTR_NAME_FIRMWARE_VERSION")) << row.running;
    }
}

/// Numbers come first and by value, equal ones in the order of the bus, and what has none last.
TEST_F(ControllerDiscovery, SlotsDecideTheOrder) {
    auto const in = [](char const* slot) { return json{{"pci", {{"slot", slot}}}}; };
    discover(
        {{"devices",
          {controller("a", "0000:01:00.0", "0x3354"), controller("b", "0000:02:00.0", "0x3354", in("10")),
           controller("c", "0000:03:00.0", "0x3354", in("2")),
           controller("d", "0000:04:00.0", "0x3354", in("Riser")),
           controller("e", "0000:06:00.1", "0x3354", in("3")), controller("f", "0000:06:00.0", "0x3354")}}});
    EXPECT_EQ((Strings{"SERIAL-c", "SERIAL-f", "SERIAL-e", "SERIAL-b", "SERIAL-a", "SERIAL-d"}),
              controllers("ATTR_NAME_CONTROLLER_SERIAL_NUMBER"));
    EXPECT_EQ((Strings{"2", "3", "3", "10", ABSENT, "Riser"}), controllers("ATTR_NAME_SLOT"));
}

/// Two functions of one board share its slot; each must have its own place in the tree.
TEST_F(ControllerDiscovery, ControllersOfOneSlotKeepIdentitiesOfTheirOwn) {
    json const slot = {{"pci", {{"slot", "4"}}}};
    discover(
        {{"devices",
          {controller("a", "0000:06:00.0", "0x3354", slot), controller("b", "0000:06:00.1", "0x3355", slot),
           controller("c", "0000:06:00.2", "0x3351", slot)}}});
    Strings const expected = {"AC:SLOT_4", "AC:DBDF_0000_06_00_01", "AC:DBDF_0000_06_00_02"};
    EXPECT_EQ(expected, controllers("ATTR_NAME_UNIQUE_ID"));
    EXPECT_EQ((Strings{"4", "4", "4"}), controllers("ATTR_NAME_SLOT"));
    auto const first = controllers();
    discover();
    auto const again = controllers();
    ASSERT_EQ(3U, again.size());
    for (std::size_t i = 0; i < again.size(); ++i)
        EXPECT_EQ(first[i].get(), again[i].get()) << "the device stays across discoveries";
    // The others are who they were when one of them is silent.
    addFault(R"({"match": {"device": "a"}, "action": {"errno": "EIO"}})");
    discover();
    EXPECT_EQ((Strings{"AC:DBDF_0000_06_00_01", "AC:DBDF_0000_06_00_02"}),
              controllers("ATTR_NAME_UNIQUE_ID"));
    EXPECT_EQ((Strings{"SERIAL-b", "SERIAL-c"}), controllers("ATTR_NAME_CONTROLLER_SERIAL_NUMBER"));
}

TEST_F(ControllerDiscovery, ASlotThatTheBusDoesNotTellComesFromTheController) {
    struct Row {
        int slot;
        char const* expected;
    };
    for (Row const& row : {Row{7, "7"}, Row{254, "254"}, Row{0, ABSENT}, Row{255, ABSENT}}) {
        discover({{"devices",
                   {controller("a", "0001:3c:1f.7", "0x3354", {{"identify", {{"bPCISlot", row.slot}}}})}}});
        EXPECT_EQ(Strings{row.expected}, controllers("ATTR_NAME_SLOT"));
        EXPECT_EQ(Strings{"AC:DBDF_0001_3C_1F_07"}, controllers("ATTR_NAME_UNIQUE_ID"));
    }
}

/// The driver says in the device's directory whether it has a path past the controller, and whether it uses
/// it.
TEST_F(ControllerDiscovery, DriverFeatureText) {
    struct Row {
        char const* text;  ///< of the file; null for no file
        char const* supports;
        char const* enables;
    };
    static Row const rows[] = {
        {"enabled\n", "TRUE", "TRUE"},
        {"disabled\n", "TRUE", "FALSE"},
        {"enabled no more\n", "TRUE", "FALSE"},
        {"", "TRUE", "FALSE"},
        {nullptr, "FALSE", "FALSE"},
    };
    struct Driver {
        char const* name;
        char const* deviceDirectory;
    };
    static Driver const drivers[] = {{"vqsa", "host0/target0:0:0/0:0:0:0"}, {"xqrth", "disk0/xqrth0/c0d0"}};
    for (Row const& row : rows) {
        for (Driver const& driver : drivers) {
            start(oneController({{"pci", {{"driver", driver.name}}}}));
            if (row.text != nullptr) {
                std::ofstream(machine->root() / "sys/devices/pci0000:0b/0000:0b:00.0" /
                              driver.deviceDirectory / "vq_ssd_smart_path_status")
                    << row.text;
            }
            discover();
            expectAttributes(only(), {{"ATTR_NAME_DRIVER_SUPPORTS_TARN",
                                       std::string("ATTR_VALUE_DRIVER_SUPPORTS_TARN_") + row.supports},
                                      {"ATTR_NAME_DRIVER_ENABLES_TARN",
                                       std::string("ATTR_VALUE_DRIVER_ENABLES_TARN_") + row.enables}});
        }
    }
}

TEST_F(ControllerDiscovery, AVanishedControllerLeavesTheTreeAndANewOneJoins) {
    start({{"devices",
            {controller("a", "0000:01:00.0", "0x3354"), controller("b", "0000:02:00.0", "0x3355")}}});
    discover();
    ASSERT_EQ(2U, controllers().size());
    addFault(R"({"match": {"device": "a"}, "action": {"vanish": true}})");
    discover();
    EXPECT_EQ(Strings{"SERIAL-b"}, controllers("ATTR_NAME_CONTROLLER_SERIAL_NUMBER"));
    machine->powerCycle();
    restart();
    discover();
    EXPECT_EQ(2U, controllers().size());
}

/// Handles that adapter discovery of this machine never gives, put into the adapter list's cache.
class HandleDiscovery : public StorageTest {
  protected:
    HandleDiscovery() {
        start(oneController());
        SetCommandCacheState(true);
    }
    ~HandleDiscovery() override {
        SetCommandCacheState(false);
        ClearModRootCache();
        SetDiscoveryRescanOption(true);
    }

    void discoverHandle(char const* adapterStatus, char const* slot, char const* location) {
        using namespace Core::SysMod;
        PropertyTable table;
        table[PciIdentity] = "1E5C3239";
        table[SubsystemIdentity] = "1E5C3354";
        table[UniqueKey] = "KEY";
        table[NodePath] = "/dev/sg0";
        table[AdapterSlot] = slot;
        table[AdapterStatus] = adapterStatus;
        table[PciLocation] = location;
        table[FastPath] = "NO";
        table[Route] = "QRTH:0000000000000000";
        table[DeviceType] = "ARRAY_CONTROLLER";
        AdapterListCache& lists = adapterListCache();
        lists.controllers.clear();
        lists.controllers.push_back(toDeviceInfo(table));
        lists.valid = true;
        discover();
    }
};

TEST_F(HandleDiscovery, OnlyAnAdapterThatIsOkBecomesAController) {
    for (char const* adapterStatus : {"FAILED", "POWEROFF", "OFFLINE", "UNKNOWN", "ok", "OK ", ""}) {
        discoverHandle(adapterStatus, "S:1", "0000:0b:00.0");
        EXPECT_EQ(0U, controllers().size()) << adapterStatus;
    }
    discoverHandle("OK", "S:1", "0000:0b:00.0");
    EXPECT_EQ(1U, controllers().size());
}

TEST_F(HandleDiscovery, LocationKeys) {
    struct Row {
        char const* slot;
        char const* location;
        char const* key;
    };
    static Row const rows[] = {
        {"S:12", "0000:0b:00.0", "AC:SLOT_12"},
        {"UNKNOWN", "0000:0b:00.0", "AC:DBDF_0000_0B_00_00"},
        {"NA", "abcd:0b:1f.7", "AC:DBDF_ABCD_0B_1F_07"},
        {"S:", "0000:0b:00.0", "AC:DBDF_0000_0B_00_00"},
        {"", "0000:0b:00.0", "AC:DBDF_0000_0B_00_00"},
        {"12", "0000:0b:00.0", "AC:DBDF_0000_0B_00_00"},
        // CRC-32 (IEEE 802.3) of the whole handle, when nothing else is known.
        {"UNKNOWN", "", "AC:3358567416"},
        {"UNKNOWN", "FFFF:0b:00.0", "AC:4090941548"},
        {"UNKNOWN", "0000:ff:00.0", "AC:3402510602"},
        {"UNKNOWN", "no place at all", "AC:1273886829"},
    };
    for (Row const& row : rows) {
        discoverHandle("OK", row.slot, row.location);
        EXPECT_EQ(Strings{row.key}, controllers("ATTR_NAME_UNIQUE_ID")) << row.slot << " " << row.location;
    }
}

}  // namespace
}  // namespace storage_test
