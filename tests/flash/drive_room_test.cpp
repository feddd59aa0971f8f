// Drives, carriers, the cache module and memory of the machine room: found, told of, flashed and read back.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>

#include "flash/component_operations.h"
#include "flash/nvram.h"
#include "storage/operations/discover_non_vaultline_physical_drive.h"
#include "storage/operations/discover_physical_drive.h"
#include "storage/operations/discover_storage_enclosure.h"
#include "storage/operations/read_ssd_info.h"
#include "storage/schema/array_controller.h"
#include "tests/flash/flash_fixture.h"
#include "tests/storage/answers.h"

namespace flash_test {
namespace {

class DriveRoom : public FlashTest {
  protected:
    DriveRoom() {
        activate({{"ARRAY_CONTROLLER", "DISCOVER_STORAGE_ENCLOSURES"},
                  {"ARRAY_CONTROLLER", "DISCOVER_PHYSICAL_DRIVES"},
                  {"ARRAY_CONTROLLER", "DISCOVER_TAPE_DRIVES"},
                  {"STORAGE_ENCLOSURE", "DISCOVER_DRIVE_CAGES"},
                  {"DRIVE_CAGE", "DISCOVER_PHYSICAL_DRIVES"},
                  {"PHYSICAL_DRIVE", "READ_PHYSICAL_DRIVE_INFO"}});
    }

    /// All below a device, of one type.
    static std::vector<DevicePointer> allBelow(Core::Device const& parent, std::string const& type) {
        std::vector<DevicePointer> found;
        for (auto child = parent.beginChild(); child != parent.endChild(); ++child) {
            if (attribute(**child, "ATTR_NAME_TYPE") == "ATTR_VALUE_TYPE_" + type) found.push_back(*child);
            auto const deeper = allBelow(**child, type);
            found.insert(found.end(), deeper.begin(), deeper.end());
        }
        return found;
    }
    DevicePointer drive(char const* number) const {
        for (DevicePointer const& each : allBelow(only(), "PHYSICAL_DRIVE"))
            if (attribute(*each, "ATTR_NAME_DEVICE_NUMBER") == number) return each;
        throw std::runtime_error(std::string("no drive ") + number);
    }
    template <class Operation>
    static std::string write(Core::Device& device, Bytes const& image, Arguments arguments = {}) {
        OperationPointer const operation(new Operation);
        auto const verdict = operation->pFilter()->apply(device.getDevicePtr());
        if (!verdict) return attribute(verdict, "ATTR_NAME_UNAVAILABLE_REASON");
        arguments.emplace_back("ATTR_NAME_BUFFER_ADDRESS",
                               std::to_string(reinterpret_cast<std::uintptr_t>(image.data())));
        arguments.emplace_back("ATTR_NAME_BUFFER_SIZE", std::to_string(image.size()));
        for (auto const& [name, value] : arguments)
            operation->SetArgument(Core::DeviceOperation::eSET, name, value.c_str());
        return status(device.perform(operation));
    }
    std::string state(char const* name) {
        auto const row = this->device(std::string("one/") + name);
        return row.running + " " + row.stored + " " + row.state;
    }
};

constexpr char SUCCESS[] = "ATTR_VALUE_STATUS_SUCCESS";

TEST_F(DriveRoom, TakesWhatTheFlashOperationsWrite) {
    discover(oneController(json::parse(R"({
        "identify": {"dwYetMoreControllerFlags": "0x28000001"},
        "cache_module": {"dwCacheFlags": 1, "bCacheSupportFlags": 1},
        "drives": [
          {"name": "spinner", "product": "EG0300SPIN", "revision": "HP01", "role": "data",
           "carrier": {"application": 11, "bootloader": 6}},
          {"name": "sata", "interface": "sata", "product": "MB4000SATA", "revision": "HPG2"},
          {"name": "flash", "interface": "sas_ssd", "product": "MO0400SSD", "role": "spare",
           "wear": {"percent": 7, "remaining_days": 300, "power_on_hours": 9000, "power_cycles": 33}},
          {"name": "light", "interface": "sata_ssd", "wear": {"percent": 100, "power_cycles": 5},
           "erase": {"status": 2, "pattern": 1, "percent": 40}},
          {"name": "gone", "state": "missing"}],
        "tapes": [{"index": 40, "product": "ULTRIUM DR-3"}],
        "boxes": [{"bus": 8, "target": 0, "number": 4, "bays": 4, "drives": [0]}],
        "logical_drives": [{}],
        "cache_firmware": {"version": 4, "family": "GOLDPIC"},
        "i2c_nvram": [{"id": 80, "contents": "01 02"}]})")));
    ASSERT_EQ(4U, allBelow(only(), "PHYSICAL_DRIVE").size());
    EXPECT_EQ(1U, allBelow(only(), "TAPE_DRIVE").size());
    struct Row {
        char const* drive;
        char const* name;
        char const* value;
    };
    static Row const rows[] = {
        {"0", "DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_DATA"},
        {"0", "CARRIER_APPLICATION_VERSION", "11"},
        {"0", "LOCATION_HINT", "Port 1E, Box 4, Bay 1"},
        {"1", "INTERFACE", "ATTR_VALUE_INTERFACE_SATA"},
        {"2", "DRIVE_TYPE", "ATTR_VALUE_DRIVE_TYPE_SPARE"},
        {"2", "EXINFO_SUPPORTED", "ATTR_VALUE_EXINFO_SUPPORTED_TRUE"},
        {"3", "ERASE_PERCENT_COMPLETE", "40"},
        {"3", "INTERFACE", "ATTR_VALUE_INTERFACE_SATA_SSD"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.value, attribute(*drive(row.drive), (std::string("ATTR_NAME_") + row.name).c_str()))
            << row.drive << " " << row.name;
    }
    EXPECT_EQ("ATTR_VALUE_TYPE_DRIVE_CAGE", attribute(*drive("0")->pParent(), "ATTR_NAME_TYPE"));
    for (auto const& [number, percent] : {std::pair{"2", "7"}, {"3", "100"}}) {
        EXPECT_TRUE(drive(number)->perform(OperationPointer(new Operations::ReadSSDInfo)));
        EXPECT_EQ(percent, attribute(*drive(number), "ATTR_NAME_EXINFO_SSD_UTILIZATION"));
    }

    using namespace Operations;
    char const* const scsi = "ATTR_VALUE_FLASH_TYPE_SCSI_WRITE_BUFFER";
    char const* const ata = "ATTR_VALUE_FLASH_TYPE_ATA_PASSTHRU_DOWNLOAD_MICROCODE";
    for (std::size_t const size : {32767U, 32768U, 32769U, 65536U}) {
        std::string const version = "H" + std::to_string(size % 1000);
        Bytes const spinner = simulator::makeImage("EG0300SPIN", version, size, size);
        EXPECT_EQ(SUCCESS,
                  write<WriteFlashPhysicalDrive>(*drive("0"), spinner, {{"ATTR_NAME_FLASH_TYPE", scsi}}));
        EXPECT_EQ(version + " " + version, state("spinner").substr(0, 2 * version.size() + 1)) << size;
        EXPECT_TRUE(spinner == machine->romImage("one/spinner", simulator::Rom::Active)) << size;
        Bytes const sata = simulator::makeImage("MB4000SATA", version, size, size);
        EXPECT_EQ(SUCCESS,
                  write<WriteFlashPhysicalDrive>(*drive("1"), sata, {{"ATTR_NAME_FLASH_TYPE", ata}}));
        EXPECT_EQ("HPG2 " + version + " restart needed", state("sata")) << size;
    }
    Bytes const wrong = simulator::makeImage("OTHER DRIVE", "H9", 40000, 1);
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE",
              write<WriteFlashPhysicalDrive>(*drive("0"), wrong, {{"ATTR_NAME_FLASH_TYPE", scsi}}));
    EXPECT_EQ(SUCCESS, write<WriteFlashDriveActiveCarrier>(*drive("0"),
                                                           simulator::makeImage("CARRIER", "12", 32768, 3)));
    EXPECT_EQ("ATTR_VALUE_UNAVAILABLE_REASON_CARRIER_AUTHENTICATION_STATUS_NOT_OK",
              write<WriteFlashDriveActiveCarrier>(*drive("1"), wrong));
    EXPECT_EQ(SUCCESS, write<WriteFlashFBWC>(only(), simulator::makeImage("GOLDPIC", "5", 49152, 4)));
    discover();
    EXPECT_EQ("5", attribute(only(), "ATTR_NAME_CACHE_AUTO_REVISION"));
    EXPECT_EQ("12", attribute(*drive("0"), "ATTR_NAME_CARRIER_APPLICATION_VERSION"));

    Bytes memory(256, 0xA5);
    memory[255] = 0x5A;
    EXPECT_EQ(SUCCESS, write<WriteFlashNVRAM>(only(), memory, {{"ATTR_NAME_BMIC_I2C_ID", "80"}}));
    std::string const path = testing::TempDir() + "room-nvram-" + std::to_string(getpid());
    OperationPointer const read(new ReadNVRAM);
    read->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BMIC_I2C_ID", "80");
    read->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_OUTPUT_FILE_NAME", path.c_str());
    EXPECT_EQ(SUCCESS, status(only().perform(read)));
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(memory == (Bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}));
    std::filesystem::remove(path);
}

/// Of an address the cache's key has the first byte alone, which many drives share.
TEST_F(DriveRoom, TellsTheWearOfEachDriveWithTheReplyCacheOn) {
    struct CacheOn {
        CacheOn() {
            SetCommandCacheState(true);
            SetDefaultCacheFlag(true);
        }
        ~CacheOn() {
            SetCommandCacheState(false);
            ClearModRootCache();
        }
    } const cacheOn;
    discover(oneController(json::parse(R"({"drives": [
        {"name": "a", "address": "0000004000000001", "interface": "sas_ssd", "wear": {"percent": 7, "power_cycles": 33}},
        {"name": "b", "address": "0000004000000002", "interface": "sas_ssd", "wear": {"percent": 100, "power_cycles": 44}},
        {"name": "c", "address": "0000004000000003", "interface": "sata_ssd", "wear": {"percent": 8, "power_cycles": 55}},
        {"name": "d", "address": "0000004000000004", "interface": "sata_ssd", "wear": {"percent": 9, "power_cycles": 66}}]})")));
    ASSERT_TRUE(GetCacheHasContentsForDevice(dynamic_cast<Schema::ArrayController&>(only()).handle()));
    for (auto const& [number, wear] :
         {std::pair{"0", "7 33"}, {"1", "100 44"}, {"2", "8 55"}, {"3", "9 66"}}) {
        EXPECT_TRUE(drive(number)->perform(OperationPointer(new Operations::ReadSSDInfo)));
        EXPECT_EQ(wear, attribute(*drive(number), "ATTR_NAME_EXINFO_SSD_UTILIZATION") + " " +
                            attribute(*drive(number), "ATTR_NAME_EXINFO_POWER_CYCLES"));
    }
}

/// Controllers with the oldest maps name a drive by its number, all others by its place behind 128.
TEST_F(DriveRoom, AsksForADriveByTheIndexThatTheControllersMapsHave) {
    for (auto const& [limit, block] :
         {std::pair{32, "26000500000015080000 in 2048"}, {33, "26008500000015080000 in 2048"}}) {
        json machineOf = oneController(json::parse(R"({"drives": [{"name": "five", "index": 5}]})"));
        machineOf["devices"][0]["identify"]["wMaximumPhysicalDevicesSupported"] = limit;
        discover(machineOf);
        EXPECT_EQ(1U, sent("00000015080000 in 2048")) << limit;
        EXPECT_EQ(1U, sent(block)) << limit;
    }
}

/// On the controller's handle the firmware of a drive without a handle would go to the controller.
TEST_F(DriveRoom, SendsNothingToADriveThatTheListOfDevicesDoesNotHave) {
    discover(oneController(json::parse(R"({"drives": [{"name": "listed"}]})")));
    auto const answers = std::make_unique<Answers>(*door);
    Bytes identify(512);
    put(identify, 5, "6.40");
    identify[54] = 0x01;
    identify[156] = 128;
    identify[197] = 2;
    answers->management[{0x11, 0, 0}] = identify;
    EXPECT_TRUE(only().perform(OperationPointer(new Operations::DiscoverPhysicalDrive)));
    DevicePointer const unlisted = drive("0");
    std::size_t const before = journalSize();
    for (char const* type : {"SCSI_WRITE_BUFFER", "ATA_PASSTHRU_DOWNLOAD_MICROCODE"}) {
        OperationPointer const flash(new Operations::WriteFlashPhysicalDrive);
        Bytes const image(512, 0xA5);
        flash->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BUFFER_ADDRESS",
                           std::to_string(reinterpret_cast<std::uintptr_t>(image.data())).c_str());
        flash->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_BUFFER_SIZE", "512");
        flash->SetArgument(Core::DeviceOperation::eSET, "ATTR_NAME_FLASH_TYPE",
                           (std::string("ATTR_VALUE_FLASH_TYPE_") + type).c_str());
        auto const result = unlisted->perform(flash);
        EXPECT_FALSE(result) << type;
        EXPECT_EQ("2", attribute(result, "ATTR_NAME_LOW_LEVEL_STATUS")) << type << ": there is no such node";
    }
    EXPECT_EQ(before, journalSize());
}

/// Two looks at a place tell of its drives: one that makes the box, and one that makes its cage; and each of
/// their parents asks the controller. Whichever of them fails or is cut, also behind the fixed part of its
/// record, no drive may be lost, or be there twice: their number decides what goes into a controller's
/// memory.
TEST_F(DriveRoom, FindsEachDriveOnceWhicheverLookFails) {
    struct Row {
        char const* serial;  ///< without one a box is there once for each of its paths
        char const* command;
        int looks;  ///< of two discoveries, at least
        char const* action;
    };
    static Row const rows[] = {
        {"", "0x65", 9, R"({"command_status": 4})"},
        {"BOX1", "0x65", 7, R"({"command_status": 4})"},
        {"BOX1", "0x65", 7, R"({"truncate": 300})"},
        {"BOX1", "0x65", 7, R"({"truncate": 1030})"},
        {"BOX1", "0x11", 14, R"({"truncate": 520})"},
        // The first ask of all decides for how much is asked from then on.
        {"BOX1", "0x11", 7, R"({"scsi_status": 2, "sense": [6, 41, 0]})"},
        {"BOX1", "0x65", 7, R"({"scsi_status": 2, "sense": [6, 41, 0]})"},
    };
    std::set<std::string> const numbers = {"0", "1", "2", "3", "4", "130", "131", "132"};
    json drives = json::array();
    for (std::string const& number : numbers)
        drives.push_back({{"name", "d" + number}, {"index", std::stoi(number)}});
    for (Row const& row : rows) {
        json scenario = oneController(json::parse(R"({"boxes": [
            {"bus": 8, "target": 0, "number": 1, "bays": 8, "drives": [1, 2, 4, 130, 131],
             "paths": [{"bus": 9, "target": 0, "number": 1}]}]})"));
        scenario["devices"][0]["drives"] = drives;
        scenario["devices"][0]["boxes"][0]["serial"] = row.serial;
        for (int look = 1; look <= row.looks; ++look) {
            SCOPED_TRACE(row.serial + (" " + std::to_string(look)) + row.command + row.action);
            start(scenario);
            addFault((std::string(R"({"match": {"command": ")") + row.command + R"(", "nth": )" +
                      std::to_string(look) + R"(}, "action": )" + row.action + "}")
                         .c_str());
            for (int pass = 0; pass < 2; ++pass) {
                discover();
                std::multiset<std::string> found;
                for (DevicePointer const& each : allBelow(only(), "PHYSICAL_DRIVE"))
                    found.insert(attribute(*each, "ATTR_NAME_DEVICE_NUMBER"));
                EXPECT_EQ(std::multiset<std::string>(numbers.begin(), numbers.end()), found) << pass;
            }
        }
    }
}

/// Firmware that tells more than it brings is served where nothing of that is needed.
TEST_F(DriveRoom, NeedsNoMoreOfARecordThanItsMaps) {
    json scenario = oneController(json::parse(R"({"identify": {"dwTotalStructureLength": 1024},
        "drives": [{"name": "a"}, {"name": "b"}],
        "boxes": [{"bus": 8, "target": 0, "number": 1, "bays": 8, "drives": [1],
                   "bus_parameters": {"dwTotalStructureLength": 4096}}]})"));
    for (int const came : {512, 480}) {
        start(scenario);
        addFault((R"({"match": {"command": "0x11"}, "action": {"truncate": )" + std::to_string(came) + "}}")
                     .c_str());
        addFault(R"({"match": {"command": "0x65"}, "action": {"truncate": 1024}})");
        discover();
        EXPECT_EQ(2U, allBelow(only(), "PHYSICAL_DRIVE").size()) << came;
        EXPECT_EQ("ATTR_VALUE_TYPE_DRIVE_CAGE", attribute(*drive("1")->pParent(), "ATTR_NAME_TYPE")) << came;
    }
}

/// Behind 128 devices the configuration's maps stand elsewhere.
TEST_F(DriveRoom, TellsTheRolesOfDrivesInExtendedMaps) {
    json scenario =
        oneController({{"drives", json::array()}, {"logical_drives", json::array({json::object()})}});
    for (int i = 0; i < 140; ++i)
        scenario["devices"][0]["drives"].push_back({{"name", "d" + std::to_string(i)}});
    for (auto const& [number, role] : {std::pair{0, "data"}, {130, "data"}, {127, "spare"}, {135, "spare"}})
        scenario["devices"][0]["drives"][static_cast<unsigned>(number)]["role"] = role;
    discover(scenario);
    ASSERT_EQ(140U, allBelow(only(), "PHYSICAL_DRIVE").size());
    for (auto const& [number, role] : {std::pair{"0", "DATA"},
                                       {"130", "DATA"},
                                       {"127", "SPARE"},
                                       {"135", "SPARE"},
                                       {"2", "UNASSIGNED"},
                                       {"128", "UNASSIGNED"},
                                       {"139", "UNASSIGNED"}}) {
        EXPECT_EQ(std::string("ATTR_VALUE_DRIVE_TYPE_") + role,
                  attribute(*drive(number), "ATTR_NAME_DRIVE_TYPE"))
            << number;
    }
}

/// A drive's identity is asked for anew for two minutes; what a run can do without, twice.
TEST_F(DriveRoom, DoesNotWaitLongForWhatItCanDoWithout) {
    start(oneController(json::parse(R"({"identify": {"dwYetMoreControllerFlags": "0x20000001"},
        "drives": [{"name": "a", "erase": {"status": 2, "pattern": 1, "percent": 40}}]})")));
    for (char const* code : {"0xA0", "0xE5"}) {
        addFault((std::string(R"({"match": {"command": ")") + code +
                  R"("}, "action": {"scsi_status": 2, "sense": [2, 4, 1]}})")
                     .c_str());
    }
    discover();
    auto const count = [&](char const* end) {
        auto const lines = exchanges();
        return std::count_if(lines.begin(), lines.end(),
                             [&](std::string const& line) { return line.find(end, 12) == 12; });
    };
    EXPECT_EQ(3, count("a0"));
    EXPECT_EQ(3, count("e5"));
}

TEST_F(DriveRoom, HasDrivesBehindPlainAdapters) {
    discover(json::parse(R"({"devices": [{"name": "hba", "kind": "csmi_adapter",
        "pci": {"address": "0000:05:00.0", "driver": "mpt2sas"},
        "phys": [
          {"kind": "expander", "sas_address": "51E5C0A000000100", "phys": [
            {"kind": "enclosure_processor", "sas_address": "51E5C0A000000110", "name": "sep",
             "product": "ENCL 08 SEP", "port": "1E", "box": 1},
            {"kind": "drive", "sas_address": "51E5C0A000000120", "name": "sas", "vendor": "VQ",
             "product": "EG0300SPIN", "revision": "HP01", "serial": "SN-1"},
            {"kind": "drive", "sas_address": "51E5C0A000000121", "name": "sata", "interface": "sata_ssd",
             "product": "MB4000SATA", "revision": "HPG20001", "serial": "SN-2"}]},
          {"kind": "drive", "sas_address": "51E5C0A000000130", "name": "alone"},
          {"kind": "drive", "sas_address": "0000000000000000", "name": "nowhere"}]}]})"));
    auto const adapters = below(*root, "HBA");
    ASSERT_EQ(1U, adapters.size());
    Core::Device& adapter = *adapters[0];
    using Operations::DiscoverNonVaultlinePhysicalDrive;
    EXPECT_TRUE(adapter.perform(OperationPointer(new DiscoverNonVaultlinePhysicalDrive)));
    auto const drives = allBelow(adapter, "NON_VAULTLINE_PHYSICAL_DRIVE");
    ASSERT_EQ(3U, drives.size()) << "none without an address";
    struct Row {
        char const* name;
        char const* sas;
        char const* sata;
    };
    static Row const rows[] = {
        {"WWID", "51E5C0A000000120", "51E5C0A000000121"},
        {"VENDOR_ID", "VQ", "ATA"},
        {"DRIVE_MODEL", "EG0300SPIN", "MB4000SATA"},
        {"SERIAL_NUMBER", "SN-1", "SN-2"},
        {"FIRMWARE_REVISION", "HP01", "HPG20001"},
        {"INTERFACE", "ATTR_VALUE_INTERFACE_SAS", "ATTR_VALUE_INTERFACE_SATA_SSD"},
    };
    auto const of = [&](char const* address) -> Core::Device& {
        for (DevicePointer const& each : drives)
            if (attribute(*each, "ATTR_NAME_WWID") == address) return *each;
        throw std::runtime_error(address);
    };
    for (Row const& row : rows) {
        std::string const name = std::string("ATTR_NAME_") + row.name;
        EXPECT_EQ(row.sas, attribute(of("51E5C0A000000120"), name.c_str())) << row.name;
        EXPECT_EQ(row.sata, attribute(of("51E5C0A000000121"), name.c_str())) << row.name;
    }
    EXPECT_TRUE(of("51E5C0A000000121").perform(OperationPointer(new Operations::ReadSSDInfo)));

    // The box has the drives that share its processors' expander.
    EXPECT_TRUE(adapter.perform(OperationPointer(new Operations::DiscoverStorageEnclosure)));
    auto const boxes = allBelow(adapter, "STORAGE_ENCLOSURE");
    ASSERT_EQ(1U, boxes.size());
    EXPECT_TRUE(boxes[0]->perform(OperationPointer(new DiscoverNonVaultlinePhysicalDrive)));
    EXPECT_EQ(2U, allBelow(*boxes[0], "NON_VAULTLINE_PHYSICAL_DRIVE").size());
}

/// Half an identity, or none, isn't published: what INQUIRY tells is.
TEST_F(DriveRoom, TellsOfAnAtaDriveWithoutAnIdentityWhatInquiryTells) {
    for (char const* action : {R"({"scsi_status": 2, "sense": [11, 0, 0]})", R"({"truncate": 50})", ""}) {
        SCOPED_TRACE(action);
        discover(json::parse(R"({"devices": [{"name": "hba", "kind": "csmi_adapter",
            "pci": {"address": "0000:05:00.0", "driver": "mpt2sas"},
            "phys": [{"kind": "drive", "sas_address": "51E5C0A000000121", "interface": "sata_ssd",
                      "vendor": "ATA", "product": "MB4000SATA", "revision": "HPG20001", "serial": "SN-2"}]}]})"));
        bool const whole = *action == '\0';
        if (!whole)
            addFault((std::string(R"({"match": {"command": "0x85"}, "action": )") + action + "}").c_str());
        Core::Device& adapter = *below(*root, "HBA").at(0);
        EXPECT_TRUE(adapter.perform(OperationPointer(new Operations::DiscoverNonVaultlinePhysicalDrive)));
        auto const drives = allBelow(adapter, "NON_VAULTLINE_PHYSICAL_DRIVE");
        ASSERT_EQ(1U, drives.size());
        for (auto const& [name, value] : {std::pair{"ATTR_NAME_DRIVE_MODEL", "MB4000SATA"},
                                          {"ATTR_NAME_SERIAL_NUMBER", "SN-2"},
                                          {"ATTR_NAME_FIRMWARE_REVISION", whole ? "HPG20001" : "0001"},
                                          {"ATTR_NAME_INTERFACE", whole ? "ATTR_VALUE_INTERFACE_SATA_SSD"
                                                                        : "ATTR_VALUE_INTERFACE_SATA"}}) {
            EXPECT_EQ(value, attribute(*drives[0], name)) << name;
        }
    }
}

}  // namespace
}  // namespace flash_test
