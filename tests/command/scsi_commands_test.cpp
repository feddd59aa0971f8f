// SCSI command blocks, what goes with them, and what is read out of replies.

#include <gtest/gtest.h>

#include <memory>

#include "command/scsi/block_device_commands.h"
#include "command/scsi/enclosure_commands.h"
#include "command/scsi/flash_commands.h"
#include "command/scsi/inquiry_commands.h"
#include "command/scsi/page_commands.h"
#include "command/scsi/report_luns.h"
#include "command/scsi/sat_commands.h"
#include "command/scsi/switch_commands.h"
#include "fakes.h"

namespace {

using namespace command_test;
using Strings = std::vector<std::string>;

std::string hex(unsigned char const* bytes, std::size_t size) {
    std::string text;
    char digits[4];
    for (std::size_t i = 0; i < size; ++i) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(bytes[i]));
        text += digits;
    }
    return text;
}

/// Remembers "command block, direction, length" of what it was sent, and the data.
class RecordingDevice : public SCSIDevice {
  public:
    explicit RecordingDevice(Script answers = {}) : script(answers) {}

    bool sendSCSICommand(SCSIRequest& request) const override {
        static char const* const NAMES[] = {"in", "?", "out", "message", "both", "none"};
        lines.push_back(hex(request.cdb, request.cdbLength) + " " +
                        NAMES[static_cast<unsigned>(request.transferType)] + " " +
                        std::to_string(request.dataLength));
        EXPECT_EQ(request.dataBuffer == nullptr, request.dataLength == 0);
        if (request.transferType == EnTransferType::Out) {
            sent.insert(sent.end(), request.dataBuffer, request.dataBuffer + request.dataLength);
        }
        return script.next().to(request);
    }
    unsigned int bufferSizeLimit() const override { return 0; }
    bool rescanScsiBus() const override { return false; }

    mutable Script script;
    mutable Strings lines;
    mutable Bytes sent;
};

TEST(ScsiCommands, Blocks) {
    struct Row {
        std::shared_ptr<ScsiCommand> command;
        Strings lines;
        std::string sent = "";
    };
    Row const rows[] = {
        {std::make_shared<TestUnitReady>(), {"000000000000 none 0"}},
        {std::make_shared<ReportStandardInquiry>(), {"120000005f00 in 95"}},
        {std::make_shared<SCSIIdentify>(255), {"12000000ff00 in 255"}},
        {std::make_shared<SCSIReadVPDPage>(0xB1, 64), {"1201b1004000 in 64"}},
        {std::make_shared<VPDPage80>(36), {"120180002400 in 36"}},
        {std::make_shared<VPDPage83>(), {"12018300ff00 in 255"}},
        {std::make_shared<VolumeIdentification>(), {"120183009d00 in 157"}},
        {std::make_shared<SCSIReadCapacity10>(0x89ABCDEF), {"250089abcdef00000000 in 8"}},
        {std::make_shared<SCSIReadCapacity16>(), {"9e100000000000000000000000200000 in 32"}},
        {std::make_shared<SCSIRead10>(0x01020304, 3, 512), {"28000102030400000300 in 1536"}},
        {std::make_shared<SCSIRead16>(0x0102030405060708, 2, 4096),
         {"88000102030405060708000000020000 in 8192"}},
        {std::make_shared<SCSIWrite10>(0x01020304, 1, Bytes{1, 2, 3}),
         {"2a000102030400000100 out 3"},
         "010203"},
        {std::make_shared<SCSIModeSense>(0x19, 2, 300), {"5a081902000000012c00 in 300"}},
        {std::make_shared<ModeSense10>(0x08), {"5a000800000000003f00 in 63"}},
        {std::make_shared<SCSIModeSelect>(Bytes{7, 8}), {"55100000000000000200 out 2"}, "0708"},
        {std::make_shared<ModeSelect6>(Bytes{7, 8, 9}), {"150000000300 out 3"}, "070809"},
        {std::make_shared<SCSILogSelect>(Bytes{5}), {"4c000000000000000100 out 1"}, "05"},
        {std::make_shared<ReadSupportedLogPages>(), {"4d000000000000010400 in 260"}},
        {std::make_shared<ReadWLLPage>(), {"4d007600000000100000 in 260"}},
        {std::make_shared<ReadWLLSmartPageParam0>(), {"4d006f00000000001000 in 16"}},
        {std::make_shared<ReadWLLSmartPageParam4>(), {"4d006f00000004001000 in 16"}},
        {std::make_shared<ReadChassisSerialNumber>(), {"080000932000 in 32"}},
        {std::make_shared<WriteChassisSerialNumber>("AB"),
         {"0ae000932000 out 32"},
         "4142202020202020202020202020202020202020202020202020202020202020"},
        {std::make_shared<ReadSOB>(0xAB000102), {"3c050000000000010200 in 258"}},
        {std::make_shared<ReadEnclosureSubcomponentVersions>(), {"3c01d00000000000a400 in 164"}},
        {std::make_shared<ReadExpanderAsicRevision>(4), {"3c01d000000000000400 in 4"}},
        {std::make_shared<ReadSEPSubComponentNVRAM>(0xE3, 0x1234), {"3c01e300000000123400 in 4660"}},
        {std::make_shared<ReadEnclosureConfigurationDiagnosticPage>(), {"1c0101040c00 in 1032"}},
        {std::make_shared<ReadEnclosureSubcomponentVersions2>(), {"1c0107040800 in 1032"}},
        {std::make_shared<ReadSEPZoning>(), {"26000000000011000200 in 2"}},
        {std::make_shared<WriteSEPZoning>(3, Bytes{1}), {"27000300000010000000 out 1"}, "01"},
        {std::make_shared<ReadSEPConfigurationMode>(), {"26000000000011000400 in 4"}},
        {std::make_shared<WriteSEPConfigurationMode>(9, Bytes{}), {"27000900000010000000 out 0"}},
        {std::make_shared<ReportPhysicalLunsType2>(), {"c30200000000000000080000 in 8"}},
        {std::make_shared<ReportLogicalLuns>(0), {"c20000000000000000080000 in 8"}},
        {std::make_shared<SCSIATAIdentifyDevice>(), {"85080e0000000100000000000000ec00 in 512"}},
        {std::make_shared<SSP2DisableACL>(Bytes{1, 2}), {"87130000000000000000000000020000 out 2"}, "0102"},
        {std::make_shared<ReadSwitchConfiguration>(256), {"86010000000000000000000001000000 in 256"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.lines.front());
        RecordingDevice device;
        EXPECT_TRUE((*row.command)(device));
        EXPECT_EQ(device.lines, row.lines);
        EXPECT_EQ(hex(device.sent.data(), device.sent.size()), row.sent);
    }
}

TEST(ScsiCommands, ReadWhatRepliesTell) {
    RecordingDevice device({{.data = {0, 0, 0, 0}}});
    Bytes inquiry(95, 0);
    std::string const texts = "VENDOR  PRODUCT OF MAKER1.02";
    inquiry[0] = 0xED;
    std::copy(texts.begin(), texts.end(), inquiry.begin() + 8);
    device.script = {{.data = inquiry}};
    ReportStandardInquiry standard;
    ASSERT_TRUE(standard(device));
    EXPECT_EQ(standard.peripheralType(), 0x0D);
    EXPECT_STREQ(standard.vendorId().c_str(), "VENDOR");
    EXPECT_STREQ(standard.productId().c_str(), "PRODUCT OF MAKER");
    EXPECT_STREQ(standard.productRevision().c_str(), "1.02");

    device.script = {{.data = {0, 0x80, 0, 4, ' ', 'S', '1', ' ', 'X'}}};
    VPDPage80 serial;
    ASSERT_TRUE(serial(device));
    EXPECT_STREQ(serial.serialNumber().c_str(), "S1");

    device.script = {{.data = {0x89, 0xAB, 0xCD, 0xEF, 0, 0, 0x10, 2}}};
    SCSIReadCapacity10 capacity;
    ASSERT_TRUE(capacity(device));
    EXPECT_EQ(capacity.lastBlock(), 0x89ABCDEFU);
    EXPECT_EQ(capacity.blockLength(), 4098U);

    // Two log pages, and a length that the reply doesn't have.
    device.script = {{.data = {0, 0, 0, 2, 0x0D, 0x2F, 0x11}}, {.data = {0, 0, 0xFF, 0xFF, 0x11}}};
    ReadSupportedLogPages pages;
    ASSERT_TRUE(pages(device));
    EXPECT_EQ(pages.pages(), (Bytes{0x0D, 0x2F}));
    EXPECT_FALSE(pages.supports(0x11));
    ASSERT_TRUE(pages(device));
    EXPECT_EQ(pages.pages().size(), 256U);
    EXPECT_TRUE(pages.supports(0x11));
    device.script = {{.data = {0, 0, 0, 4, 0x0D, 0x11}, .received = 5}};
    ASSERT_TRUE(pages(device));
    EXPECT_EQ(pages.pages(), (Bytes{0x0D}));

    device.script = {{.data = {0, 0x80, 0, 4, 'S', 'N'}, .received = 6}};
    ASSERT_TRUE(serial(device));
    EXPECT_STREQ(serial.serialNumber().c_str(), "");
}

/// Designators in front of the right one: of a port, of another type. None may be followed out of the page.
TEST(ScsiCommands, FindTheIdentifierOfTheUnit) {
    struct Row {
        Bytes page;
        char const* identifier;
        int received = -1;
    };
    Row const rows[] = {
        {{0, 0x83, 0, 8, 1, 3, 0, 4, 0x50, 1, 2, 0xAB}, "500102AB"},
        {{0, 0x83, 0, 8, 1, 3, 0, 4, 0x50, 1}, "", 10},
        {{0, 0x83, 0, 15, 1, 0x13, 0, 2, 9, 9, 2, 1, 0, 1, 'T', 1, 3, 0, 1, 0x5F}, ""},
        {{0, 0x83, 0, 16, 1, 0x13, 0, 2, 9, 9, 2, 1, 0, 1, 'T', 1, 3, 0, 1, 0x5F}, "5F"},
        {{0, 0x83, 0, 0, 1, 3, 0, 1, 0x5F}, ""},
        {{0, 0x83, 0xFF, 0xFF, 1, 3, 0, 0xFF, 0x5F}, ""},
        {{0, 0x83, 0, 4, 1, 3, 0, 0}, ""},
        {{}, ""},
    };
    for (Row const& row : rows) {
        RecordingDevice device({{.data = row.page, .received = row.received}});
        VPDPage83 page;
        ASSERT_TRUE(page(device));
        EXPECT_STREQ(page.identifier().c_str(), row.identifier) << hex(row.page.data(), row.page.size());
    }
}

TEST(ScsiCommands, AskTwiceWhereTheLengthIsToldFirst) {
    Answer const refused = checkCondition(5, 0x24);
    Bytes entries = {0, 0, 0, 40, 2, 0, 0, 0};
    entries.resize(48, 0x11);
    struct Row {
        Script answers;
        Strings lines;
        std::size_t count;
        bool succeeds;
    };
    static std::string const first = "c30200000000000000080000 in 8";
    static std::string const second = "c30200000000000000300000 in 48";
    Row const rows[] = {
        {{Answer{}}, {first}, 0, true},
        {{{.data = entries}}, {first, second}, 1, true},  // the eight bytes behind the entry are no entry
        {{refused}, {first}, 0, false},
        {{{.data = entries}, refused}, {first, second}, 0, false},
        {{{.data = {0xFF, 0xFF, 0xFF, 0xFF}}}, {first, "c30200000000000200080000 in 131080"}, 4096, true},
        {{{.data = entries, .received = 7}}, {first}, 0, true},
        {{{.data = entries}, {.data = entries, .received = 39}}, {first, second}, 0, true},
        // Between the two passes the list became empty.
        {{{.data = entries}, Answer{}}, {first, second}, 0, true},
    };
    for (Row const& row : rows) {
        RecordingDevice device(row.answers);
        ReportPhysicalLunsType2 report;
        EXPECT_EQ(report(device), row.succeeds);
        EXPECT_EQ(device.lines, row.lines);
        EXPECT_EQ(report.count(), row.count);
    }
    RecordingDevice modes({{.data = {0, 98}}});
    ModeSense10 sense(0x08);
    EXPECT_TRUE(sense(modes));
    EXPECT_EQ(modes.lines, (Strings{"5a000800000000003f00 in 63", "5a000800000000006400 in 100"}));
    EXPECT_EQ(sense.data().size(), 100U);
    RecordingDevice revisions;
    ReadAutoRevNumber revision(0x5C);
    EXPECT_TRUE(revision(revisions));
    EXPECT_EQ(revisions.lines, (Strings{"0ae000900800 out 512", "080000900800 in 8"}));
    EXPECT_EQ(hex(revisions.sent.data(), 6), "9002ac5c0000");
}

class RecordingATADevice : public ATADevice {
  public:
    bool sendATACommand(ATARequest& request) const override {
        unsigned char const bytes[] = {request.features, request.sectorCount, request.lbaLow, request.lbaMid,
                                       request.lbaHigh,  request.device,      request.command};
        taskfile = hex(bytes, sizeof bytes) + " " + std::to_string(request.dataLength);
        EXPECT_EQ(request.transferType, EnTransferType::In);
        return true;
    }
    mutable std::string taskfile;
};

TEST(AtaCommands, Taskfiles) {
    RecordingATADevice device;
    ATAIdentify identify;
    EXPECT_TRUE(identify(device));
    EXPECT_EQ(device.taskfile, "000000000000ec 512");
    ATAReadLogExt log(0x04, 0x05, 2);
    EXPECT_TRUE(log(device));
    EXPECT_EQ(device.taskfile, "0002040500002f 1024");
}

Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
    return bytes;
}

ImageSpan spanOf(Bytes const& image) {
    return {image.data(), image.size()};
}

TEST(FlashCommands, ChunksAndOffsets) {
    struct Row {
        std::size_t size;
        std::shared_ptr<ScsiCommand> (*make)(ImageSpan);
        Strings lines;
        unsigned waits = 0;  ///< of 50 ms
    };
    auto const drive = [](ImageSpan image) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<FlashPhysicalDriveFirmware>(FlashPhysicalDriveFirmware::eChunks, image);
    };
    auto const wholeDrive = [](ImageSpan image) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<FlashPhysicalDriveFirmware>(FlashPhysicalDriveFirmware::eWhole, image);
    };
    auto const ata = [](ImageSpan image) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<SCSIATADownloadMicrocode>(image);
    };
    auto const mode7 = [](ImageSpan image) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<FlashSEPFirmware>(FlashSEPFirmware::eMode7Chunks, image, 4096);
    };
    auto const mode14 = [](ImageSpan image) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<FlashSEPFirmware>(FlashSEPFirmware::eMode14Chunks, image, 256);
    };
    auto const activate = [](ImageSpan) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<FlashSEPFirmware>(FlashSEPFirmware::eActivate, ImageSpan{}, 4096);
    };
    auto const mode5 = [](ImageSpan image) -> std::shared_ptr<ScsiCommand> {
        return std::make_shared<FlashSEPFirmware>(FlashSEPFirmware::eMode5Whole, image, 4096);
    };
    Row const rows[] = {
        {0, drive, {}},
        {32768, drive, {"3b070000000000800000 out 32768"}},
        {32769, drive, {"3b070000000000800000 out 32768", "3b070000800000000100 out 1"}},
        {300, wholeDrive, {"3b050000000000012c00 out 300"}},
        {32768 + 1024,
         ata,
         {"850a0600030040000000000000009200 out 32768", "850a0600030002000000400000009200 out 1024"}},
        {1, ata, {"850a0600030001000000000000009200 out 512"}},
        {0, mode7, {}},
        {4096, mode7, {"3b070000000000100000 out 4096"}, 1},
        {4097, mode7, {"3b070000000000100000 out 4096", "3b070000000000000100 out 1"}, 1},
        {600,
         mode14,
         {"3b0e0000000000010000 out 256", "3b0e0000010000010000 out 256", "3b0e0000020000005800 out 88"},
         2},
        {9, activate, {"3b0f0000000000000000 none 0"}},
        {300, mode5, {"3b050000000000012c00 out 300"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.lines.empty() ? "nothing" : row.lines.back());
        FakeClock clock;
        Bytes const image = pattern(row.size);
        RecordingDevice device;
        EXPECT_TRUE((*row.make(spanOf(image)))(device));
        EXPECT_EQ(device.lines, row.lines);
        EXPECT_EQ(clock.waits().size(), row.waits);
        device.sent.resize(std::min(device.sent.size(), image.size()));  // behind the image: padding
        EXPECT_TRUE(row.make == activate || device.sent == image);
    }
}

/// "S" records of `count` bytes each; a line has 4 + 2 * count characters and its end.
std::string records(unsigned lines, unsigned count, char const* end) {
    std::string text;
    char head[8];
    std::snprintf(head, sizeof head, "S1%02X", count);
    for (unsigned i = 0; i < lines; ++i)
        text += head + std::string(std::size_t{2} * count, static_cast<char>('A' + i % 6)) + end;
    return text;
}

TEST(FlashCommands, SRecordsGoInBatchesOfWholeLines) {
    struct Row {
        char const* what;
        std::string image;
        Strings lines;
        std::size_t sent;
        bool succeeds;
    };
    std::string const line = records(1, 32, "\r\n");  // 70 characters
    Row const rows[] = {
        {"nothing", "", {}, 0, true},
        {"one", line, {"3b0e0000000000004600 out 70"}, 70, true},
        {"without an end", "S10241424142", {"3b0e0000000000000800 out 8"}, 8, false},
        {"line ends in front", "\r\n" + line, {"3b0e0000000000004600 out 70"}, 70, true},
        {"line ends alone", "\r\n", {}, 0, false},
        {"padding alone", std::string(512, '\xFF'), {}, 0, false},
        {"three in front", "\r\n\n" + line, {}, 0, false},
        // 161 lines of 70 are 11,270: the batch ends behind the line that reaches 11,264.
        {"two batches",
         records(162, 32, "\r\n"),
         {"3b0e00000000002c0600 out 11270", "3b0e0000000000004600 out 70"},
         11340,
         true},
        {"exactly a batch", records(176, 30, ""), {"3b0e00000000002c0000 out 11264"}, 11264, true},
        {"padding behind", line + "\x1A", {"3b0e0000000000004600 out 70"}, 70, true},
        {"text behind", line + "T", {"3b0e0000000000004600 out 70"}, 70, false},
        {"no S-records",
         std::string("\x7F"
                     "ELF"),
         {},
         0,
         false},
        {"a count beyond the end", "S1FF00", {}, 0, false},
        {"a count that is none", "S1G000", {}, 0, false},
        {"cut inside the head", line + "S1", {"3b0e0000000000004600 out 70"}, 70, false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        Bytes const image(row.image.begin(), row.image.end());
        RecordingDevice device;
        FlashSEPFirmware flash(FlashSEPFirmware::eMode14SRecords, spanOf(image), 4096);
        EXPECT_EQ(flash(device), row.succeeds);
        EXPECT_EQ(flash.isDelivered(), row.succeeds) << "a refusal isn't described as a success";
        EXPECT_EQ(device.lines, row.lines);
        EXPECT_EQ(device.sent.size(), row.sent);
    }
}

TEST(FlashCommands, ARetryHasItsLimit) {
    Answer attention = checkCondition(6, 0x29);
    attention.sense[3] = 0x89;
    attention.sense[6] = 0xEF;
    Answer const full = {.sent = false, .commandStatus = 1, .scsiStatus = 0x28};
    struct Row {
        Answer answer;
        unsigned repeated;
        std::size_t sends;
        std::size_t waits;
        bool succeeds;
        std::uint32_t additional;
    };
    Row const rows[] = {
        {attention, 10, 11, 0, true, 0},
        {attention, 11, 11, 0, false, 0x890000EF},
        {full, 12000, 12001, 12000, true, 0},
        {full, 12001, 12001, 12000, false, 0},
        {checkCondition(5, 0x26), 1, 1, 0, false, 0},
        {{.sent = false, .lowLevelStatus = 5}, 1, 1, 0, false, 0},
    };
    Bytes const image = pattern(100);
    for (Row const& row : rows) {
        FakeClock clock;
        RecordingDevice device;
        Script script;
        for (unsigned i = 0; i < row.repeated; ++i)
            script.add(row.answer);
        script.add(Answer{});
        device.script = script;
        FlashSEPFirmware flash(FlashSEPFirmware::eMode5Whole, spanOf(image), 4096);
        EXPECT_EQ(flash(device), row.succeeds);
        EXPECT_EQ(device.lines.size(), row.sends);
        EXPECT_EQ(clock.waits().size(), row.waits);
        EXPECT_EQ(flash.addtionalStatus(), row.additional);
    }
}

/// Each chunk has its own count of retries, and the first that fails ends the flash.
TEST(FlashCommands, AFailedChunkIsTheLast) {
    FakeClock clock;
    Bytes const image = pattern(3 * 4096);
    RecordingDevice device({Answer{}, checkCondition(4, 0x44), Answer{}});
    FlashSEPFirmware flash(FlashSEPFirmware::eMode14Chunks, spanOf(image), 4096);
    EXPECT_FALSE(flash(device));
    EXPECT_EQ(flash.bSenseKey(), 4);
    EXPECT_EQ(device.lines.size(), 2U);
    RecordingDevice drive({Answer{}, checkCondition(4, 0x44), Answer{}});
    Bytes const large = pattern(3 * 32768);
    FlashPhysicalDriveFirmware driveFlash(FlashPhysicalDriveFirmware::eChunks, spanOf(large));
    EXPECT_FALSE(driveFlash(drive));
    EXPECT_EQ(drive.lines.size(), 2U);
    // A controller refuses a chunk by its own status, with a good SCSI status beside it.
    Script const refused = {Answer{}, {.commandStatus = 4}, Answer{}};
    RecordingDevice sep(refused);
    FlashSEPFirmware sepFlash(FlashSEPFirmware::eMode7Chunks, spanOf(image), 4096);
    EXPECT_FALSE(sepFlash(sep));
    EXPECT_EQ(sep.lines.size(), 2U);
    RecordingDevice ata(refused);
    SCSIATADownloadMicrocode download(spanOf(large));
    EXPECT_FALSE(download(ata));
    EXPECT_EQ(download.wCommandStatus(), 4);
    EXPECT_EQ(ata.lines.size(), 2U);
}

}  // namespace
