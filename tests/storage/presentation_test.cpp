#include "storage/presentation.h"

#include "storage/schema/drives.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

DevicePointer driveWith(std::vector<std::pair<char const*, char const*>> const& attributes) {
    DevicePointer const drive(new Schema::PhysicalDrive("", 0, Schema::PhysicalDrive::eData));
    for (auto const& [name, value] : attributes)
        drive->Receive(Core::Attribute(name, value));
    return drive;
}

TEST(LocationHint, IsMadeOfWhatIsKnown) {
    struct Row {
        std::vector<std::pair<char const*, char const*>> attributes;
        char const* expected;
    };
    Row const rows[] = {
        {{{"ATTR_NAME_PORT", "1I"}, {"ATTR_NAME_BOX", "2"}, {"ATTR_NAME_BAY", "3"}}, "Port 1I, Box 2, Bay 3"},
        {{{"ATTR_NAME_BAY", "3"}}, "Bay 3"},
        {{{"ATTR_NAME_PORT", "ATTR_VALUE_PORT_UNKNOWN"}, {"ATTR_NAME_BOX", "2"}}, "Box 2"},
        {{{"ATTR_NAME_PORT", "  "}, {"ATTR_NAME_BAY", "0"}}, "Bay 0"},
        {{}, ""},
    };
    for (Row const& row : rows)
        EXPECT_EQ(row.expected, str(StoragePres::PhysicalDrive::locationHintFor(driveWith(row.attributes))));
    EXPECT_EQ("", str(StoragePres::PhysicalDrive::locationHintFor(DevicePointer())));
}

TEST(MarketingBlocks, AreTheSizeThatADriveIsSoldBy) {
    struct Row {
        char const* blocks;
        char const* blockSize;
        char const* expected;
    };
    static Row const rows[] = {
        {"585937500", "512", "300 GB"},
        {"976773168", "", "500 GB"},
        {"2344225968", "512", "1.2 TB"},
        {"1953525168", "512", "1 TB"},
        {"1464843750", "4096", "6 TB"},
        {"1953124999", "512", "1 TB"},  // 999.99 GB
        {"1951171875", "512", "999 GB"},
        {"18446744073709551615", "4096", "75557863725.9 TB"},
        {"976773168", "0", "500 GB"},
        {"0", "512", ""},
        {"", "512", ""},
        {"many", "512", ""},
    };
    for (Row const& row : rows) {
        DevicePointer const drive =
            driveWith({{"ATTR_NAME_TOTAL_BLOCKS", row.blocks}, {"ATTR_NAME_BLOCK_SIZE", row.blockSize}});
        EXPECT_EQ(row.expected, str(StoragePres::PhysicalDrive::marketingBlocksFor(*drive))) << row.blocks;
    }
}

}  // namespace
}  // namespace storage_test
