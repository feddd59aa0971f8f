#include "sysmod/device_discovery.h"

#include <gtest/gtest.h>

#include <sstream>

#include "simulator/in_process_door.h"
#include "sysmod/boot_utils.h"
#include "sysmod/device_handle.h"
#include "tests/simulator/machine_fixture.h"
#include "tests/sysmod/fake_system.h"

using namespace Core::SysMod;
using namespace Interface::SysMod::Discovery;
using simulator_test::json;

namespace {

std::string textOf(Common::string const& handle, Property place) {
    PropertyTable table;
    toPropertyTable(handle, table);
    return table[place].c_str();
}

/// "type route index identity parent", a line for each device.
std::string listing(HandleMap const& devices) {
    std::string text;
    for (auto const& [key, handle] : devices) {
        text += std::string(key.c_str()) + " " + textOf(handle, DeviceType) + " " + textOf(handle, Route) +
                " " + textOf(handle, DeviceIndex) + " " + textOf(handle, IdentityBytes) + " " +
                textOf(handle, ParentRoute) + "\n";
    }
    return text;
}

/// The log without times and without the lines of single requests.
std::string withoutRequests(std::string const& log) {
    std::string text;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        bool const request = line.find("CSMI(Opcode") != std::string::npos ||
                             line.find("CSMIPT(") != std::string::npos ||
                             line.find("BSSPStatus") != std::string::npos;
        if (!request) {
            text += line.substr(line.find("] ") + 2) + "\n";
        }
    }
    return text;
}

class DeviceDiscovery : public simulator_test::MachineTest {
  protected:
    void open(json const& scenario) {
        door.reset();
        make(scenario);
        door = std::make_unique<simulator::InProcessDoor>(*machine);
        controllers.clear();
        csmi.clear();
        plain.clear();
        DiscoverStorageAdapters(controllers, csmi, plain);
    }
    json adapter(json phys) {
        return {{"name", "hba"},
                {"kind", "csmi_adapter"},
                {"sas_address", "5000000000000001"},
                {"phys", std::move(phys)},
                {"pci", {{"address", "0000:0d:00.0"}, {"driver", "mpt2sas"}}}};
    }
    std::string walk(json const& device) {
        open({{"devices", {device}}});
        devices.clear();
        CapturedLog const log;
        DiscoverCSMIPhysicalDevices(csmi.empty() ? Common::string() : *csmi.begin(), devices);
        return withoutRequests(log.text());
    }

    std::unique_ptr<simulator::InProcessDoor> door;
    HandleList controllers;
    HandleList csmi;
    HandleList plain;
    HandleMap devices;
};

TEST_F(DeviceDiscovery, SasAdaptersTellOfThemselves) {
    struct Row {
        unsigned status;
        unsigned slot;
        char const* statusText;
        char const* slotText;
    };
    for (Row const& row :
         {Row{1, 6, "OK", "S:6"}, Row{2, 0, "FAILED", "S:0"}, Row{3, 0xFFFE, "OFFLINE", "S:65534"},
          Row{4, 0xFFFF, "POWEROFF", "UNKNOWN"}, Row{9, 0xFFFF, "UNKNOWN", "UNKNOWN"}}) {
        json first = adapter(json::array());
        first["instance"] = 200;
        first["status"] = row.status;
        first["csmi_slot"] = row.slot;
        first["serial"] = std::string(79, 'S') + "\r\n";  // fills its field, and would break a handle apart
        first["firmware_version"] = {1, 2, 3, 65535};
        first["rom_version"] = {5, 6, 7, 8};
        json second = adapter(json::array());
        second["name"] = "other";
        second["pci"]["address"] = "0000:0e:00.0";
        open({{"devices", {first, second}}});
        ASSERT_EQ(2U, csmi.size());
        EXPECT_TRUE(plain.empty()) << "an adapter that answers CSMI isn't a plain one too";
        Common::string const handle = *++csmi.begin();
        EXPECT_EQ("/dev/mpt2ctl:201", textOf(handle, NodePath));
        Common::string const own = *csmi.begin();
        EXPECT_EQ("/dev/mpt2ctl:200", textOf(own, NodePath));
        EXPECT_EQ(row.statusText, textOf(own, AdapterStatus));
        EXPECT_EQ(row.slotText, textOf(own, AdapterSlot));
        EXPECT_EQ(std::string(79, 'S'), textOf(own, SerialNumber));
        EXPECT_EQ("1.2.3.65535", textOf(own, FirmwareVersion));
        EXPECT_EQ("5.6.7.8", textOf(own, RomVersion));
        EXPECT_EQ("0000:0d:00.0", textOf(own, PciLocation));
    }
}

TEST_F(DeviceDiscovery, SasDevicesAreFoundThroughExpanders) {
    json const drive = {{"kind", "drive"}, {"sas_address", "5000C50000000001"}, {"product", "DISK A"}};
    json const expander = {
        {"kind", "expander"},
        {"sas_address", "5001000000000001"},
        {"phys",
         {{{"kind", "host"}, {"sas_address", "5000000000000001"}},
          {{"kind", "drive"}, {"sas_address", "5000C50000000002"}, {"target_protocols", 4}},
          nullptr,
          {{"kind", "fanout_expander"},
           {"sas_address", "5001000000000002"},
           {"phys", {{{"kind", "tape"}, {"sas_address", "5000C50000000003"}}}}}}}};
    std::string const log =
        walk(adapter({drive,
                      nullptr,
                      {{"kind", "enclosure_processor"}, {"sas_address", "5000C50000000004"}},
                      expander,
                      {{"same_as", "5001000000000001"}},
                      {{"kind", "array_controller"}, {"sas_address", "5000C50000000005"}}}));
    EXPECT_EQ(
        "Entered DiscoverCSMIPhysicalDevices\n"
        "CSMI GetPhysInfo returns 6 phys\n"
        "Phy 0: End device.\n"
        "Direct Access Device. Product ID: DISK A\n"
        "Phy 1: Unknown or not connected.\n"
        "Phy 2: End device.\n"
        "SES Device. Product ID: VIRTUAL SEP\n"
        "Phy 3: Expander.\n"
        "Expander reports 4 phys\n"
        "Phy 0: End device.\n"
        "Phy 1: End device.\n"
        "Direct Access Device. Product ID: VIRTUAL DRIVE\n"
        "Phy 2: Unknown or not connected.\n"
        "Phy 3: Expander.\n"
        "Expander reports 1 phys\n"
        "Phy 0: End device.\n"
        "Sequential Access Device. Product ID: VIRTUAL TAPE\n"
        "Phy 4: Expander.\n"
        "Phy 5: End device.\n"
        "Peripheral type 0x0C passed over. Product ID: VIRTUAL ARRAY\n"
        "DiscoverCSMIPhysicalDevices discovered 6 devices\n",
        log);
    EXPECT_EQ(
        "5000C50000000001 PHYSICAL_DRIVE CSMI:0:5000C50000000001   CSMI:0:5000000000000001\n"
        "5000C50000000002 PHYSICAL_DRIVE CSMI:3:5000C50000000002   CSMI:3:5001000000000001\n"
        "5000C50000000003 TAPE_DRIVE CSMI:3:5000C50000000003   CSMI:3:5001000000000002\n"
        "5000C50000000004 SEP CSMI:2:5000C50000000004   CSMI:2:5000000000000001\n"
        "5001000000000001 EXPANDER CSMI:3:5001000000000001   CSMI:3:5000000000000001\n"
        "5001000000000002 EXPANDER CSMI:3:5001000000000002   CSMI:3:5001000000000001\n",
        listing(devices));
    EXPECT_EQ("00000D0000", textOf(devices["5000C50000000003"], UniqueKey));
    EXPECT_EQ("/dev/mpt2ctl:0", textOf(devices["5000C50000000003"], NodePath));
    EXPECT_EQ(0U, door->openNodes());
    for (simulator::JournalEntry const& entry : machine->journal()) {
        EXPECT_TRUE(entry.errors.empty() && entry.notes.empty()) << entry.command;
    }
}

TEST_F(DeviceDiscovery, SasRepliesAreCheckedAndOneBadDeviceEndsNothing) {
    struct Row {
        char const* command;
        char const* action;
        char const* line;
        unsigned found;
    };
    json const phys = {{{"kind", "drive"}, {"sas_address", "5000C50000000001"}},
                       {{"kind", "expander"},
                        {"sas_address", "5001000000000001"},
                        {"phys", {{{"kind", "drive"}, {"sas_address", "5000C50000000002"}}}}}};
    for (Row const& row : {
             Row{"CSMI PHY INFORMATION", R"({"errno": "EIO"})",
                 "CSMI GetPhyInfo failed in DiscoverCSMIPhysicalDevices. ReturnCode: 0x00000000, llError: "
                 "0x00000005",
                 0},
             Row{"CSMI PHY INFORMATION", R"({"command_status": 11})",
                 "CSMI GetPhyInfo failed in DiscoverCSMIPhysicalDevices. ReturnCode: 0x0000000B, llError: "
                 "0x00000000",
                 0},
             Row{"CSMI PHY INFORMATION", R"({"truncate": 0})", "CSMI GetPhysInfo returns 0 phys", 0},
             Row{"INQUIRY", R"({"scsi_status": 2, "sense": [2, 4, 0]})",
                 "INQUIRY of CSMI:0:5000C50000000001 failed. Code: 0x00000000, SCSI status: 0x02", 2},
             Row{"INQUIRY", R"({"truncate": 31})",
                 "INQUIRY of CSMI:0:5000C50000000001 refused: 31 bytes, at least 32 expected", 2},
             Row{"SMP REPORT GENERAL", R"({"truncate": 9})",
                 "SMP response of CSMI:1:5001000000000001 refused: 9 bytes, frame type 0x41, function 0x00; "
                 "at "
                 "least 10, 0x41 and 0x00 expected",
                 2},
             Row{"SMP DISCOVER", R"({"errno": "ETIMEDOUT"})",
                 "SMP request 0x10 to CSMI:1:5001000000000001 failed. ReturnCode: 0x00000000, llError: "
                 "0x0000006E",
                 2},
             Row{"SMP DISCOVER", R"({"truncate": 31})", "Phy 0: Unknown or not connected.", 2},
         }) {
        open({{"devices", {adapter(phys)}}});
        machine->addFaults(
            {{{"match", {{"command", row.command}, {"nth", 1}}}, {"action", json::parse(row.action)}}},
            "test");
        devices.clear();
        CapturedLog const log;
        DiscoverCSMIPhysicalDevices(*csmi.begin(), devices);
        EXPECT_NE(std::string::npos, log.text().find(row.line)) << row.line << "\nin\n" << log.text();
        EXPECT_EQ(row.found, devices.size()) << row.command << row.action;
    }
    json greedy = adapter(phys);
    greedy["phy_count"] = 33;
    EXPECT_NE(
        std::string::npos,
        walk(greedy).find("CSMI phy information counts 33 phys, the record holds 32; the rest is refused"));
    EXPECT_EQ(3U, devices.size());

    PropertyTable gone;
    gone[NodePath] = "/dev/xqrth/c9d0";
    CapturedLog const log;
    DiscoverCSMIPhysicalDevices(toDeviceInfo(gone), devices);
    EXPECT_NE(std::string::npos,
              log.text().find("Node open failed in DiscoverCSMIPhysicalDevices. Code: 0x00000002\n"));
}

TEST_F(DeviceDiscovery, ControllersReportWhatIsBehindThem) {
    json scenario = simulator_test::twoControllers();
    json& one = scenario["devices"][0];
    one["physical_devices"] = json::parse(R"([
        {"kind": "drive", "address": "0500000100000000", "index": 261, "sas_address": "5000C50000000011",
         "parent_sas_address": "5001000000000001", "parent_phy": 7},
        {"kind": "enclosure_processor", "address": "0100000200000000", "index": 9},
        {"kind": "expander", "address": "0200000200000000", "index": 10},
        {"kind": "drive", "address": "060000C100000000", "index": 12, "type": 200}])");
    one["volumes"] = json::parse(R"([
        {"kind": "volume", "address": "0201004000000000", "identity": "600508B1001C00112233445566778899"},
        {"kind": "volume", "address": "0000034000000000"},
        {"kind": "volume", "address": "050000C000000000"}])");
    open(scenario);
    ASSERT_EQ(2U, controllers.size());
    Common::string const handle = *controllers.begin();

    CapturedLog const log;
    DiscoverUnmaskedPhysicalDevices(handle, devices);
    EXPECT_EQ(
        "0100000200000000 SEP QRTH:0100000200000000 9  \n"
        "0200000200000000 EXPANDER QRTH:0200000200000000 10  \n"
        "0500000100000000 PHYSICAL_DRIVE QRTH:0500000100000000 261 5000C50000000011 "
        "CSMI:7:5001000000000001\n",
        listing(devices));
    EXPECT_EQ("00000B0000", textOf(devices["0500000100000000"], UniqueKey));
    EXPECT_EQ(simulator_test::ONE, textOf(devices["0500000100000000"], NodePath));
    devices.clear();
    DiscoverMaskedPhysicalDevice(handle, devices);
    EXPECT_EQ("060000C100000000 UNKNOWN QRTH:060000C100000000 12  \n", listing(devices));
    devices.clear();
    DiscoverUnmaskedLogicalDevices(handle, devices);
    EXPECT_EQ(
        "0000034000000000 EXTERNAL_LOGICAL_DEVICE QRTH:0000034000000000 0  \n"
        "0201004000000000 LOCAL_LOGICAL_DEVICE QRTH:0201004000000000 258 600508B1001C00112233445566778899 \n",
        listing(devices));
    devices.clear();
    DiscoverMaskedLogicalDevice(handle, devices);
    EXPECT_EQ("050000C000000000 LOCAL_LOGICAL_DRIVE BMIC:5 5  \n", listing(devices));
    for (char const* line : {"Entered DiscoverUnmaskedPhysicalDevices\n",
                             "DiscoverUnmaskedPhysicalDevices discovered 3 devices\n",
                             "Entered DiscoverUnmaskedLogicalDevices\n",
                             "DiscoverUnmaskedLogicalDevices discovered 2 devices\n"}) {
        EXPECT_NE(std::string::npos, log.text().find(line)) << line;
    }

    std::uint64_t const before = machine->exchangeCount();
    devices.clear();
    DiscoverUnmaskedPhysicalDevices(*++controllers.begin(), devices);
    EXPECT_TRUE(devices.empty());
    EXPECT_EQ(1U, machine->exchangeCount() - before) << "an empty list isn't asked for a second time";
    DiscoverUnmaskedPhysicalDevices(Common::string(), devices);
    EXPECT_TRUE(devices.empty());
}

TEST_F(DeviceDiscovery, ReportsThatAreCutOffOrLieAreRefused) {
    struct Row {
        unsigned nth;
        char const* action;
        char const* line;
        unsigned found;
    };
    json scenario = simulator_test::twoControllers();
    scenario["devices"].erase(1);
    for (unsigned i = 1; i <= 2400; ++i) {  // more than the small record can ask for
        char address[20];
        std::snprintf(address, sizeof address, "%02X%02X000100000000", i & 0xFF, i >> 8);
        scenario["devices"][0]["physical_devices"].push_back({{"kind", "drive"}, {"address", address}});
    }
    for (Row const& row : {
             Row{9, R"({"truncate": 1})", "DiscoverUnmaskedPhysicalDevices discovered 2400 devices", 2400},
             Row{1, R"({"errno": "EIO"})",
                 "REPORT PHYSICAL LUNS failed. Code: 0x00000005, SCSI status: 0x00, command status: 0x0000",
                 0},
             Row{2, R"({"scsi_status": 2, "sense": [5, 36, 0]})",
                 "REPORT PHYSICAL LUNS failed. Code: 0x00000000, SCSI status: 0x02, command status: 0x0001",
                 0},
             Row{1, R"({"truncate": 7})",
                 "REPORT PHYSICAL LUNS refused: a reply of 7 bytes, at least 8 expected", 0},
             Row{1, R"({"random_reply": 7})", "and at most 1048576 expected", 0},
             Row{2, R"({"truncate": 100})",
                 "REPORT PHYSICAL LUNS: a list of 76800 bytes, 2 entries of 32 bytes came", 2},
             Row{2, R"({"truncate": 3})", "DiscoverUnmaskedPhysicalDevices discovered 0 devices", 0},
         }) {
        open(scenario);
        machine->addFaults({{{"match", {{"command", "REPORT PHYSICAL LUNS"}, {"nth", row.nth}}},
                             {"action", json::parse(row.action)}}},
                           "test");
        devices.clear();
        CapturedLog const log;
        DiscoverUnmaskedPhysicalDevices(*controllers.begin(), devices);
        EXPECT_NE(std::string::npos, log.text().find(row.line)) << row.line << "\nin\n" << log.text();
        EXPECT_EQ(row.found, devices.size()) << row.action;
    }
}

TEST_F(DeviceDiscovery, VolumesAndTheirPartitions) {
    json scenario = simulator_test::twoControllers();
    scenario["devices"].push_back(adapter(json::array()));
    scenario["mtab"] = "/dev/sda2 / ext4 rw 0 0\n/dev/sdbc1 /x ext4 rw 0 0\n";
    scenario["fstab"] = "# none\n/dev/xqrth/c0d0p12 none swap sw 0 0\n/dev/sdb1 /y ext4 noauto 0 0\n";
    scenario["block_devices"] = json::parse(R"([
        {"name": "sda", "parent": "two", "vendor": "VQ", "model": "LOGICAL VOLUME", "unique_id": "600508B1\r",
         "size": 4096, "partitions": [{"number": 2, "start": 64, "size": 900}, {"number": 1, "start": 1000, "size": 10}]},
        {"name": "sdb", "parent": "hba", "vendor": "ATA", "model": "DISK"},
        {"name": "sdc", "vendor": "ATA", "parent": "hba", "port": "ata1/host0"},
        {"name": "sdd", "vendor": "MAKER"},
        {"name": "sde", "type": "7", "vendor": "MAKER"},
        {"name": "sdf", "size": 0}, {"name": "sdg", "removable": true}, {"name": "sr0"},
        {"name": "xqrth!c0d0", "parent": "one", "partitions": [{"number": 12, "start": 0, "size": 1}]}])");
    open(scenario);

    auto const volumesOf = [](Common::string const& handle) {
        HandleList volumes;
        DiscoverStorageVolumes(handle, volumes);
        std::string text;
        for (Common::string const& volume : volumes) {
            StorageVolumeInformation information;
            EXPECT_TRUE(GetStorageVolumeInformation(volume, information));
            text += textOf(volume, NodePath) + " " + textOf(volume, TransportKind) + " " +
                    textOf(volume, UniqueKey) + (information.inUse ? " used" : "") + "\n";
        }
        return text;
    };
    EXPECT_EQ(
        "/dev/sda RAID 0000130000 used\n/dev/sdb SCSIPT 00000D0000\n/dev/sdc ATA 00000D0000\n/dev/sdd SCSI \n"
        "/dev/sde OTHER \n/dev/xqrth/c0d0 RAID 00000B0000 used\n",
        volumesOf(Common::string()));
    EXPECT_EQ("/dev/sdb SCSIPT 00000D0000\n/dev/sdc ATA 00000D0000\n", volumesOf(*csmi.begin()));

    HandleList volumes;
    DiscoverStorageVolumes(Common::string(), volumes);
    StorageVolumeInformation information;
    ASSERT_TRUE(GetStorageVolumeInformation(*volumes.begin(), information));
    EXPECT_EQ(4096U, information.blocks);
    EXPECT_EQ("LOGICAL VOLUME", information.model);
    EXPECT_EQ("600508B1", textOf(*volumes.begin(), IdentityBytes));

    std::string text;
    for (Common::string const& volume : volumes) {
        HandleList extents;
        DiscoverStorageExtents(volume, extents);
        for (Common::string const& extent : extents) {
            StorageExtentInformation place;
            EXPECT_TRUE(GetStorageExtentInformation(extent, place));
            text += textOf(extent, NodePath) + " " + std::to_string(place.firstBlock) + " " +
                    std::to_string(place.blocks) + "\n";
        }
    }
    EXPECT_EQ("/dev/sda2 64 900\n/dev/sda1 1000 10\n/dev/xqrth/c0d0p12 0 1\n", text);

    PropertyTable table;
    for (char const* node : {"/dev/sdz", "/dev/../sys/block/sda", "sda", ""}) {
        table[NodePath] = node;
        HandleList none;
        StorageExtentInformation place;
        EXPECT_FALSE(GetStorageVolumeInformation(toDeviceInfo(table), information)) << node;
        EXPECT_FALSE(GetStorageExtentInformation(toDeviceInfo(table), place)) << node;
        DiscoverStorageExtents(toDeviceInfo(table), none);
        EXPECT_TRUE(none.empty()) << node;
    }
}

TEST_F(DeviceDiscovery, TheFirmwareTellsWhatIsBooted) {
    // An option that names a file alone, one whose path claims more than there is, one whose node does.
    constexpr char MEDIUM[] = R"({"number": 9, "hex": "0700000001000000040041000000 7fff0400"})";
    constexpr char LONG_PATH[] = R"({"number": 9, "hex": "0700000001000000ffff41000000 7fff0400"})";
    constexpr char LONG_NODE[] = R"({"number": 9, "hex": "07000000010000000600410000000201ffffd041"})";
    constexpr char SHORT[] = R"({"number": 9, "hex": "0700"})";
    auto const with = [](char const* order, std::string const& entry) {
        return std::string(R"({"order": )") + order + R"(, "entries": [{"number": 1, "device": "one"},
            {"number": 43981, "device": "two"}, {"number": 3, "device": "one", "active": false})" +
               (entry.empty() ? "" : ", " + entry) + "]}";
    };
    for (auto const& [boot, which] : {std::pair<std::string, std::string>{with("[1, 43981]", ""), "one"},
                                      {with("[43981, 1]", ""), "two"},
                                      {with("[7, 3, 43981]", ""), "two"},
                                      {with("[]", ""), "none"},
                                      {with("[9, 1]", MEDIUM), "one"},
                                      {with("[9, 1]", LONG_PATH), "one"},
                                      {with("[9, 43981]", LONG_NODE), "two"},
                                      {with("[9]", SHORT), "none"},
                                      {"", "none"}}) {
        json scenario = simulator_test::twoControllers();
        if (!boot.empty()) {
            scenario["boot"] = json::parse(boot);
        }
        open(scenario);
        EXPECT_EQ(which == "one", BootUtils::IsBootController("509358932", "1")) << boot;
        EXPECT_EQ(which == "one", BootUtils::IsBootController("509358932", "S:1")) << boot;
        EXPECT_FALSE(BootUtils::IsBootController("509358932", "2")) << boot;
        EXPECT_EQ(which == "two", BootUtils::IsBootController("509358933", "4")) << boot;
        EXPECT_FALSE(BootUtils::IsBootController("", "1")) << boot;
    }
}

}  // namespace
