/// The kernel records byte by byte, built here from literals: what a program puts in, what it gets back.

#include <cerrno>
#include <cstring>

#include "tests/simulator/machine_fixture.h"

namespace simulator_test {
namespace {

constexpr unsigned long SG_IO_NUMBER = 0x2285;
constexpr unsigned long PASS_THROUGH = 0xC058420B;
constexpr unsigned long BIG_PASS_THROUGH = 0xC0604212;
constexpr unsigned long REGISTER_NEW_DISKS = 0x420E;

void putPointer(Bytes& record, std::size_t offset, void* pointer) {
    std::memcpy(&record[offset], &pointer, 8);
}

/// A pass-through record of 88 bytes for a read.
Bytes passThrough(std::uint8_t code, Bytes& buffer) {
    Bytes record(88, 0);
    record[8] = 10;
    record[9] = 0xA0;  // read, simple, command
    record[10] = 30;
    record[12] = 0x26;
    record[18] = code;
    record[19] = static_cast<std::uint8_t>(buffer.size() >> 8);
    record[20] = static_cast<std::uint8_t>(buffer.size());
    record[76] = static_cast<std::uint8_t>(buffer.size());
    record[77] = static_cast<std::uint8_t>(buffer.size() >> 8);
    putPointer(record, 80, buffer.data());
    return record;
}

Bytes scsiGeneric(Bytes& block, Bytes& buffer, Bytes& senseBuffer) {
    Bytes record(88, 0);
    record[0] = 'S';
    std::int32_t const fromDevice = -3;
    std::memcpy(&record[4], &fromDevice, 4);
    record[8] = static_cast<std::uint8_t>(block.size());
    record[9] = static_cast<std::uint8_t>(senseBuffer.size());
    record[12] = static_cast<std::uint8_t>(buffer.size());
    putPointer(record, 16, buffer.data());
    putPointer(record, 24, block.data());
    putPointer(record, 32, senseBuffer.data());
    record[40] = 0x89;
    record[41] = 0x13;  // 5001 ms
    return record;
}

class KernelRecords : public MachineTest {
  protected:
    void SetUp() override { make(twoControllers()); }
};

TEST_F(KernelRecords, PassThroughReadFillsTheBuffer) {
    Bytes buffer(512, 0xEE);
    Bytes record = passThrough(0x11, buffer);
    ASSERT_EQ(0, machine->ioctl(ONE, PASS_THROUGH, record.data()));
    EXPECT_EQ("6.40", std::string(buffer.begin() + 5, buffer.begin() + 9));
    EXPECT_EQ(Bytes(48, 0), Bytes(record.begin() + 28, record.begin() + 76))
        << "good status, nothing residual";
    simulator::JournalEntry const entry = last();
    EXPECT_EQ("XQRTH_PASSTHRU", entry.request);
    EXPECT_EQ(30000U, entry.timeoutMilliseconds);
    EXPECT_EQ("in", entry.direction);
}

TEST_F(KernelRecords, PassThroughUnderrunAndSense) {
    Bytes buffer(600, 0xEE);
    Bytes record = passThrough(0x11, buffer);
    ASSERT_EQ(0, machine->ioctl(ONE, PASS_THROUGH, record.data()));
    EXPECT_EQ("00 00 02 00 58 00 00 00", simulator::toHex(std::span(record).subspan(28, 8), " "));
    EXPECT_EQ(0xEE, buffer[512]) << "the rest of the buffer isn't touched";

    record = passThrough(0xBE, buffer);
    ASSERT_EQ(0, machine->ioctl(ONE, PASS_THROUGH, record.data()));
    EXPECT_EQ("02 12 01 00 58 02 00 00", simulator::toHex(std::span(record).subspan(28, 8), " "));
    EXPECT_EQ("70 00 05 00 00 00 00 0a 00 00 00 00 20 00",
              simulator::toHex(std::span(record).subspan(44, 14), " "));
}

TEST_F(KernelRecords, RequestNumbersWidenedByASignAreTheSame) {
    Bytes buffer(512, 0);
    Bytes record = passThrough(0x11, buffer);
    EXPECT_EQ(0, machine->ioctl(ONE, 0xFFFFFFFFC058420BUL, record.data()));
}

TEST_F(KernelRecords, BigPassThroughCarriesMoreThanTheSmallOneCan) {
    Bytes buffer(130000, 0xEE);
    Bytes record(96, 0);
    record[8] = 10;
    record[9] = 0xA0;
    record[12] = 0x26;
    record[18] = 0x11;
    record[19] = 0xFB;  // 130000 modulo 65536 is 64464
    record[20] = 0xD0;
    record[77] = 0x14;  // chunks of 5120
    std::uint32_t const size = 130000;
    std::memcpy(&record[80], &size, 4);
    putPointer(record, 88, buffer.data());
    ASSERT_EQ(0, machine->ioctl(ONE, BIG_PASS_THROUGH, record.data()));
    EXPECT_EQ(2, record[30]) << "underrun";
    EXPECT_EQ("6.40", std::string(buffer.begin() + 5, buffer.begin() + 9));
    record[77] = 4;  // 127 chunks
    EXPECT_EQ(EINVAL, machine->ioctl(ONE, BIG_PASS_THROUGH, record.data()));
}

TEST_F(KernelRecords, ScsiGenericFillsBufferAndStatus) {
    Bytes block = {0x12, 0, 0, 0, 96, 0};
    Bytes buffer(100, 0xEE);
    Bytes senseBuffer(32, 0xEE);
    Bytes record = scsiGeneric(block, buffer, senseBuffer);
    ASSERT_EQ(0, machine->ioctl(TWO, SG_IO_NUMBER, record.data()));
    EXPECT_EQ("MODEL TWO", std::string(buffer.begin() + 16, buffer.begin() + 25));
    EXPECT_EQ("00 00 00 00 00 00 00 00 04 00 00 00",
              simulator::toHex(std::span(record).subspan(64, 12), " "));
    EXPECT_EQ(Bytes(32, 0xEE), senseBuffer);
    EXPECT_EQ(5001U, last().timeoutMilliseconds);

    block[2] = 0xB0;
    block[1] = 1;
    ASSERT_EQ(0, machine->ioctl(TWO, SG_IO_NUMBER, record.data()));
    EXPECT_EQ("02 01 00 12 00 00 08 00", simulator::toHex(std::span(record).subspan(64, 8), " "));
    EXPECT_EQ(5, senseBuffer[2]);
    EXPECT_EQ(0x24, senseBuffer[12]);
    EXPECT_EQ(0xEE, senseBuffer[18]);
}

TEST_F(KernelRecords, BothNodesAnswerBothWays) {
    Bytes buffer(36, 0);
    Bytes none;
    Bytes block = {0x12, 0, 0, 0, 36, 0};
    Bytes generic = scsiGeneric(block, buffer, none);
    EXPECT_EQ(0, machine->ioctl(ONE, SG_IO_NUMBER, generic.data()));
    Bytes large(512, 0);
    Bytes record = passThrough(0x11, large);
    EXPECT_EQ(0, machine->ioctl(TWO, PASS_THROUGH, record.data()));
    EXPECT_EQ(0, machine->ioctl(ONE, REGISTER_NEW_DISKS, nullptr));
    EXPECT_EQ("XQRTH_REGNEWD", last().command);
}

TEST_F(KernelRecords, TheScanMessageIsTaken) {
    Bytes buffer(1, 0);
    Bytes record = passThrough(0, buffer);
    record[8] = 16;
    record[9] = 0x61;  // message, simple, write
    std::fill(record.begin() + 12, record.begin() + 28, std::uint8_t{0});
    record[12] = 2;
    ASSERT_EQ(0, machine->ioctl(ONE, PASS_THROUGH, record.data()));
    EXPECT_EQ(0, record[30]);
    EXPECT_EQ("MESSAGE SCAN", last().command);
    record[12] = 9;
    ASSERT_EQ(0, machine->ioctl(ONE, PASS_THROUGH, record.data()));
    EXPECT_EQ(4, record[30]) << "no such message";
}

struct ForeignRequest {
    unsigned long number;
    char const* name;
};

TEST_F(KernelRecords, RequestsOfOtherDriversAreNoRequests) {
    for (ForeignRequest const& each : {ForeignRequest{0xCC770001, "CSMI DRIVER INFORMATION"},
                                       ForeignRequest{0xC054420B, "XQRTH_PASSTHRU of a 32-bit program"},
                                       ForeignRequest{0x5401, "unknown"}}) {
        Bytes record(256, 0);
        EXPECT_EQ(ENOTTY, machine->ioctl(ONE, each.number, record.data()));
        EXPECT_EQ(each.name, last().request);
        EXPECT_EQ("errno ENOTTY", last().outcome);
    }
}

/// A record with one member changed, and the errno that it earns.
struct BadRecord {
    char const* name;
    unsigned long number;
    std::size_t offset;
    std::size_t width;
    std::uint64_t value;
    int error;
};

class BadKernelRecord : public MachineTest, public ::testing::WithParamInterface<BadRecord> {};

TEST_P(BadKernelRecord, IsRefused) {
    make(twoControllers());
    Bytes buffer(96, 0);
    Bytes none(18, 0);
    Bytes block = {0x12, 0, 0, 0, 96, 0};
    Bytes record =
        GetParam().number == SG_IO_NUMBER ? scsiGeneric(block, buffer, none) : passThrough(0x11, buffer);
    simulator::putLittle(&record[GetParam().offset], GetParam().width, GetParam().value);
    EXPECT_EQ(GetParam().error, machine->ioctl(ONE, GetParam().number, record.data()));
    EXPECT_EQ(1U, last().notes.size()) << "the journal says why";
}

INSTANTIATE_TEST_SUITE_P(All, BadKernelRecord,
                         ::testing::Values(BadRecord{"InterfaceId", SG_IO_NUMBER, 0, 4, 'Q', ENOSYS},
                                           BadRecord{"Direction", SG_IO_NUMBER, 4, 4, 0xFFFFFFF0, EINVAL},
                                           BadRecord{"BlockTooShort", SG_IO_NUMBER, 8, 1, 5, EMSGSIZE},
                                           BadRecord{"BlockTooLong", SG_IO_NUMBER, 8, 1, 17, EMSGSIZE},
                                           BadRecord{"Vectors", SG_IO_NUMBER, 10, 2, 1, EINVAL},
                                           BadRecord{"LengthTooGreat", SG_IO_NUMBER, 12, 4, 0xFFFFFFFF,
                                                     EINVAL},
                                           BadRecord{"NoBuffer", SG_IO_NUMBER, 16, 8, 0, EFAULT},
                                           BadRecord{"NoBlock", SG_IO_NUMBER, 24, 8, 0, EFAULT},
                                           BadRecord{"PassNoBuffer", PASS_THROUGH, 80, 8, 0, EFAULT},
                                           BadRecord{"PassBlockTooLong", PASS_THROUGH, 8, 1, 17, EINVAL},
                                           BadRecord{"PassNoBlock", PASS_THROUGH, 8, 1, 0, EINVAL},
                                           BadRecord{"PassBothDirections", PASS_THROUGH, 9, 1, 0xE0, EINVAL},
                                           BadRecord{"PassRequestType", PASS_THROUGH, 9, 1, 0xA5, EINVAL}),
                         [](auto const& each) { return each.param.name; });

TEST_F(KernelRecords, ARecordIsNeeded) {
    EXPECT_EQ(EFAULT, machine->ioctl(ONE, PASS_THROUGH, nullptr));
    EXPECT_EQ(EFAULT, machine->ioctl(ONE, SG_IO_NUMBER, nullptr));
}

TEST_F(KernelRecords, ASenseBufferIsNot) {
    Bytes block = {0x12, 1, 0xB0, 0, 96, 0};
    Bytes buffer(96, 0);
    Bytes none;
    Bytes record = scsiGeneric(block, buffer, none);
    ASSERT_EQ(0, machine->ioctl(ONE, SG_IO_NUMBER, record.data()));
    EXPECT_EQ(2, record[64]);
    EXPECT_EQ(0, record[67]);
}

}  // namespace
}  // namespace simulator_test
