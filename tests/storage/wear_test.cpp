// What solid state drives tell of their wear, damaged pages included.

#include "storage/operations/read_ssd_info.h"
#include "storage/operations/wear_pages.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/drives.h"
#include "storage/schema/identity.h"
#include "sysmod/device_handle.h"
#include "tests/storage/answers.h"

namespace storage_test {
namespace {

/// A log page with a header that tells `told` bytes, or those that are there.
Bytes page(unsigned code, Bytes parameters, int told = -1) {
    auto const length = static_cast<unsigned>(told < 0 ? static_cast<int>(parameters.size()) : told);
    Bytes whole(4 + parameters.size());
    whole[0] = static_cast<std::uint8_t>(code);
    whole[2] = static_cast<std::uint8_t>(length >> 8);
    whole[3] = static_cast<std::uint8_t>(length);
    std::copy(parameters.begin(), parameters.end(), whole.begin() + 4);
    return whole;
}

/// Utilization 7 %, 0x89ABCDEF hours, 300 days, 12 cycles, flags.
Bytes wearPage(unsigned flags) {
    return page(0x36, {0,    1,    3,  4, 0, 0,    0,
                       7,    0,    2,  3, 4, 0x89, 0xAB,
                       0xCD, 0xEF, 0,  3, 3, 4,    0,
                       0,    1,    44, 0, 4, 3,    2,
                       0,    12,   0,  5, 3, 1,    static_cast<std::uint8_t>(flags)});
}

TEST(LogPage, IsReadAsFarAsItGoes) {
    struct Row {
        char const* what;
        Bytes bytes;
        unsigned code;
        long long value;  ///< -1: nothing
    };
    Bytes const good = page(0x36, {0, 1, 3, 2, 0x12, 0x34, 0, 2, 3, 1, 0x56});
    Row const rows[] = {
        {"first", good, 1, 0x1234},
        {"second", good, 2, 0x56},
        {"none", good, 3, -1},
        {"nothing", {}, 0, -1},
        {"half a header", {0x36, 0, 0}, 0, -1},
        {"no parameters", page(0x36, {}), 0, -1},
        {"half a parameter's header", page(0x36, {0, 1, 3}), 1, -1},
        {"a page longer than its reply", page(0x36, {0, 1, 3, 2, 0x12, 0x34}, 0xFFFF), 1, 0x1234},
        {"a page that ends within a parameter", page(0x36, {0, 1, 3, 2, 0x12, 0x34}, 5), 1, -1},
        {"a parameter longer than its page", page(0x36, {0, 1, 3, 200, 0x12, 0x34}), 1, -1},
        {"behind such a one", page(0x36, {0, 1, 3, 200, 0, 2, 3, 1, 0x56}), 2, -1},
        {"a parameter without bytes", page(0x36, {0, 1, 3, 0, 0, 2, 3, 1, 0x56}), 1, -1},
        {"behind such a one", page(0x36, {0, 1, 3, 0, 0, 2, 3, 1, 0x56}), 2, 0x56},
        {"nine bytes", page(0x36, {0, 1, 3, 9, 1, 2, 3, 4, 5, 6, 7, 8, 9}), 1, -1},
        {"nothing but zeros", Bytes(260), 1, -1},
        {"a page of zeros that says it is full", page(0x36, Bytes(256)), 1, -1},
    };
    for (Row const& row : rows) {
        auto const value = Operations::logParameter(row.bytes, row.code);
        EXPECT_EQ(row.value, value ? static_cast<long long>(*value) : -1) << row.what << " " << row.code;
    }
}

TEST(DeviceStatistic, IsSupportedAndValidOrNothing) {
    Bytes log(512);
    log[2] = 7;
    log[8] = 101;
    log[15] = 0xC0;
    log[16] = 1;
    log[23] = 0x80;
    put(log, 504, std::string("\xEF\xCD\xAB\x89\0\0\0\xC0", 8));
    auto const at = [&](unsigned number, unsigned offset) {
        return static_cast<long long>(Operations::deviceStatistic(log, number, offset).value_or(0));
    };
    EXPECT_EQ(101, at(7, 8));
    EXPECT_EQ(0, at(1, 8)) << "another page";
    EXPECT_EQ(0, at(7, 16)) << "not valid";
    EXPECT_EQ(0x89ABCDEF, at(7, 504));
    EXPECT_EQ(0, at(7, 505)) << "behind the end";
    EXPECT_EQ(0, at(7, 0xFFFFFFFF));
    log.clear();
    EXPECT_EQ(0, at(7, 8));
}

class Wear : public StorageTest {
  protected:
    Wear() {
        discover(oneController());
        answers = std::make_unique<Answers>(*door);
        Core::SysMod::PropertyTable table;
        Core::SysMod::toPropertyTable(dynamic_cast<Schema::ArrayController&>(only()).handle(), table);
        table[Core::SysMod::Route] = "QRTH:0500004000000000";
        Common::string const handle = Core::SysMod::toDeviceInfo(table);
        behindController = DevicePointer(new Schema::PhysicalDrive(handle, 5, Schema::PhysicalDrive::eData));
        behindAdapter = DevicePointer(new Schema::NonVaultlinePhysicalDrive(handle));
        for (DevicePointer const& drive : {behindController, behindAdapter}) {
            become(drive, "SAS_SSD");
            only().receive(drive);
        }
    }
    ~Wear() override { answers.reset(); }

    static void become(DevicePointer const& drive, char const* interface) {
        Schema::publish(*drive, "ATTR_NAME_INTERFACE",
                        (std::string("ATTR_VALUE_INTERFACE_") + interface).c_str());
    }
    static Core::OperationReturn read(DevicePointer const& drive) {
        return drive->perform(OperationPointer(new Operations::ReadSSDInfo));
    }
    Bytes& reply(unsigned operation) { return answers->scsi[5][operation]; }
    static void expectWear(DevicePointer const& drive,
                           std::vector<std::pair<char const*, char const*>> const& rows) {
        for (auto const& [name, value] : rows) {
            std::string const told = attribute(*drive, (std::string("ATTR_NAME_EXINFO_") + name).c_str());
            std::string const prefix = std::string("ATTR_VALUE_EXINFO_") + name + "_";
            EXPECT_EQ(value, told.starts_with(prefix) ? told.substr(prefix.size()) : told) << name;
        }
    }

    DevicePointer behindController;
    DevicePointer behindAdapter;
    std::unique_ptr<Answers> answers;
};

TEST_F(Wear, OfASasDriveStandsInItsLogPages) {
    reply(0x4D00) = page(0, {0x00, 0x2F, 0x36});
    reply(0x4D76) = wearPage(0x05);
    reply(0x4D6F) = page(0x2F, {0, 0, 3, 4, 0x5D, 0x73, 35, 0});
    for (DevicePointer const& drive : {behindController, behindAdapter}) {
        EXPECT_TRUE(read(drive));
        expectWear(drive, {{"SUPPORTED_LOG_PAGE_LIST", "0x00*-*0x2F*-*0x36"},
                           {"SSD_UTILIZATION", "7"},
                           {"POWER_ON_HOURS", "2309737967"},
                           {"SSD_REMAINING_DAYS_UNTIL_WEAROUT", "300"},
                           {"POWER_CYCLES", "12"},
                           {"LOG_FULL", "TRUE"},
                           {"HAS_56DAY_WARNING", "FALSE"},
                           {"HAS_UTILIZATION_WARNING", "TRUE"},
                           {"HAS_SMART_TRIP_SSD_WEAROUT", "TRUE"}});
    }
    // Without a page of its own the exceptions page tells the endurance used, and another cause is no wear.
    reply(0x4D00) = page(0, {0x00, 0x2F});
    reply(0x4D6F) = page(0x2F, {0, 0, 3, 4, 0x5D, 0x10, 35, 0});
    reply(0x44D6F) = page(0x2F, {0, 4, 3, 4, 0, 0, 0, 88});
    EXPECT_TRUE(read(behindController));
    expectWear(behindController, {{"SSD_UTILIZATION", "88"},
                                  {"POWER_ON_HOURS", ABSENT},
                                  {"LOG_FULL", ABSENT},
                                  {"HAS_SMART_TRIP_SSD_WEAROUT", "FALSE"}});
    answers->scsi[5].erase(0x44D6F);
    answers->scsi[5].erase(0x4D6F);
    EXPECT_TRUE(read(behindController));
    expectWear(behindController, {{"SSD_UTILIZATION", ABSENT}, {"SUPPORTED_LOG_PAGE_LIST", "0x00*-*0x2F"}});
    reply(0x4D00) = page(0, {0x36}, 0xFFFF);
    reply(0x4D76) = page(0x11, {0, 1, 3, 1, 99});
    EXPECT_TRUE(read(behindController));
    expectWear(behindController, {{"SSD_UTILIZATION", ABSENT}});
    answers->scsi.clear();
    EXPECT_EQ("2", attribute(read(behindController), "ATTR_NAME_SCSI_STATUS"));
    expectWear(behindController, {{"SUPPORTED_LOG_PAGE_LIST", ABSENT}});
}

/// Zeros in the place of what didn't come would be values.
TEST_F(Wear, OfACutPageIsWhatCameWhole) {
    reply(0x4D00) = page(0, {0x2F, 0x36});
    reply(0x4D76) = wearPage(0x05);
    reply(0x4D76).resize(18);  // within the hours
    reply(0x4D6F) = page(0x2F, {0, 0, 3, 4, 0x5D, 0x73, 35, 0});
    reply(0x4D6F).resize(9);
    for (DevicePointer const& drive : {behindController, behindAdapter}) {
        EXPECT_TRUE(read(drive));
        expectWear(
            drive,
            {{"SSD_UTILIZATION", "7"}, {"POWER_ON_HOURS", ABSENT}, {"HAS_SMART_TRIP_SSD_WEAROUT", ABSENT}});
        reply(0x850000) = Bytes(512);
        reply(0x850000)[0] = 1;
        reply(0x850000)[2 * 4] = 8;
        reply(0x850407) = Bytes{0, 0, 7, 0, 0, 0, 0, 0, 99, 0, 0, 0, 0, 0, 0};
        become(drive, "SATA_SSD");
        EXPECT_TRUE(read(drive));
        expectWear(drive, {{"SSD_UTILIZATION", ABSENT}, {"HAS_SMART_TRIP_SSD_WEAROUT", ABSENT}});
        reply(0x850000).resize(1);
        EXPECT_FALSE(read(drive));
    }
}

TEST_F(Wear, OfASataDriveStandsInItsStatistics) {
    reply(0x850000) = Bytes(512);
    reply(0x850000)[0] = 1;
    reply(0x850000)[2 * 4] = 8;
    reply(0x850000)[2 * 0xE0 + 1] = 1;
    reply(0x850401) = Bytes(512);
    reply(0x850401)[2] = 1;
    put(reply(0x850401), 8, std::string("\x0C\0\0\0\0\0\0\xC0", 8));
    put(reply(0x850401), 16, std::string("\xEF\xCD\xAB\x89\0\0\0\xC0", 8));
    for (DevicePointer const& drive : {behindController, behindAdapter}) {
        become(drive, "SATA_SSD");
        for (unsigned const used : {99U, 100U}) {
            reply(0x850407) = Bytes(512);
            reply(0x850407)[2] = 7;
            reply(0x850407)[8] = static_cast<std::uint8_t>(used);
            reply(0x850407)[15] = 0xC0;
            EXPECT_TRUE(read(drive));
            expectWear(drive, {{"SUPPORTED_LOG_PAGE_LIST", "0x04*-*0xE0"},
                               {"POWER_CYCLES", "12"},
                               {"POWER_ON_HOURS", "2309737967"},
                               {"SSD_UTILIZATION", used == 99 ? "99" : "100"},
                               {"HAS_SMART_TRIP_SSD_WEAROUT", used == 99 ? "FALSE" : "TRUE"}});
        }
        answers->scsi[5].erase(0x850407);
        EXPECT_TRUE(read(drive)) << "a drive without a page of wear tells the rest";
        expectWear(drive, {{"SSD_UTILIZATION", ABSENT}, {"POWER_CYCLES", "12"}});
    }
    answers->scsi.clear();
    for (DevicePointer const& drive : {behindController, behindAdapter})
        EXPECT_FALSE(read(drive));
}

TEST_F(Wear, IsAskedOfDrivesThatHaveThePages) {
    auto const filter = Operations::ReadSSDInfo().pFilter();
    EXPECT_TRUE(filter->apply(behindAdapter));
    EXPECT_FALSE(filter->apply(behindController));
    Schema::publish(*behindController, "ATTR_NAME_EXINFO_SUPPORTED", "ATTR_VALUE_EXINFO_SUPPORTED_TRUE");
    EXPECT_TRUE(filter->apply(behindController));
}

}  // namespace
}  // namespace storage_test
