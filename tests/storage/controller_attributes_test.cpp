#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/identity.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using ControllerAttributes = StorageTest;

/// What a scenario sets, and what becomes of it. Names go without "ATTR_NAME_", values without
/// "ATTR_VALUE_" and the attribute's name.
struct Told {
    char const* record;
    char const* member;
    json value;
    std::vector<std::pair<char const*, char const*>> attributes;
};

std::string shortValue(Core::Device const& device, std::string const& name) {
    std::string const value = attribute(device, ("ATTR_NAME_" + name).c_str());
    std::string const prefix = "ATTR_VALUE_" + name + "_";
    return value.starts_with(prefix) ? value.substr(prefix.size()) : value;
}

json scenarioOf(std::vector<Told> const& rows, char const* subsystemDevice) {
    json device = json::object();
    for (Told const& row : rows)
        device[row.record][row.member] = row.value;
    return oneController(device, subsystemDevice);
}

void expectTold(Core::Device const& device, std::vector<Told> const& rows) {
    for (Told const& row : rows) {
        for (auto const& [name, value] : row.attributes)
            EXPECT_EQ(value, shortValue(device, name)) << name << " of " << row.record << "." << row.member;
    }
}

TEST_F(ControllerAttributes, FollowTheMembersOfTheRecords) {
    std::vector<Told> const rows = {
        {"identify",
         "bControllerFlags",
         0x0A,
         {{"DIAGNOSTIC_MODE_ENABLED", "FALSE"},
          {"CONTROLLER_HAS_UNSUPPORTED_SAS_DRIVES", "TRUE"},
          {"CONTROLLER_HAS_R5_WITHOUT_CACHE", "FALSE"},
          {"MINIMUM_MEMORY_RAID", "TRUE"}}},
        {"identify",
         "bHostFlags",
         0x05,
         {{"SUPPORTS_DISABLE_OTHER_CONTROLLER", "TRUE"},
          {"BOOT_VOLUME_SUPPORTED", "FALSE"},
          {"QBX_SUPPORT", "TRUE"}}},
        {"identify", "bADGSupport", 2, {{"IS_ADG_SUPPORTED", "FALSE"}, {"ADG_ENABLER_STATUS", "PRESENT"}}},
        {"identify",
         "bMoreControllerFlags",
         0x12,
         {{"HOTPLUG_SUPPORTED", "FALSE"},
          {"GASGAUGE_SUPPORTED", "TRUE"},
          {"CACHE_OPERATIONS_SUPPORTED", "TRUE"}}},
        {"identify",
         "dwYetMoreControllerFlags",
         0x99420801,
         {{"DRIVE_ERASE_SUPPORTED", "TRUE"},
          {"DRIVE_ERASE_ENABLED", "FALSE"},
          {"RAID_50_SUPPORTED", "FALSE"},
          {"RAID_50_ENABLED", "TRUE"},
          {"SAAP2_ENABLED", "TRUE"},
          {"ONLINE_SPLIT_MIRROR_SUPPORTED", "TRUE"},
          {"ONLINE_SPLIT_MIRROR_ENABLED", "FALSE"},
          {"NCQ_SUPPORTED", "TRUE"},
          {"PARITY_RAID_SUPPORTED", "FALSE"},
          {"GREATER_THAN_2TIB_PHYSICAL_DRIVES_SUPPORTED", "TRUE"},
          {"ROAMING_SPARES_SUPPORTED", "TRUE"},
          {"LOGICAL_DRIVE_ERASE_SUPPORTED", "FALSE"},
          {"FIRMWARE_SUPPORTS_REORDER_COMMAND", "TRUE"}}},
        {"identify",
         "dwEvenMoreControllerFlags",
         0x04A14002,
         {{"NWAY_MIRRORING_SUPPORTED", "FALSE"},
          {"NWAY_MIRRORING_ENABLED", "TRUE"},
          {"CONTROLLER_ZMR_MODE", "FALSE"},
          {"SSD_CACHING_SUPPORTED", "TRUE"},
          {"SSD_CACHING_ENABLED", "FALSE"},
          {"SSD_CACHING_RAID1_RAID10_ENABLED", "TRUE"},
          {"SSD_CACHING_RAID5_RAID50_ENABLED", "FALSE"},
          {"FIRMWARE_ENABLES_TANZANITE_HOTPLUG", "TRUE"},
          {"FIRMWARE_CAN_WAIT_FOR_CACHE_ROOM", "TRUE"},
          {"FIRMWARE_SUPPORTS_RAID1_WRITE_BUFFERING", "FALSE"},
          {"FIRMWARE_SUPPORTS_CONFIGURING_RAID1_WRITE_BUFFERING", "TRUE"}}},
        {"identify",
         "dwExtraControllerFlags",
         0xFF0C,
         {{"VAULT_HBA_MODE_SUPPORTED", "TRUE"},
          {"HBA_MODE", "ENABLED"},
          {"HBA_MODE_ENABLED", "FALSE"},
          {"POWER_MODE_SUPPORTED", "FALSE"},
          {"CEDAR_BASE_SUPPORT", ABSENT}}},
        {"identify", "bControllerMode", 2, {{"MIXED_MODE_ENABLED", "TRUE"}}},
        {"identify", "sDDFFVersion", "2", {{"DDFF_VERSION", "SAS_AND_SATA"}}},
        {"identify", "bDrivesPerBus", 0xC3, {{"DRIVES_PER_PORT", "195"}}},
        {"identify", "wTotalAvailableMemorySize", 0x89AB, {{"CONTROLLER_MEMORY_SIZE", "35243"}}},
        {"identify",
         "dwMaximumSafeFullStripeSizeMB",
         0x89ABCDEF,
         {{"MAX_SAFE_FULL_STRIPE_SIZE", "2309737967"}}},
        {"identify", "bMaximumDevicePaths", 1, {{"MULTI_PATH_SUPPORTED", "FALSE"}}},
        {"identify", "wYetMoreSwappedCableFlags", 0x100, {{"HAS_SWAPPED_CABLE_FLAGS", "TRUE"}}},
        {"identify", "bExpandDisableCode", 99, {{"CONTROLLER_DISABLED_CONFIG_STATUS", "UNKNOWN"}}},
        {"subsystem", "wCacheModuleXferRate", 0x4EA, {{"CACHE_MODULE_MEMORY_TRANSFER_RATE", "1600"}}},
        {"subsystem", "wCacheModuleDataWidth", 0x1234, {{"CACHE_MODULE_MEMORY_DATA_WIDTH", "4660"}}},
        {"subsystem", "bCacheModuleTemperature", 91, {{"CACHE_MODULE_TEMPERATURE", "91"}}},
        {"subsystem", "bSupercapTemperature", 92, {{"SUPERCAP_TEMPERATURE", ABSENT}}},
        {"subsystem", "bExternalPortCount", 3, {{"MANAGED_CABLE_PORT3_CABLE_CONNECTED", ABSENT}}},
        {"subsystem",
         "managedCableInfo",
         json::parse(R"([{"dwCableState": 5, "wCableLength": 3000, "bVendorPartNumber": "51 57 2D 37",
                          "bVendorSerialNumber": "53 4E 39 20"},
                         {"dwCableState": 26, "wCableLength": 7}])"),
         {{"MANAGED_CABLE_PORT0_CABLE_CONNECTED", "TRUE"},
          {"MANAGED_CABLE_PORT0_NON_VQ_CABLE_CONNECTED", "FALSE"},
          {"MANAGED_CABLE_PORT0_CABLE_HAS_LINK_FAULTS", "TRUE"},
          {"MANAGED_CABLE_PORT0_LENGTH", "3000"},
          {"MANAGED_CABLE_PORT0_PARTNO", "QW-7"},
          {"MANAGED_CABLE_PORT0_SERIALNO", "SN9"},
          {"MANAGED_CABLE_PORT1_CABLE_CONNECTED", "FALSE"},
          {"MANAGED_CABLE_PORT1_NON_VQ_CABLE_CONNECTED", "TRUE"},
          {"MANAGED_CABLE_PORT1_FW_COMMUNICATION_ERROR", "TRUE"},
          {"MANAGED_CABLE_PORT1_FW_DISABLED", "TRUE"},
          {"MANAGED_CABLE_PORT1_LENGTH", ABSENT},
          {"MANAGED_CABLE_PORT2_FW_DISABLED", "FALSE"}}},
        {"redundant_parameters", "bCurrentControllerMode", 1, {{"REDUNDANCY_MODE", "ACTIVE_STANDBY"}}},
        {"redundant_parameters",
         "bSupportedControllerModes",
         6,
         {{"REDUNDANCY_MODES_SUPPORTED",
           "ATTR_VALUE_REDUNDANCY_MODE_ACTIVE_STANDBY*-*ATTR_VALUE_REDUNDANCY_MODE_ACTIVE_ACTIVE"}}},
        {"redundant_parameters",
         "bControllerStatus",
         1,
         {{"REDUNDANCY_STATUS", "OK"}, {"REDUNDANT_STATE", "TRUE"}}},
        {"cache_module",
         "bDisableFlag",
         2,
         {{"CACHE_STATUS", "PERMANENTLY_DISABLED"}, {"CACHE_DISABLED", "TRUE"}}},
        {"cache_module", "bMemoryState", 3, {{"CACHE_STATE", "FAILED"}}},
        {"cache_module", "bBoardPresent", 1, {{"CACHE_BOARD_PRESENT", "TRUE"}}},
        {"cache_module", "wBatteryCount", 3, {{"BATTERY_PACK_COUNT", "3"}}},
        {"cache_module", "wBatteryStatus", 1, {{"BATTERY_STATUS", "CHARGING"}}},
        {"cache_module", "wFailedBatteries", 0x8005, {{"BATTERY_FAILED_LIST", "1*-*3*-*16"}}},
        {"cache_module", "bMemorySizeShiftFactor", 4, {{"CACHE_SIZE_SHIFT_FACTOR", "4"}}},
        {"cache_module", "bPercentReadCache", 10, {{"CACHE_RATIO_READ_PERCENT", "10"}}},
        {"cache_module", "bPercentWriteCache", 90, {{"CACHE_RATIO", "10/90"}}},
        {"cache_module", "bDefaultPercentWriteCache", 75, {{"DEFAULT_CACHE_RATIO", "0/75"}}},
        {"cache_module", "bNVRAMLoadStatus", 1, {{"NVRAM_CHECKSUM_STATUS", "FAILED"}}},
        {"cache_module",
         "dwCacheFlags",
         2,
         {{"FLASHLIGHT_INSTALLED", "FALSE"}, {"FLASH_MEMORY_DETACHED", "TRUE"}}},
        {"cache_module",
         "bCacheSupportFlags",
         1,
         {{"FLASHLIGHT_SUPPORTED", "TRUE"}, {"HAS_SPLITCACHE", "FALSE"}}},
        {"controller_parameters", "bElevatorState", 1, {{"ELEVATOR_SORT", "ENABLED"}}},
        {"controller_parameters",
         "bDriveConfigurationFlags",
         5,
         {{"DRIVE_WRITE_CACHE", "ENABLED"},
          {"FAIL_DRIVES_WITH_SMART_ERRORS", "DISABLED"},
          {"PREDICTIVE_SPARE_REBUILD", "ENABLED"}}},
        {"controller_parameters",
         "dwMoreConfigFlags",
         0x14,
         {{"INCONSISTENCY_REPAIR_POLICY", "DISABLED"},
          {"WAIT_FOR_CACHE_ROOM", "ENABLED"},
          {"RAID1_WRITE_BUFFERING", "ENABLED"}}},
        {"controller_parameters", "sPrimaryBootLUN", "LUN 7", {{"BOOT_VOLUME_PRIMARY", "LUN 7"}}},
        {"controller_parameters",
         "bElevatorLatencySetting",
         250,
         {{"FLEXIBLE_LATENCY_SCHEDULER_SETTING", "250"}}},
        {"controller_parameters", "bMaxCoalesceCommands", 8, {{"FIRMWARE_REQUEST_COALESCING", "ENABLED"}}},
        {"controller_parameters", "bForcedTransferMode", 5, {{"FORCED_TRANSFER_MODE", "ULTRA3"}}},
        {"controller_parameters", "bForcedTransferWidth", 1, {{"FORCED_TRANSFER_WIDTH", "NARROW"}}},
        {"controller_parameters",
         "bDevicePathSelectionMethod",
         2,
         {{"DEVICE_PATH_SELECTION_METHOD", "PREFERRED_PATH"}}},
        {"identify", "wTaskFlags", 2, {{"REBUILD_PRIORITY", ABSENT}}},
        {"controller_parameters", "bExpandPriority", 9, {{"EXPAND_PRIORITY", "HIGH"}}},
        {"redundant_parameters", "bRedundantFailureReason", 6, {{"REDUNDANCY_STATE", "LINK_FAILED"}}},
        {"cache_module", "wCacheDisableCode", 5, {{"CACHE_DISABLE_CODE", "CONFIGURATION_MISMATCH"}}},
        {"surface_status", "wScanDelay", 0x1234, {{"SURFACE_ANALYSIS_DELAY", "4660"}}},
        {"surface_status", "bAnalysisPriority", 3, {{"SURFACE_ANALYSIS_PRIORITY", "HIGH"}}},
        {"surface_status", "bScanState", 0xFD, {{"SURFACE_ANALYSIS_MODE_AGGRESSIVE", "FALSE"}}},
        {"mnp_status", "wDelayMinutes", 0x4321, {{"MNP_DELAY", "17185"}}},
    };
    discover(scenarioOf(rows, "0x3354"));
    expectTold(only(), rows);
}

/// Some attributes are told of some families only.
TEST_F(ControllerAttributes, HangOnTheFamily) {
    std::vector<Told> const set = {
        {"identify", "dwExtraControllerFlags", 0x2100, {}},
        {"identify", "wOptionRomFWBuild", 0x1234, {}},
        {"subsystem", "bSupercapTemperature", 92, {}},
        {"subsystem", "bPortName", "50 01 02 03 04 05 06 07", {}},
        {"subsystem", "bInternalPortCount", 1, {}},
        {"subsystem", "bExternalPortCount", 9, {}},
        {"subsystem",
         "additionalInternalPortInfo",
         json::parse(R"([{"bSASAddress": "5A BC DE F0 12 34 56 78"}, {"bSASAddress": "01"}])"),
         {}},
        {"subsystem",
         "additionalExternalPortInfo",
         json::parse(R"([{}, {"bSASAddress": "89 AB CD EF 01 23 45 67"}])"),
         {}},
        {"controller_parameters", "bControllerConfigurationFlags", 2, {}},
    };
    struct Row {
        char const* subsystemDevice;
        std::vector<std::pair<char const*, char const*>> attributes;
    };
    Row const rows[] = {
        {"0x3376",  // CEDAR16I
         {{"CEDAR_BASE_SUPPORT", "TRUE"},
          {"CEDAR_ACCEL_PCI_INSTALLED", "FALSE"},
          {"CEDAR_SAS_SUPPORTED", "FALSE"},
          {"CEDAR_SAS_ENABLED", "TRUE"},
          {"CEDAR_OPTION_ROM_FW_BUILD", "4660"},
          {"SUPERCAP_TEMPERATURE", ABSENT},
          {"WWN_PORT", ABSENT},
          {"ALTERNATE_QBX_CACHE_ALGORITHM", ABSENT}}},
        {"0x3397",  // BIRCH8
         {{"CEDAR_BASE_SUPPORT", ABSENT}, {"SUPERCAP_TEMPERATURE", "92"}, {"WWN_PORT0", ABSENT}}},
        {"0x33B1",  // QBX_FIR4
         {{"WWN_PORT", "5001020304050607"},
          {"WWN_PORT0", "5ABCDEF012345678"},
          {"WWN_PORT1", ABSENT},
          {"WWN_PORT2", "89ABCDEF01234567"},
          {"MANAGED_CABLE_PORT7_FW_DISABLED", "FALSE"},
          {"MANAGED_CABLE_PORT8_FW_DISABLED", ABSENT},
          {"ALTERNATE_QBX_CACHE_ALGORITHM", "DISABLED"},
          {"ALTERNATE_QBX_SURFACE_DELAY_ALGORITHM", "ENABLED"}}},
        {"0x33C3",  // of the other blade family
         {{"WWN_PORT0", "5ABCDEF012345678"}, {"SUPERCAP_TEMPERATURE", ABSENT}}},
    };
    for (Row const& row : rows) {
        discover(scenarioOf(set, row.subsystemDevice));
        for (auto const& [name, value] : row.attributes)
            EXPECT_EQ(value, shortValue(only(), name)) << name << " of " << row.subsystemDevice;
    }
}

/// Two older models whose surface analysis was mended in 2.08.
TEST_F(ControllerAttributes, OldFirmwareForSurfaceAnalysis) {
    struct Row {
        char const* subsystemDevice;
        char const* version;
        char const* expected;
    };
    static Row const rows[] = {{"0x3321", "2.07", "TRUE"}, {"0x3322", "1.99", "TRUE"},
                               {"0x3321", "2.08", ABSENT}, {"0x3322", "3.00", ABSENT},
                               {"0x3323", "1.00", ABSENT}, {"0x3321", "beta", ABSENT}};
    for (Row const& row : rows) {
        discover(oneController({{"firmware", row.version}}, row.subsystemDevice));
        EXPECT_EQ(row.expected, shortValue(only(), "SURFACE_ANALYSIS_REQUIRES_FW_UPDATE")) << row.version;
    }
}

TEST_F(ControllerAttributes, MembersBehindTheEndOfARecordAreAbsent) {
    struct Row {
        char const* record;
        char const* length;
        unsigned end;  ///< where the member ends
        char const* member;
        json value;
        char const* name;
        char const* expected;
    };
    Row const rows[] = {
        {"cache_module", "dwFixedStructureLength", 211, "bBoardPresent", 1, "CACHE_BOARD_PRESENT", "TRUE"},
        {"cache_module", "dwFixedStructureLength", 40, "wTotalMemorySize", 777, "CACHE_SIZE_TOTAL", "777"},
        {"subsystem", "dwTotalStructureLength", 1222, "bCacheModuleTemperature", 9,
         "CACHE_MODULE_TEMPERATURE", "9"},
        {"controller_parameters", "dwTotalStructureLength", 200, "dwMoreConfigFlags", 1,
         "DEGRADED_PERFORMANCE_OPTIMIZATION", "ENABLED"},
        {"identify", "dwFixedStructureLength", 290, "dwExtraControllerFlags", 4, "VAULT_HBA_MODE_SUPPORTED",
         "TRUE"},
    };
    for (Row const& row : rows) {
        for (unsigned const length : {row.end, row.end - 1}) {
            discover(oneController({{row.record, {{row.member, row.value}, {row.length, length}}}}));
            EXPECT_EQ(length == row.end ? row.expected : ABSENT, shortValue(only(), row.name)) << length;
        }
    }
}

/// Within one run a battery is replaced and a cable pulled: what they were told of goes.
TEST(ControllerAttributesKept, GoWithTheirCause) {
    Schema::ArrayController* const controller = new Schema::ArrayController("", false, 128, 32, "key");
    DevicePointer const holder(controller);
    Records::SUBSYSTEM_PARAMETERS subsystem = {};
    subsystem.dwTotalStructureLength = 1600;
    subsystem.bExternalPortCount = 255;
    subsystem.managedCableInfo[7].dwCableState = 1;
    subsystem.managedCableInfo[7].wCableLength = 5;
    Records::CACHE_CONFIG_STATUS cache = {};
    cache.dwFixedStructureLength = 256;
    cache.wFailedBatteries = 2;
    Operations::publishSubsystemSystemInfo(*controller, subsystem);
    Operations::publishAcceleratorInfo(*controller, cache, subsystem);
    EXPECT_EQ("2", shortValue(*controller, "BATTERY_FAILED_LIST"));
    EXPECT_EQ("5", shortValue(*controller, "MANAGED_CABLE_PORT7_LENGTH"));
    subsystem.managedCableInfo[7].dwCableState = 0;
    cache.wFailedBatteries = 0;
    Operations::publishSubsystemSystemInfo(*controller, subsystem);
    Operations::publishAcceleratorInfo(*controller, cache, subsystem);
    EXPECT_EQ(ABSENT, shortValue(*controller, "BATTERY_FAILED_LIST"));
    EXPECT_EQ(ABSENT, shortValue(*controller, "MANAGED_CABLE_PORT7_LENGTH"));
}

TEST_F(ControllerAttributes, EncryptionIsAskedForWhereItIsSupported) {
    json const pages = json::parse(R"({
        "1": {"dwCacheFlags": 1},
        "6": {"bPasswordSet": 1, "wFailedAttempts": 513},
        "7": {"bKeyState": 2},
        "8": {"bLockedVolumesPresent": 1, "dwStatusFlags": 2},
        "9": {"bUserPasswordSet": 1, "wCryptoFailedAttempts": 3, "wUserFailedAttempts": 500},
        "10": {"bMode": 2, "dwStatusFlags": 1}})");
    std::vector<std::pair<char const*, char const*>> const told = {
        {"ENCRYPTION_ENABLED", "TRUE"},
        {"ENCRYPTION_STANDALONE_MODE_ENABLED", "FALSE"},
        {"ENCRYPTION_SELFTEST_STATUS", "OK"},
        {"ENCRYPTION_CSP_NVRAM_STATUS", "FAILED"},
        {"ENCRYPTION_SKIP_CONTROLLER_PASSWORD_ENABLED", "TRUE"},
        {"ENCRYPTION_LOCAL_KEK_SET", "TRUE"},
        {"ENCRYPTION_BOOT_PASSWORD_SET", "TRUE"},
        {"ENCRYPTION_HAS_SUSPENDED_BOOT_PASSWORD", "FALSE"},
        {"ENCRYPTION_BOOT_PASSWORD_UNLOCK_ATTEMPTS", "513"},
        {"ENCRYPTION_INITIAL_STATUS_IKEK", "FALSE"},
        {"ENCRYPTION_INITIAL_STATUS_IKEK_RESET", "FALSE"},
        {"ENCRYPTION_INITIAL_STATUS_IKEK_CONTROLLER_KEY", "TRUE"},
        {"ENCRYPTION_HAS_LOCKED_VOLUMES_MISSING_BOOT_PASSWORD", "TRUE"},
        {"ENCRYPTION_LDRIVES_DISABLED_DEK_WONT_DECRYPT", "FALSE"},
        {"ENCRYPTION_LDRIVES_DISABLED_BAD_BOOT_PASSWORD", "TRUE"},
        {"ENCRYPTION_CRYPTO_OFFICER_PASSWORD_SET", "FALSE"},
        {"ENCRYPTION_USER_PASSWORD_SET", "TRUE"},
        {"ENCRYPTION_PASSWORD_UNLOCK_ATTEMPTS_REMAINING_CRYPTO", "7"},
        {"ENCRYPTION_PASSWORD_UNLOCK_ATTEMPTS_REMAINING_USER", "0"},
        {"ENCRYPTION_MODE", "REMOTE"},
        {"ENCRYPTION_REMOTE_KEK_SET", "TRUE"},
    };
    struct Row {
        char const* what;
        std::uint32_t status;
        int mode;
        bool told;
        std::size_t pages;
    };
    static Row const rows[] = {
        {"supported", 0x00220006, 0, true, 6},
        {"not supported", 0xFFFFFFFD, 0, false, 0},
        {"supported, but a plain adapter", 0x00220006, 1, false, 0},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        discover(oneController(
            {{"encryption", pages},
             {"identify", {{"dwEncryptionStatus", row.status}, {"bControllerMode", row.mode}}}}));
        EXPECT_EQ(row.pages, sent("1e020000 in 512"));
        for (auto const& [name, value] : told) {
            if (row.told) {
                EXPECT_EQ(value, shortValue(only(), name)) << name;
            } else if (row.mode == 0) {
                EXPECT_EQ(ABSENT, shortValue(only(), name)) << name;
            }
        }
    }

    // A page that isn't answered ends the asking. It is no failure of the reading.
    start(oneController({{"identify", {{"dwEncryptionStatus", 2}}}}));
    addFault(R"({"match": {"command": "0x1E", "nth": 2}, "action": {"errno": "EIO"}})");
    for (auto const& result : discover())
        EXPECT_TRUE(result);
    EXPECT_EQ(2U, sent("1e020000 in 512"));
    EXPECT_EQ("FALSE", shortValue(only(), "ENCRYPTION_LOCAL_KEK_SET"));
    EXPECT_EQ(ABSENT, shortValue(only(), "ENCRYPTION_MODE"));
}

TEST_F(ControllerAttributes, PowerIsAskedForWhereItIsSupported) {
    discover(oneController({{"identify", {{"dwExtraControllerFlags", 0x10}}},
                            {"board_power", {{"dwTotalBoardPower", 0x89ABCDEF}}},
                            {"power_mode",
                             {{"bCurrentPowerMode", 1},
                              {"bPendingPowerMode", 2},
                              {"bSupportedPowerModes", 5},
                              {"bFlags", 8}}}}));
    std::pair<char const*, char const*> const expected[] = {
        {"POWER_MODE_OPERATIONAL", "LOW"},
        {"POWER_MODE_CONFIGURED", "LOW_AUTOMATED"},
        {"POWER_MODE_PERFORMANT_SUPPORTED", "TRUE"},
        {"POWER_MODE_LOW_SUPPORTED", "FALSE"},
        {"POWER_MODE_LOW_AUTOMATED_SUPPORTED", "TRUE"},
        {"POWER_MODE_WARNING_CHANGED_DRIVE", "FALSE"},
        {"POWER_MODE_WARNING_REBOOT", "TRUE"},
        {"POWER_CONSUMPTION", "2309737967"},
    };
    for (auto const& [name, value] : expected)
        EXPECT_EQ(value, shortValue(only(), name)) << name;
}

/// Whatever is below a controller is counted by what its attributes say it is.
TEST(ControllerCounts, ByTheUseOfWhatIsBelow) {
    using Attributes = std::vector<std::pair<char const*, char const*>>;
    static constexpr char DRIVE[] = "ATTR_VALUE_TYPE_PHYSICAL_DRIVE";
    static constexpr char VOLUME[] = "ATTR_VALUE_TYPE_LOGICAL_DRIVE";
    static constexpr char ARRAY[] = "ATTR_VALUE_TYPE_ARRAY";
    static std::pair<char const*, Attributes> const devices[] = {
        {DRIVE, {{"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_DATA"}}},
        {DRIVE, {{"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_DATA"}}},
        {DRIVE, {{"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_DATA"}}},
        {DRIVE,
         {{"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_SPARE"},
          {"ATTR_NAME_ENCRYPTION_ENCRYPTED_DRIVE", "ATTR_VALUE_ENCRYPTION_ENCRYPTED_DRIVE_TRUE"}}},
        {DRIVE, {{"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_UNASSIGNED"}}},
        {DRIVE, {{"ATTR_NAME_DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_UNASSIGNED"}}},
        {VOLUME,
         {{"ATTR_NAME_LOGICAL_DRIVE_TYPE", "ATTR_VALUE_LOGICAL_DRIVE_TYPE_DATA"},
          {"ATTR_NAME_LOGICAL_DRIVE_ENCRYPTION", "ATTR_VALUE_LOGICAL_DRIVE_ENCRYPTION_TRUE"}}},
        {VOLUME, {{"ATTR_NAME_LOGICAL_DRIVE_TYPE", "ATTR_VALUE_LOGICAL_DRIVE_TYPE_DATA"}}},
        {VOLUME,
         {{"ATTR_NAME_LOGICAL_DRIVE_TYPE", "ATTR_VALUE_LOGICAL_DRIVE_TYPE_CACHE"},
          {"ATTR_NAME_LOGICAL_DRIVE_ENCRYPTION", "ATTR_VALUE_LOGICAL_DRIVE_ENCRYPTION_TRUE"}}},
        {ARRAY, {{"ATTR_NAME_ARRAY_TYPE", "ATTR_VALUE_ARRAY_TYPE_CACHE"}}},
        {ARRAY, {}},
    };
    Schema::ArrayController* const controller = new Schema::ArrayController("", false, 128, 32, "key");
    DevicePointer const above(new Schema::HostBusAdapter("above"));
    ASSERT_TRUE(above->receive(DevicePointer(controller)));
    Core::Device* parent = controller;
    for (auto const& [type, attributes] : devices) {
        DevicePointer const child(
            new Schema::HostBusAdapter(std::to_string(&attributes - &devices[0].second).c_str()));
        Schema::publish(*child, "ATTR_NAME_TYPE", type);
        for (auto const& [name, value] : attributes)
            Schema::publish(*child, name, value);
        ASSERT_TRUE(parent->receive(child));
        parent = child.get();
    }
    Operations::publishDriveTypeCounts(*controller);
    std::pair<char const*, char const*> const counts[] = {
        {"PHYSICAL_DRIVE_COUNT", "6"},
        {"DATA_PHYSICAL_DRIVE_COUNT", "3"},
        {"SPARE_PHYSICAL_DRIVE_COUNT", "1"},
        {"UNASSIGNED_PHYSICAL_DRIVE_COUNT", "2"},
        {"CACHE_PHYSICAL_DRIVE_COUNT", "0"},
        {"ENCRYPTION_PHYSICAL_DRIVE_COUNT", "1"},
        {"DATA_LOGICAL_DRIVE_COUNT", "2"},
        {"CACHE_LOGICAL_DRIVE_COUNT", "1"},
        {"ENCRYPTED_DATA_LOGICAL_DRIVE_COUNT", "1"},
        {"ARRAY_COUNT", "2"},
        {"CACHE_ARRAY_COUNT", "1"},
    };
    for (auto const& [name, value] : counts)
        EXPECT_EQ(value, shortValue(*controller, name)) << name;
}

}  // namespace
}  // namespace storage_test
