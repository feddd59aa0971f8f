// What a discovery of the machine with every kind of device leaves in the row table, row by row.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "simulator/in_process_door.h"
#include "src/flashRun.h"
#include "src/tolkflash.h"
#include "tests/src/RunFixture.h"

namespace {

class RowTable : public RunTest {
  protected:
    ~RowTable() override {
        pRoot = Common::shared_ptr<Core::Device>();
        Core::DeviceFactory::ForgetRoot();
    }

    /// One discovery pass of `package`, as without options.
    void discover(std::string const& package) {
        std::string const folder = std::string(KSL_BINARY_DIR) + "/examples/" + package;
        std::filesystem::copy(folder, ".");
        simulator::Machine::create("M", nlohmann::json::parse(readFile("machine.json")));
        simulator::Machine machine("M");
        simulator::InProcessDoor const door(machine);
        cli.setSilent(true);
        DiscoveryInfo::Instance()->createDeviceConfig("");
        readTagsFromComponentXML(DiscoveryInfo::Instance()->getcpxml() + ".xml");
        begin(discovery);
        EXPECT_EQ(xqrthflash(), codeNothingUpdated);
    }

    /// A line for each row: "deviceType, deviceId, deviceMarketingName, serialNum, slot: version, status,
    /// type, counts of solid-state drives, drives and processors". No row is marked before the question.
    static std::string rows() {
        static constexpr char const* STATUS[] = {"newer", "current", "older", "not applicable"};
        std::ostringstream text;
        for (int i = 0; i < discoveredDeviceCount; ++i) {
            Device_Info const& row = deviceInfoCltn[i];
            text << row.deviceType << ", " << row.deviceId << ", " << row.deviceMarketingName << ", "
                 << row.serialNum << ", " << row.slot << ": " << row.deviceVersion << ", "
                 << STATUS[row.status] << ", " << row.type << ", " << row.numSSD << "/" << row.numPhyDrives
                 << "/" << row.numSeps << (row.flash || row.alreadyFlashed ? ", marked" : "") << "\n";
        }
        return text.str();
    }
};

// A row without counts takes the next ones that are found: processors found before their controller's drives
// are counted have its counts, those found after it the next controller's.
TEST_F(RowTable, OfEverything) {
    discover("everything");
    EXPECT_EQ(rows(), R"(Expander, ENCL 08 SEP, 51E5C0A000000110,  ,  : 1.3, older, 1, 0/4/3
Expander, ENCL 08 SEP, 51E5C0A000000111,  ,  : 1.3, older, 1, 0/4/3
Expander, ENCL 11 SEP, 51E5C0A000000112,  ,  : 1.5, current, 1, 0/4/3
ARRAY CONTROLLER, TR56, VQ Vaultline TR56 Controller, VQ5C3354A001, 1: 6.4, older, 0, 0/4/3
Expander, ENCL 01 SEP, 51E5D07A67E76810,  ,  : 1.04, older, 1, 0/4/2
Expander, ENCL 05 SEP, 51E5D07A67E76811,  ,  : 1.9, older, 1, 0/4/2
Expander, ENCL 05 SEP, 51E5D07A67E76812,  ,  : 1.9, older, 1, 0/4/2
ARRAY CONTROLLER, TR57, VQ Vaultline TR57 Controller, VQ5C3351B002, 2: 6.64, current, 0, 0/4/2
Expander, ENCL 03 SEP, 51E5D09E801ACF10,  ,  : 1.36, current, 1, 3/3/2
Expander, ENCL 03 SEP, 51E5D09E801ACF11,  ,  : 1.36, current, 1, 3/3/2
ARRAY CONTROLLER, TR58, VQ Vaultline TR58 Controller, VQ5C3355C003, 3: 6.72, newer, 0, 3/3/2
Expander, ENCL 16 SEP, 51E5D0B4CA751410,  ,  : 3.1, newer, 1, 0/0/2
Expander, ENCL 16 SEP, 51E5D0B4CA751411,  ,  : 3.1, newer, 1, 0/0/2
Expander, ENCL 14 SEP, 51E5D0CBB96DAF10,  ,  : 1.02, older, 1, 0/0/0
Expander, ENCL 14 SEP, 51E5D0CBB96DAF11,  ,  : 1.02, older, 1, 0/0/0
)");
}

// Rows of one id have one status, the last one's.
TEST_F(RowTable, OfTheCacheModulesPackage) {
    discover("cache-module");
    EXPECT_EQ(rows(), R"(Expander, ENCL 08 SEP, 51E5C0A000000110,  ,  : 1.3, older, 1, 0/0/0
Expander, ENCL 08 SEP, 51E5C0A000000111,  ,  : 1.3, older, 1, 0/0/0
Expander, ENCL 11 SEP, 51E5C0A000000112,  ,  : 1.5, current, 1, 0/0/0
ARRAY CONTROLLER, TR56, VQ Vaultline TR56 Controller, VQ5C3354A001, 1: 6.4, older, 0, 0/0/0
ARRAY CONTROLLER, TR57, VQ Vaultline TR57 Controller, VQ5C3351B002, 2: 6.64, current, 0, 0/0/0
ARRAY CONTROLLER, TR58, VQ Vaultline TR58 Controller, VQ5C3355C003, 3: 6.72, newer, 0, 0/0/0
FWBC, FBWC, FBWC, , : 5, newer, 1, 0/0/0
FWBC, FBWC, FBWC, , : 7, newer, 1, 0/0/0
FWBC, FBWC, FBWC, , : 9, newer, 1, 0/0/0
)");
}

}  // namespace
