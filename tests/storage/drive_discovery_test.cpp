// Disks and tape drives behind a controller, from replies that are written here byte by byte.

#include <set>

#include "storage/operations/discover_physical_drive.h"
#include "storage/operations/read_physical_drive_info.h"
#include "storage/schema/enclosure.h"
#include "storage/schema/identity.h"
#include "storage/schema/logical.h"
#include "tests/storage/answers.h"

namespace storage_test {
namespace {

using Numbers = std::set<unsigned>;

void putNumber(Bytes& record, std::size_t at, unsigned width, std::uint64_t value) {
    for (unsigned i = 0; i < width; ++i)
        record[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

void putMap(Bytes& record, std::size_t at, Numbers const& numbers) {
    for (unsigned const number : numbers)
        record[at + number / 8] = static_cast<std::uint8_t>(record[at + number / 8] | 1U << number % 8);
}

/// The identify record of a controller for `limit` devices; above 128 its maps stand behind the record.
Bytes identify(Numbers const& present, Numbers const& nonDisk = {}, unsigned limit = 128) {
    Bytes record(512);
    put(record, 5, "6.40");
    put(record, 9, "6.40");
    putNumber(record, 152, 2, 32);
    putNumber(record, 156, 2, limit);
    putNumber(record, 240, 4, 293);
    std::size_t presentAt = 54;
    std::size_t nonDiskAt = 86;
    if (limit > 128) {
        presentAt = 512;
        nonDiskAt = 512 + limit / 8;
        record.resize(512 + limit / 4);
        putNumber(record, 162, 2, presentAt);
        putNumber(record, 166, 2, nonDiskAt);
    }
    putNumber(record, 196, 4, record.size());
    putMap(record, presentAt, present);
    putMap(record, nonDiskAt, nonDisk);
    return record;
}

/// A place with bays and drives.
Bytes cageWith(Numbers const& drives) {
    Bytes record(1024);
    record[36] = 1;
    put(record, 8, "KESTAL  VAULTSRV         1.23");
    put(record, 214, "1I");
    record[105] = 1;
    record[266] = 12;
    putNumber(record, 412, 4, 1024);
    putNumber(record, 482, 4, 998);
    putMap(record, 216, drives);
    return record;
}

/// The identify record of a drive.
Bytes drive() {
    Bytes record(2048);
    putNumber(record, 2, 2, 512);
    putNumber(record, 4, 4, 0x89ABCDEF);
    put(record, 12,
        "VQ      EG0300VDRV                      VSN-0001                                VQD3    ");
    put(record, 112, "1I");
    record[114] = 1;
    record[115] = 7;
    putNumber(record, 116, 4, 10000);
    record[120] = 2;
    record[1792] = 31;
    record[1793] = 0xFF;
    record[1794] = 44;
    return record;
}

/// A unit's configuration, of which a reply is `code`.
Bytes configuration(Numbers const& data, Numbers const& spares) {
    Bytes record(512);
    putNumber(record, 10, 2, data.size());
    putNumber(record, 264, 4, 300);
    putMap(record, 98, data);
    putMap(record, 114, spares);
    return record;
}

class Drives : public StorageTest {
  protected:
    Drives() {
        activate({{"ARRAY_CONTROLLER", "DISCOVER_STORAGE_ENCLOSURES"},
                  {"ARRAY_CONTROLLER", "DISCOVER_PHYSICAL_DRIVES"},
                  {"ARRAY_CONTROLLER", "DISCOVER_TAPE_DRIVES"},
                  {"STORAGE_ENCLOSURE", "DISCOVER_DRIVE_CAGES"},
                  {"DRIVE_CAGE", "DISCOVER_PHYSICAL_DRIVES"},
                  {"DRIVE_CAGE", "DISCOVER_TAPE_DRIVES"},
                  {"PHYSICAL_DRIVE", "READ_PHYSICAL_DRIVE_INFO"}});
    }
    ~Drives() override { answers.reset(); }

    void controllerThatTells(Bytes const& record) {
        answers.reset();
        start(oneController());
        answers = std::make_unique<Answers>(*door);
        answers->management[{0x11, 0, 0}] = record;
    }
    /// The reply about drive `number`, by the index that it goes by.
    Bytes& reply(unsigned number) {
        return answers->management[{0x15, (number + 128) & 0xFF, (number + 128) >> 8}];
    }
    /// One drive, number 0, after a discovery.
    Core::Device& discoveredDrive(Bytes const& record) {
        controllerThatTells(identify({0}));
        reply(0) = record;
        discover();
        auto const found = below(only(), "PHYSICAL_DRIVE");
        if (found.size() != 1) throw std::runtime_error(std::to_string(found.size()) + " drives");
        return *found.front();
    }

    static OperationPointer read() { return OperationPointer(new Operations::ReadPhysicalDriveInfo); }
    static Numbers numbersBelow(Core::Device const& parent, char const* type = "PHYSICAL_DRIVE") {
        Numbers numbers;
        for (DevicePointer const& device : below(parent, type))
            numbers.insert(static_cast<unsigned>(std::stoul(attribute(*device, "ATTR_NAME_DEVICE_NUMBER"))));
        return numbers;
    }
    static std::string told(Core::Device const& device, std::string const& name) {
        std::string const value = attribute(device, ("ATTR_NAME_" + name).c_str());
        return value.starts_with("ATTR_VALUE_" + name + "_") ? value.substr(12 + name.size()) : value;
    }

    std::unique_ptr<Answers> answers;
};

Numbers upTo(unsigned end) {
    Numbers numbers;
    for (unsigned number = 0; number < end; ++number)
        numbers.insert(number);
    return numbers;
}

TEST_F(Drives, AreFoundInMapsOfAllSizes) {
    struct Row {
        Numbers present;
        unsigned limit;
    };
    Row const rows[] = {{{}, 128},          {upTo(1), 32},     {upTo(128), 128},         {upTo(129), 256},
                        {upTo(1024), 1024}, {{0, 1023}, 1024}, {{5, 127, 128, 255}, 256}};
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.present.size() << " of " << row.limit);
        controllerThatTells(identify(row.present, {}, row.limit));
        discover();
        EXPECT_EQ(row.present, numbersBelow(only()));
    }
    EXPECT_EQ(0U, sent("260000000000c3"));
}

/// The offset or the length of an extended map can't be trusted: what lies within the record remains.
TEST_F(Drives, OfAMapThatDoesNotLieWithinTheReplyAreTheFirst128) {
    for (auto const& [limit, offset] :
         {std::pair{1024U, 0xFFF0U}, {1024U, 700U}, {0xFFFFU, 512U}, {256U, 0U}}) {
        Bytes record = identify({3, 200}, {}, 1024);
        putMap(record, 54, {3});
        putNumber(record, 156, 2, limit);
        putNumber(record, 162, 2, offset);
        controllerThatTells(record);
        discover();
        EXPECT_EQ(Numbers{3}, numbersBelow(only())) << limit << " at " << offset;
    }
}

/// A tape drive must not become a disk because the map that tells so, or the other one, is out of reach.
TEST_F(Drives, OfMapsOfWhichOneIsRefusedAreTheFirst128) {
    struct Row {
        std::size_t spoiled;  ///< member with an offset behind the reply
        Numbers disks;
        Numbers tapes;
    };
    for (Row const& row : {Row{0, {3, 200}, {5, 130}}, {166, {3}, {5}}, {162, {3}, {5}}}) {
        SCOPED_TRACE(row.spoiled);
        Bytes record = identify({3, 5, 130, 200}, {5, 130}, 256);
        putMap(record, 54, {3, 5});
        putMap(record, 86, {5});
        if (row.spoiled != 0) putNumber(record, row.spoiled, 2, 0xFFF0);
        controllerThatTells(record);
        for (unsigned const tape : {5U, 130U})
            answers->addUnit(tape, 1);
        discover();
        EXPECT_EQ(row.disks, numbersBelow(only()));
        EXPECT_EQ(row.tapes, numbersBelow(only(), "TAPE_DRIVE"));
    }
}

TEST_F(Drives, BelongToTheirCageAndTapesAreNoDisks) {
    Bytes record = identify({1, 2, 3, 4, 9, 10}, {4, 6, 7, 9, 10});
    record[168] = 0x01;  // bus 0, target 0
    controllerThatTells(record);
    answers->management[{0x65, 0, 0}] = cageWith({2, 3, 9});
    for (unsigned const number : {4U, 9U, 10U}) {
        Bytes inquiry(802);
        inquiry[14] = number == 10 ? 0x0D : 0x81;  // the type's bits only
        put(inquiry, 22, number == 4 ? "VQ      STREAM DR-90    2.07" : "VQ      STREAM          1.01");
        put(inquiry, 284, "TSN-4");
        put(inquiry, 554, "KESTAL  TAPE            9.99");
        answers->management[{0x92, number, 0}] = inquiry;
    }
    answers->addUnit(6, 1);  // a tape drive that doesn't answer
    answers->addUnit(7, 1);  // nor does this one, but the controller does for it
    answers->management[{0x92, 7, 0}] = Bytes(802);
    answers->management[{0x92, 7, 0}][5] = 2;
    reply(4) = drive();
    discover();
    EXPECT_EQ((Numbers{1}), numbersBelow(only()));
    EXPECT_EQ((Numbers{4, 6, 7}), numbersBelow(only(), "TAPE_DRIVE"));
    auto const enclosures = below(only(), "STORAGE_ENCLOSURE");
    ASSERT_EQ(1U, enclosures.size());
    auto const cages = below(*enclosures[0], "DRIVE_CAGE");
    ASSERT_EQ(1U, cages.size());
    EXPECT_EQ((Numbers{2, 3}), numbersBelow(*cages[0]));
    EXPECT_EQ((Numbers{9}), numbersBelow(*cages[0], "TAPE_DRIVE"));

    auto const tapes = below(only(), "TAPE_DRIVE");
    struct Row {
        char const* name;
        char const* first;
        char const* second;
    };
    Row const rows[] = {{"VENDOR_ID", "VQ", ABSENT},
                        {"PRODUCT_ID", "STREAM DR-90", ABSENT},
                        {"REVISION_LEVEL", "2.07", ABSENT},
                        {"SERIAL_NUMBER", "TSN-4", ABSENT},
                        {"KESTAL_PRODUCT_ID", "TAPE", ABSENT},
                        {"OBDR_MODE", "ENABLED", ABSENT},
                        {"STATUS", "OK", "OK"},
                        {"PORT", "1I", "UNKNOWN"},
                        {"BAY", "7", ABSENT}};
    for (Row const& row : rows) {
        EXPECT_EQ(row.first, told(*tapes[0], row.name)) << row.name;
        EXPECT_EQ(row.second, told(*tapes[1], row.name)) << row.name;
    }
    EXPECT_EQ(ABSENT, told(*below(*cages[0], "TAPE_DRIVE")[0], "OBDR_MODE"));
}

/// Firmware for a drive would go to the first of several devices.
TEST_F(Drives, OfOneNumberHaveNoHandle) {
    controllerThatTells(identify({1, 2}));
    for (unsigned const unit : {1U, 2U, 3U})
        answers->addUnit(unit, 0);
    answers->units[64 + 25] = 1;  // the index of the third
    discover();
    auto const drives = below(only(), "PHYSICAL_DRIVE");
    ASSERT_EQ(2U, drives.size());
    EXPECT_TRUE(dynamic_cast<ConcreteSCSIDevice&>(*drives[0]).handle().empty());
    EXPECT_FALSE(dynamic_cast<ConcreteSCSIDevice&>(*drives[1]).handle().empty());
}

/// A position that doesn't answer is no cage, and its drives aren't lost.
TEST_F(Drives, OfASilentPlaceStayWithTheController) {
    Bytes record = identify({1, 2});
    record[168] = 0x01;
    controllerThatTells(record);
    discover();
    EXPECT_EQ((Numbers{1, 2}), numbersBelow(only()));
}

TEST_F(Drives, HaveTheirRoleFromTheConfiguration) {
    Bytes record = identify(upTo(8));
    record[0] = 2;
    controllerThatTells(record);
    answers->management[{0x50, 0, 0}] = configuration({0, 1}, {});
    answers->management[{0x50, 1, 0}] = configuration({2, 3, 5}, {4, 5});
    answers->management[{0x55, 1, 0}] = configuration({2, 5}, {4, 5});
    Bytes status(1536);
    putMap(status, 827, {5});
    answers->management[{0x12, 1, 0}] = status;
    discover();
    auto const expectRoles = [&](std::vector<std::array<char const*, 3>> const& rows) {
        auto const drives = below(only(), "PHYSICAL_DRIVE");
        ASSERT_EQ(rows.size(), drives.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i][0], told(*drives[i], "DRIVE_TYPE")) << i;
            EXPECT_EQ(rows[i][1], told(*drives[i], "IS_ACTIVE_SPARE")) << i;
            EXPECT_EQ(rows[i][2], told(*drives[i], "TRANSIENT_DATA_DRIVE")) << i;
        }
    };
    expectRoles({{"DATA", ABSENT, "FALSE"},
                 {"DATA", ABSENT, "FALSE"},
                 {"DATA", ABSENT, "FALSE"},
                 {"DATA", ABSENT, "TRUE"},
                 {"SPARE", "FALSE", ABSENT},
                 {"SPARE", "TRUE", ABSENT},
                 {"UNASSIGNED", ABSENT, ABSENT},
                 {"UNASSIGNED", ABSENT, ABSENT}});

    // Arrays of the tree know better than the controller's units, and a deleted one knows nothing.
    Schema::LogicalDriveMap units;
    units.set(1);
    Schema::PhysicalDriveMap data;
    data.set(6);
    Schema::PhysicalDriveMap spares;
    spares.set(5);
    Schema::PhysicalDriveMap deletedData;
    deletedData.set(7);
    only().receive(DevicePointer(new Schema::Array(0, units, data, spares, {})));
    only().receive(DevicePointer(new Schema::Array(1, Schema::LogicalDriveMap(), deletedData, {}, {})));
    answers->management[{0x55, 1, 0}] = configuration({6}, {5});
    EXPECT_TRUE(only().perform(OperationPointer(new Operations::DiscoverPhysicalDrive)));
    auto const drives = below(only(), "PHYSICAL_DRIVE");
    EXPECT_EQ("SPARE", told(*drives[5], "DRIVE_TYPE"));
    EXPECT_EQ("TRUE", told(*drives[5], "IS_ACTIVE_SPARE"));
    EXPECT_EQ("DATA", told(*drives[6], "DRIVE_TYPE"));
    EXPECT_EQ("UNASSIGNED", told(*drives[7], "DRIVE_TYPE"));
    EXPECT_EQ("UNASSIGNED", told(*drives[0], "DRIVE_TYPE"));
}

TEST_F(Drives, TellWhatTheirRecordHas) {
    struct Row {
        std::size_t at;
        Bytes bytes;
        char const* name;
        char const* value;
    };
    Row const rows[] = {
        {4, {0xEF, 0xCD, 0xAB, 0x89}, "TOTAL_BLOCKS", "2309737967"},
        {4, {0xEF, 0xCD, 0xAB, 0x89}, "MARKETING_BLOCKS", "1.2 TB"},
        {12, {}, "DRIVE_MODEL", "VQ      EG0300VDRV"},
        {52, {}, "SERIAL_NUMBER", "VSN-0001"},
        {92, {}, "FIRMWARE_REVISION", "VQD3"},
        {112, {}, "PORT", "1I"},
        {112, {'?', '?'}, "PORT", "UNKNOWN"},
        {112, {' ', ' '}, "PORT", "UNKNOWN"},
        {115, {}, "BAY", "7"},
        {115, {0xFF}, "BAY", ABSENT},
        {115, {}, "LOCATION_HINT", "Port 1I, Box 1, Bay 7"},
        {116, {}, "ROTATIONAL_SPEED", "10000"},
        {116, {1, 0}, "ROTATIONAL_SPEED", ABSENT},
        {120, {}, "INTERFACE", "SAS"},
        {120, {1}, "INTERFACE", "SATA"},
        {116, {1, 0, 0, 0, 1}, "INTERFACE", "SATA_SSD"},
        {120, {9}, "INTERFACE", "UNKNOWN"},
        {120, {}, "EXINFO_SUPPORTED", "FALSE"},
        {120, {4}, "EXINFO_SUPPORTED", "TRUE"},
        {92,
         {'S', 'X', 'S', '0', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4},
         "EXINFO_SUPPORTED",
         "FALSE"},
        {138, {0x40, 0x01}, "RIS_BLOCKS", "320"},
        {142, {0x50, 0, 0xC5, 0, 1, 2, 3, 4}, "WWID", "5000C50001020304"},
        {142, {}, "WWID", ABSENT},
        {1792, {}, "CURRENT_TEMPERATURE", "31"},
        {1792, {0xFF}, "CURRENT_TEMPERATURE", ABSENT},
        {1793, {}, "TEMPERATURE_THRESHOLD", ABSENT},
        {1793, {60}, "TEMPERATURE_THRESHOLD", "60"},
        {1794, {}, "MAXIMUM_TEMPERATURE", "44"},
        {1794, {0xFF}, "MAXIMUM_TEMPERATURE", ABSENT},
        {1795, {8}, "NATIVE_BLOCK_SIZE", "4096"},
        {1795, {}, "NATIVE_BLOCK_SIZE", "512"},
        {102, {8}, "LAST_FAILURE_REASON", "TIMEOUT"},
        {103, {}, "STATUS", "OK"},
        {103, {0x01}, "STATUS", "FAILED"},
        {103, {0x02, 0x04}, "STATUS", "INTERIM_RECOVERY"},
        {103, {0x02}, "STATUS", "PREDICTIVE_FAILURE"},
        {106, {0x02}, "DRIVE_SUPPORTS_WRITE_BUFFER_MODE_7", "TRUE"},
        {106, {0x02}, "DRIVE_SUPPORTS_WRITE_BUFFER_MODE_5", "FALSE"},
        {1867, {0x80}, "ENCRYPTION_ENCRYPTED_DRIVE", "TRUE"},
        {1863, {}, "CARRIER_AUTHENTICATION_STATUS", ABSENT},
        {108, {0x11}, "TRANSFER_RATE", ABSENT},
    };
    for (Row const& row : rows) {
        Bytes record = drive();
        std::copy(row.bytes.begin(), row.bytes.end(), record.begin() + static_cast<std::ptrdiff_t>(row.at));
        EXPECT_EQ(row.value, told(discoveredDrive(record), row.name)) << row.name << " at " << row.at;
    }
    Bytes excepted = drive();
    put(excepted, 12, "ATA     VQ0060EACXK     ");
    excepted[120] = 3;
    EXPECT_EQ("FALSE", told(discoveredDrive(excepted), "EXINFO_SUPPORTED")) << "this model alone";
    // Firmware whose records end earlier has no members behind; zeros there are no values.
    Bytes short_ = drive();
    short_.resize(1792);
    Core::Device& old = discoveredDrive(short_);
    EXPECT_EQ("VSN-0001", told(old, "SERIAL_NUMBER"));
    EXPECT_EQ(ABSENT, told(old, "CURRENT_TEMPERATURE"));
    EXPECT_EQ(ABSENT, told(old, "ENCRYPTION_ENCRYPTED_DRIVE"));
}

/// Some members count only behind controllers whose flags say so.
TEST_F(Drives, TellMoreBehindControllersThatKnowMore) {
    Bytes record = drive();
    putNumber(record, 4, 4, 0xFFFFFFFF);
    putNumber(record, 122, 8, 0x1D1C0BEB0);
    put(record, 1862, std::string("\x01\x00\x2A\x07", 4));
    Bytes identified = identify({0});
    struct Row {
        unsigned flags;  ///< of the highest byte
        char const* name;
        char const* value;
    };
    Row const rows[] = {{0x00, "TOTAL_BLOCKS", "4294967295"},
                        {0x08, "TOTAL_BLOCKS", "7814037168"},
                        {0x08, "MARKETING_BLOCKS", "4 TB"},
                        {0x20, "DRIVE_AUTHENTICATION_STATUS", "FAILED"},
                        {0x20, "CARRIER_AUTHENTICATION_STATUS", "OK"},
                        {0x20, "CARRIER_APPLICATION_VERSION", "42"},
                        {0x20, "CARRIER_BOOTLOADER_VERSION", "7"},
                        {0x08, "CARRIER_BOOTLOADER_VERSION", ABSENT}};
    for (Row const& row : rows) {
        identified[187] = static_cast<std::uint8_t>(row.flags);
        controllerThatTells(identified);
        reply(0) = record;
        discover();
        EXPECT_EQ(row.value, told(*below(only(), "PHYSICAL_DRIVE")[0], row.name)) << row.flags;
    }

    // The state of an erase stands in four bytes for each number, where the reply says; or it isn't there.
    identified = identify({5});
    identified[184] = 0x01;
    struct EraseRow {
        unsigned offset;
        unsigned devices;
        Bytes entry;
        char const* status;
        char const* percent;
    };
    EraseRow const erases[] = {
        {512, 128, {2, 3, 77}, "IN_PROGRESS", "77"},   {512, 128, {0, 0, 0}, "NONE", ABSENT},
        {512, 5, {2, 3, 77}, ABSENT, ABSENT},          {0, 128, {2, 3, 77}, ABSENT, ABSENT},
        {0xFFFFFFF0, 128, {2, 3, 77}, ABSENT, ABSENT}, {1010, 128, {2, 3, 77}, ABSENT, ABSENT},
        {512, 128, {2, 3, 101}, ABSENT, ABSENT},       {512, 128, {9, 3, 7}, ABSENT, ABSENT}};
    for (EraseRow const& row : erases) {
        controllerThatTells(identified);
        reply(5) = record;
        Bytes state(1024);
        putNumber(state, 0, 4, row.offset);
        putNumber(state, 8, 2, row.devices);
        putNumber(state, 12, 4, state.size());
        putNumber(state, 16, 4, 22);
        std::copy(row.entry.begin(), row.entry.end(), state.begin() + 512 + 5 * 4);
        answers->management[{0xE5, 0, 0}] = state;
        discover();
        Core::Device& device = *below(only(), "PHYSICAL_DRIVE")[0];
        EXPECT_EQ(row.status, told(device, "ERASE_STATUS")) << row.offset;
        EXPECT_EQ(row.percent, told(device, "ERASE_PERCENT_COMPLETE")) << row.offset;
        EXPECT_EQ(row.percent == ABSENT ? ABSENT : "RANDOM_RANDOM_ZERO", told(device, "ERASE_PATTERN"));
    }
}

TEST_F(Drives, CountTheirErrorsAndTellTheirParallelBus) {
    controllerThatTells(identify({0}));
    reply(0) = drive();
    reply(0)[120] = 0;
    reply(0)[108] = 0x31;
    Bytes counts(512);
    putNumber(counts, 4, 4, 600);
    putNumber(counts, 8, 8, 0x123456789A);
    putNumber(counts, 28, 4, 0x89ABCDEF);
    putNumber(counts, 122, 4, 9);
    answers->management[{0xA0, 0, 0}] = counts;
    discover();
    Core::Device& device = *below(only(), "PHYSICAL_DRIVE")[0];
    EXPECT_EQ("10", told(device, "MNP_SERVICE_HOURS"));
    EXPECT_EQ("78187493530", told(device, "MNP_SECTORS_READ"));
    EXPECT_EQ("2309737967", told(device, "MNP_RETRY_RECOVERED_READ_ERRORS"));
    EXPECT_EQ("9", told(device, "MNP_BAD_TARGET_ERRORS"));
    // The fastest of the speeds that the bus was set to, in megabytes a second; bit 0 makes a bus wide.
    struct Row {
        std::uint8_t speeds;
        char const* mode;
        char const* rate;
    };
    for (Row const& row : {Row{0x31, "ULTRA_320", "320"}, Row{0x20, "ULTRA_320", "160"},
                           Row{0x11, "ULTRA_3", "160"}, Row{0x09, "ULTRA_2", "80"}, Row{0x04, "ULTRA", "20"},
                           Row{0x03, "FAST", "20"}, Row{0x01, "ASYNCHRONOUS", ABSENT}}) {
        reply(0)[108] = row.speeds;
        EXPECT_TRUE(device.perform(read()));
        EXPECT_EQ(row.mode, told(device, "TRANSFER_MODE"));
        EXPECT_EQ(row.rate, told(device, "TRANSFER_RATE")) << row.mode;
    }
    answers->management.erase({0xA0, 0, 0});
    EXPECT_TRUE(device.perform(read())) << "counts that aren't there are no failure";
    EXPECT_EQ(ABSENT, told(device, "MNP_SERVICE_HOURS"));
}

TEST_F(Drives, ThatDoNotAnswerStayInTheTree) {
    controllerThatTells(identify({0, 1, 2}));
    reply(0) = drive();
    reply(2) = drive();
    discover();
    auto const drives = below(only(), "PHYSICAL_DRIVE");
    ASSERT_EQ(3U, drives.size());
    EXPECT_EQ("OK", told(*drives[0], "STATUS"));
    EXPECT_EQ("NOT_SUPPORTED", told(*drives[1], "STATUS"));
    EXPECT_EQ("1", told(*drives[1], "DEVICE_NUMBER"));
    EXPECT_EQ("OK", told(*drives[2], "STATUS"));
    // Half an identity doesn't make a drive a healthy one, nor take from it that it is solid state.
    for (std::size_t const size : {0U, 100U, 120U}) {
        reply(2).resize(size);
        reply(2).resize(size, 0xFF);
        EXPECT_FALSE(drives[2]->perform(read())) << size;
        EXPECT_EQ("SAS", told(*drives[2], "INTERFACE"));
        EXPECT_EQ("VSN-0001", told(*drives[2], "SERIAL_NUMBER"));
    }
    answers.reset();
    addFault(R"({"match": {"command": "0x15"}, "action": {"errno": "EIO"}})");
    EXPECT_FALSE(drives[0]->perform(read()));
    EXPECT_EQ("OK", told(*drives[0], "STATUS")) << "what is known stays";
    addFault(R"({"match": {"command": "0x11"}, "action": {"errno": "EIO"}})");
    OperationPointer const discovery(new Operations::DiscoverPhysicalDrive);
    EXPECT_EQ("ATTR_VALUE_STATUS_COMMUNICATION_ERROR", status(only().perform(discovery)));
}

TEST_F(Drives, OfAControllerThatDoesNotIdentifyItselfAreNone) {
    controllerThatTells(identify({0, 1}));
    answers->management[{0x11, 0, 0}].resize(100);
    discover();
    EXPECT_EQ(Numbers{}, numbersBelow(only()));
}

}  // namespace
}  // namespace storage_test
