#include "src/arrayShiftBit.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <tuple>

#include "infomgr/info_mgr_root.h"
#include "simulator/in_process_door.h"
#include "src/flashRun.h"
#include "src/managementObjects.h"
#include "sysmod/kernel_records.h"
#include "tests/src/FakeDevices.h"
#include "tests/src/RunFixture.h"

namespace {

using nlohmann::json;
using Nvram = std::map<unsigned, unsigned>;  // offset, value

constexpr int NOT_OFFERED = static_cast<int>(0x80000004);
constexpr int NO_OBJECT = static_cast<int>(0x80000008);

/// The door, with a request that reports a failure although all of it was done.
class FailingDoor : public simulator::InProcessDoor {
  public:
    explicit FailingDoor(simulator::Machine& machine) : InProcessDoor(machine), m_machine(machine) {}
    int ioctl(int descriptor, unsigned long request, void* argument) override {
        using Record = Core::SysMod::XqrthPassthru<unsigned char*>;
        if (clearing && request == Core::SysMod::XQRTH_PASSTHRU<unsigned char*>) {
            auto* const record = static_cast<Record*>(argument);
            constexpr std::uint8_t READ = 0x26;
            if (record->command.block[0] == READ) std::fill_n(record->buffer, record->bufferSize, 0);
        }
        int const result = InProcessDoor::ioctl(descriptor, request, argument);
        if (failing.empty() || m_machine.journal().back().command != failing) return result;
        errno = EIO;
        return -1;
    }
    std::string failing;    ///< its name in the journal
    bool clearing = false;  ///< as drivers do that copy their whole buffer back

  private:
    simulator::Machine& m_machine;
};

/// A machine with two controllers, of which the second has the serial number SERIAL1, and the first a longer
/// one that begins with it.
class ArrayShiftBitTest : public RunTest {
  protected:
    ArrayShiftBitTest() : controller(fakeController()) { make(0); }
    ~ArrayShiftBitTest() override {
        pRoot = DevicePointer();
        leave();
    }

    /// The second byte of the pair is 7 unless it is written.
    void make(int stored, char const* fault = "[]", std::string const& serial = "SERIAL1",
              char const* otherSerial = "SERIAL10") {
        leave();
        json scenario = json::parse(R"({"devices": [
            {"name": "other", "kind": "array_controller", "product": "P", "family": "F", "firmware": "1.00",
             "pci": {"address": "0000:0b:00.0", "driver": "xqrth"}},
            {"name": "one", "kind": "array_controller", "product": "P", "family": "F", "firmware": "1.00",
             "pci": {"address": "0000:0c:00.0", "driver": "vqsa"}}]})");
        scenario["devices"][0]["serial"] = otherSerial;
        scenario["devices"][1]["serial"] = serial;
        scenario["devices"][1]["nvram"] = {{"2045", stored}, {"0x7FE", 7}};
        simulator::Machine::create(directory() + "/machine", scenario);
        machine = std::make_unique<simulator::Machine>(directory() + "/machine");
        machine->addFaults(json::parse(fault), "the test's faults");
        door = std::make_unique<FailingDoor>(*machine);
        InfoMgrRoot::Destroy();
    }
    void leave() {
        InfoMgrRoot::Destroy();
        door.reset();
        machine.reset();
    }
    Nvram nvram() { return machine->devices()[1].nvram; }
    std::size_t writes() {
        std::size_t count = 0;
        for (auto const& entry : machine->journal()) {
            EXPECT_TRUE(entry.errors.empty()) << entry.errors.front();
            count += entry.command == "WRITE NVRAM";
        }
        return count;
    }

    Fake controller;
    std::unique_ptr<simulator::Machine> machine;
    std::unique_ptr<FailingDoor> door;
};

TEST_F(ArrayShiftBitTest, TwoModelsNeedIt) {
    for (char const* model : {"TR57", "TR57i"}) {
        EXPECT_TRUE(checkArrayForSetBit(controller, model)) << model;
    }
    for (char const* model : {"TR5", "TR57ix", "TR80", ""}) {
        EXPECT_FALSE(checkArrayForSetBit(controller, model)) << model;
    }
}

TEST_F(ArrayShiftBitTest, StrapFollowsWhatIsBehindTheController) {
    Nvram const small = {{2045, 2}, {2046, 254}};
    Nvram const large;
    struct {
        int solidState, seps, drives;
        int stored;
        Nvram after;
        std::size_t writes;
    } const cases[] = {
        {0, 0, 1, 0, small, 2},
        {0, 1, 8, 0, small, 2},
        {0, 0, 1, 255, small, 2},
        {0, 0, 8, 3, small, 2},
        {0, 0, 0, 0, large, 2},
        {0, 0, 9, 0, large, 2},
        {0, 2, 8, 0, large, 2},
        {1, 0, 8, 0, large, 2},
        {0, 0, 9, 255, large, 2},
        {0, 0, 8, 2, {{2045, 2}, {2046, 7}}, 0},
        {0, 0, 9, 2, large, 2},
        {1, 0, 8, 2, large, 2},
        {0, 0, 8, 1, {{2045, 1}, {2046, 7}}, 0},
        {0, 0, 9, 1, {{2045, 1}, {2046, 7}}, 0},
    };
    Device_Info& info = row("TR57", true, "SERIAL1");
    for (auto const& one : cases) {
        info.numSSD = one.solidState;
        info.numSeps = one.seps;
        info.numPhyDrives = one.drives;
        make(one.stored);
        std::string const label = std::to_string(one.solidState) + " " + std::to_string(one.seps) + " " +
                                  std::to_string(one.drives) + " " + std::to_string(one.stored);
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0) << label;
        EXPECT_EQ(nvram(), one.after) << label;
        EXPECT_EQ(writes(), one.writes) << label;
    }
}

/// The status of the read and that of the second write count. What isn't read is 255, and is written over.
TEST_F(ArrayShiftBitTest, FailuresOfTheReadAndOfTheSecondWriteCount) {
    struct {
        int stored;
        char const* faults;
        int result;
        Nvram after;
        char const* log;
    } const cases[] = {
        {0,
         R"([{"match": {"command": "READ NVRAM"}, "action": {"errno": "EIO"}}])",
         8,
         {{2045, 2}, {2046, 254}},
         "\nThe ox7fd offset value is 255\nReadNVRAMBootStrap retuns: -2147483643:byteValue 255\n"
         "pDevInfo.numSSD: 0 pDevInfo.numSeps: 0 pDevInfo.numPhyDrives: 4\n"
         "writeNVRAMBootStrap retuns: 0:byteValue 2\nwriteNVRAMBootStrap retuns: 0:byteValue 254\n"},
        {2,
         R"([{"match": {"command": "READ NVRAM"}, "action": {"scsi_status": 2, "sense": [5, 36, 0]}}])",
         8,
         {{2045, 2}, {2046, 254}},
         "Scsi command Falied 1\nThe ox7fd offset value is 255\nReadNVRAMBootStrap retuns: -2147483643:"},
        {1,
         R"([{"match": {"command": "READ NVRAM"}, "action": {"truncate": 2045}}])",
         0,
         {{2045, 2}, {2046, 254}},
         "ReadNVRAMBootStrap retuns: 0:byteValue 255\n"},
        {1,
         R"([{"match": {"command": "READ NVRAM"}, "action": {"truncate": 2046}}])",
         0,
         {{2045, 1}, {2046, 7}},
         "ReadNVRAMBootStrap retuns: 0:byteValue 1\n"},
        {0,
         R"([{"match": {"command": "WRITE NVRAM", "nth": 1}, "action": {"command_status": 4}}])",
         0,
         {{2046, 254}},
         "Scsi command Falied 4writeNVRAMBootStrap retuns: -2147483643:byteValue 2\n"
         "writeNVRAMBootStrap retuns: 0:byteValue 254\n"},
        {0,
         R"([{"match": {"command": "WRITE NVRAM", "nth": 2}, "action": {"command_status": 2}}])",
         8,
         {{2045, 2}, {2046, 7}},
         "writeNVRAMBootStrap retuns: -2147483643:byteValue 254\n"},
        {0,
         R"([{"match": {"command": "WRITE NVRAM", "nth": 2}, "action": {"scsi_status": 8}}])",
         8,
         {{2045, 2}, {2046, 7}},
         "writeNVRAMBootStrap retuns: -2147483643:byteValue 254\n"},
        {0,
         R"([{"match": {"command": "WRITE NVRAM", "nth": 2}, "action": {"errno": "ENODEV"}}])",
         8,
         {{2045, 2}, {2046, 7}},
         "writeNVRAMBootStrap retuns: -2147483643:byteValue 254\n"},
    };
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    for (auto const& one : cases) {
        make(one.stored, one.faults);
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), one.result) << one.faults;
        EXPECT_EQ(nvram(), one.after) << one.faults;
        std::string const log = takeVerboseLog();
        EXPECT_NE(log.find(one.log), std::string::npos) << log;
    }
}

// The second flash sees the first byte of the small strap and takes it for the whole.
TEST_F(ArrayShiftBitTest, SecondByteThatFailedAloneStays) {
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    make(3, R"([{"match": {"command": "WRITE NVRAM", "nth": 2}, "action": {"errno": "EIO"}}])");
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 8);
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(nvram(), (Nvram{{2045, 2}, {2046, 7}}));
    EXPECT_EQ(writes(), 2u);
}

TEST_F(ArrayShiftBitTest, FixedByteIsLeftAlsoWhenItCameWithAFailure) {
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    for (auto const& [stored, result, writesAfter] :
         {std::tuple(1, 0, 0u), std::tuple(2, 8, 0u), std::tuple(0, 8, 2u)}) {
        make(stored);
        door->failing = "READ NVRAM";
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), result) << stored;
        EXPECT_EQ(writes(), writesAfter) << stored;
        EXPECT_TRUE(verboseLogHas("ReadNVRAMBootStrap retuns: -2147483643:byteValue " +
                                  std::to_string(stored) + "\n"));
    }
}

// Every controller is flashed twice, and both calls do the work: the mark is set on a copy of the row.
TEST_F(ArrayShiftBitTest, MarkDoesNotReachTheRow) {
    Device_Info& info = row("TR57", true, "SERIAL1");
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_FALSE(info.alreadyFlashed);
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(writes(), 4u);
    info.alreadyFlashed = true;
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(writes(), 4u);
}

// Nothing tells which controller is meant. The ordinary log has it once for both flashes.
TEST_F(ArrayShiftBitTest, ControllerThatCannotBeToldIsLeftAsItIs) {
    // The row of a cache module has an empty serial number: it isn't this controller's.
    row("FBWC", true, "");
    Fake const empty = fakeController({{"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", ""}});
    for (Fake const& one : {controller, fakeController({}), empty}) {
        for (bool const second : {false, true}) {
            EXPECT_EQ(setArrayShiftBit(one, "TR57", second), 0);
        }
    }
    EXPECT_EQ(machine->exchangeCount(), 0u);
    EXPECT_EQ(componentLog(),
              "Skipped: TR57: no row for serial number SERIAL1: NVRAM bytes 2045 and 2046 were left as they "
              "are\nSkipped: TR57: no serial number: NVRAM bytes 2045 and 2046 were left as they "
              "are\nSkipped: TR57: no serial number: NVRAM bytes 2045 and 2046 were left as they are\n");
    EXPECT_TRUE(verboseLogHas("setArrayShiftBit: TR57 skipped: no row for serial number SERIAL1\n"));
}

TEST_F(ArrayShiftBitTest, ControllerThatCannotBeReachedIsReported) {
    row("TR57", true, "SERIAL3");
    Fake const absent = fakeController({{"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", "SERIAL3"}});
    EXPECT_EQ(setArrayShiftBit(absent, "TR57"), 10) << "no controller of this serial number";
    row("TR57", true, "SERIAL1");
    for (char const* fault : {
             R"([{"match": {"device": "one", "command": "INQUIRY"}, "action": {"errno": "EIO"}}])",
             R"([{"match": {"device": "one", "command": "0x66"}, "action": {"scsi_status": 8}}])",
             R"([{"match": {"device": "one", "command": "0x66"}, "action": {"truncate": 50}}])",
         }) {
        make(0, fault);
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 10) << fault;
        EXPECT_EQ(writes(), 0u);
    }
    std::filesystem::remove_all(machine->root() / "sys/bus/pci");
    InfoMgrRoot::Destroy();
    takeVerboseLog();
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 10) << "no management objects";
    EXPECT_TRUE(verboseLogHas("InfoMgrOpenObject failed"));
}

// The reply ended in the middle of SERIAL10, which then read as SERIAL1: the wrong controller was written to.
TEST_F(ArrayShiftBitTest, CutSerialNumberIsNoOtherControllers) {
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    for (bool const clearing : {false, true}) {
        make(0, R"([{"match": {"device": "other", "command": "0x66"}, "action": {"truncate": 51}}])");
        door->clearing = clearing;
        EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
        EXPECT_EQ(nvram(), (Nvram{{2045, 2}, {2046, 254}})) << clearing;
        EXPECT_EQ(machine->devices()[0].nvram, Nvram{}) << clearing;
        EXPECT_TRUE(verboseLogHas("\tController Serial Number refused: 7 of 32 bytes arrived\n"));
        takeVerboseLog();
    }
}

// What lies behind the terminator is none of it: a number was refused for what didn't arrive there.
TEST_F(ArrayShiftBitTest, SerialNumberEndsAtItsTerminator) {
    struct {
        std::string serial;
        int reply;  ///< bytes that arrive; the number begins at 44
        bool isFound;
    } const cases[] = {{{"SERIAL1\0", 8}, 52, true}, {{"SERIAL1\0", 8}, 51, false}, {"SERIAL1", 52, false}};
    for (auto const& one : cases) {
        std::string const fault =
            R"([{"match": {"device": "one", "command": "0x66"}, "action": {"truncate": )";
        make(0, (fault + std::to_string(one.reply) + "}}]").c_str(), one.serial);
        EXPECT_EQ(getHandle("SERIAL1") != nullptr, one.isFound) << one.reply;
    }
}

// The library trims tabs and line ends, too. The log shows the number as it came.
TEST_F(ArrayShiftBitTest, SerialNumberIsTrimmedAsTheDeviceModelTrims) {
    for (char const* serial : {"SERIAL1\t", " SERIAL1 ", "\tSERIAL1 \n"}) {
        make(0, "[]", serial);
        EXPECT_NE(getHandle("SERIAL1"), nullptr) << serial;
        EXPECT_TRUE(verboseLogHas("\t Controller Serial Number = " + std::string(serial))) << serial;
    }
}

TEST_F(ArrayShiftBitTest, ControllerThatFailedItsDiscoveryHidesNoOther) {
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    make(0, R"([{"match": {"device": "other", "command": "INQUIRY"}, "action": {"errno": "EIO"}}])");
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(nvram(), (Nvram{{2045, 2}, {2046, 254}}));
}

// A twin that the package doesn't concern has no row: rows alone told of none, while it was the one written
// to.
TEST_F(ArrayShiftBitTest, FirstOfTwoControllersWithOneSerialNumberIsTaken) {
    char const* const type = "ATTR_VALUE_TYPE_ARRAY_CONTROLLER";
    Fake root("ATTR_VALUE_TYPE_ROOT", "root");
    root.add(controller).add(Fake(type, "untold"));
    root.add(Fake(type, "other", {{"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", "SERIAL10"}}));
    pRoot = root;
    row("TR57", true, "SERIAL1").numPhyDrives = 4;
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_FALSE(verboseLogHas("1 expected"));
    root.add(Fake(type, "twin", {{"ATTR_NAME_CONTROLLER_SERIAL_NUMBER", "SERIAL1"}}));
    make(0, "[]", "SERIAL1", "SERIAL1");
    EXPECT_EQ(setArrayShiftBit(controller, "TR57"), 0);
    EXPECT_EQ(machine->devices()[0].nvram, (Nvram{{2045, 2}, {2046, 254}}));
    EXPECT_EQ(nvram(), (Nvram{{2046, 7}}));
    EXPECT_TRUE(verboseLogHas(
        "setArrayShiftBit: 2 controllers with serial number SERIAL1, 1 expected: taking the first\n"));
}

TEST_F(ArrayShiftBitTest, HandlesComeFromGetHandleAlone) {
    EXPECT_EQ(SenseSubsystemInformation(getHandle("SERIAL1")), "SERIAL1" + std::string(25, ' '));
    EXPECT_EQ(getHandle(""), nullptr);
    EXPECT_EQ(getHandle("SERIAL"), nullptr);
    HMGMTOBJECT const stale = getHandle("SERIAL1");
    InfoMgrRoot::Destroy();
    for (auto const& [handle, refusal] :
         std::map<HMGMTOBJECT, int>{{nullptr, NOT_OFFERED}, {stale, NO_OBJECT}, {&controller, NO_OBJECT}}) {
        unsigned char value = 0x5A;
        EXPECT_EQ(ReadNVRAMBootStrap(handle, value), refusal);
        EXPECT_EQ(value, 255);
        EXPECT_EQ(writeNVRAMBootStrap(handle, 2, 2045), refusal);
        EXPECT_EQ(SenseSubsystemInformation(handle), "");
    }
    EXPECT_EQ(writes(), 0u);
}

}  // namespace
