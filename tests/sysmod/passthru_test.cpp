#include <gtest/gtest.h>

#include <fcntl.h>

#include <numeric>

#include "sysmod/device_handle.h"
#include "sysmod/send_command.h"
#include "tests/sysmod/fake_system.h"

using namespace Core::SysMod;
using namespace Interface::SysMod::Command;

namespace {

constexpr unsigned long PASSTHRU = 0xC058420B;      // the 64-bit form: 88 bytes
constexpr unsigned long BIG_PASSTHRU = 0xC0604212;  // 96 bytes
constexpr unsigned long SG = 0x2285;

Common::string handleFor(char const* route, char const* node = "/dev/sg3", char const* transport = "") {
    PropertyTable table;
    table[NodePath] = node;
    table[Route] = route;
    table[TransportKind] = transport;
    return toDeviceInfo(table);
}

class Passthru : public ::testing::Test {
  protected:
    Passthru() {
        system.nodes = {"/dev/sg3", "/dev/mpt2ctl"};
        std::iota(std::begin(block), std::end(block), 0x41);
    }

    BMICRequest bmicRequest(std::uint32_t length, EnTransferType direction = EnTransferType::In) {
        BMICRequest request;
        request.transferType = direction;
        request.commandByte = 0x89;
        request.details = 0x12345678;
        request.unit = 0xABCD;
        request.dataBuffer = data.data();
        request.dataLength = length;
        request.senseBuffer = sense;
        request.senseLength = sizeof sense;
        return request;
    }

    SCSIRequest scsiRequest(std::uint32_t length, EnTransferType direction = EnTransferType::In) {
        SCSIRequest request;
        request.transferType = direction;
        request.cdb = block;
        request.cdbLength = 12;
        request.dataBuffer = data.data();
        request.dataLength = length;
        request.senseBuffer = sense;
        request.senseLength = sizeof sense;
        return request;
    }

    FakeSystem system;
    std::vector<unsigned char> data = std::vector<unsigned char>(300000);
    unsigned char sense[SENSE_BUFFER_SIZE] = {};
    unsigned char block[16] = {};
};

TEST_F(Passthru, ManagementCommandBecomesATenByteBlock) {
    BMICRequest request = bmicRequest(0x0600);
    ASSERT_TRUE(SendBMICCommand(handleFor("QRTH:0102030405060708"), request));
    ASSERT_EQ(system.calls.size(), 1U);
    auto const& record = system.calls[0].record;
    EXPECT_EQ(system.calls[0].request, PASSTHRU);
    ASSERT_EQ(record.size(), 88U);
    unsigned char const start[] = {1,    2,    3,    4,    5,    6,    7,    8,  // address
                                   10,   0xA0, 30,   0,  // block length; simple, read; 30 seconds
                                   0x26, 0xCD, 0x12, 0x34, 0x56, 0x78, 0x89, 0x06, 0x00, 0xAB};
    EXPECT_EQ(0, memcmp(record.data(), start, sizeof start));
    EXPECT_EQ(numberAt<std::uint16_t>(record, 76), 0x0600);
    EXPECT_EQ(numberAt<std::uint64_t>(record, 80), reinterpret_cast<std::uintptr_t>(data.data()));
    EXPECT_EQ(system.openCount, 1);
    EXPECT_EQ(system.closeCount, 1);
    EXPECT_EQ(system.openFlags[0], O_RDWR);
}

TEST_F(Passthru, EveryDirectionButInWritesAndTheOverrideStandsInTheLength) {
    struct Row {
        EnTransferType direction;
        std::uint32_t length;
        unsigned operationCode;
        unsigned type;
    };
    static Row const rows[] = {
        {EnTransferType::In, 512, 0x26, 0xA0},    {EnTransferType::Out, 512, 0x27, 0x60},
        {EnTransferType::InOut, 512, 0x27, 0x60}, {EnTransferType::None, 0, 0x27, 0x20},
        {EnTransferType::In, 0, 0x26, 0x20},  // no data, no direction
    };
    for (Row const& row : rows) {
        BMICRequest request = bmicRequest(row.length, row.direction);
        request.cdbLengthOverride = 0x1122;
        ASSERT_TRUE(SendBMICCommand(handleFor("QRTH:0000000000000000"), request));
        auto const& record = system.calls.back().record;
        EXPECT_EQ(record[12], row.operationCode);
        EXPECT_EQ(record[9], row.type);
        EXPECT_EQ(record[19], 0x11);
        EXPECT_EQ(record[20], 0x22);
        EXPECT_EQ(numberAt<std::uint16_t>(record, 76), row.length);
    }
}

TEST_F(Passthru, BigTransfersTakeTheBigRecord) {
    struct Row {
        std::uint32_t size;
        unsigned long request;
        std::uint32_t chunk;
    };
    static Row const rows[] = {
        {65535, PASSTHRU, 0},
        {127999, PASSTHRU, 0},
        {128000, BIG_PASSTHRU, 5120},
        {126976 * 2, BIG_PASSTHRU, 8192},  // 31 chunks exactly
        {126976 * 2 + 31, BIG_PASSTHRU, 9216},
    };
    for (Row const& row : rows) {
        SCSIRequest request = scsiRequest(row.size);
        ASSERT_TRUE(SendSCSICommand(handleFor("QRTH:0000000000000000"), request));
        auto const& call = system.calls.back();
        EXPECT_EQ(call.request, row.request) << row.size;
        if (row.request == BIG_PASSTHRU) {
            EXPECT_EQ(call.record.size(), 96U);
            EXPECT_EQ(numberAt<std::uint32_t>(call.record, 76), row.chunk) << row.size;
            EXPECT_EQ(numberAt<std::uint32_t>(call.record, 80), row.size);
            EXPECT_EQ(numberAt<std::uint64_t>(call.record, 88),
                      reinterpret_cast<std::uintptr_t>(data.data()));
        }
    }
}

/// The small record can't tell such sizes: a part of a write would pass for the whole.
TEST_F(Passthru, WritesBetweenTheTwoRecordsAreNotSent) {
    for (std::uint32_t const size : {65536U, 127999U}) {
        SCSIRequest request = scsiRequest(size, EnTransferType::Out);
        EXPECT_FALSE(SendSCSICommand(handleFor("QRTH:0000000000000000"), request)) << size;
        EXPECT_EQ(request.lowLevelStatus, EMSGSIZE);
    }
    EXPECT_TRUE(system.calls.empty());
    for (std::uint32_t const size : {65535U, 128000U}) {
        SCSIRequest request = scsiRequest(size, EnTransferType::Out);
        EXPECT_TRUE(SendSCSICommand(handleFor("QRTH:0000000000000000"), request)) << size;
    }
}

TEST_F(Passthru, TimeoutsAreClampedOnlyByTheControllersPassthru) {
    struct Row {
        std::uint32_t given;
        std::uint16_t passthru;
        std::uint32_t generic;
    };
    static Row const rows[] = {{0, 30, 1},         {5, 30, 5001},        {31, 31, 31001},
                               {600, 600, 600001}, {3600, 600, 3600001}, {0xFFFFFFFF, 600, 0xFFFFFFFF}};
    for (Row const& row : rows) {
        SCSIRequest request = scsiRequest(8);
        request.timeout = row.given;
        ASSERT_TRUE(SendSCSICommand(handleFor("QRTH:0000000000000000"), request));
        EXPECT_EQ(numberAt<std::uint16_t>(system.calls.back().record, 10), row.passthru) << row.given;
        ASSERT_TRUE(SendSCSICommand(handleFor(""), request));
        EXPECT_EQ(numberAt<std::uint32_t>(system.calls.back().record, 40), row.generic) << row.given;
    }
}

TEST_F(Passthru, OutcomeComesBackIntoTheRequest) {
    system.answer = [](FakeSystem::Call const&, unsigned char* record) {
        record[28] = 0x02;
        record[30] = 0x34;
        record[31] = 0x12;
        for (int i = 0; i < 32; ++i) {
            record[44 + i] = static_cast<unsigned char>(0xA0 + i);
        }
        return 0;
    };
    BMICRequest request = bmicRequest(512);
    ASSERT_TRUE(SendBMICCommand(handleFor("QRTH:0000000000000000"), request));
    EXPECT_EQ(request.scsiStatus, 0x02);
    EXPECT_EQ(request.commandStatus, 0x1234);
    EXPECT_EQ(request.lowLevelStatus, 0);
    EXPECT_EQ(sense[0], 0xA0);
    EXPECT_EQ(sense[31], 0xBF);

    SCSIRequest shortSense = scsiRequest(8);
    std::fill(std::begin(sense), std::end(sense), 0);
    shortSense.senseLength = 3;
    ASSERT_TRUE(SendSCSICommand(handleFor("QRTH:0000000000000000"), shortSense));
    EXPECT_EQ(sense[2], 0xA2);
    EXPECT_EQ(sense[3], 0);
}

TEST_F(Passthru, AFailedIoctlLeavesOnlyItsErrno) {
    system.answer = [](FakeSystem::Call const&, unsigned char* record) {
        record[28] = 0x02;  // a reply that nobody may read
        return EIO;
    };
    BMICRequest request = bmicRequest(512);
    EXPECT_FALSE(SendBMICCommand(handleFor("QRTH:0000000000000000"), request));
    EXPECT_EQ(request.lowLevelStatus, EIO);
    EXPECT_EQ(request.scsiStatus, 0);
    EXPECT_EQ(system.closeCount, 1);
}

TEST_F(Passthru, AnUnopenedNodeGivesItsOpenError) {
    system.openErrors["/dev/gone"] = EACCES;
    BMICRequest bmic = bmicRequest(512);
    EXPECT_FALSE(SendBMICCommand(handleFor("QRTH:0000000000000000", "/dev/gone"), bmic));
    EXPECT_EQ(bmic.lowLevelStatus, EACCES);
    SCSIRequest scsi = scsiRequest(8);
    EXPECT_FALSE(SendSCSICommand(handleFor("", "/dev/gone"), scsi));
    EXPECT_EQ(scsi.lowLevelStatus, EACCES);
    EXPECT_TRUE(system.calls.empty());
    EXPECT_EQ(system.closeCount, 0);
}

TEST_F(Passthru, RoutesThatMatchNothingSendNothing) {
    for (char const* route : {"BMIC:3", "CSMI:1:0011223344556677", "", "XYZ", "QRTH:12"}) {
        BMICRequest request = bmicRequest(512);
        EXPECT_FALSE(SendBMICCommand(handleFor(route), request)) << route;
        EXPECT_EQ(request.lowLevelStatus, -1) << "a failure leaves a status";
    }
    for (char const* route :
         {"XYZ:1", "CSMI:5", "QR", "QRTH:zz", "BMIC:abc", "BMIC:", "BMIC:65536", "CSMI:256:0011223344556677",
          "CSMI::0011223344556677", "CSMI:-1:0011223344556677"}) {
        SCSIRequest request = scsiRequest(8);
        EXPECT_FALSE(SendSCSICommand(handleFor(route), request)) << route;
        EXPECT_EQ(request.lowLevelStatus, -1) << route;
    }
    EXPECT_TRUE(system.calls.empty());
    SCSIRequest request = scsiRequest(8);
    EXPECT_TRUE(SendSCSICommand(handleFor("BMIC:3"), request));
    EXPECT_EQ(system.calls.at(0).record[0], 3);
    EXPECT_EQ(system.calls.at(0).record[3], 0x40);
}

TEST_F(Passthru, GenericRecordHasTheKernelsLayout) {
    struct Row {
        EnTransferType direction;
        std::int32_t code;
    };
    static Row const rows[] = {{EnTransferType::In, -3},
                               {EnTransferType::Out, -2},
                               {EnTransferType::InOut, -4},
                               {EnTransferType::None, -1},
                               {EnTransferType::MessageOut, -1}};
    for (Row const& row : rows) {
        SCSIRequest request = scsiRequest(0x89ABC, row.direction);
        request.scsiStatus = 0x77;
        request.commandStatus = 0x55;
        ASSERT_TRUE(SendSCSICommand(handleFor(""), request));
        auto const& call = system.calls.back();
        EXPECT_EQ(call.request, SG);
        EXPECT_EQ(numberAt<std::uint32_t>(call.record, 0), 0x53U);
        EXPECT_EQ(numberAt<std::int32_t>(call.record, 4), row.code);
        EXPECT_EQ(call.record[8], 12);
        EXPECT_EQ(call.record[9], 32);
        EXPECT_EQ(numberAt<std::uint32_t>(call.record, 12), 0x89ABCU);
        EXPECT_EQ(numberAt<std::uint64_t>(call.record, 16), reinterpret_cast<std::uintptr_t>(data.data()));
        EXPECT_EQ(numberAt<std::uint64_t>(call.record, 24), reinterpret_cast<std::uintptr_t>(block));
        EXPECT_EQ(numberAt<std::uint64_t>(call.record, 32), reinterpret_cast<std::uintptr_t>(sense));
        EXPECT_EQ(request.scsiStatus, 0x77) << "the status stays as the caller set it";
        EXPECT_EQ(request.commandStatus, 0);
    }
}

TEST_F(Passthru, MessagesCarryOneByteAndTheirOwnType) {
    struct Row {
        EnTransferType direction;
        unsigned type;
    };
    static Row const rows[] = {{EnTransferType::MessageIn, 0xA1}, {EnTransferType::MessageOut, 0x61}};
    for (Row const& row : rows) {
        SCSIRequest request = scsiRequest(0, row.direction);
        request.scsiStatus = 9;
        ASSERT_TRUE(SendSCSICommand(handleFor("QRTH:0000000000000000"), request));
        auto const& record = system.calls.back().record;
        EXPECT_EQ(record[9], row.type);
        EXPECT_EQ(numberAt<std::uint16_t>(record, 76), 1);
        EXPECT_EQ(request.scsiStatus, 0);
    }
}

TEST_F(Passthru, SspPassthruByCsmi) {
    system.answer = [](FakeSystem::Call const& call, unsigned char* record) {
        EXPECT_EQ(call.record.size(), 360U + 64U);
        record[93] = 0x05;
        record[96] = 2;
        record[97] = 0x02;
        record[99] = 18;
        record[100 + 2] = 0x06;
        record[356] = 48;
        std::fill(record + 360, record + 360 + 64, 0x5A);
        return 0;
    };
    SCSIRequest request = scsiRequest(64);
    ASSERT_TRUE(SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl:7"), request));
    auto const& call = system.calls.at(0);
    EXPECT_EQ(call.request, 0xCC770018UL);
    EXPECT_EQ(numberAt<std::uint32_t>(call.record, 0), 7U);
    EXPECT_EQ(numberAt<std::uint32_t>(call.record, 4), 424U);
    EXPECT_EQ(numberAt<std::uint32_t>(call.record, 12), 60U);
    EXPECT_EQ(numberAt<std::uint16_t>(call.record, 16), 0);
    EXPECT_EQ(call.record[20], 9);
    EXPECT_EQ(call.record[21], 0xFF);
    EXPECT_EQ(call.record[24], 0x50);
    EXPECT_EQ(call.record[31], 0x44);
    EXPECT_EQ(call.record[40], 12);
    EXPECT_EQ(call.record[44], 0x41);
    EXPECT_EQ(numberAt<std::uint32_t>(call.record, 60), 1U);
    EXPECT_EQ(numberAt<std::uint32_t>(call.record, 88), 64U);
    EXPECT_EQ(request.scsiStatus, 0x02);
    EXPECT_EQ(request.dataLength, 48U);
    EXPECT_EQ(data[47], 0x5A);
    EXPECT_EQ(data[48], 0) << "only what the device returned";
    EXPECT_EQ(sense[2], 0x06);
}

TEST_F(Passthru, CsmiReturnCodeIsAFailureAndLengthsInTheReplyAreBounded) {
    system.answer = [](FakeSystem::Call const&, unsigned char* record) {
        record[8] = 1;
        record[97] = 0x08;
        return 0;
    };
    SCSIRequest request = scsiRequest(64, EnTransferType::Out);
    EXPECT_FALSE(SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl:7"), request));
    EXPECT_EQ(request.scsiStatus, 0x08);
    EXPECT_EQ(numberAt<std::uint16_t>(system.calls.at(0).record, 16), 1) << "write direction";
    EXPECT_EQ(numberAt<std::uint32_t>(system.calls.at(0).record, 60), 2U);

    system.answer = [](FakeSystem::Call const&, unsigned char* record) {
        record[96] = 2;
        record[98] = 0xFF;  // 65,535 bytes of sense, and more data than asked for
        record[99] = 0xFF;
        std::fill(record + 356, record + 360, 0xFF);
        return 0;
    };
    SCSIRequest greedy = scsiRequest(16);
    EXPECT_TRUE(SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl"), greedy));
    EXPECT_EQ(numberAt<std::uint32_t>(system.calls.back().record, 0), 0xFFFFFFFFU) << "no controller number";
    EXPECT_EQ(greedy.dataLength, 16U);
}

/// Where data stands in the record, and which way it goes, by transfer type.
TEST_F(Passthru, CsmiDataGoesTheWayOfItsTransfer) {
    struct Row {
        EnTransferType transferType;
        std::uint16_t direction;
        std::uint32_t flags;
        bool isOut;
        bool isIn;
    };
    static Row const rows[] = {
        {EnTransferType::In, 0, 1, false, true},         {EnTransferType::Out, 1, 2, true, false},
        {EnTransferType::InOut, 1, 4, true, true},       {EnTransferType::None, 0, 4, false, false},
        {EnTransferType::MessageIn, 0, 0, false, false}, {EnTransferType::MessageOut, 0, 0, false, false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(static_cast<unsigned>(row.transferType));
        system.answer = [](FakeSystem::Call const&, unsigned char* record) {
            record[356] = 16;  // as many bytes came
            for (unsigned i = 0; i < 16; ++i)
                record[360 + i] = static_cast<unsigned char>(0xA0 + i);
            return 0;
        };
        SCSIRequest request = scsiRequest(16, row.transferType);
        for (unsigned i = 0; i < 16; ++i)
            request.dataBuffer[i] = static_cast<unsigned char>(0x10 + i);
        request.commandStatus = 0x55;
        ASSERT_TRUE(SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl:7"), request));
        auto const& sent = system.calls.back().record;
        EXPECT_EQ(numberAt<std::uint16_t>(sent, 16), row.direction);
        EXPECT_EQ(numberAt<std::uint32_t>(sent, 60), row.flags);
        EXPECT_EQ(sent[360], row.isOut ? 0x10 : 0);
        EXPECT_EQ(sent[375], row.isOut ? 0x1F : 0);
        EXPECT_EQ(request.dataBuffer[0], row.isIn ? 0xA0 : 0x10);
        EXPECT_EQ(request.dataBuffer[15], row.isIn ? 0xAF : 0x1F);
        EXPECT_EQ(request.commandStatus, 0);
    }
}

TEST_F(Passthru, PauseAndResumeByCsmi) {
    for (bool const pause : {true, false}) {
        CSMIRequest request;
        request.pauseActivity = pause ? 1 : 0;
        ASSERT_TRUE(SendCSMICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl:2"), request));
        auto const& call = system.calls.back();
        EXPECT_EQ(call.request, pause ? 0xCC770031UL : 0xCC770032UL);
        EXPECT_EQ(call.record.size(), 92U);
        EXPECT_EQ(call.record[20], 0x50);
        EXPECT_EQ(call.record[27], 0x44);
        EXPECT_EQ(call.record[28], 0);
    }
    CSMIRequest request;
    EXPECT_FALSE(SendCSMICommand(handleFor("QRTH:0000000000000000"), request));
}

TEST_F(Passthru, AtaCommandsTravelAsAtaPassThrough16) {
    struct Row {
        EnTransferType direction;
        std::uint8_t sectors;
        unsigned protocol;
        unsigned flags;
        unsigned count;
    };
    static Row const rows[] = {{EnTransferType::In, 0, 8, 14, 2},
                               {EnTransferType::Out, 7, 10, 6, 7},
                               {EnTransferType::None, 1, 6, 6, 1}};
    for (Row const& row : rows) {
        ATARequest request;
        request.transferType = row.direction;
        request.features = 0x91;
        request.sectorCount = row.sectors;
        request.lbaLow = 0x92;
        request.lbaMid = 0x93;
        request.lbaHigh = 0x94;
        request.device = 0x95;
        request.command = 0x96;
        request.dataBuffer = data.data();
        request.dataLength = 1024;
        ASSERT_TRUE(SendATACommand(handleFor("", "/dev/sg3", "SCSI"), request));
        std::vector<unsigned char> const generic = system.calls.back().block;
        ASSERT_TRUE(SendATACommand(handleFor("QRTH:0000000000000000"), request));
        auto const& passthru = system.calls.back().record;
        unsigned char const expected[16] = {0x85,
                                            static_cast<unsigned char>(row.protocol),
                                            static_cast<unsigned char>(row.flags),
                                            0,
                                            0x91,
                                            0,
                                            static_cast<unsigned char>(row.count),
                                            0,
                                            0x92,
                                            0,
                                            0x93,
                                            0,
                                            0x94,
                                            0x95,
                                            0x96,
                                            0};
        EXPECT_EQ(0, memcmp(passthru.data() + 12, expected, 16));
        EXPECT_EQ(generic, std::vector<unsigned char>(std::begin(expected), std::end(expected)));
    }
    ATARequest native;
    EXPECT_FALSE(SendATACommand(handleFor("", "/dev/sg3", "ATA"), native));
    EXPECT_FALSE(SendATACommand(handleFor("BMIC:1"), native));
    EXPECT_EQ(system.calls.size(), 6U);
}

TEST_F(Passthru, AtaRegistersComeBackInTheSenseDataThatHoldsThem) {
    struct Row {
        std::vector<unsigned char> sense;
        std::vector<unsigned char> registers;
    };
    std::vector<unsigned char> const whole = {0x72, 0x0B, 0,    0,    0,    0,    0,    18,   0x03,
                                              0x02, 0,    0,    0x09, 0x0C, 0,    0x41, 0x42, 0x43,
                                              0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x51};
    auto const with = [&](std::size_t at, unsigned char value) {
        std::vector<unsigned char> sense = whole;
        sense[at] = value;
        return sense;
    };
    std::vector<unsigned char> const none(8);
    for (Row const& row : {Row{whole, {0x41, 0x43, 0x45, 0x47, 0x49, 0x4A, 0x51, 0}},
                           Row{with(0, 0x70), none},  // fixed format
                           Row{with(7, 17), none},    // cut off
                           Row{with(7, 255), {0x41, 0x43, 0x45, 0x47, 0x49, 0x4A, 0x51, 0}},
                           Row{with(13, 0x0B), none},  // another length than the descriptor has
                           Row{with(9, 0xFF), none}}) {
        system.answer = [&](FakeSystem::Call const&, unsigned char* record) {
            std::copy(row.sense.begin(), row.sense.end(), record + 44);
            return 0;
        };
        std::vector<unsigned char> registers(8);
        ATARequest request;
        request.transferType = EnTransferType::None;
        request.resultRegisters = registers.data();
        request.resultLength = 8;
        ASSERT_TRUE(SendATACommand(handleFor("QRTH:0000000000000000"), request));
        EXPECT_EQ(row.registers, registers);
        EXPECT_EQ(row.registers[6], request.ataStatus);
    }
}

TEST_F(Passthru, TheBigRecordBringsItsOutcomeToo) {
    system.answer = [](FakeSystem::Call const& call, unsigned char* record) {
        EXPECT_EQ(call.request, BIG_PASSTHRU);
        EXPECT_EQ(call.record[9], 0x60);
        record[28] = 0x02;
        record[30] = 0x01;
        record[46] = 0x05;
        return 0;
    };
    SCSIRequest request = scsiRequest(200000, EnTransferType::Out);
    ASSERT_TRUE(SendSCSICommand(handleFor("QRTH:0000000000000000"), request));
    EXPECT_EQ(request.scsiStatus, 0x02);
    EXPECT_EQ(request.commandStatus, 0x0001);
    EXPECT_EQ(sense[2], 0x05);
}

/// Lines that people look for in the library's log.
TEST_F(Passthru, FailuresAndCsmiRequestsAreLogged) {
    CapturedLog log;
    system.openErrors["/dev/gone"] = EACCES;
    SCSIRequest request = scsiRequest(8);
    SendSCSICommand(handleFor("", "/dev/gone"), request);
    CSMIRequest pause;
    SendCSMICommand(handleFor("CSMI:9:5000C50011223344", "/dev/gone"), pause);
    system.answer = [](FakeSystem::Call const&, unsigned char* record) {
        record[8] = 0x0B;
        record[93] = 0x05;
        return 0;
    };
    SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl"), request);
    system.answer = [](FakeSystem::Call const&, unsigned char* record) {
        record[93] = 0x05;
        return 0;
    };
    SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl"), request);
    for (char const* line : {
             "Error opening node (/dev/gone). Code: 0x0000000D",
             "CSMI(Opcode: 0xCC770032) Failed. LLError: 0x0000000D",
             "CSMI(Opcode: 0xCC770018) BS:368",
             "CSMI(Opcode: 0xCC770018) Status: OK, ReturnCode: 0x0000000B, LLError: 0x00000000",
             "CSMIPT Failed. Code 0x0000000B",
             "BSSPStatus = 0x05",
         }) {
        EXPECT_NE(log.text().find(line), std::string::npos) << line << "\nin\n" << log.text();
    }
}

TEST_F(Passthru, EveryRequestHasABeginAndAnEndLine) {
    CapturedLog log;
    BMICRequest bmic = bmicRequest(512);
    bmic.cdbLengthOverride = 3;
    SendBMICCommand(handleFor("QRTH:0000000000000000"), bmic);
    SCSIRequest scsi = scsiRequest(8);
    scsi.cdbLength = 6;
    SendSCSICommand(handleFor(""), scsi);
    SendSCSICommand(handleFor("QRTH:0000000000000000"), scsi);
    SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl"), scsi);
    scsi.transferType = EnTransferType::MessageOut;
    SendSCSICommand(handleFor("BMIC:5", "/dev/gone"), scsi);
    std::size_t at = 0;
    for (char const* line : {
             "BMIC(0x89 0x12345678) Dir:In,DBS:512(Blocks)\n",
             "SCSIPT(26 CD 12 34 56 78 89 00 03 AB) Dir:In,DBS:512,SBS:32\n",
             "SCSIPT(26 CD 12 34 56 78 89 00 03 AB) Status:OK,bStatus:0x00,LLCode:0x00000000\n",
             "BMIC(0x89 0x12345678) Status:OK\n",
             "SCSI(41 42 43 44 45 46)\n",
             "SCSI(41 42 43 44 45 46) Status:OK,bStatus:0x00,LLCode:0x00000000\n",
             "SCSIPT(41 42 43 44 45 46) Dir:In,DBS:8,SBS:32\n",
             "SCSIPT(41 42 43 44 45 46) Status:OK,bStatus:0x00,LLCode:0x00000000\n",
             "CSMIPT(9) Address:5000C50011223344,Dir:In,DBS:8,SBS:32\n",
             "CSMIPT(9) Address:5000C50011223344,Status:OK,DBS:0,bStatus:0x00,LLCode:0x00000000\n",
             "SCSIPT(41 42 43 44 45 46) Dir:Out,DBS:1,SBS:0\n",
             "SCSIPT(41 42 43 44 45 46) Status:Failed,bStatus:0x00,LLCode:0x00000002\n",
             "SCSI(41 42 43 44 45 46) Status:Failed,bStatus:0x00,LLCode:0x00000002\n",
         }) {
        std::size_t const found = log.text().find(line, at);
        EXPECT_NE(found, std::string::npos) << line << "\nbehind " << at << " in\n" << log.text();
        at = found == std::string::npos ? at : found + 1;
    }
}

TEST_F(Passthru, AnSspTransferThatNoRecordCanHoldIsRefused) {
    CapturedLog log;
    SCSIRequest request = scsiRequest(0xFFFFFFFF);
    EXPECT_FALSE(SendSCSICommand(handleFor("CSMI:9:5000C50011223344", "/dev/mpt2ctl"), request));
    EXPECT_TRUE(system.calls.empty());
    EXPECT_NE(log.text().find("SSP pass-through of 4294967295 bytes refused: at most 4294966915 expected"),
              std::string::npos)
        << log.text();
}

TEST_F(Passthru, NewDiskMessageHasNoRecord) {
    EXPECT_TRUE(SendRegNewDiskMessage(handleFor("")));
    EXPECT_EQ(system.calls.at(0).request, 0x420EUL);
    EXPECT_FALSE(system.calls.at(0).hasArgument);
    EXPECT_FALSE(SendRegNewDiskMessage(handleFor("", "/dev/gone")));
}

}  // namespace
