/// The machine with every kind of device: what each package tells of it, and what it updates.

#include <gtest/gtest.h>

#include "tests/support/package_run.h"

namespace {

struct Row {
    char const* id;
    char const* type;
    char const* version;
    char const* active;
    char const* action;
};

constexpr char CONTROLLER[] = "Controller ROM";
constexpr char PROCESSOR[] = "SEP Enclosure ROM";

/// A discovery document, whole. The package's component file names one controller model twice.
std::string document(std::vector<Row> const& rows) {
    std::string text =
        R"(<?xml version="1.0" encoding="UTF-8"?>
<vq_rom_discovery version="2.0.0.0">
<type value="QBX"/>
<alt_name value="ROM Flash for 33541E5C, 33541E5C, 33511E5C, 33551E5C, ENCL 08 SEP Controller, Enclosure and Sep firmware"/>
<takes_effect value="deferred"/>
<devices>
)";
    for (Row const& row : rows) {
        // A cache module's two names aren't spelt alike.
        std::string const id = row.id;
        text += "<device>\n<device_id value=\"" + id + "\"/>\n<product_id value=\"" +
                (id == "FBWC" ? "FWBC" : id) + "\"/>\n<fw_item>\n<type value=\"" + row.type +
                "\"/>\n<version value=\"" + row.version + "\"/>\n<active_version value=\"" + row.active +
                "\"/>\n<action value=\"" + row.action +
                "\"/>\n<duration value=\"900\"/>\n<shared value=\"no\"/>\n</fw_item>\n</device>\n";
    }
    return text + "</devices>\n</vq_rom_discovery>\n";
}

/// What stands behind `words` in a log.
std::string behind(std::string const& log, std::string const& words) {
    std::size_t const at = log.rfind(words);
    return at == std::string::npos ? "" : log.substr(at);
}

/// A device, and what it runs and stores.
using Versions = std::vector<std::pair<char const*, char const*>>;

void expectVersions(PackageRun const& package, Versions const& expected) {
    auto const devices = package.devices();
    for (auto const& [name, versions] : expected) {
        std::string found = "none";
        for (auto const& row : devices) {
            if (row.name == name) found = row.running + "/" + row.stored;
        }
        EXPECT_EQ(versions, found) << name;
    }
}

void expectImages(PackageRun const& package, Versions const& files) {
    for (auto const& [name, file] : files)
        EXPECT_EQ(file, package.fileStoredIn(name)) << name;
}

void expectNoProtocolErrors(PackageRun const& package) {
    for (auto const& entry : package.journal()) {
        EXPECT_TRUE(entry.errors.empty()) << entry.sequence << ": " << entry.errors.front();
    }
}

/// What no package has firmware for, and what is current or newer.
Versions const LEFT_ALONE = {
    {"left/disk-older", "HP01/HP01"},
    {"left/disk-older/carrier", "10/10"},
    {"left/disk-newer", "HP03/HP03"},
    {"middle/sata-older", "HPG1/HPG1"},
    {"middle/tape-older", "1.02/1.02"},
    {"right/flash-older", "HPD1/HPD1"},
    {"right/flash-older/carrier", "11/11"},
    {"adapter/hba-disk", "HP01/HP01"},
    {"middle", "6.64/6.64"},
    {"middle/shelf-a", "1.36/1.36"},
    {"middle/shelf-b", "1.36/1.36"},
    {"right", "6.72/6.72"},
    {"right/tower-a", "3.10/3.10"},
    {"right/tower-b", "3.10/3.10"},
    {"cedar-older", "8.20/8.20"},
    {"cedar-equal", "8.20/8.20"},
    {"cedar-newer", "8.20/8.20"},
    {"cedar-equal/cache", "7/7"},
    {"cedar-newer/cache", "9/9"},
    {"adapter/hba-c", "1.50/1.50"},
    {"adapter/hba-d", "0.30/0.30"},
};

TEST(Everything, IsToldInTheDocumentAndTheSummary) {
    PackageRun const package("everything");
    EXPECT_EQ(3, package.flash({"-d", "out.xml", "-s"}).status);
    EXPECT_EQ(document({
                  {"ENCL 08 SEP", PROCESSOR, "1.50", "1.30", "upgrade"},
                  {"ENCL 08 SEP", PROCESSOR, "1.50", "1.30", "upgrade"},
                  {"ENCL 11 SEP", PROCESSOR, "1.50", "1.50", "rewrite"},
                  {"TR56", CONTROLLER, "6.64", "6.40", "upgrade"},
                  {"ENCL 01 SEP", PROCESSOR, "1.20", "1.04", "upgrade"},
                  {"ENCL 05 SEP", PROCESSOR, "2.10", "1.90", "upgrade"},
                  {"ENCL 05 SEP", PROCESSOR, "2.10", "1.90", "upgrade"},
                  {"TR57", CONTROLLER, "6.64", "6.64", "rewrite"},
                  {"ENCL 03 SEP", PROCESSOR, "1.36", "1.36", "rewrite"},
                  {"ENCL 03 SEP", PROCESSOR, "1.36", "1.36", "rewrite"},
                  {"TR58", CONTROLLER, "6.64", "6.72", "downgrade"},
                  {"ENCL 16 SEP", PROCESSOR, "3.00", "3.10", "downgrade"},
                  {"ENCL 16 SEP", PROCESSOR, "3.00", "3.10", "downgrade"},
                  {"ENCL 14 SEP", PROCESSOR, "1.06", "1.02", "upgrade"},
                  {"ENCL 14 SEP", PROCESSOR, "1.06", "1.02", "upgrade"},
              }),
              readText(package.directory() / "out.xml"));
    EXPECT_EQ(R"(Discovered applicable devices:
	ENCL 08 SEP: 1.30
	ENCL 08 SEP: 1.30
	ENCL 11 SEP: 1.50
	TR56: 6.40
	ENCL 01 SEP: 1.04
	ENCL 05 SEP: 1.90
	ENCL 05 SEP: 1.90
	TR57: 6.64
	ENCL 03 SEP: 1.36
	ENCL 03 SEP: 1.36
	TR58: 6.72
	ENCL 16 SEP: 3.10
	ENCL 16 SEP: 3.10
	ENCL 14 SEP: 1.02
	ENCL 14 SEP: 1.02
Applicable devices found:         15 (3 Controller 12 Expander)
Controller Info:
	Oldest firmware version:  6.40
	Newest firmware version:  6.72
Expander Info:
	Oldest firmware version:  1.02
	Newest firmware version:  3.10
Devices with older firmware:      8
Devices with current firmware:    4
Devices with newer firmware:      3

)",
              behind(package.componentLog(), "Discovered applicable devices:"));
    expectNoProtocolErrors(package);
}

TEST(Everything, WhatIsOlderIsUpdatedAndNothingElse) {
    PackageRun const package("everything");
    EXPECT_EQ(1, package.flash({"-s"}).status);
    package.powerCycle();
    expectVersions(package, {{"left", "6.64/6.64"},
                             {"left/internal", "1.20/1.20"},
                             {"left/front-a", "2.10/2.10"},
                             {"left/front-b", "2.10/2.10"},
                             {"cedar-older/drawer-a", "1.06/1.06"},
                             {"cedar-older/drawer-b", "1.06/1.06"},
                             {"adapter/hba-a", "1.50/1.50"},
                             {"adapter/hba-b", "1.50/1.50"},
                             {"cedar-older/cache", "5/5"}});
    expectVersions(package, LEFT_ALONE);
    expectImages(package, {{"left", "dogwood-6.64.rom"},
                           {"left/internal", "encl01-1.20.rom"},
                           {"left/front-a", "encl05-2.10.rom"},
                           {"left/front-b", "encl05-2.10.rom"},
                           {"cedar-older/drawer-a", "encl14-1.06.rom"},
                           {"cedar-older/drawer-b", "encl14-1.06.rom"},
                           {"adapter/hba-a", "encl08-1.50.s19"},
                           {"adapter/hba-b", "encl08-1.50.s19"}});
    expectNoProtocolErrors(package);
    EXPECT_EQ(3, package.flash({"-s"}).status) << "nothing older, but something newer";
    std::string const summary = behind(package.componentLog(), "Discovered applicable devices:");
    EXPECT_NE(std::string::npos, summary.find("Devices with older firmware:      0\n")) << summary;
    expectVersions(package, LEFT_ALONE);
}

TEST(CacheModule, IsAllThatIsLookedAtBehindAController) {
    PackageRun const package("cache-module");
    EXPECT_EQ(3, package.flash({"-d", "out.xml", "-s"}).status);
    EXPECT_EQ(document({
                  {"ENCL 08 SEP", PROCESSOR, "1.50", "1.30", "upgrade"},
                  {"ENCL 08 SEP", PROCESSOR, "1.50", "1.30", "upgrade"},
                  {"ENCL 11 SEP", PROCESSOR, "1.50", "1.50", "rewrite"},
                  {"TR56", CONTROLLER, "6.64", "6.40", "upgrade"},
                  {"TR57", CONTROLLER, "6.64", "6.64", "rewrite"},
                  {"TR58", CONTROLLER, "6.64", "6.72", "downgrade"},
                  {"FBWC", CONTROLLER, "7.00", "5.00", "upgrade"},
                  {"FBWC", CONTROLLER, "7.00", "7.00", "rewrite"},
                  {"FBWC", CONTROLLER, "7.00", "9.00", "downgrade"},
              }),
              readText(package.directory() / "out.xml"));
    // Versions are compared as text: 9 is the newest, and 1.30 the oldest beside 5.
    EXPECT_EQ(R"(Discovered applicable devices:
	ENCL 08 SEP: 1.30
	ENCL 08 SEP: 1.30
	ENCL 11 SEP: 1.50
	TR56: 6.40
	TR57: 6.64
	TR58: 6.72
	FBWC: 5.00
	FBWC: 7.00
	FBWC: 9.00
Applicable devices found:         9 (3 Controller 6 Expander)
Controller Info:
	Oldest firmware version:  6.40
	Newest firmware version:  6.72
Expander Info:
	Oldest firmware version:  1.30
	Newest firmware version:  9
Devices with older firmware:      4
Devices with current firmware:    3
Devices with newer firmware:      2

)",
              behind(package.componentLog(), "Discovered applicable devices:"));
    expectNoProtocolErrors(package);
}

TEST(CacheModule, AnOlderOneIsUpdatedAndNothingElse) {
    PackageRun const package("cache-module");
    EXPECT_EQ(1, package.flash({"-s"}).status);
    package.powerCycle();
    expectVersions(package, {{"left", "6.64/6.64"},
                             {"left/internal", "1.04/1.04"},
                             {"left/front-a", "1.90/1.90"},
                             {"cedar-older/drawer-a", "1.02/1.02"},
                             {"adapter/hba-a", "1.50/1.50"},
                             {"cedar-older/cache", "7/7"}});
    expectVersions(package, LEFT_ALONE);
    expectImages(package, {{"left", "dogwood-6.64.rom"},
                           {"adapter/hba-a", "encl08-1.50.s19"},
                           {"adapter/hba-b", "encl08-1.50.s19"},
                           {"cedar-older/cache", "fbwc-7.rom"}});
    expectNoProtocolErrors(package);
    EXPECT_EQ(3, package.flash({"-s"}).status);
    expectVersions(package, LEFT_ALONE);
}

}  // namespace
