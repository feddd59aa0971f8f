#include <gtest/gtest.h>

#include <expat.h>

#include "tests/support/package_run.h"

namespace {

using Strings = std::vector<std::string>;

constexpr char OLDER[] = "left";
constexpr char CURRENT[] = "right";

std::string hexText(simulator::Bytes const& bytes) {
    std::string text;
    char digits[4];
    for (auto const byte : bytes) {
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
        text += digits;
    }
    return text;
}

/// "pass-through command block, direction and length" of every exchange with a device from `first` on.
Strings exchangesOf(std::string const& device, std::vector<simulator::JournalEntry> const& journal,
                    std::size_t first = 0) {
    Strings lines;
    for (std::size_t i = first; i < journal.size(); ++i) {
        if (journal[i].event == "exchange" && journal[i].device == device) {
            lines.push_back(hexText(journal[i].block) + " " + journal[i].direction + " " +
                            std::to_string(journal[i].length));
        }
    }
    return lines;
}

/// What one pass over the hardware sends to a controller.
Strings const DISCOVERY = {
    "12000000"
    "5f00"
    " in 95",  // INQUIRY, for the host bus adapters
    "12000000"
    "5f00"
    " in 95",                        // INQUIRY, for the controllers
    "26000000000066064000 in 1600",  // subsystem information
    "26000000000011020000 in 512",   // identify
    "26000000000011020000 in 512",   // identify, for the firmware version
    "26000000000011020000 in 512",   // identify, for the controller's information
    "26000000000066064000 in 1600",
    "26000000000082020000 in 512",    // redundancy
    "260100000000c1020000 in 512",    // cache
    "26000000000064020000 in 512",    // parameters
    "26000000000070060000 in 1536",   // surface analysis
    "26000000000072020000 in 512",    // monitoring
    "26000000000011020000 in 512",    // identify, for the boxes
    "c30200000000000000080000 in 8",  // physical devices, for the processors
    "c30200000000000000080000 in 8",  // those hidden from the host
    "26000000000011020000 in 512",    // identify, for the drives
    "26000000000011020000 in 512",    // identify, bottom-up
};

/// One flash of the 200,123 bytes image: thirteen chunks, the last of 3,515 bytes.
Strings const FLASH = {
    "27000000000098000000 none 0",     // pause
    "270000000000d3000000 none 0",     // free
    "270000000d01d2400000 out 16384",  // collect: chunks high, number high, chunks low, number low
    "270000000d02d2400000 out 16384", "270000000d03d2400000 out 16384", "270000000d04d2400000 out 16384",
    "270000000d05d2400000 out 16384", "270000000d06d2400000 out 16384", "270000000d07d2400000 out 16384",
    "270000000d08d2400000 out 16384", "270000000d09d2400000 out 16384", "270000000d0ad2400000 out 16384",
    "270000000d0bd2400000 out 16384", "270000000d0cd2400000 out 16384", "270000000d0dd20dbb00 out 3515",
    "270000000000f7000000 none 0",  // flash, deferred
    "27000000000099000000 none 0",  // resume
};

Strings joined(std::initializer_list<Strings> parts) {
    Strings all;
    for (Strings const& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

class TwoControllers : public ::testing::Test {
  protected:
    TwoControllers() : package("two-controllers") {}

    void expectFirmware(std::string const& older, std::string const& current) {
        EXPECT_EQ(package.firmware(OLDER), std::string(OLDER) + " " + older);
        EXPECT_EQ(package.firmware(CURRENT), std::string(CURRENT) + " " + current);
    }

    void expectNoProtocolErrors() {
        for (auto const& entry : package.journal()) {
            EXPECT_TRUE(entry.errors.empty()) << entry.sequence << ": " << entry.errors.front();
        }
    }

    PackageRun package;
};

TEST_F(TwoControllers, UpdateThenPowerCycleThenCurrent) {
    RunResult const update = package.flash({"-s"});
    EXPECT_EQ(update.status, 1);
    EXPECT_EQ(update.output, "");
    EXPECT_EQ(update.errors, "");
    expectFirmware("6.40/6.64 restart needed", "6.64/6.64 ok");

    package.powerCycle();
    expectFirmware("6.64/6.64 ok", "6.64/6.64 ok");
    EXPECT_EQ(package.flash({"-s"}).status, 2);
    EXPECT_EQ(package.flash({"-q", "-s"}).status, 0);
    expectFirmware("6.64/6.64 ok", "6.64/6.64 ok");

    EXPECT_EQ(package.flash({"-f", "-s"}).status, 1);
    std::string const log = package.componentLog();
    EXPECT_NE(log.find("Updated: TR56 Slot: 1 from 6.64 to 6.64\n"), std::string::npos);
    EXPECT_NE(log.find("Updated: TR58 Slot: 2 from 6.64 to 6.64\n"), std::string::npos);
    expectNoProtocolErrors();
}

TEST_F(TwoControllers, WithoutAPowerCycleTheOldFirmwareStillRunsAndIsFlashedAgain) {
    EXPECT_EQ(package.flash({"-s"}).status, 1);
    EXPECT_EQ(package.flash({"-s"}).status, 1);
    expectFirmware("6.40/6.64 restart needed", "6.64/6.64 ok");
}

TEST_F(TwoControllers, TheImageArrivesAsItStandsInTheFile) {
    ASSERT_EQ(package.flash({"-f", "-s"}).status, 1);
    std::string const file = readText(package.directory() / "dogwood-6.64.rom");
    ASSERT_EQ(file.size(), 200123U);
    for (char const* device : {OLDER, CURRENT}) {
        simulator::Bytes const rom = package.romImage(device);
        EXPECT_EQ(std::string(rom.begin(), rom.end()), file) << device;
    }
}

TEST_F(TwoControllers, EachControllerGetsExactlyTheSequenceTwice) {
    ASSERT_EQ(package.flash({"-f", "-s"}).status, 1);
    auto const journal = package.journal();
    for (char const* device : {OLDER, CURRENT}) {
        EXPECT_EQ(exchangesOf(device, journal), joined({DISCOVERY, DISCOVERY, FLASH, FLASH})) << device;
    }
    expectNoProtocolErrors();
}

TEST_F(TwoControllers, DiscoverySendsNothingThatWrites) {
    for (Strings const& arguments :
         {Strings{"-d", "out.xml", "-s"}, Strings{"-q", "-s"}, Strings{"-c", "-q", "-s"},
          Strings{"-c", "-d", "out.xml", "-s"}, Strings{"-d", "out.xml", "-c", "-s"}}) {
        package.resetMachine();
        package.flash(arguments);
        std::size_t exchanges = 0;
        for (auto const& entry : package.journal()) {
            if (entry.event != "exchange") {
                continue;
            }
            ++exchanges;
            EXPECT_EQ(entry.direction, "in") << entry.sequence;
            auto const code = entry.block.at(0);
            EXPECT_TRUE(code == 0x12 || code == 0x26 || code == 0xC3) << hexText(entry.block);
        }
        EXPECT_GE(exchanges, 2 * DISCOVERY.size());
        expectFirmware("6.40/6.40 ok", "6.64/6.64 ok");
    }
}

TEST_F(TwoControllers, DiscoveryDocument) {
    RunResult const run = package.flash({"-d", "out.xml", "-s"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(readText(package.directory() / "out.xml"), R"(<?xml version="1.0" encoding="UTF-8"?>
<vq_rom_discovery version="2.0.0.0">
<type value="QBX"/>
<alt_name value="ROM Flash for 33541E5C, 33541E5C, 33551E5C Controller, Enclosure and Sep firmware"/>
<takes_effect value="deferred"/>
<devices>
<device>
<device_id value="TR56"/>
<product_id value="TR56"/>
<fw_item>
<type value="Controller ROM"/>
<version value="6.64"/>
<active_version value="6.40"/>
<action value="upgrade"/>
<duration value="900"/>
<shared value="no"/>
</fw_item>
</device>
<device>
<device_id value="TR58"/>
<product_id value="TR58"/>
<fw_item>
<type value="Controller ROM"/>
<version value="6.64"/>
<active_version value="6.64"/>
<action value="rewrite"/>
<duration value="900"/>
<shared value="no"/>
</fw_item>
</device>
</devices>
</vq_rom_discovery>
)");
    XML_Parser const parser = XML_ParserCreate(nullptr);
    std::string const document = readText(package.directory() / "out.xml");
    EXPECT_EQ(XML_Parse(parser, document.data(), static_cast<int>(document.size()), 1), XML_STATUS_OK);
    XML_ParserFree(parser);
    EXPECT_EQ(package.flash({"-xd5400", "-kZ9", "-d", "second.xml", "-s"}).status, 3);
    std::string const second = readText(package.directory() / "second.xml");
    EXPECT_NE(second.find("<duration value=\"5400\"/>"), std::string::npos);
    EXPECT_NE(second.find("<type value=\"Z9\"/>"), std::string::npos);
}

TEST_F(TwoControllers, HelpUnderSilenceSaysNothing) {
    RunResult const run = package.flash({"-h", "-s"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
    for (auto const& entry : package.journal()) {
        EXPECT_NE(entry.event, "exchange");
    }
}

/// The run's end by options, a row each.
TEST_F(TwoControllers, OptionsDecideTheEnd) {
    struct Row {
        Strings arguments;
        int status;
        char const* older;  ///< firmware of the older controller afterwards
        char const* current;
    };
    static constexpr char FLASHED[] = "6.40/6.64 restart needed";
    static constexpr char OLD[] = "6.40/6.40 ok";
    static constexpr char UNTOUCHED[] = "6.64/6.64 ok";
    static Row const rows[] = {
        {{"-s", "-z", "5"}, 1, FLASHED, UNTOUCHED},
        {{"-s", "-z"}, 1, FLASHED, UNTOUCHED},
        {{"-x~80000000", "-s"}, 7, OLD, UNTOUCHED},
        {{"-x~0", "-s"}, 1, FLASHED, UNTOUCHED},
        {{"-c", "-s"}, 1, FLASHED, UNTOUCHED},
        {{"-o", "-s"}, 1, FLASHED, UNTOUCHED},
        {{"-e", "-s"}, 1, FLASHED, "6.64/6.64 restart needed"},
        {{"-g", "-q", "-s"}, 0, OLD, UNTOUCHED},
        {{"-F", "-L", "-m", "-uX", "-vX", "-iX", "-tX", "-s"}, 1, FLASHED, UNTOUCHED},
    };
    for (Row const& row : rows) {
        package.resetMachine();
        EXPECT_EQ(package.flash(row.arguments).status, row.status) << row.arguments.front();
        expectFirmware(row.older, row.current);
    }
}

/// A cluster hides the -s from the look at the whole words, so the first question comes all the same.
TEST_F(TwoControllers, ClusteredSilenceStillGetsTheFirstQuestion) {
    for (std::string const option : {"-qs", "-q"}) {
        RunResult const run = package.flash({option}, "yes\n");
        EXPECT_EQ(run.status, 0) << option;
        EXPECT_NE(run.output.find("Do you want to run device discovery?"), std::string::npos);
        EXPECT_EQ(run.errors, "(yes/no) ");
    }
}

TEST_F(TwoControllers, OddOptionsTakeTheirRoads) {
    package.flash({"-p", "-.", "-y", "-xq7", "-s", "-z"});
    std::string const log = package.verboseLog();
    for (char const* line : {
             "VQ Storage Enclosure ROM Flash: Warning: Unhandled return value 112\n",
             "VQ Storage Enclosure ROM Flash: Warning: Unhandled return value 46\n",
             "VQ Storage Enclosure ROM Flash: Warning: Unknown option ignored: -y\n",
             "Warning: Unknown extension option ignored: -xq7\n",
             "VQ Storage Enclosure ROM Flash: Warning: Unknown option ignored: -z\n",
         }) {
        EXPECT_NE(log.find(line), std::string::npos) << line;
    }
}

TEST_F(TwoControllers, TheFirstTagStandsTwiceInTheDocument) {
    writeText(
        package.directory() / "dogwood.xml",
        "<ksl_package><sw_keys><sw_keys_and><sw_key name=\" 3354 \"/></sw_keys_and></sw_keys></ksl_package>");
    package.flash({"-d", "out.xml", "-t9999", "-s"});
    EXPECT_NE(readText(package.directory() / "out.xml").find("ROM Flash for 3354, 3354, 9999 Controller"),
              std::string::npos);
}

TEST_F(TwoControllers, TagsChooseTheControllers) {
    struct Row {
        char const* tag;
        int status;
        char const* older;
    };
    // The current controller has nothing to update: with its tag alone everything applicable is current.
    static Row const rows[] = {
        {"3354", 1, "6.40/6.64 restart needed"},
        {"33541e5c", 1, "6.40/6.64 restart needed"},
        {"3355", 2, "6.40/6.40 ok"},
        {"1E5C", 3, "6.40/6.40 ok"},
        {"33541E5C0", 3, "6.40/6.40 ok"},
    };
    for (Row const& row : rows) {
        package.resetMachine();
        writeText(package.directory() / "dogwood.xml",
                  std::string("<ksl_package><sw_keys><sw_keys_and><sw_key name=\"") + row.tag +
                      "\"/></sw_keys_and></sw_keys></ksl_package>");
        EXPECT_EQ(package.flash({"-s"}).status, row.status) << row.tag;
        expectFirmware(row.older, "6.64/6.64 ok");
    }
}

TEST_F(TwoControllers, TheLastCatalogueEntryServesEveryController) {
    writeText(package.directory() / "Config.xml",
              "<Devices><Device><n>0</n><n>first</n><n>missing.rom</n><n>9.99</n></Device>"
              "<Device><n>0</n><n>last</n><n>dogwood-6.64.rom</n><n>6.64</n></Device>"
              "<cpxml><n>dogwood</n></cpxml></Devices>");
    EXPECT_EQ(package.flash({"-s"}).status, 1);
    expectFirmware("6.40/6.64 restart needed", "6.64/6.64 ok");
}

}  // namespace
