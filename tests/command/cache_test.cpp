// The reply cache, over a kernel that answers each exchange with its number.

#include "command/cache.h"

#include <gtest/gtest.h>

#include "command/cache_device_lists.h"
#include "command/cache_state.h"
#include "command/concrete_devices.h"
#include "command/controller_command.h"
#include "fakes.h"

namespace {

using namespace command_test;

class Cache : public testing::Test {
  protected:
    Cache() {
        kernel.answer = [this](KernelExchange const& exchange) {
            FakeKernel::Reply reply = next;
            reply.data = Bytes(exchange.bufferSize(), static_cast<unsigned char>(kernel.exchanges.size()));
            return reply;
        };
        SetCommandCacheState(true);
        SetDefaultCacheFlag(true);
        InsertCacheState(handle);
    }
    ~Cache() override {
        SetCommandCacheState(false);
        ClearModRootCache();
    }

    struct Sent {
        bool result;
        BMICRequest request;
        Bytes data, sense;
    };

    // A read of 64 bytes unless `change` says otherwise.
    Sent bmic(std::function<void(BMICRequest&)> change = {}) { return bmicTo(handle, change); }
    Sent bmicTo(Common::string const& target, std::function<void(BMICRequest&)> change = {}) {
        unsigned char data[128] = {}, sense[32];
        std::memset(sense, 0xCC, sizeof(sense));
        BMICRequest request;
        request.commandByte = 0x11;
        request.dataBuffer = data;
        request.dataLength = 64;
        request.senseBuffer = sense;
        request.senseLength = sizeof(sense);
        if (change) change(request);
        bool const result = ProcessBMICCommand(target, request);
        return {result, request, Bytes(data, data + request.dataLength), Bytes(sense, sense + 32)};
    }
    Bytes scsi(Bytes cdb, unsigned length = 16) {
        unsigned char data[64] = {}, sense[32] = {};
        SCSIRequest request;
        request.cdb = cdb.data();
        request.cdbLength = static_cast<unsigned>(cdb.size());
        request.dataBuffer = data;
        request.dataLength = length;
        request.senseBuffer = sense;
        request.senseLength = sizeof(sense);
        EXPECT_TRUE(ProcessSCSICommand(handle, request));
        return Bytes(data, data + length);
    }
    std::size_t sends() const { return kernel.exchanges.size(); }

    FakeKernel kernel;
    FakeKernel::Reply next;
    Common::string const handle = handleOf("KEY1");
};

/// A device that needs a moment is asked again: from memory the condition would never pass.
TEST_F(Cache, APassingConditionIsNotKept) {
    FakeClock clock;
    FakeKernel::Reply attention;
    attention.scsiStatus = 2;
    attention.commandStatus = 1;
    attention.sense = senseOf(6, 0x29, 0);
    kernel.answer = [&](KernelExchange const&) {
        return kernel.exchanges.size() == 1 ? attention : FakeKernel::Reply{};
    };
    ConcreteBMICDevice device(handle, false, 32, 128);
    SenseControllerCommand<GetPowerModeTrait> command;
    EXPECT_TRUE(command(device));
    EXPECT_EQ(kernel.exchanges.size(), 2U);
}

TEST_F(Cache, ARepeatedReadIsServedWholeWithoutASend) {
    next.sense = Bytes(32, 0x3E);
    next.commandStatus = 2;
    Sent const first = bmic();
    next = {};
    Sent const second = bmic();
    EXPECT_EQ(sends(), 1U);
    EXPECT_TRUE(second.result);
    EXPECT_EQ(second.data, Bytes(64, 1));
    EXPECT_EQ(second.sense, Bytes(32, 0x3E));
    EXPECT_EQ(second.request.commandStatus, 2);
    EXPECT_EQ(first.data, second.data);
}

TEST_F(Cache, AShorterReadIsServedAsAnOverrunWithoutSense) {
    next = {.scsiStatus = 2, .sense = Bytes(32, 0x3E)};
    bmic();
    Sent const shorter = bmic([](BMICRequest& r) { r.dataLength = 63; });
    EXPECT_EQ(sends(), 1U);
    EXPECT_TRUE(shorter.result);
    EXPECT_EQ(shorter.data, Bytes(63, 1));
    EXPECT_EQ(shorter.sense, Bytes(32, 0));
    EXPECT_EQ(shorter.request.scsiStatus, 0);
    EXPECT_EQ(shorter.request.commandStatus, 3);
}

TEST_F(Cache, WhatDiffersIsSentAndReplacesTheEntryOfItsKey) {
    struct {
        char const* what;
        std::function<void(BMICRequest&)> change;
        bool sameKey;
    } const rows[] = {
        {"longer", [](BMICRequest& r) { r.dataLength = 65; }, true},
        {"other sense length", [](BMICRequest& r) { r.senseLength = 18; }, true},
        {"other length override", [](BMICRequest& r) { r.cdbLengthOverride = 9; }, true},
        {"other command", [](BMICRequest& r) { r.commandByte = 0x12; }, false},
        {"other details", [](BMICRequest& r) { r.details = 0x80000000; }, false},
        {"other unit", [](BMICRequest& r) { r.unit = 0x8000; }, false},
    };
    for (auto const& row : rows) {
        EmptyCacheFor(handle, true);
        bmic();
        std::size_t const before = sends();
        bmic(row.change);
        EXPECT_EQ(sends(), before + 1) << row.what;
        bmic(row.change);
        EXPECT_EQ(sends(), before + 1) << row.what;
        EXPECT_EQ(findCacheState(handle)->bmicReplies.size(), row.sameKey ? 1U : 2U) << row.what;
    }
}

TEST_F(Cache, NoCacheMayBeServedButStoresNothing) {
    auto const noCache = [](BMICRequest& r) { r.noCache = 1; };
    bmic(noCache);
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
    bmic();
    EXPECT_EQ(sends(), 2U);
    EXPECT_EQ(bmic(noCache).data, Bytes(64, 2));
    EXPECT_EQ(sends(), 2U);
}

TEST_F(Cache, PassThroughNeitherReadsNorWrites) {
    auto const passThrough = [](BMICRequest& r) { r.passThrough = 1; };
    bmic(passThrough);
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
    bmic();
    EXPECT_EQ(bmic(passThrough).data, Bytes(64, 3));
    EXPECT_EQ(bmic().data, Bytes(64, 2));
}

TEST_F(Cache, AFailedSendStoresNothing) {
    next.error = 5;
    EXPECT_FALSE(bmic().result);
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
}

TEST_F(Cache, AnythingButAReadEmptiesTheDevicesCacheListsIncluded) {
    for (EnTransferType const type : {EnTransferType::Out, EnTransferType::InOut, EnTransferType::None}) {
        bmic();
        scsi({0x12, 0, 0, 0, 16, 0});
        CACHE_STATE& state = *findCacheState(handle);
        for (DeviceListCache* lists : {&state.logicalDevices, &state.physicalDevices, &state.storageVolumes,
                                       &state.maskedLogicalDevices, &state.maskedPhysicalDevices}) {
            lists->valid = true;
            lists->list.push_back("one");
            lists->map.insert({"one", "two"});
        }
        state.inherited = true;
        bmic([&](BMICRequest& r) {
            r.transferType = type;
            r.passThrough = 1;  // doesn't save the cache
        });
        EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
        for (DeviceListCache const* lists :
             {&state.logicalDevices, &state.physicalDevices, &state.storageVolumes,
              &state.maskedLogicalDevices, &state.maskedPhysicalDevices}) {
            EXPECT_FALSE(lists->valid);
            EXPECT_TRUE(lists->list.empty());
            EXPECT_TRUE(lists->map.empty());
        }
        EXPECT_TRUE(GetCacheStateForDevice(handle));
        EXPECT_TRUE(GetInheritanceFlagForDevice(handle));
    }
}

TEST_F(Cache, AScsiWriteEmptiesTheBmicRepliesToo) {
    bmic();
    unsigned char cdb[6] = {0x3B};
    SCSIRequest request;
    request.transferType = EnTransferType::Out;
    request.cdb = cdb;
    request.cdbLength = 6;
    ProcessSCSICommand(handle, request);
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
}

TEST_F(Cache, HandlesOfOneAdapterShareACacheAndOthersDoNot) {
    bmic();
    bmicTo(handleOf("KEY1", "/dev/other", "QRTH:0102030405060708"));
    EXPECT_EQ(sends(), 1U);
    bmicTo(handleOf("KEY2"));
    bmicTo(handleOf("KEY2"));
    EXPECT_EQ(sends(), 3U) << "a device without a state isn't cached";
}

// The first two bytes of a command block are no part of the key, whatever they mean.
TEST_F(Cache, ScsiBlocksThatDifferInTheirFirstTwoBytesShareAnEntry) {
    EXPECT_EQ(scsi({0x12, 0x01, 0x83, 0, 16, 0}), Bytes(16, 1));
    EXPECT_EQ(scsi({0xA5, 0x5A, 0x83, 0, 16, 0}), Bytes(16, 1));
    EXPECT_EQ(scsi({0x12, 0x01, 0x80, 0, 16, 0}), Bytes(16, 2));
    EXPECT_EQ(scsi({0x12, 0x01, 0x83, 0, 16, 1}), Bytes(16, 3));
}

TEST(ScsiKey, HoldsTheBlockBehindItsMarkAndTheAddress) {
    unsigned char const cdb[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    unsigned char const address[] = {0x50, 0x51, 0, 0, 0, 0, 0, 0};
    SCSI_KEY key;
    std::memset(key.bytes, 0xEE, sizeof(key.bytes));
    MAKE_SCSI_KEY(key, 16, cdb, address, 8);
    EXPECT_EQ(Bytes(key.bytes, key.bytes + 25),
              (Bytes{83, 0x50, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    SCSI_KEY other = key;
    other.bytes[24] = 1;
    EXPECT_FALSE(key == other);
    EXPECT_TRUE(key < other);
    unsigned char const tooLong[40] = {};
    LogCapture log(1);
    MAKE_SCSI_KEY(key, 40, tooLong, address, 8);
    EXPECT_EQ(log.count("Command block of 40 bytes refused as cache key, at most 25 expected"), 1U);
}

TEST(BmicKey, PacksAndUnpacks) {
    BMIC_KEY const key = MAKE_BMIC_KEY(0xF7, 0x89ABCDEF, 0x1234);
    EXPECT_EQ(key, 0x00123489ABCDEFF7ULL);
    EXPECT_EQ(GET_BMIC_COMMAND(key), 0xF7);
    EXPECT_EQ(GET_BMIC_DETAILS(key), 0x89ABCDEFU);
    EXPECT_EQ(GET_BMIC_LUN(key), 0x1234);
}

TEST_F(Cache, SwitchedOffEveryReadIsSent) {
    SetCommandCacheState(false);
    InsertCacheState(handle);
    SetCacheStateForDevice(handle, true);
    bmic();
    bmic();
    EXPECT_EQ(sends(), 2U);
}

TEST_F(Cache, SwitchingOffDiscardsTheStatesAndAllowsRescans) {
    SetDefaultInheritanceFlag(true);
    SetDiscoveryRescanOption(false);
    bmic();
    SetCommandCacheState(true);  // no change: nothing happens
    EXPECT_TRUE(GetCacheHasContentsForDevice(handle));
    EXPECT_FALSE(GetDiscoveryRescanOption());
    SetCommandCacheState(false);
    EXPECT_FALSE(IsValidDeviceHandle(handle));
    EXPECT_FALSE(GetCacheStateForDevice(handle));
    EXPECT_FALSE(GetDefaultCacheFlag());
    EXPECT_FALSE(GetDefaultInheritanceFlag());
    EXPECT_TRUE(GetDiscoveryRescanOption());
}

TEST_F(Cache, SwitchingOnDiscardsTheStatesToo) {
    SetCommandCacheState(false);
    InsertCacheState(handle);
    EXPECT_TRUE(IsValidDeviceHandle(handle));
    SetCommandCacheState(true);
    EXPECT_FALSE(IsValidDeviceHandle(handle));
}

TEST_F(Cache, ADevicesCacheIsEmptiedWhenItIsSwitchedOff) {
    bmic();
    findCacheState(handle)->inherited = true;
    SetCacheStateForDevice(handle, true);  // as it is: contents stay, inheritance goes
    EXPECT_TRUE(GetCacheHasContentsForDevice(handle));
    EXPECT_FALSE(GetInheritanceFlagForDevice(handle));
    SetCacheStateForDevice(handle, false);
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
    bmic();
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
    Common::string const unknown = handleOf("KEY3");
    SetCacheStateForDevice(unknown, false);
    EXPECT_FALSE(IsValidDeviceHandle(unknown));
    SetCacheStateForDevice(unknown, true);
    EXPECT_TRUE(GetCacheStateForDevice(unknown));
}

TEST_F(Cache, ClearingLeavesADeviceAloneWhoseCacheIsOff) {
    bmic();
    findCacheState(handle)->enabled = false;
    ClearCacheContentsForDevice(handle, true);
    EXPECT_TRUE(GetCacheHasContentsForDevice(handle));
    findCacheState(handle)->enabled = true;
    ClearCacheContentsForDevice(handle, false);
    EXPECT_FALSE(GetCacheHasContentsForDevice(handle));
}

TEST_F(Cache, AKnownDeviceKeepsItsState) {
    bmic();
    SetDefaultCacheFlag(false);
    InsertCacheState(handle);
    EXPECT_TRUE(GetCacheHasContentsForDevice(handle));
    EXPECT_TRUE(GetCacheStateForDevice(handle));
}

TEST_F(Cache, AdapterDiscoveryIsAskedOnceWhileTheCacheIsOn) {
    Interface::SysMod::Discovery::HandleList controllers, csmi, plain;
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    unsigned const reads = kernel.directoryReads;
    EXPECT_GT(reads, 0U);
    adapterListCache().controllers.push_back(handle);
    controllers.push_back("left over");
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    EXPECT_EQ(kernel.directoryReads, reads);
    EXPECT_EQ(controllers.size(), adapterListCache().controllers.size());
    ClearModRootCache();
    EXPECT_TRUE(adapterListCache().controllers.empty());
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    EXPECT_EQ(kernel.directoryReads, 2 * reads);

    SetCommandCacheState(false);
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    EXPECT_EQ(kernel.directoryReads, 4 * reads);
}

// Switching off discards the states but not the adapters' list: once the cache is on again, they had none.
TEST_F(Cache, SwitchedOnAgainTheAdaptersKnownGetTheirStatesBack) {
    Interface::SysMod::Discovery::HandleList controllers, csmi, plain;
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    unsigned const reads = kernel.directoryReads;
    adapterListCache().controllers.push_back(handle);
    SetCommandCacheState(false);
    SetCommandCacheState(true);
    SetDefaultCacheFlag(true);
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    EXPECT_EQ(kernel.directoryReads, reads);
    EXPECT_TRUE(GetCacheStateForDevice(handle));
    SetCacheStateForDevice(handle, false);
    ProcessStorageAdapterIterator(controllers, csmi, plain);
    EXPECT_FALSE(GetCacheStateForDevice(handle)) << "once";
}

using Interface::SysMod::Discovery::HandleList;
using Interface::SysMod::Discovery::HandleMap;

unsigned s_discoveries = 0;

void discoverTwo(Common::string const& handle, HandleMap& devices) {
    devices.insert({"ADDRESS", handle});
    devices.insert({std::to_string(++s_discoveries).c_str(), "NUMBERED"});
}
void discoverVolume(Common::string const&, HandleList& volumes) {
    volumes.push_back(std::to_string(++s_discoveries).c_str());
}
/// As a discovery that has to write to the device.
void discoverEmptying(Common::string const& handle, HandleMap& devices) {
    EmptyCacheFor(handle, true);
    discoverTwo(handle, devices);
}

TEST_F(Cache, DeviceListsAreDiscoveredOnceForEachKindUntilTheyAreForgotten) {
    s_discoveries = 0;
    HandleMap devices;
    devices.insert({"left over", ""});
    auto const ask = [&](DeviceListCache CACHE_STATE::*kind, DiscoverDevices discover = discoverTwo) {
        ProcessDeviceList(handle, kind, discover, devices);
        EXPECT_EQ(devices.size(), 2U);
        return devices.find("ADDRESS")->second == handle ? s_discoveries : 0;
    };
    DeviceListCache CACHE_STATE::*const kinds[] = {
        &CACHE_STATE::physicalDevices, &CACHE_STATE::logicalDevices, &CACHE_STATE::maskedPhysicalDevices,
        &CACHE_STATE::maskedLogicalDevices};
    unsigned expected = 0;
    for (auto const kind : kinds) {
        EXPECT_EQ(ask(kind), ++expected);
        EXPECT_EQ(ask(kind), expected);
    }
    HandleList volumes;
    for (int i = 0; i < 2; ++i) {
        ProcessVolumeList(handle, discoverVolume, volumes);
        ASSERT_EQ(volumes.size(), 1U);
        EXPECT_STREQ(volumes.begin()->c_str(), "5");
    }
    EmptyCacheFor(handle, true);
    EXPECT_EQ(ask(kinds[0], discoverEmptying), 6U);
    EXPECT_EQ(ask(kinds[0]), 6U) << "kept, though the discovery emptied the cache";
    SetCacheStateForDevice(handle, false);
    EXPECT_EQ(ask(kinds[0]), 7U);
    EXPECT_EQ(ask(kinds[0]), 8U) << "off for the device";
    SetCommandCacheState(false);
    SetCacheStateForDevice(handle, true);
    EXPECT_EQ(ask(kinds[0]), 9U);
    EXPECT_EQ(ask(kinds[0]), 10U) << "off for all";
}

/// They go straight through: nothing is stored, and what is stored stays, though they may change anything.
TEST_F(Cache, AtaAndCsmiCommandsAndRegisteringDisksLeaveTheCacheAlone) {
    bmic();
    std::size_t const before = sends();
    kernel.answer = [](KernelExchange const&) { return FakeKernel::Reply(); };
    ATARequest ata;
    CSMIRequest csmi;
    for (int i = 0; i < 2; ++i) {
        ProcessATACommand(handle, ata);
        ProcessCSMICommand(handle, csmi);
        EXPECT_TRUE(ProcessRegNewDisk(handle));
    }
    std::size_t const after = sends();
    EXPECT_GE(after, before + 2) << "nothing is answered from memory";
    bmic();
    EXPECT_EQ(sends(), after) << "what was stored is still there";
    EXPECT_EQ(findCacheState(handle)->scsiReplies.size(), 0U);
}

}  // namespace
