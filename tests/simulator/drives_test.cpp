/// Drives, carriers, tapes, the cache module and the NVRAM on the I2C bus: what is told of them, and how they
/// judge what they are sent.

#include <gtest/gtest.h>

#include "tests/simulator/machine_fixture.h"

namespace {

using namespace simulator_test;
using simulator::makeImage;

std::string textAt(Bytes const& data, std::size_t offset, std::size_t size) {
    return {data.begin() + static_cast<std::ptrdiff_t>(offset),
            data.begin() + static_cast<std::ptrdiff_t>(offset + size)};
}

Command microcode(std::uint8_t number, std::size_t offset, Bytes data) {
    std::size_t const sectors = data.size() / 512;
    Bytes block = {0x85,
                   0x0A,
                   0x06,
                   0,
                   3,
                   0,
                   static_cast<std::uint8_t>(sectors),
                   0,
                   static_cast<std::uint8_t>(sectors >> 8),
                   0,
                   static_cast<std::uint8_t>(offset >> 9),
                   0,
                   static_cast<std::uint8_t>(offset >> 17),
                   0,
                   0x92,
                   0};
    return toMember(number, block, Direction::Out, 0, std::move(data));
}

Command ataIn(std::uint8_t number, std::uint8_t command, std::uint8_t low = 0, std::uint8_t mid = 0) {
    return toMember(number, {0x85, 8, 14, 0, 0, 0, 1, 0, low, 0, mid, 0, 0, 0, command, 0}, Direction::In,
                    512);
}

Command flashPart(std::uint32_t address, Bytes image, std::uint8_t high = 0) {
    std::size_t const size = image.size();
    Command command = management(0x6C, Direction::Out, size, address, std::move(image));
    command.block[9] = high;
    return command;
}

Bytes part(Bytes const& image, std::size_t begin, std::size_t end) {
    return {image.begin() + static_cast<std::ptrdiff_t>(begin),
            image.begin() + static_cast<std::ptrdiff_t>(std::min(end, image.size()))};
}

class Drives : public MachineTest {
  protected:
    void SetUp() override { make(scenario()); }

    static json scenario() {
        json all = twoControllers();
        all["devices"][0].update(json::parse(R"({
          "drives": [
            {"name": "spinner", "vendor": "VQ", "product": "EG0300SPIN", "revision": "HP01", "blocks": 5860533168,
             "carrier": {"application": 11, "bootloader": 6}, "role": "data", "wear": {"power_on_hours": 70}},
            {"name": "sata", "interface": "sata", "product": "MB4000SATA", "revision": "HPG10101", "serial": "S1",
             "carrier": {"application": 11, "authentication": "failed"}},
            {"name": "flash", "interface": "sas_ssd", "product": "MO0400SSD", "role": "spare",
             "wear": {"percent": 100, "remaining_days": 12, "power_on_hours": 9000, "power_cycles": 33}},
            {"index": 9, "interface": "sata_ssd", "wear": {"percent": 7, "power_cycles": 5},
             "erase": {"status": 2, "pattern": 1, "percent": 40}},
            {"name": "sick", "state": "failing"},
            {"name": "gone", "state": "missing", "role": "data"}],
          "tapes": [{"index": 40, "product": "ULTRIUM DR-3"}],
          "boxes": [{"bus": 8, "target": 0, "number": 4, "bays": 4, "drives": [0, 11]}],
          "logical_drives": [{"status": {"pbBigActiveSpareMap": "04"}, "original": {"pbBigDriveAssignmentMap": "03 08"}}],
          "cache_firmware": {"version": 4},
          "i2c_nvram": [{"id": 80, "contents": "01 02"}]})"));
        return all;
    }
    std::string show(std::string const& name) {
        auto const row = device("one/" + name);
        return row.running + " " + row.stored + " " + row.state;
    }
    std::string flash(Bytes const& image, Command (*chunk)(std::uint8_t, std::size_t, Bytes),
                      std::uint8_t number) {
        std::string result;
        for (std::size_t at = 0; at < image.size() && (at == 0 || result == "good"); at += 32768)
            result = outcome(send(ONE, chunk(number, at, part(image, at, at + 32768))));
        return result;
    }
};

TEST_F(Drives, StandInTheMapsAndReports) {
    Reply const identify = send(ONE, sense(IDENTIFY, 512));
    EXPECT_EQ((Bytes{0x07, 0x06, 0, 0, 0, 0x01}), part(identify.data, 54, 60)) << "present, but 11; tape 40";
    EXPECT_EQ((Bytes{0x01, 0x00}), part(identify.data, 70, 72)) << "external";
    EXPECT_EQ((Bytes{0, 0, 0, 0, 0, 0x01}), part(identify.data, 86, 92)) << "no disk";
    EXPECT_EQ((Bytes{0x07, 0x06}), part(identify.data, 18, 20));

    EXPECT_EQ((Bytes{0x01, 0x00}), part(send(ONE, sense(0x65, 1024, 0x0800U << 16)).data, 216, 218))
        << "in the box";

    Reply const configuration = send(ONE, sense(0x50, 512));
    EXPECT_EQ((Bytes{0x01, 0x08}), part(configuration.data, 98, 100)) << "data";
    EXPECT_EQ((Bytes{0x04, 0x00}), part(configuration.data, 114, 116)) << "spare";
    EXPECT_EQ(2, configuration.data[8]);
    EXPECT_EQ((Bytes{0x03, 0x08}), part(send(ONE, sense(0x55, 512)).data, 98, 100)) << "before the spare";
    EXPECT_EQ(4, send(ONE, sense(0x12, 1536)).data[827]) << "active spare";

    Command report = toMember(0, {0xC3, 2, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0}, Direction::In, 1024);
    report.address = {};
    Reply const list = send(ONE, report);
    ASSERT_EQ(8U + 6 * 32, list.data.size());
    EXPECT_EQ((Bytes{2, 0, 0, 0, 0, 0, 0, 1}), part(list.data, 72, 80)) << "address";
    EXPECT_EQ((Bytes{0, 2, 0}), part(list.data, 96, 99)) << "index and type";
    EXPECT_EQ((Bytes{0, 40, 1}), part(list.data, 192, 195)) << "the tape";

    Reply const spinner = send(ONE, toIndex(0x15, 2048, 128));
    EXPECT_EQ((Bytes{0xFF, 0xFF, 0xFF, 0xFF}), part(spinner.data, 4, 8)) << "larger than 2 TiB";
    EXPECT_EQ(5860533168U, simulator::getLittle(&spinner.data[122], 8));
    EXPECT_EQ("VQ      EG0300SPIN  ", textAt(spinner.data, 12, 20));
    EXPECT_EQ("HP01    ", textAt(spinner.data, 92, 8));
    EXPECT_EQ("1E", textAt(spinner.data, 112, 2));
    EXPECT_EQ(4, spinner.data[114]);
    EXPECT_EQ((Bytes{0, 0, 11, 6}), part(spinner.data, 1862, 1866)) << "authentication, versions";
    EXPECT_EQ("ATA     MB4000SATA", textAt(send(ONE, toIndex(0x15, 2048, 129)).data, 12, 18));
    EXPECT_EQ(3, send(ONE, toIndex(0x15, 2048, 137)).data[120]) << "SATA, solid state";
    EXPECT_EQ("5/24/0", outcome(send(ONE, toIndex(0x15, 2048, 0)))) << "without 128";
    EXPECT_EQ("5/24/0", outcome(send(ONE, toIndex(0x15, 2048, 139)))) << "missing";
    EXPECT_EQ("ULTRIUM DR-3    ", textAt(send(ONE, toIndex(0x92, 802, 40)).data, 30, 16));

    EXPECT_EQ(4200U, simulator::getLittle(&send(ONE, toIndex(0xA0, 512, 0)).data[4], 4)) << "minutes";
    Reply const erase = send(ONE, sense(0xE5, 1024));
    EXPECT_EQ((Bytes{2, 1, 40}), part(erase.data, 512 + 36, 512 + 39));
}

TEST_F(Drives, TellOfThemselves) {
    Bytes const inquiry = {0x12, 0, 0, 0, 96, 0};
    EXPECT_EQ("ATA     MB4000SATA      0101",
              textAt(send(ONE, toMember(1, inquiry, Direction::In, 96)).data, 8, 28));
    Reply const wear = send(ONE, toMember(2, {0x4D, 0, 0x76, 0, 0, 0, 0, 0x10, 0, 0}, Direction::In, 260));
    EXPECT_EQ((Bytes{0x36, 0, 0, 37, 0, 1, 3, 4, 0, 0, 0, 100}), part(wear.data, 0, 12));
    EXPECT_EQ((Bytes{0, 3, 3, 4, 0, 0, 0, 12}), part(wear.data, 20, 28)) << "days";
    Reply const smart = send(ONE, toMember(2, {0x4D, 0, 0x6F, 0, 0, 0, 0, 0, 16, 0}, Direction::In, 16));
    EXPECT_EQ((Bytes{0x2F, 0, 0, 16, 0, 0, 3, 4, 0x5D, 0x73}), part(smart.data, 0, 10)) << "worn out";
    Reply const fourth = send(ONE, toMember(2, {0x4D, 0, 0x6F, 0, 0, 0, 4, 0, 16, 0}, Direction::In, 16));
    EXPECT_EQ((Bytes{0, 4}), part(fourth.data, 4, 6));
    EXPECT_EQ("5/24/0",
              outcome(send(ONE, toMember(0, {0x4D, 0, 0x76, 0, 0, 0, 0, 0, 99, 0}, Direction::In, 99))));

    Reply const ata = send(ONE, ataIn(1, 0xEC));
    EXPECT_EQ("1S", textAt(ata.data, 20, 2)) << "the words' bytes change places";
    EXPECT_EQ("PH1G1010", textAt(ata.data, 46, 8));
    EXPECT_EQ(7, send(ONE, ataIn(9, 0x2F, 4, 7)).data[8]) << "endurance used";
    EXPECT_EQ(5, send(ONE, ataIn(9, 0x2F, 4, 1)).data[8]) << "power cycles";
    EXPECT_EQ("11/00/0", outcome(send(ONE, ataIn(9, 0x2F, 5, 0)))) << "no such log";
    EXPECT_EQ("5/20/0", outcome(send(ONE, ataIn(0, 0xEC)))) << "SAS";
    EXPECT_EQ("4/44/0", outcome(send(ONE, toMember(10, {0, 0, 0, 0, 0, 0}, Direction::None, 0))))
        << "failing";
    Bytes const capacity = {0x9E, 0x10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0};
    EXPECT_EQ((Bytes{0, 0, 0, 1, 0x5D, 0x50, 0xA3, 0xAF, 0, 0, 2, 0}),
              part(send(ONE, toMember(0, capacity, Direction::In, 32)).data, 0, 12));
}

TEST_F(Drives, TakeFirmware) {
    auto const scsi = [](std::uint8_t number, std::size_t at, Bytes data) {
        return writeBuffer(number, 7, at, std::move(data));
    };
    auto const ata = [](std::uint8_t number, std::size_t at, Bytes data) {
        data.resize((data.size() + 511) / 512 * 512);
        return microcode(number, at, std::move(data));
    };
    for (std::size_t const size : {32767U, 32768U, 32769U, 65536U, 70001U}) {
        std::string const version = "H" + std::to_string(size % 1000);
        Bytes const image = makeImage("EG0300SPIN", version, size, size);
        EXPECT_EQ("good", flash(image, scsi, 0)) << size;
        EXPECT_EQ(version + " " + version + " ok", show("spinner")) << "at once";
        EXPECT_EQ(image, machine->romImage("one/spinner", simulator::Rom::Active));
    }
    EXPECT_EQ("good", outcome(send(ONE, writeBuffer(0, 5, 0, makeImage("EG0300SPIN", "H5", 40000, 1)))));
    EXPECT_EQ("H5 H5 ok", show("spinner"));

    Bytes const image = makeImage("MB4000SATA", "HPG10102", 33001, 2);
    EXPECT_EQ("good", flash(image, ata, 1));
    EXPECT_EQ("HPG10101 HPG10102 restart needed", show("sata"));
    reopen();
    EXPECT_EQ("HPG10101 HPG10102 restart needed", show("sata")) << "kept";
    machine->powerCycle();
    EXPECT_EQ("HPG10102 HPG10102 ok", show("sata"));
    EXPECT_EQ(image, reopen().romImage("one/sata", simulator::Rom::Active));
}

TEST_F(Drives, RefuseFirmwareOutOfOrder) {
    Bytes const good = makeImage("EG0300SPIN", "HP02", 70000, 3);
    Bytes const sata = makeImage("MB4000SATA", "HPG2", 70144, 3);
    Bytes broken = good;
    broken[100] ^= 1;
    Bytes padded = part(makeImage("MB4000SATA", "HPG2", 1000, 3), 0, 1000);
    padded.resize(1024, 1);
    Command longer = writeBuffer(0, 7, 0, part(good, 0, 32768));
    longer.block[8] = 1;
    Command moreSectors = microcode(1, 0, part(sata, 0, 32768));
    moreSectors.block[6] = 65;
    Command whole = microcode(1, 0, part(sata, 0, 32768));
    whole.block[4] = 7;
    struct Row {
        char const* what;
        std::vector<Command> commands;  ///< all but the last are good
    };
    std::vector<Row> const rows = {
        {"no offset 0", {writeBuffer(0, 7, 32768, part(good, 32768, 65536))}},
        {"a gap",
         {writeBuffer(0, 7, 0, part(good, 0, 32768)), writeBuffer(0, 7, 65536, part(good, 65536, 70000))}},
        {"twice",
         {writeBuffer(0, 7, 0, part(good, 0, 32768)), writeBuffer(0, 7, 32768, part(good, 32768, 65536)),
          writeBuffer(0, 7, 32768, part(good, 32768, 65536))}},
        {"short chunk", {writeBuffer(0, 7, 0, part(good, 0, 32000))}},
        {"a length that isn't", {longer}},
        {"half in one", {writeBuffer(0, 5, 0, part(good, 0, 40000))}},
        {"broken", {writeBuffer(0, 5, 0, broken)}},
        {"of another model", {writeBuffer(0, 5, 0, makeImage("MB4000SATA", "HP02", 900, 1))}},
        {"version too long", {writeBuffer(0, 5, 0, makeImage("EG0300SPIN", "HP012", 900, 1))}},
        {"mode", {writeBuffer(0, 14, 0, good)}},
        {"a count that isn't", {moreSectors}},
        {"subcommand", {whole}},
        {"offset in sectors",
         {microcode(1, 0, part(sata, 0, 32768)), microcode(1, 512, part(sata, 32768, 65536))}},
        {"padding", {microcode(1, 0, padded)}},
    };
    for (Row const& row : rows) {
        for (std::size_t i = 0; i < row.commands.size(); ++i) {
            bool const isLast = i + 1 == row.commands.size();
            EXPECT_EQ(!isLast, send(ONE, row.commands[i]).good()) << row.what;
        }
        EXPECT_EQ(1U, last().errors.size()) << row.what;
    }
    EXPECT_EQ("HP01 HP01 ok", show("spinner"));
    EXPECT_EQ("HPG10101 HPG10101 ok", show("sata"));
}

TEST_F(Drives, CarriersAndTheCacheModuleTakeWholeImages) {
    Bytes const carrier = makeImage("CARRIER", "12", 9000, 1);
    Bytes const cache = makeImage("FBWC", "5", 20000, 2);
    struct Row {
        std::uint32_t address;
        Bytes image;
        char const* outcome;
    };
    Row const rows[] = {
        {0x00000000, carrier, "5/26/0"},
        {0x00000000, makeImage("FBWC", "5", 49153, 1), "5/26/0"},
        {0x00000000, makeImage("FBWC", "5.1", 900, 1), "5/26/0"},
        {0x00010000, makeImage("CARRIER", "12", 32769, 1), "5/26/0"},
        {0x00010000, makeImage("CARRIER", "256", 900, 1), "5/26/0"},
        {0x01010000, carrier, "5/24/0"},  // not authenticated
        {0x02010000, carrier, "5/24/0"},  // no carrier
        {0x32010000, carrier, "5/24/0"},  // no drive
        {0x01000000, carrier, "5/24/0"},  // half an address
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.outcome, outcome(send(ONE, flashPart(row.address, row.image)))) << row.address;
        EXPECT_EQ(1U, last().errors.size());
    }
    EXPECT_EQ("5/24/0", outcome(send(ONE, flashPart(0x00010000, carrier, 1)))) << "drive 256";
    EXPECT_EQ("11 11 ok", show("spinner/carrier"));
    EXPECT_EQ("4 4 ok", show("cache"));
    EXPECT_EQ("good", outcome(send(ONE, flashPart(0x00010000, carrier))));
    EXPECT_EQ("good", outcome(send(ONE, flashPart(0, cache))));
    reopen();
    EXPECT_EQ("12 12 ok", show("spinner/carrier"));
    EXPECT_EQ("5 5 ok", show("cache"));
    EXPECT_EQ(carrier, machine->romImage("one/spinner/carrier", simulator::Rom::Active));
    EXPECT_EQ(cache, machine->romImage("one/cache", simulator::Rom::Active));
    EXPECT_EQ(12, send(ONE, toIndex(0x15, 2048, 128)).data[1864]);
    EXPECT_EQ(5, send(ONE, sense(0xC1, 512)).data[221]);
    EXPECT_EQ("5/24/0", outcome(send(TWO, flashPart(0, cache)))) << "no cache module";
}

TEST_F(Drives, NvramOnTheBusKeepsWhatItIsWritten) {
    auto const write = [&](std::uint32_t address, std::size_t size) {
        return outcome(send(ONE, management(0x46, Direction::Out, size, address, Bytes(size, 0xA5))));
    };
    EXPECT_EQ((Bytes{1, 2, 0xFF}), part(send(ONE, sense(0x46, 256, 80U << 24)).data, 0, 3));
    EXPECT_EQ("5/24/0", outcome(send(ONE, sense(0x46, 256, 81U << 24))));
    EXPECT_TRUE(last().errors.empty()) << "asking what is there is in order";
    EXPECT_EQ("5/24/0", outcome(send(ONE, sense(0x46, 256, 80U << 24 | 0x10000))));
    EXPECT_EQ("5/24/0", write(80U << 24, 256));
    EXPECT_EQ("5/24/0", write(81U << 24 | 0x10000, 256));
    EXPECT_EQ("5/24/0", write(80U << 24 | 0x10000, 257));
    EXPECT_EQ("good", write(80U << 24 | 0x10000, 255));
    reopen();
    Bytes const now = send(ONE, sense(0x46, 256, 80U << 24)).data;
    EXPECT_EQ(256U, now.size());
    EXPECT_EQ((Bytes{0xA5, 0xFF}), part(now, 254, 256));
}

TEST_F(Drives, AreMadeByCount) {
    struct Row {
        unsigned count;
        unsigned length;   ///< of the identify record
        unsigned present;  ///< bits
    };
    for (Row const& row : {Row{0, 512, 0}, Row{1, 512, 1}, Row{128, 512, 128}, Row{129, 512 + 96, 129},
                           Row{1024, 512 + 384, 1024}}) {
        json all = twoControllers();
        all["devices"][0]["drives"] = {{"count", row.count}, {"role", "data"}, {"serial", "SN"}};
        all["devices"][0]["logical_drives"] = json::array({json::object()});
        make(all);
        Reply const reply = send(ONE, sense(IDENTIFY, 2048));
        ASSERT_EQ(row.length, reply.data.size());
        std::size_t const map = row.count > 128 ? simulator::getLittle(&reply.data[162], 2) : 54;
        std::size_t const size = row.count > 128 ? simulator::getLittle(&reply.data[156], 2) / 8 : 16;
        unsigned bits = 0;
        for (std::size_t i = 0; i < 8 * size; ++i)
            bits += reply.data[map + i / 8] >> i % 8 & 1;
        EXPECT_EQ(row.present, bits);
        if (row.count == 0) continue;
        unsigned const last = row.count - 1;
        Reply const drive = send(ONE, toIndex(0x15, 2048, last + 128));
        EXPECT_EQ("SN" + std::string(5 - std::to_string(last).size(), '0') + std::to_string(last) + " ",
                  textAt(drive.data, 52, 8));
        Reply const configuration = send(ONE, sense(0x50, 2048));
        std::size_t const roles = row.count > 128 ? simulator::getLittle(&configuration.data[250], 2) : 98;
        EXPECT_NE(0, configuration.data[roles + last / 8] >> last % 8 & 1);
    }
}

TEST_F(Drives, BehindAnAdapterTakeFirmwareToo) {
    make(json::parse(R"({"devices": [{"name": "hba", "kind": "csmi_adapter",
      "pci": {"address": "0000:05:00.0", "driver": "mpt2sas"},
      "phys": [{"kind": "drive", "name": "stp", "interface": "sata", "product": "MB4000SATA", "revision": "HPG1",
                "sas_address": "5000C50000000001"},
               {"kind": "drive", "sas_address": "0000000000000000"},
               {"kind": "tape", "product": "ULTRIUM 6", "sas_address": "5000C50000000003"}]}]})"));
    Bytes image = makeImage("MB4000SATA", "HPG2", 32000, 5);
    Command command = microcode(0, 0, image);
    command.carrier = Carrier::Csmi;
    command.csmi = 0xCC770018;
    command.address = {0x50, 0, 0xC5, 0, 0, 0, 0, 1};
    command.block[6] = 63;
    command.dataOut.resize(63 * 512);
    EXPECT_EQ("good", outcome(send("/dev/mpt2ctl:0", command)));
    EXPECT_EQ("HPG2", device("hba/stp").stored);
    EXPECT_EQ("1.00", device("hba/drive-0000000000000000").running);
    EXPECT_EQ("ULTRIUM 6", device("hba/tape-5000c50000000003").product);
    Command phys;
    phys.carrier = Carrier::Csmi;
    phys.csmi = 0xCC770014;
    phys.block = {0};
    phys.direction = Direction::In;
    phys.bufferSize = 2052;
    Reply const reply = send("/dev/mpt2ctl:0", phys);
    EXPECT_EQ(1, reply.data[4 + 39]) << "SATA";
    EXPECT_EQ(8, reply.data[4 + 64 + 39]) << "SSP";
}

TEST_F(Drives, BadOnesAreRefused) {
    struct Row {
        char const* drives;
        char const* words;
    };
    for (Row const& row :
         {Row{R"([{"index": 3}, {"index": 3}])", "found the index 3 a second time"},
          Row{R"([{"interface": "ide"}])", "drives[0].interface: found \"ide\""},
          Row{R"([{"carrier": {"application": 0}}])", "application: found 0"},
          Row{R"([{"revision": "HP012"}])", "revision: found \"HP012\", expected 1 to 4 characters"},
          Row{R"([{"count": 2, "sas_address": "5000C50000000001"}])", "no count where an address is given"},
          Row{R"([{"count": 4096, "index": 1}])", "count: found 4096, expected indices below 4096"},
          Row{R"([{"blocks": 0}])", "blocks: found 0"},
          Row{R"([{"speed": 1}])", "found the key \"speed\""}}) {
        json all = twoControllers();
        all["devices"][0]["drives"] = json::parse(row.drives);
        try {
            make(all);
            ADD_FAILURE() << row.words;
        } catch (simulator::ScenarioError const& error) {
            EXPECT_NE(std::string::npos, std::string(error.what()).find(row.words)) << error.what();
        }
    }
}

}  // namespace
