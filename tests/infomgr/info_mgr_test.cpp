// The management objects on a machine with two array controllers and a SAS adapter.

#include "infomgr/info_mgr_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "infomgr/info_mgr_root.h"
#include "infomgr/request_records.h"
#include "infomgr/version.h"
#include "simulator/in_process_door.h"
#include "sysmod/discovery.h"
#include "tests/simulator/machine_fixture.h"

namespace {

using simulator_test::json;

constexpr int NOT_REACHED = static_cast<int>(0x80000005);
constexpr int BAD = static_cast<int>(0x80000006);
constexpr int NO_ROOT = static_cast<int>(0x80000003);
constexpr int NOT_OFFERED = static_cast<int>(0x80000004);
constexpr int NO_OBJECT = static_cast<int>(0x80000008);

constexpr std::uint32_t CLASS = 2;
constexpr std::uint32_t CONTROLLER = 0x8000;
constexpr std::uint32_t ADAPTER = 0x8001;
constexpr std::uint32_t RESCAN = 0x4000;

json scenario() {
    json machine = simulator_test::twoControllers();
    machine["devices"][0]["nvram"] = {{"2045", 0x5A}};
    machine["devices"][0]["physical_devices"] = json::parse(
        R"([{"address": "0100000000000001", "kind": "drive", "index": 1, "product": "THE DRIVE"}])");
    machine["devices"].push_back(json::parse(
        R"({"name": "hba", "kind": "csmi_adapter", "pci": {"address": "0000:1d:00.0", "driver": "mpt2sas"}})"));
    return machine;
}

/// The door, with something to do in the middle of a request.
class HookedDoor : public simulator::InProcessDoor {
  public:
    using InProcessDoor::InProcessDoor;
    int ioctl(int descriptor, unsigned long request, void* argument) override {
        if (auto const work = std::exchange(hook, nullptr)) work();
        return InProcessDoor::ioctl(descriptor, request, argument);
    }
    std::function<void()> hook;
};

class ManagementObjects : public simulator_test::MachineTest {
  protected:
    void SetUp() override { enter(scenario()); }
    void TearDown() override {
        InfoMgrRoot::Destroy();
        EXPECT_EQ(door->openNodes(), 0U);
        door.reset();
    }
    /// Puts another machine behind the door. The objects stay.
    void enter(json const& machineOf) {
        door.reset();
        make(machineOf);
        door = std::make_unique<HookedDoor>(*machine);
    }

    static HMGMTOBJECT open(std::uint32_t type = CLASS) {
        HMGMTOBJECT handle = nullptr;
        EXPECT_EQ(InfoMgrOpenObject(nullptr, type, &handle, nullptr, nullptr), 0);
        return handle;
    }
    static HMGMTOBJECT object(std::uint32_t type, std::uint32_t index, int status = 0) {
        HMGMTOBJECT handle = nullptr;
        EXPECT_EQ(InfoMgrEnumObject(open(), type, index, &handle, nullptr, nullptr), status);
        return handle;
    }
    static int control(HMGMTOBJECT handle, std::uint32_t function, void* request, std::uint32_t length,
                       std::uint32_t kind = 1) {
        return InfoMgrControlObject(handle, function, kind, request, length, nullptr, nullptr);
    }
    static std::string info(HMGMTOBJECT handle, std::uint32_t kind) {
        char text[64] = "";
        EXPECT_EQ(InfoMgrGetObjectInfo(handle, kind, text, sizeof text), 0);
        return text;
    }
    std::string lastBlock() { return simulator::toHex(last().block, " "); }

    std::unique_ptr<HookedDoor> door;
};

TEST_F(ManagementObjects, EveryFunctionRefusesWhatIsNoLiveObject) {
    HMGMTOBJECT const theClass = open();
    HMGMTOBJECT const device = object(CONTROLLER, 1);
    HMGMTOBJECT result = &result;
    char buffer[64] = {};
    InfoMgr::ClassRequest request = {CLASS, 9, 9};
    struct {
        char const* name;
        std::function<int(HMGMTOBJECT)> call;
        int root, ofClass, ofDevice;
    } const rows[] = {
        {"Open", [&](auto h) { return InfoMgrOpenObject(h, CLASS, &result, nullptr, nullptr); }, 0,
         NOT_OFFERED, NOT_OFFERED},
        {"OpenUnknown", [&](auto h) { return InfoMgrOpenObject(h, 3, &result, nullptr, nullptr); },
         NOT_OFFERED, NOT_OFFERED, NOT_OFFERED},
        {"OpenNowhere", [&](auto h) { return InfoMgrOpenObject(h, CLASS, nullptr, nullptr, nullptr); }, BAD,
         BAD, BAD},
        {"Close", InfoMgrCloseObject, 0, 0, 0},
        {"Enum", [&](auto h) { return InfoMgrEnumObject(h, CONTROLLER, 0, &result, nullptr, nullptr); },
         NOT_OFFERED, 0, NOT_OFFERED},
        {"EnumNowhere",
         [&](auto h) { return InfoMgrEnumObject(h, CONTROLLER, 0, nullptr, nullptr, nullptr); }, BAD, BAD,
         BAD},
        {"GetInfo", [&](auto h) { return InfoMgrGetObjectInfo(h, 1, buffer, sizeof buffer); }, NOT_OFFERED,
         NOT_OFFERED, 0},
        {"GetInfoTooShort", [&](auto h) { return InfoMgrGetObjectInfo(h, 1, buffer, 8); }, NOT_OFFERED,
         NOT_OFFERED, 1},
        {"GetInfoUnknown", [&](auto h) { return InfoMgrGetObjectInfo(h, 3, buffer, sizeof buffer); },
         NOT_OFFERED, NOT_OFFERED, NOT_OFFERED},
        {"SetInfo", [&](auto h) { return InfoMgrSetObjectInfo(h, 1, buffer, sizeof buffer); }, NOT_OFFERED,
         NOT_OFFERED, NOT_OFFERED},
        {"Control", [&](auto h) { return control(h, 0x8003, &request, 12); }, 0, NOT_OFFERED, NOT_OFFERED},
        {"ControlTooShort", [&](auto h) { return control(h, 0x8003, &request, 11); }, 1, NOT_OFFERED,
         NOT_OFFERED},
        {"ControlUnknown", [&](auto h) { return control(h, 0x8006, &request, 99); }, NOT_OFFERED, NOT_OFFERED,
         NOT_OFFERED},
        {"Lock", InfoMgrLockObject, NOT_OFFERED, NOT_OFFERED, NOT_OFFERED},
        {"Unlock", InfoMgrUnlockObject, NOT_OFFERED, NOT_OFFERED, NOT_OFFERED},
        {"Register", InfoMgrRegisterObject, NOT_OFFERED, NOT_OFFERED, NOT_OFFERED},
        {"Unregister", InfoMgrUnregisterObject, NOT_OFFERED, NOT_OFFERED, NOT_OFFERED},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.call(nullptr), row.root) << row.name;
        EXPECT_EQ(row.call(theClass), row.ofClass) << row.name;
        EXPECT_EQ(row.call(device), row.ofDevice) << row.name;
    }
    for (std::uint32_t const length : {12U, 11U}) {
        std::uint32_t told = 0;
        EXPECT_EQ(InfoMgrControlObject(nullptr, 0x8003, 1, &request, length, &told, nullptr), length < 12);
        EXPECT_EQ(told, length);
    }
    EXPECT_EQ(result, nullptr) << "what makes no handle gives none";
    EXPECT_EQ(std::string(buffer), "/dev/sg0");
    EXPECT_EQ(request.discoveredTypes, 1U);
    EXPECT_EQ(request.objects, 2U);
    EXPECT_EQ(info(device, 2), info(object(CONTROLLER, 1), 2));
    EXPECT_NE(info(device, 2), info(object(CONTROLLER, 0), 2));

    InfoMgrRoot::Destroy();
    for (auto const& row : rows) {
        int foreign = 0;
        for (void* const bad : {theClass, device, static_cast<void*>(&foreign),
                                static_cast<void*>(static_cast<char*>(device) + 1)}) {
            EXPECT_EQ(row.call(bad), NO_OBJECT) << row.name;
        }
    }
}

TEST_F(ManagementObjects, AreThereIfThereIsAnOperatingSystem) {
    EXPECT_EQ(InfoMgrInitStatus(), 0);
    EXPECT_EQ(InfoMgrOption(), NOT_OFFERED);
    InfoMgrRoot::Destroy();
    std::filesystem::remove_all(machine->root() / "sys/bus/pci");
    EXPECT_EQ(InfoMgrInitStatus(), NO_ROOT);
    EXPECT_EQ(InfoMgrCloseObject(nullptr), NO_OBJECT);
}

TEST_F(ManagementObjects, VersionsAreTwoFieldsThatFit) {
    struct {
        char const* version;
        std::uint32_t length;
        int result;
        char const* text;
    } const rows[] = {{"1.0 0.1.0", 10, 1, "1.0-0.1.0"}, {"1.0 0.1.0", 9, 0, "kept"},  {"1.0", 32, 0, "kept"},
                      {"x 1.0", 32, 0, "kept"},          {"1.0 2.0 3", 32, 0, "kept"}, {"", 32, 0, "kept"}};
    for (auto const& row : rows) {
        char text[32] = "kept";
        EXPECT_EQ(InfoMgr::formatVersion(row.version, text, row.length), row.result == 1) << row.version;
        EXPECT_STREQ(text, row.text) << row.version;
    }
    char text[32] = "";
    EXPECT_EQ(InfoMgrGetVersion(text, sizeof text), 1);
    EXPECT_STREQ(text, "1.0-0.1.0");
    EXPECT_EQ(InfoMgrGetVersion(nullptr, 32), 0);
}

TEST_F(ManagementObjects, FirstEnumerationDiscoversAndLaterOnesDoNot) {
    HMGMTOBJECT const first = object(CONTROLLER, 0);
    std::uint64_t const discovery = machine->exchangeCount();
    EXPECT_GT(discovery, 0U);
    EXPECT_EQ(info(first, 1), "/dev/xqrth/c0d0");
    HMGMTOBJECT const second = object(CONTROLLER, 1);
    EXPECT_EQ(object(CONTROLLER, 0), first);
    EXPECT_EQ(object(CONTROLLER, 2, 3), nullptr);
    EXPECT_EQ(object(CONTROLLER, 0xFFFFFFFF, 3), nullptr);
    EXPECT_EQ(object(0x8002, 0, NOT_OFFERED), nullptr);
    EXPECT_EQ(machine->exchangeCount(), discovery);
    EXPECT_EQ(info(object(ADAPTER, 0), 1), "/dev/mpt2ctl:0");
    EXPECT_EQ(object(ADAPTER, 1, 3), nullptr);
    EXPECT_EQ(machine->exchangeCount(), 2 * discovery);
    EXPECT_EQ(object(CONTROLLER, 1), second);

    // A rescan of the class: each type looks again, once, and what is still there keeps its handle.
    EXPECT_EQ(open(CLASS | RESCAN), open());
    EXPECT_EQ(machine->exchangeCount(), 2 * discovery);
    EXPECT_EQ(object(CONTROLLER | RESCAN, 0), first);
    EXPECT_EQ(object(CONTROLLER, 1), second);
    EXPECT_EQ(machine->exchangeCount(), 3 * discovery);

    // A rescan of one object asks its device alone.
    EXPECT_EQ(object(CONTROLLER | RESCAN, 1), second);
    EXPECT_EQ(machine->exchangeCount(), 3 * discovery + 1);
    EXPECT_EQ(last().device + " " + lastBlock(), "two 12 00 00 00 5f 00");
}

TEST_F(ManagementObjects, DeviceThatDoesNotAnswerHasAStatusThatPassesItOver) {
    machine->addFaults(
        json::parse(
            R"([{"match": {"device": "one", "command": "INQUIRY"}, "action": {"errno": "EIO"}, "times": 1}])"),
        "faults");
    HMGMTOBJECT const failed = object(CONTROLLER, 0, 2);
    EXPECT_NE(failed, nullptr);
    object(CONTROLLER, 1);
    object(CONTROLLER, 0, 2);
    EXPECT_EQ(object(CONTROLLER | RESCAN, 0), failed) << "answers now";
    EXPECT_EQ(object(CONTROLLER, 0), failed);

    // A rescan of the class asks anew, too, and what came of it replaces what was kept.
    for (int const status : {2, 0}) {
        if (status != 0) {
            machine->addFaults(json::parse(R"([{"match": {"device": "one", "command": "INQUIRY"},
                                                "action": {"errno": "EIO"}, "times": 1}])"),
                               "faults of the rescan");
        }
        open(CLASS | RESCAN);
        EXPECT_EQ(object(CONTROLLER, 0, status), failed);
        EXPECT_EQ(object(CONTROLLER, 0, status), failed);
    }

    HMGMTOBJECT const adapter = object(ADAPTER, 0);
    machine->addFaults(
        json::parse(R"([{"match": {"device": "hba"}, "action": {"command_status": 4}, "times": 1}])"),
        "more faults");
    EXPECT_EQ(object(ADAPTER | RESCAN, 0, 2), adapter);
    EXPECT_EQ(object(ADAPTER | RESCAN, 0), adapter);
}

TEST_F(ManagementObjects, DeviceThatIsGoneTakesItsHandleWithIt) {
    HMGMTOBJECT const first = object(CONTROLLER, 0);
    HMGMTOBJECT const second = object(CONTROLLER, 1);
    json machineOf = scenario();
    machineOf["devices"].erase(0);
    machineOf["devices"][0]["instance"] = 7;
    enter(machineOf);
    EXPECT_EQ(InfoMgrCloseObject(first), 0);
    open(CLASS | RESCAN);
    EXPECT_EQ(object(CONTROLLER, 0), second);
    EXPECT_EQ(object(CONTROLLER, 1, 3), nullptr);
    EXPECT_EQ(InfoMgrCloseObject(first), NO_OBJECT);
    EXPECT_EQ(info(second, 1), "/dev/sg7") << "the same controller under its new node";
}

TEST_F(ManagementObjects, ShortAndBadRequestsReachNoDevice) {
    HMGMTOBJECT const controller = object(CONTROLLER, 0);
    HMGMTOBJECT const adapter = object(ADAPTER, 0);
    std::uint64_t const before = machine->exchangeCount();
    struct {
        std::uint32_t function, minimum;
    } const minima[] = {{0x8001, 40}, {0x8002, 40}, {0x8004, 12}, {0x8005, 48}};
    _INFOMGR_PASSTHRU_REQUEST room = {};
    for (auto const& row : minima) {
        std::uint32_t length = 0;
        EXPECT_EQ(InfoMgrControlObject(controller, row.function, 1, &room, row.minimum - 1, &length, nullptr),
                  1);
        EXPECT_EQ(length, row.minimum - 1);
        EXPECT_EQ(control(controller, row.function, nullptr, row.minimum), BAD);
    }
    unsigned char bytes[32] = {};
    _INFOMGR_BMIC_REQUEST bmic = {};
    bmic.dataLength = 1;
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40), BAD) << "no buffer";
    // Counts of 16 bits carry it: a part would pass for the whole.
    std::vector<unsigned char> large(65536);
    bmic.data = room.data = large.data();
    bmic.dataLength = room.dataLength = 65536;
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40), BAD);
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40, 2), BAD);
    room.command = bytes;
    room.commandLength = 6;
    EXPECT_EQ(control(controller, 0x8005, &room, 48), BAD);
    _INFOMGR_SCSI_REQUEST longRead = {};
    longRead.command = bytes;
    longRead.commandLength = 6;
    longRead.data = large.data();
    longRead.dataLength = 65536;
    EXPECT_EQ(control(controller, 0x8002, &longRead, 40), BAD);
    room = {};
    for (unsigned char* const command : {static_cast<unsigned char*>(nullptr), bytes}) {
        for (std::uint8_t const length : {0, 17}) {
            _INFOMGR_SCSI_REQUEST scsi = {};
            scsi.command = command;
            scsi.commandLength = length;
            EXPECT_EQ(control(controller, 0x8002, &scsi, 40), BAD);
            room.command = command;
            room.commandLength = length;
            EXPECT_EQ(control(controller, 0x8005, &room, 48), BAD);
        }
    }
    for (_INFOMGR_CSMI_REQUEST csmi :
         {_INFOMGR_CSMI_REQUEST{0x2285, bytes, 32}, _INFOMGR_CSMI_REQUEST{0xCC770001, nullptr, 196},
          _INFOMGR_CSMI_REQUEST{0xCC770001, bytes, 19}}) {
        EXPECT_EQ(control(adapter, 0x8004, &csmi, 12), BAD) << csmi.request;
        EXPECT_EQ(control(controller, 0x8004, &csmi, 12), NOT_OFFERED) << "no way to the controller";
    }
    EXPECT_EQ(control(adapter, 0x8001, &bmic, 40), NOT_OFFERED);
    EXPECT_EQ(machine->exchangeCount(), before);
}

TEST_F(ManagementObjects, RequestsReachTheirDevicesAndBringTheirOutcome) {
    HMGMTOBJECT const controller = object(CONTROLLER, 0);
    unsigned char data[2048] = {};
    unsigned char error[255] = {};
    _INFOMGR_BMIC_REQUEST bmic = {};
    bmic.opcode = 0x11;
    bmic.address = 0x01020304;
    bmic.unit = 0xA5B6;
    bmic.data = data;
    bmic.dataLength = 512;
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40), 0);
    EXPECT_EQ(lastBlock(), "26 b6 01 02 03 04 11 02 00 a5");
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40, 2), NOT_REACHED) << "identify isn't written";
    EXPECT_EQ(lastBlock(), "27 b6 01 02 03 04 11 02 00 a5");
    EXPECT_EQ(last().direction, "out");

    unsigned char block[16] = {0x26, 0, 0, 0, 0, 0, 0x42, 0, 0xD4, 1};
    _INFOMGR_SCSI_REQUEST scsi = {};
    scsi.command = block;
    scsi.commandLength = 16;
    scsi.data = data;
    scsi.dataLength = 2048;
    scsi.flags = 0x80;
    scsi.error = error;
    scsi.errorLength = 255;
    scsi.status = 77;
    EXPECT_EQ(control(controller, 0x8002, &scsi, 40), 0);
    EXPECT_EQ(scsi.status, 0);
    EXPECT_EQ(data[2045], 0x5A);
    scsi.dataLength = 1024;
    EXPECT_EQ(control(controller, 0x8002, &scsi, 40), NOT_REACHED);
    EXPECT_EQ(scsi.status, 1);
    EXPECT_EQ(error[0], 0x70);
    EXPECT_EQ(error[12], 0x24);

    unsigned char inquiry[6] = {0x12, 0, 0, 0, 0x24, 0};
    _INFOMGR_PASSTHRU_REQUEST passthru = {};
    passthru.address[0] = passthru.address[7] = 1;
    passthru.command = inquiry;
    passthru.commandLength = 6;
    passthru.flags = 0x80;
    passthru.data = data;
    passthru.dataLength = 0x24;
    passthru.timeout = 45;
    EXPECT_EQ(control(controller, 0x8005, &passthru, 48), 0);
    EXPECT_EQ(std::string(data + 16, data + 25), "THE DRIVE");
    EXPECT_EQ(last().timeoutMilliseconds, 45000U);
    machine->addFaults(json::parse(R"([{"match": {"command": "INQUIRY"}, "action": {"errno": "EIO"}}])"),
                       "faults");
    EXPECT_EQ(control(controller, 0x8005, &passthru, 48), NOT_REACHED);
    EXPECT_EQ(passthru.lowLevelStatus, 5);

    unsigned char record[200] = {};
    _INFOMGR_CSMI_REQUEST csmi = {0xCC770002, record, sizeof record};
    EXPECT_EQ(control(object(ADAPTER, 0), 0x8004, &csmi, 12), 0);
    EXPECT_EQ(record[4], 200);
    EXPECT_EQ(last().device, "hba");
}

/// Fewer bytes than asked for are a read, and no write.
TEST_F(ManagementObjects, RefusedWriteIsNotWritten) {
    struct {
        char const* action;
        std::uint16_t commandStatus;
        int read, write;
    } const rows[] = {
        {R"({"command_status": 2})", 2, 0, NOT_REACHED},
        {R"({"command_status": 4})", 4, NOT_REACHED, NOT_REACHED},
        {R"({"scsi_status": 8})", 1, NOT_REACHED, NOT_REACHED},
        {R"({"errno": "EIO"})", 0, NOT_REACHED, NOT_REACHED},
    };
    for (auto const& row : rows) {
        InfoMgrRoot::Destroy();
        enter(scenario());
        HMGMTOBJECT const controller = object(CONTROLLER, 0);
        machine->addFaults(
            json::array({{{"match", {{"device", "one"}}}, {"action", json::parse(row.action)}}}), "faults");
        unsigned char value = 1;
        for (bool const writes : {false, true}) {
            unsigned char block[16] = {0x26, 0, 0xFD, 7, 1, 0, 0x42, 0, 0xD4, 1};
            block[0] = writes ? 0x27 : 0x26;
            int const expected = writes ? row.write : row.read;
            _INFOMGR_SCSI_REQUEST scsi = {};
            scsi.command = block;
            scsi.commandLength = 16;
            scsi.data = &value;
            scsi.dataLength = 1;
            scsi.flags = writes ? 0x84 : 0x80;
            EXPECT_EQ(control(controller, 0x8002, &scsi, 40), expected) << row.action << writes;
            EXPECT_EQ(scsi.status, row.commandStatus) << row.action;
            _INFOMGR_BMIC_REQUEST bmic = {};
            bmic.opcode = 0x11;
            bmic.data = &value;
            bmic.dataLength = 1;
            EXPECT_EQ(control(controller, 0x8001, &bmic, 40, writes ? 2 : 1), expected) << row.action;
        }
    }
}

/// While a request is at its device nothing is locked, and its object stays although everything is given up.
TEST_F(ManagementObjects, CanBeGivenUpInTheMiddleOfARequest) {
    HMGMTOBJECT const controller = object(CONTROLLER, 0);
    int close = 0;
    door->hook = [&] {
        InfoMgrRoot::Destroy();
        close = InfoMgrCloseObject(controller);
        object(CONTROLLER, 1);
    };
    unsigned char data[512] = {};
    _INFOMGR_BMIC_REQUEST bmic = {};
    bmic.opcode = 0x11;
    bmic.data = data;
    bmic.dataLength = sizeof data;
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40), 0);
    EXPECT_EQ(close, 0) << "the call under way holds it";
    EXPECT_EQ(control(controller, 0x8001, &bmic, 40), NO_OBJECT);
}

// The device model and the management objects look for adapters by one list of drivers, whose look-ups write.
// Functions of another driver make many look-ups with nothing in between that would order them.
TEST_F(ManagementObjects, AreLookedForBesideAnotherDiscovery) {
    for (int number = 10; number < 60; ++number) {
        auto const function =
            machine->root() / "sys/bus/pci/devices" / ("0001:" + std::to_string(number) + ":00.0");
        std::filesystem::create_directories(function);
        std::ofstream(function / "class") << "0x010601\n";
        for (char const* name : {"vendor", "device", "subsystem_vendor", "subsystem_device"}) {
            std::ofstream(function / name) << "0x8086\n";
        }
        std::filesystem::create_symlink("../drivers/ahci", function / "driver");
    }
    std::thread discovery([&] {
        for (int round = 0; round < 8; ++round) {
            Interface::SysMod::Discovery::HandleList controllers, sasAdapters, others;
            Interface::SysMod::Discovery::DiscoverStorageAdapters(controllers, sasAdapters, others);
            EXPECT_EQ(controllers.size(), 2U);
            EXPECT_EQ(sasAdapters.size(), 1U);
        }
    });
    for (int round = 0; round < 8; ++round) {
        open(CLASS | RESCAN);
        EXPECT_NE(object(CONTROLLER | RESCAN, 1), nullptr);
    }
    discovery.join();
}

TEST_F(ManagementObjects, EightThreadsFindRescanUseAndGiveUp) {
    std::atomic<int> done{0};
    std::atomic<int> unexpected{0};
    auto const work = [&](unsigned thread) {
        for (unsigned round = 0; round < 12; ++round) {
            HMGMTOBJECT theClass = nullptr;
            HMGMTOBJECT controller = nullptr;
            std::uint32_t const type = CLASS | (round % 5 == thread % 5 ? RESCAN : 0);
            int status[4] = {
                InfoMgrOpenObject(nullptr, type, &theClass, nullptr, nullptr),
                InfoMgrEnumObject(theClass, CONTROLLER, thread % 2, &controller, nullptr, nullptr)};
            if (thread == 0 && round % 4 == 3) InfoMgrRoot::Destroy();
            unsigned char block[6] = {0x12, 0, 0, 0, 36};
            unsigned char data[36] = {};
            _INFOMGR_SCSI_REQUEST request = {};
            request.command = block;
            request.commandLength = 6;
            request.data = data;
            request.dataLength = sizeof data;
            if (controller != nullptr) {
                status[2] = control(controller, 0x8002, &request, 40);
                char text[64] = "";
                status[3] = InfoMgrGetObjectInfo(controller, 1, text, sizeof text);
            }
            done += controller != nullptr && status[2] == 0 && data[8] == 'V';
            for (int const each : status) {
                // A handle may be stale by the time it is used; a stale class may have become another object.
                unexpected += each != 0 && each != NO_OBJECT && each != NOT_OFFERED;
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < 8; ++thread) {
        threads.emplace_back(work, thread);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(unexpected, 0);
    EXPECT_GT(done, 8 * 12 / 2);
}

}  // namespace
