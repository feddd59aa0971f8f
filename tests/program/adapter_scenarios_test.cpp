// What a query shows of controllers of each family, in each state, and of adapters in each status: the
// verbose log's attributes are what the scenario's fields say.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/package_run.h"

namespace {

using nlohmann::json;
using Strings = std::vector<std::string>;

/// The log's list of attributes of the first device, a line each, without blanks around it.
Strings attributesOfFirst(std::string const& log) {
    Strings lines;
    for (std::size_t at = log.find("\nDevice: "); at != std::string::npos;) {
        std::size_t const start = log.find('\n', at + 1);
        if (start == std::string::npos || log.compare(start + 1, 3, "   ") != 0) {
            break;
        }
        lines.push_back(log.substr(start + 4, log.find('\n', start + 1) - start - 4));
        at = start;
    }
    return lines;
}

class AdapterScenarios : public ::testing::Test {
  protected:
    AdapterScenarios() : package("two-controllers") {}

    void query(json const& device) {
        json const machine = {{"devices", json::array({device})}};
        writeText(package.directory() / "machine.json", machine.dump());
        package.resetMachine();
        package.removeLogs();
        EXPECT_EQ(0, package.flash({"-q", "-s"}).status);
        attributes = attributesOfFirst(package.verboseLog());
    }
    void expectHas(Strings const& lines) const {
        for (std::string const& line : lines) {
            EXPECT_NE(attributes.end(), std::find(attributes.begin(), attributes.end(), line)) << line;
        }
    }
    void expectLacks(char const* name) const {
        for (std::string const& line : attributes) {
            EXPECT_NE(0U, line.find(std::string(name) + " = ")) << line;
        }
    }
    static json controller(char const* subsystem, char const* change) {
        json device = json::parse(R"({"name": "only", "kind": "array_controller", "product": "SOME PRODUCT",
            "family": "DOGWOOD", "serial": "SERIAL9", "firmware": {"active": "6.40", "inactive": "6.28"},
            "pci": {"address": "0012:a7:1f.3", "driver": "vqsa", "slot": "23"}})");
        device["pci"]["subsystem_device"] = subsystem;
        device.merge_patch(json::parse(change));
        return device;
    }

    PackageRun package;
    Strings attributes;
};

TEST_F(AdapterScenarios, ControllersOfEachFamilyAndState) {
    static Strings const OK = {"STATUS = OK"};
    struct Row {
        char const* subsystem;
        char const* change;
        Strings has;
        char const* lacks;
    };
    static Row const rows[] = {
        // Families, each with what is its own.
        {"0x3301",
         "{}",
         {"CONTROLLER FIRMWARE FAMILY = ALDER", "SLOT = 0b", "STATUS = OK"},
         "CONTROLLER STATE"},
        {"0x3321",
         R"({"firmware": "2.07"})",
         {"CONTROLLER FIRMWARE FAMILY = ELM", "SURFACE ANALYSIS REQUIRES FW UPDATE = TRUE", "STATUS = OK"},
         "CONTROLLER TEMPERATURE"},
        {"0x3354",
         R"({"subsystem": {"bControllerTemperature": 57}})",
         {"CONTROLLER FIRMWARE FAMILY = DOGWOOD", "CONTROLLER TEMPERATURE = 57", "FIRMWARE VERSION = 6.40",
          "INACTIVE FIRMWARE REVISION = 6.28", "SLOT = 23", "PCI DOMAIN = 0012", "PCI BUS = A7",
          "PCI DEVICE = 1F", "PCI FUNCTION = 03", "CONTROLLER SERIAL NUMBER = SERIAL9",
          "SUBSYSTEM ID HEX = 1E5C3354"},
         "CEDAR HBA FIRMWARE REV"},
        {"0x3373",
         R"({"subsystem": {"bControllerTemperature": 58, "sHBAFirmwareRev": "332e3231"}})",
         {"CONTROLLER FIRMWARE FAMILY = CEDAR", "CONTROLLER TEMPERATURE = 58",
          "CEDAR HBA FIRMWARE REV = 3.21"},
         "SUPERCAP TEMPERATURE"},
        {"0x3397",
         R"({"subsystem": {"bControllerTemperature": 59}})",
         {"CONTROLLER FIRMWARE FAMILY = BIRCH", "ADAPTER TYPE = VAULT_LINE"},
         "CONTROLLER TEMPERATURE"},
        {"0x3391",
         "{}",
         {"CONTROLLER FIRMWARE FAMILY = BIRCH", "ADAPTER TYPE = VAULT_HBA"},
         "CONTROLLER STATE"},
        {"0x33B1",
         R"({"firmware": "0123"})",
         {"CONTROLLER FIRMWARE FAMILY = QBX_FIR", "FIRMWARE VERSION = 1.23"},
         "MNP DELAY"},
        {"0x33C1",
         R"({"identify": {"dwEvenMoreControllerFlags": 1024}})",
         {"CONTROLLER FIRMWARE FAMILY = QBX_HARRIER", "IS TOFU SUPPORTED = TRUE"},
         "CONTROLLER STATE"},
        // States.
        {"0x3329",
         R"({"firmware": "2.04"})",
         {"STATUS = NOT_OK", "CONTROLLER STATE = OUTRIDER_204_FIRMWARE_NEEDS_UPGRADE"},
         "no such"},
        {"0x7777",
         "{}",
         {"STATUS = NOT_OK", "CONTROLLER STATE = CONTROLLER_NOT_RECOGNIZED", "CONTROLLER NAME = GENERIC"},
         "no such"},
        {"0x3354",
         R"({"identify": {"dwEvenMoreControllerFlags": 256}})",
         {"STATUS = NOT_OK", "CONTROLLER STATE = UNSUPPORTED_ZMR_MODE"},
         "no such"},
        {"0x3354",
         R"({"identify": {"bControllerMode": 7}})",
         {"STATUS = NOT_OK", "CONTROLLER STATE = UNSUPPORTED_CONTROLLER_MODE"},
         "CONTROLLER MODE"},
        {"0x3354",
         R"({"identify": {"bControllerMode": 1}})",
         {"STATUS = OK", "CONTROLLER MODE = HBA"},
         "CONTROLLER SERIAL NUMBER"},
        {"0x3354",
         R"({"logical_drives": [{"configuration": {"bConfigModMajorVer": 17}}]})",
         {"STATUS = NOT_OK", "CONTROLLER STATE = NEED_UPDATED_STORAGEMOD_VERSION"},
         "no such"},
        {"0x3379",
         R"({"identify": {"dwEncryptionStatus": 1}})",
         {"ENCRYPTION CONFIG LOCKOUT = TRUE"},
         "no such"},
        {"0x3354",
         R"({"identify": {"dwEncryptionStatus": 48}})",
         {"ENCRYPTION FW LOCKED = TRUE", "ENCRYPTION CONTROLLER LOCKED = TRUE"},
         "ENCRYPTION CONFIG LOCKOUT"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(std::string(row.subsystem) + " " + row.change);
        query(controller(row.subsystem, row.change));
        expectHas(row.has);
        expectLacks(row.lacks);
    }
    // A controller that doesn't identify itself.
    package.removeLogs();
    EXPECT_EQ(0, package
                     .flash({"-q", "-s"}, "",
                            {R"({"match": {"command": "0x11"}, "action": {"command_status": 4}})"})
                     .status);
    attributes = attributesOfFirst(package.verboseLog());
    expectHas({"STATUS = NOT_OK", "CONTROLLER STATE = CONTROLLER_COMMUNICATION_ERROR"});
}

TEST_F(AdapterScenarios, AdaptersInEachStatus) {
    struct Row {
        int status;
        char const* change;
        Strings has;
    };
    static Row const rows[] = {
        {1,
         R"({"csmi_slot": 5, "serial": "SN 1", "firmware_version": [1, 20, 3, 4], "rom_version": [9, 8, 7, 6]})",
         {"SLOT = 5", "SERIAL NUMBER = SN 1", "FIRMWARE VERSION = 1.20.3.4", "OPTION ROM VERSION = 9.8.7.6"}},
        {2, "{}", {"SLOT = UNKNOWN"}},
        {3, "{}", {}},
        {4, "{}", {}},
        {77, "{}", {}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.status);
        json device = json::parse(R"({"name": "hba", "kind": "csmi_adapter",
            "pci": {"address": "0000:05:00.0", "driver": "mpt2sas", "subsystem_device": "0x3501"}})");
        device["status"] = row.status;
        device.merge_patch(json::parse(row.change));
        query(device);
        // Whatever it says of itself, an adapter that answers is shown as one that can be worked with.
        expectHas({"TYPE = HBA", "ADAPTER TYPE = CSMI_HBA", "STATUS = OK", "BUS TYPE = PCI"});
        expectHas(row.has);
    }
    // Controllers that don't answer aren't shown, and the others are.
    query(controller("0x3354", R"({"node_present": false})"));
    EXPECT_TRUE(attributes.empty());
}

}  // namespace
