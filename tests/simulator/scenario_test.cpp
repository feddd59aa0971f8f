/// Scenario files: what a machine is made of, and what is refused in which words.

#include <fstream>

#include "simulator/files.h"
#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

namespace fs = std::filesystem;

/// A change to the sound scenario of two controllers, as a JSON patch, and the words of its refusal.
struct BadScenario {
    char const* name;
    char const* patch;
    char const* words;
};

class HostileScenario : public MachineTest, public ::testing::WithParamInterface<BadScenario> {};

TEST_P(HostileScenario, IsRefusedInClearWords) {
    json const scenario = twoControllers().patch(json::parse(GetParam().patch));
    try {
        make(scenario);
        FAIL() << "it was taken";
    } catch (simulator::ScenarioError const& error) {
        EXPECT_STREQ(GetParam().words, error.what());
    }
    EXPECT_FALSE(fs::exists(place())) << "nothing was made";
}

#define REPLACE(path, value) R"([{"op": "add", "path": ")" path R"(", "value": )" value "}]"
INSTANTIATE_TEST_SUITE_P(
    All, HostileScenario,
    ::testing::Values(
        BadScenario{"NotAnObject", REPLACE("", "[1]"), "scenario: found a list, expected an object"},
        BadScenario{"NoDevices", R"([{"op": "remove", "path": "/devices"}])",
                    "scenario: found no \"devices\", expected one"},
        BadScenario{"DevicesNoList", REPLACE("/devices", "7"), "scenario.devices: found 7, expected a list"},
        BadScenario{
            "UnknownKey", REPLACE("/devices/0/famly", "1"),
            "scenario.devices[0]: found the key \"famly\", expected one of board_power, boxes, cache, "
            "cache_firmware, cache_module, collect_limit, controller_parameters, drives, encryption, family, "
            "fast_path, firmware, i2c_nvram, identify, instance, kind, layout, logical_drives, mnp_status, "
            "model, name, node_present, nvram, pci, physical_devices, power_mode, product, "
            "redundant_parameters, "
            "serial, subsystem, supports_tofu, surface_status, tapes, volumes"},
        BadScenario{"NvramBehindItsEnd", REPLACE("/devices/0/nvram", "{\"2048\": 1}"),
                    "scenario.devices[0].nvram, an offset: found 2048, expected a number from 0 to 2047, or "
                    "such a number as a text like "
                    "\"0x1F\""},
        BadScenario{"NvramOffsetIsNone", REPLACE("/devices/0/nvram", "{\"-1\": 1}"),
                    "scenario.devices[0].nvram, an offset: found \"-1\", expected a number from 0 to 2047, "
                    "or such a number as a text like "
                    "\"0x1F\""},
        BadScenario{"NvramByteTooGreat", REPLACE("/devices/0/nvram", "{\"7\": 256}"),
                    "scenario.devices[0].nvram.7: found 256, expected a number from 0 to 255, or such a "
                    "number as a text like "
                    "\"0x1F\""},
        BadScenario{"UnknownKind", REPLACE("/devices/1/kind", "\"toaster\""),
                    "scenario.devices[1].kind: found \"toaster\", expected one of array_controller, "
                    "csmi_adapter, pci_function"},
        BadScenario{"NameIsAPath", REPLACE("/devices/0/name", "\"../../etc\""),
                    "scenario.devices[0].name: found \"../../etc\", expected a name of letters, digits, '.', "
                    "'_' and '-'"},
        BadScenario{"NameTwice", REPLACE("/devices/1/name", "\"one\""),
                    "scenario.devices[1]: found the name \"one\" a second time, expected each device to have "
                    "its own"},
        BadScenario{"AddressTwice", REPLACE("/devices/1/pci/address", "\"0000:0b:00.0\""),
                    "scenario.devices[1]: found the PCI address \"0000:0b:00.0\" a second time, expected "
                    "each device to "
                    "have its own"},
        BadScenario{"Address", REPLACE("/devices/0/pci/address", "\"0b:00.0\""),
                    "scenario.devices[0].pci.address: found \"0b:00.0\", expected a PCI address like "
                    "\"0000:0b:00.0\", in "
                    "lower case"},
        BadScenario{"VendorTooGreat", REPLACE("/devices/0/pci/vendor", "65536"),
                    "scenario.devices[0].pci.vendor: found 65536, expected a number from 0 to 65535, or such "
                    "a number as a "
                    "text like \"0x1F\""},
        BadScenario{"VendorNegative", REPLACE("/devices/0/pci/vendor", "-1"),
                    "scenario.devices[0].pci.vendor: found -1, expected a number from 0 to 65535, or such a "
                    "number as a "
                    "text like \"0x1F\""},
        BadScenario{
            "Driver", REPLACE("/devices/0/pci/driver", "\"ahci\""),
            "scenario.devices[0].pci.driver: found \"ahci\", expected a driver that gives the device a node: "
            "xqrth, vqsa, vqvsa, vqvsac, vqvsag, vqvsaw, vqdsa, vqdsac, vqdsag, vqdsaw, vqahcisr"},
        BadScenario{"SysfsValue", REPLACE("/devices/0/pci/sysfs", "{\"vendor\": 5}"),
                    "scenario.devices[0].pci.sysfs.vendor: found 5, expected the file's text, null for no "
                    "such file, or "
                    "{\"dangling\": true}"},
        BadScenario{"SysfsName", REPLACE("/devices/0/pci/sysfs", "{\"../x\": \"5\"}"),
                    "scenario.devices[0].pci.sysfs.../x: not the name of a file"},
        BadScenario{
            "FamilyTooLong", REPLACE("/devices/0/family", "\"ABCDEFGHIJKLMNOPQ\""),
            "scenario.devices[0].family: found \"ABCDEFGHIJKLMNOPQ\", expected a text of at most 16 bytes"},
        BadScenario{"NoFirmware", REPLACE("/devices/0/firmware", "\"\""),
                    "scenario.devices[0].firmware: found \"\", expected versions that aren't empty"},
        BadScenario{"NoSuchMember", REPLACE("/devices/0/identify", "{\"bNothing\": 1}"),
                    "scenario.devices[0].identify.bNothing: no such member of identify controller; expected "
                    "a member or "
                    "\"@<offset>\""},
        BadScenario{"MemberTooGreat", REPLACE("/devices/0/identify", "{\"bControllerMode\": 256}"),
                    "scenario.devices[0].identify.bControllerMode: found 256, expected a number from 0 to "
                    "255, or such a "
                    "number as a text like \"0x1F\""},
        BadScenario{"MemberTooLong", REPLACE("/devices/0/identify", "{\"sRAMFirmwareRev\": \"12.34\"}"),
                    "scenario.devices[0].identify.sRAMFirmwareRev: found \"12.34\", expected a text of at "
                    "most 4 bytes"},
        BadScenario{"OffsetTooGreat", REPLACE("/devices/0/identify", "{\"@65536\": \"00\"}"),
                    "scenario.devices[0].identify.@65536: found the key \"@65536\", expected \"@\" and a "
                    "decimal offset "
                    "below 65536"},
        BadScenario{"HexadecimalOdd", REPLACE("/devices/0/mnp_status", "{\"@0\": \"abc\"}"),
                    "scenario.devices[0].mnp_status.@0: found \"abc\", expected at most 65536 bytes as "
                    "hexadecimal text"},
        BadScenario{"EncryptionPage", REPLACE("/devices/0/encryption", "{\"2\": {}}"),
                    "scenario.devices[0].encryption.2: found page \"2\", expected 1, 3, 6, 7, 8, 9 or 10"},
        BadScenario{"TwoActions", REPLACE("/faults", R"([{"action": {"errno": "EIO", "delay": 1}}])"),
                    "scenario.faults[0].action: found 2 actions, expected exactly one of errno, scsi_status, "
                    "command_status, truncate, corrupt, random_reply, delay, vanish"},
        BadScenario{
            "UnknownErrno", REPLACE("/faults", R"([{"action": {"errno": "EWHAT"}}])"),
            "scenario.faults[0].action.errno: found \"EWHAT\", expected the name of an errno, like \"EIO\""},
        BadScenario{"NthZero", REPLACE("/faults", R"([{"match": {"nth": 0}, "action": {"errno": 5}}])"),
                    "scenario.faults[0].match.nth: found 0, expected a number from 1 to "
                    "18446744073709551615, or such a "
                    "number as a text like \"0x1F\""},
        BadScenario{"Fraction", REPLACE("/faults", R"([{"action": {"truncate": 1.5}}])"),
                    "scenario.faults[0].action.truncate: found 1.5, expected a fraction from 0 to below 1, "
                    "or a number of "
                    "bytes"},
        BadScenario{"SenseOfTwo", REPLACE("/faults", R"([{"action": {"scsi_status": 2, "sense": [5, 36]}}])"),
                    "scenario.faults[0].action.sense: found a list, expected a list of three numbers: sense "
                    "key, ASC, "
                    "ASCQ"}),
    [](auto const& each) { return each.param.name; });

class ScenarioFiles : public MachineTest {
  protected:
    std::string refusalOf(std::string const& text) {
        fs::path const file = directory.path() / "s.json";
        simulator::writeText(file, text);
        try {
            simulator::Machine::create(place(), file);
        } catch (simulator::ScenarioError const& error) {
            std::string words = error.what();
            EXPECT_EQ(0U, words.find(file.string() + ": ")) << words;
            return words.substr(std::min(words.size(), file.string().size() + 2));
        }
        return "taken";
    }
};

TEST_F(ScenarioFiles, ThatAreNoJsonAreNamedWithTheLine) {
    EXPECT_EQ(0U, refusalOf("").find("not a JSON document: parse error at line 1"));
    EXPECT_EQ(0U, refusalOf("{\n\"devices\": [\n}").find("not a JSON document: parse error at line 3"));
    EXPECT_EQ(0U, refusalOf("{\"machine\": \"\xFF\"}").find("not a JSON document"));
    EXPECT_EQ(0U, refusalOf(std::string(100000, '[')).find("not a JSON document"));
    EXPECT_THROW(simulator::Machine::create(place(), directory.path() / "absent"), simulator::ScenarioError);
}

TEST_F(ScenarioFiles, OverAnOlderMachineMakeANewOne) {
    make(twoControllers());
    send(ONE, order(TOGGLE));
    make(twoControllers());
    EXPECT_EQ("6.40 6.40 6.28 ok", firmware("one"));
    EXPECT_EQ(1U, machine->journal().size());
}

TEST_F(ScenarioFiles, DontReplaceADirectoryThatIsNoMachine) {
    fs::create_directories(place());
    simulator::writeText(place() / "thesis.txt", "years of work");
    EXPECT_THROW(make(twoControllers()), simulator::MachineError);
    EXPECT_TRUE(fs::exists(place() / "thesis.txt"));
    simulator::writeText(directory.path() / "file", "");
    EXPECT_THROW(simulator::Machine::create(directory.path() / "file", twoControllers()),
                 simulator::MachineError);
    EXPECT_THROW(simulator::Machine{directory.path()}, simulator::MachineError) << "nor is it opened";
}

using FileTree = MachineTest;

std::string contents(fs::path const& file) {
    return simulator::readText(file);
}

TEST_F(FileTree, ShowsTheFunctionsAsAKernelDoes) {
    make(twoControllers());
    fs::path const devices = machine->root() / "sys/bus/pci/devices";
    fs::path const one = devices / "0000:0b:00.0";
    EXPECT_TRUE(fs::is_symlink(one));
    EXPECT_EQ("0x010400\n", contents(one / "class"));
    EXPECT_EQ("0x1e5c\n", contents(one / "vendor"));
    EXPECT_EQ("0x3239\n", contents(one / "device"));
    EXPECT_EQ("0x1e5c\n", contents(one / "subsystem_vendor"));
    EXPECT_EQ("0x3354\n", contents(one / "subsystem_device"));
    EXPECT_EQ("xqrth", fs::read_symlink(one / "driver").filename());
    EXPECT_TRUE(fs::is_directory(one / "driver"));
    EXPECT_TRUE(fs::is_directory(one / "disk0/xqrth0/c0d0"));
    EXPECT_FALSE(fs::exists(one / "vq_ssd_smart_path_status"));
    EXPECT_EQ("0000:0b:00\n", contents(machine->root() / "sys/bus/pci/slots/1/address"));
    fs::path const two = devices / "0000:13:00.0";
    EXPECT_TRUE(fs::is_directory(two / "host0/target0:0:0/0:0:0:0/scsi_generic/sg0"));
    EXPECT_EQ("12\n", contents(two / "host0/target0:0:0/0:0:0:0/type"));
    EXPECT_EQ("disabled\n", contents(two / "vq_ssd_smart_path_status"));
    EXPECT_TRUE(fs::exists(machine->root() / "dev/xqrth/c0d0"));
    EXPECT_TRUE(fs::exists(machine->root() / "dev/sg0"));
    EXPECT_TRUE(fs::is_directory(machine->root() / "sys/block"));
    EXPECT_TRUE(fs::is_directory(machine->root() / "var/ksl"));
}

TEST_F(FileTree, OldLayoutAndBadEntries) {
    json scenario = twoControllers();
    scenario["devices"][0]["layout"] = "old";
    scenario["devices"][0]["instance"] = 3;
    scenario["devices"][0]["node_present"] = false;
    scenario["devices"][1]["pci"]["sysfs"] = json::parse(
        R"({"vendor": "0x1", "class": null, "driver": {"dangling": true}, "type": "0", "extra": "more"})");
    scenario["devices"].push_back(json::parse(
        R"({"name": "disk", "kind": "pci_function", "pci": {"address": "0001:00:1f.2", "class": "0x010601", "driver": "ahci"}})"));
    make(scenario);
    fs::path const devices = machine->root() / "sys/bus/pci/devices";
    EXPECT_TRUE(fs::is_directory(devices / "0000:0b:00.0/block:xqrth!c3d0"));
    EXPECT_FALSE(fs::exists(devices / "0000:0b:00.0/disk0"));
    EXPECT_FALSE(fs::exists(machine->root() / "dev/xqrth/c3d0"));
    EXPECT_EQ(ENOENT, machine->openNode("/dev/xqrth/c3d0"));
    fs::path const two = devices / "0000:13:00.0";
    EXPECT_EQ("0x1\n", contents(two / "vendor"));
    EXPECT_FALSE(fs::exists(two / "class"));
    EXPECT_TRUE(fs::is_symlink(two / "driver"));
    EXPECT_FALSE(fs::exists(two / "driver"));
    EXPECT_EQ("0\n", contents(two / "host0/target0:0:0/0:0:0:0/type"));
    EXPECT_FALSE(fs::exists(two / "type"));
    EXPECT_EQ("more\n", contents(two / "extra"));
    EXPECT_EQ("ahci", fs::read_symlink(devices / "0001:00:1f.2/driver").filename());
    EXPECT_EQ("pci_function", device("disk").kind);
    EXPECT_EQ("", device("disk").node);
}

}  // namespace
}  // namespace simulator_test
