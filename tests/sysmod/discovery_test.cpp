#include "sysmod/discovery.h"

#include <gtest/gtest.h>

#include "sysmod/crc32.h"
#include "sysmod/device_handle.h"
#include "sysmod/pci_function.h"
#include "tests/sysmod/fake_system.h"

using namespace Core::SysMod;
using Interface::SysMod::Discovery::HandleList;

namespace {

constexpr char PCI[] = "/sys/bus/pci/devices/";

class AdapterDiscovery : public ::testing::Test {
  protected:
    void addFunction(std::string const& location, std::string const& driver) {
        std::string const base = PCI + location;
        system.files[base + "/class"] = "0x010400\n";
        system.files[base + "/vendor"] = "0x1e5c\n";
        system.files[base + "/device"] = "0x323a\n";
        system.files[base + "/subsystem_vendor"] = "0x1e5c\n";
        system.files[base + "/subsystem_device"] = "0x3354\n";
        system.links[base + "/driver"] = "../../../bus/pci/drivers/" + driver;
    }

    void addGenericNode(std::string const& below, std::string const& name, std::string const& type) {
        system.files[PCI + below + "/type"] = type;
        system.files[PCI + below + "/scsi_generic/" + name + "/dev"] = "21:3\n";
        system.nodes.insert("/dev/" + name);
    }

    void discover() { Interface::SysMod::Discovery::DiscoverStorageAdapters(controllers, csmi, plain); }

    static std::string text(HandleList const& handles, Property place) {
        PropertyTable table;
        toPropertyTable(*handles.begin(), table);
        return table[place].c_str();
    }

    FakeSystem system;
    HandleList controllers;
    HandleList csmi;
    HandleList plain;
};

TEST_F(AdapterDiscovery, BlockDriverControllerOnNewAndOldKernels) {
    for (char const* node : {"/disk0/xqrth0/c0d0/size", "/block:xqrth!c0d0/size"}) {
        system.files.clear();
        addFunction("0000:0b:00.0", "xqrth");
        system.files[PCI + std::string("0000:0b:00.0") + node] = "0\n";
        system.files["/sys/bus/pci/slots/4/address"] = "0000:0b:00\n";
        system.nodes = {"/dev/xqrth/c0d0"};
        controllers.clear();
        discover();
        ASSERT_EQ(controllers.size(), 1U) << node;
        EXPECT_EQ(text(controllers, PciIdentity), "1E5C323A");
        EXPECT_EQ(text(controllers, SubsystemIdentity), "1E5C3354");
        EXPECT_EQ(text(controllers, UniqueKey), "00000B0000");
        EXPECT_EQ(text(controllers, NodePath), "/dev/xqrth/c0d0");
        EXPECT_EQ(text(controllers, AdapterSlot), "S:4");
        EXPECT_EQ(text(controllers, AdapterStatus), "OK");
        EXPECT_EQ(text(controllers, PciLocation), "0000:0b:00.0");
        EXPECT_EQ(text(controllers, FastPath), "NO");
        EXPECT_EQ(text(controllers, Route), "QRTH:0000000000000000");
        EXPECT_EQ(text(controllers, DeviceType), "ARRAY_CONTROLLER");
    }
    unsigned char const inquiry[6] = {0x12, 0, 0, 0, 0x5F, 0};
    ASSERT_EQ(system.calls.size(), 2U);
    EXPECT_EQ(system.calls[0].request, 0x2285UL);
    EXPECT_EQ(system.calls[0].record[8], sizeof inquiry);
    EXPECT_EQ(numberAt<std::uint32_t>(system.calls[0].record, 12), 95U);
}

TEST_F(AdapterDiscovery, GenericNodesAreFoundAtAnyDepthByTheirType) {
    struct Row {
        char const* below;
        char const* type;
        bool isController;
    };
    static Row const rows[] = {
        {"0000:0c:00.0/host2/target2:0:0/2:0:0:0", "12\n", true},
        {"0000:0c:00.0/2:0:0:0", "12\n", true},
        {"0000:0c:00.0/host2/port-2:0/end_device-2:0/target2:0:0/2:0:0:0", "12\n", true},
        {"0000:0c:00.0/host2/target2:0:0/2:0:0:0", "0\n", false},
        {"0000:0c:00.0/host2/target2:0:0/2:0:0:0", "1\n", false},
    };
    for (Row const& row : rows) {
        system.files.clear();
        addFunction("0000:0c:00.0", "vqsa");
        addGenericNode(row.below, "sg5", row.type);
        controllers.clear();
        plain.clear();
        discover();
        EXPECT_EQ(controllers.size(), row.isController ? 1U : 0U) << row.below << row.type;
        ASSERT_EQ(plain.size(), row.isController ? 0U : 1U);
        if (row.isController) {
            EXPECT_EQ(text(controllers, NodePath), "/dev/sg5");
        } else {
            EXPECT_EQ(text(plain, DeviceType), "DUMB_HBA");
        }
    }
}

TEST_F(AdapterDiscovery, AnArrayBehindASasAdapterIsNotTheAdapter) {
    addFunction("0000:0c:00.0", "mpt2sas");
    addGenericNode("0000:0c:00.0/host2/target2:0:0/2:0:0:0", "sg5", "12\n");
    discover();
    EXPECT_TRUE(controllers.empty());
    ASSERT_EQ(plain.size(), 1U);
    EXPECT_EQ(text(plain, DeviceType), "DUMB_HBA");
}

TEST_F(AdapterDiscovery, FunctionsThatAreNotWhatTheySeemArePassedOver) {
    struct Row {
        char const* file;
        char const* contents;
        bool found;
    };
    static Row const rows[] = {
        {"class", "0x010400\n", true},   {"class", "0xff0000\n", true},
        {"class", "0x020000\n", false},  {"class", "", false},
        {"vendor", "0x1e5\n", false},    {"vendor", "0x1e5c", false},
        {"vendor", "1e5c0000\n", false}, {"device", "0xzzzz\n", false},
        {"subsystem_vendor", "", false}, {"subsystem_device", "0x33541\n", true},
    };
    for (Row const& row : rows) {
        system.files.clear();
        addFunction("0000:0b:00.0", "vqsa");
        system.files[PCI + std::string("0000:0b:00.0/") + row.file] = row.contents;
        addGenericNode("0000:0b:00.0/host0/target0:0:0/0:0:0:0", "sg0", "12\n");
        controllers.clear();
        discover();
        EXPECT_EQ(controllers.size(), row.found ? 1U : 0U) << row.file << " " << row.contents;
    }
    for (char const* driver : {"ahci", "xqrth2", ""}) {
        system.links.clear();
        addFunction("0000:0b:00.0", driver);
        controllers.clear();
        plain.clear();
        discover();
        EXPECT_TRUE(controllers.empty() && plain.empty()) << driver;
    }
    system.links.clear();
    discover();
    EXPECT_TRUE(controllers.empty()) << "no driver at all";
}

TEST_F(AdapterDiscovery, AControllerThatDoesNotAnswerHasFailed) {
    addFunction("0000:0b:00.0", "vqsa");
    addGenericNode("0000:0b:00.0/host0/target0:0:0/0:0:0:0", "sg0", "12\n");
    system.answer = [](FakeSystem::Call const&, unsigned char*) { return EIO; };
    discover();
    ASSERT_EQ(controllers.size(), 1U);
    EXPECT_EQ(text(controllers, AdapterStatus), "FAILED");
    EXPECT_EQ(text(controllers, Route), "");
    EXPECT_EQ(text(controllers, AdapterSlot), "UNKNOWN");
    system.nodes.clear();
    controllers.clear();
    discover();
    EXPECT_EQ(text(controllers, AdapterStatus), "FAILED");
}

TEST_F(AdapterDiscovery, WhatBecameOfAControllerIsLogged) {
    addFunction("0000:0b:00.0", "vqsa");
    addGenericNode("0000:0b:00.0/host0/target0:0:0/0:0:0:0", "sg0", "12\n");
    CapturedLog log;
    discover();
    system.answer = [](FakeSystem::Call const&, unsigned char*) { return EIO; };
    discover();
    system.nodes.clear();
    discover();
    for (char const* line : {
             "Discovered Vaultline controller Controller. BaseID: 00000B0000. Node: /dev/sg0. Driver ID: "
             "vqsa",
             "SCSI Inquiry command failed. Code: 5. BaseID: 00000B0000. Node: /dev/sg0",
             "Unable to open node for Vaultline. BaseID: 00000B0000. Node: /dev/sg0",
         }) {
        EXPECT_NE(log.text().find(line), std::string::npos) << line;
    }
}

TEST_F(AdapterDiscovery, FastPathIsReadFromTheFunctionOrTheDevice) {
    struct Row {
        char const* directory;
        char const* contents;
        char const* text;
    };
    static Row const rows[] = {
        {"0000:0b:00.0", "enabled\n", "YES:ENABLED"},
        {"0000:0b:00.0", "disabled\n", "YES:DISABLED"},
        {"0000:0b:00.0/host0/target0:0:0/0:0:0:0", "enabled\n", "YES:ENABLED"},
        {"0000:0b:00.0/host0/target0:0:0/0:0:0:0", "", "YES:DISABLED"},
        {"0000:0b:00.0/host0", "enabled\n", "NO"},
    };
    for (Row const& row : rows) {
        system.files.clear();
        addFunction("0000:0b:00.0", "vqsa");
        addGenericNode("0000:0b:00.0/host0/target0:0:0/0:0:0:0", "sg0", "12\n");
        system.files[std::string(PCI) + row.directory + "/vq_ssd_smart_path_status"] = row.contents;
        controllers.clear();
        discover();
        EXPECT_EQ(text(controllers, FastPath), row.text) << row.directory;
    }
}

TEST_F(AdapterDiscovery, BlockDriverWithoutANodeIsAPlainAdapter) {
    addFunction("0000:0b:00.0", "xqrth");
    discover();
    ASSERT_EQ(plain.size(), 1U);
    EXPECT_EQ(text(plain, DeviceType), "DUMB_HBA");
}

TEST_F(AdapterDiscovery, CsmiAdaptersComeFromTheirReplies) {
    system.nodes = {"/dev/mpt2ctl"};
    system.answer = [](FakeSystem::Call const& call, unsigned char* record) {
        if (numberAt<std::uint32_t>(call.record, 0) != 3) {
            return ENODEV;
        }
        if (call.request == 0xCC770002) {
            record[34] = 0x5C;
            record[35] = 0x34;
            record[32] = 0x5C;
            record[33] = 0x1E;
            record[36] = 6;
            record[40] = 0x0D;
            unsigned char const versions[] = {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7, 0, 8, 0};
            std::copy(std::begin(versions), std::end(versions), record + 154);
        } else if (call.request == 0xCC770003) {
            record[20] = 4;
        } else {
            return EIO;
        }
        return 0;
    };
    discover();
    ASSERT_EQ(csmi.size(), 1U);
    EXPECT_EQ(text(csmi, NodePath), "/dev/mpt2ctl:3");
    EXPECT_EQ(text(csmi, AdapterSlot), "S:6");
    EXPECT_EQ(text(csmi, FirmwareVersion), "1.2.3.4");
    EXPECT_EQ(text(csmi, RomVersion), "5.6.7.8");
    EXPECT_EQ(text(csmi, DriverVersion), "UNKNOWN");
    EXPECT_EQ(text(csmi, AdapterStatus), "POWEROFF");
    EXPECT_EQ(text(csmi, SubsystemIdentity), "1E5C345C");
    EXPECT_EQ(text(csmi, UniqueKey), "00000D0000");
    EXPECT_EQ(text(csmi, DeviceType), "CSMI_HBA");
}

TEST_F(AdapterDiscovery, CsmiStatusSlotAndReturnCode) {
    struct Row {
        unsigned char status;
        unsigned char slotByte;
        unsigned char returnCode;
        char const* text;
        char const* slot;
    };
    static Row const rows[] = {{1, 0, 0, "OK", "S:0"},
                               {2, 6, 0, "FAILED", "S:1542"},
                               {3, 6, 0, "OFFLINE", "S:1542"},
                               {5, 0xFF, 0, "UNKNOWN", "UNKNOWN"},
                               {1, 0, 1, nullptr, nullptr}};
    system.nodes = {"/dev/mpt2ctl"};
    for (Row const& row : rows) {
        system.answer = [&](FakeSystem::Call const& call, unsigned char* record) {
            record[8] = row.returnCode;
            record[call.request == 0xCC770003 ? 20 : 36] =
                call.request == 0xCC770003 ? row.status : row.slotByte;
            record[37] = row.slotByte;
            return numberAt<std::uint32_t>(call.record, 0) == 0 ? 0 : ENODEV;
        };
        csmi.clear();
        discover();
        ASSERT_EQ(csmi.size(), row.text == nullptr ? 0U : 1U);
        if (row.text != nullptr) {
            EXPECT_EQ(text(csmi, AdapterStatus), row.text);
            EXPECT_EQ(text(csmi, AdapterSlot), row.slot);
        }
    }
}

TEST(PciKey, NamesThePlaceOnTheBus) {
    EXPECT_EQ(pciKey("0001:82:1f.7"), "0001821F07");
    EXPECT_EQ(pciKey("10000:e1:00.0"), "10000E10000");
    EXPECT_EQ(pciKey("not a location"), "not a location");
}

TEST(DeviceDescription, ComesFromTheFirstIdentifierFileThatKnowsTheDevice) {
    FakeSystem system;
    system.files["/usr/share/hwdata/pci.ids"] =
        "# comment\n1e5c  VQ Systems\n\t3239  Vaultline 2\n\t\t1e5c 3354  TR56\n1e5d  Other\n\t323a  Wrong\n";
    system.files["/usr/share/pci.ids"] = "1e5c  VQ Systems\n\t323a  Vaultline 3\n";
    EXPECT_STREQ(Interface::SysMod::Discovery::GetDeviceDescription("1E5C3239").c_str(),
                 "Adapter: Vaultline 2");
    EXPECT_STREQ(Interface::SysMod::Discovery::GetDeviceDescription("1E5C323A").c_str(),
                 "Adapter: Vaultline 3");
    EXPECT_STREQ(Interface::SysMod::Discovery::GetDeviceDescription("1E5C9999").c_str(), "");
    EXPECT_STREQ(Interface::SysMod::Discovery::GetDeviceDescription("1E5").c_str(), "");
}

TEST(DriverList, HoldsTheTwelveDrivers) {
    auto& list = Interface::SysMod::Discovery::StorageAdapterDriverWhiteList();
    EXPECT_EQ(list.size(), 12U);
    for (char const* driver : {"xqrth", "vqsa", "vqvsa", "vqvsac", "vqvsag", "vqvsaw", "vqdsa", "vqdsac",
                               "vqdsag", "vqdsaw", "vqahcisr", "mpt2sas"}) {
        EXPECT_TRUE(list.find(driver) != list.end()) << driver;
    }
}

TEST(Crc32, IsTheStandardOne) {
    EXPECT_EQ(crc32("123456789", 9), 0xCBF43926U);
    EXPECT_EQ(crc32("", 0), 0U);
}

}  // namespace
