#include "simulator/in_process_door.h"

#include <fcntl.h>

#include <cerrno>
#include <thread>

#include "common/sleep.h"
#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

using InProcess = MachineTest;

TEST_F(InProcess, CallsMeetTheMachineWhileTheDoorStands) {
    make(twoControllers());
    std::vector<std::string> names;
    std::string text;
    {
        simulator::InProcessDoor const door(*machine);
        Core::SysMod::SystemCalls& calls = Core::SysMod::systemCalls();
        ASSERT_TRUE(calls.listDirectory("/sys/bus/pci/devices", names));
        EXPECT_EQ((std::vector<std::string>{"0000:0b:00.0", "0000:13:00.0"}), names);
        ASSERT_TRUE(calls.readFirstLine("/sys/bus/pci/devices/0000:13:00.0/subsystem_device", text));
        EXPECT_EQ("0x3355", text);
        ASSERT_TRUE(calls.readLink("/sys/bus/pci/devices/0000:13:00.0/driver", text));
        EXPECT_EQ("../../../bus/pci/drivers/vqsa", text);
        EXPECT_FALSE(calls.readFile("/sys/bus/pci/devices/0000:00:00.0/class", text, 100));
        EXPECT_TRUE(calls.readFile("/proc/self/stat", text, 100)) << "the host's";
        ASSERT_TRUE(calls.readFile("/sys/bus/pci/slots/1/address", text, 100));
        EXPECT_EQ("0000:0b:00\n", text);
    }
    EXPECT_FALSE(Core::SysMod::systemCalls().readFile("/dev/xqrth/c0d0", text, 1))
        << "the real system is back";
}

TEST_F(InProcess, NodesOpenAnswerAndClose) {
    make(twoControllers());
    simulator::InProcessDoor door(*machine);
    int const one = door.open(ONE, O_RDWR);
    int const two = door.open(TWO, O_RDWR);
    ASSERT_GE(one, 0);
    ASSERT_NE(one, two);
    EXPECT_EQ(0, door.ioctl(two, 0x420E, nullptr));
    EXPECT_EQ("two", last().device);
    errno = 0;
    EXPECT_EQ(-1, door.ioctl(one, 0x5401, nullptr));
    EXPECT_EQ(ENOTTY, errno);
    EXPECT_EQ(0, door.close(one));
    EXPECT_EQ(-1, door.close(one));
    EXPECT_EQ(EBADF, errno);
    EXPECT_EQ(-1, door.ioctl(one, 0x420E, nullptr));
    EXPECT_EQ(EBADF, errno);
    EXPECT_EQ(1U, door.openNodes());
    EXPECT_EQ(0, door.close(two));
    EXPECT_EQ(0U, door.openNodes());
}

TEST_F(InProcess, WhatIsNotThereFailsToOpenAndIsInTheJournal) {
    make(twoControllers());
    simulator::InProcessDoor door(*machine);
    for (char const* path : {"/dev/mpt2ctl", "/dev/sg7", "/dev/xqrth/c9d0"}) {
        errno = 0;
        EXPECT_EQ(-1, door.open(path, O_RDWR));
        EXPECT_EQ(ENOENT, errno);
        EXPECT_EQ(path, last("open").node);
    }
    int const host = door.open("/dev/null", O_RDONLY);
    ASSERT_GE(host, 0);
    EXPECT_LT(host, 1000000) << "a descriptor of the host's";
    EXPECT_EQ(0, door.close(host));
}

TEST_F(InProcess, SleepingTakesVirtualTime) {
    make(twoControllers());
    std::uint64_t const before = machine->now();
    {
        simulator::InProcessDoor const door(*machine);
        Common::Synchronization::SleepMicroseconds(3'000'000'000U);
    }
    EXPECT_EQ(3'000'000'000U, machine->now() - before);
    EXPECT_EQ("3000.000 s", last("sleep").text);
}

TEST_F(InProcess, ThreadsMaySendAtTheSameTime) {
    make(twoControllers());
    simulator::InProcessDoor door(*machine);
    auto const work = [&] {
        for (int i = 0; i < 50; ++i) {
            int const node = door.open(ONE, O_RDWR);
            EXPECT_EQ(0, door.ioctl(node, 0x420E, nullptr));
            EXPECT_EQ(0, door.close(node));
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(100U, machine->exchangeCount());
    EXPECT_EQ(101U, machine->journal().size());
}

}  // namespace
}  // namespace simulator_test
