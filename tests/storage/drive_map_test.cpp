// Maps of drives out of replies, with bytes and offsets as a controller lays them out.

#include "storage/schema/drive_map.h"

#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

using Schema::DriveMap;
using Schema::PhysicalDriveMap;
using Numbers = std::vector<unsigned>;

Numbers numbersOf(DriveMap const& map) {
    Numbers numbers;
    for (unsigned short const number : map.numbers())
        numbers.push_back(number);
    return numbers;
}

/// An identify reply of `size` bytes: 3 and 127 in the present map, 4 in the external, 5 in the non-disk
/// map; the extended present map at `offset` has 3, 130 and 1023.
std::vector<unsigned char> identifyReply(unsigned size, unsigned devices, unsigned offset) {
    std::vector<unsigned char> reply(size);
    reply[54] = 0x08;
    reply[69] = 0x80;
    reply[70] = 0x10;
    reply[86] = 0x20;
    reply[156] = static_cast<unsigned char>(devices);
    reply[157] = static_cast<unsigned char>(devices >> 8);
    for (unsigned const at : {162U, 164U, 166U}) {
        reply[at] = static_cast<unsigned char>(offset);
        reply[at + 1] = static_cast<unsigned char>(offset >> 8);
    }
    for (unsigned const number : {3U, 130U, 1023U}) {
        if (offset + number / 8 < size)
            reply[offset + number / 8] |= static_cast<unsigned char>(1U << number % 8);
    }
    return reply;
}

TEST(DriveMaps, AreReadWhereTheIdentifyReplyHasThem) {
    struct Row {
        char const* what;
        unsigned size;
        unsigned devices;
        unsigned offset;
        Numbers expected;
        unsigned expectedSize;
    };
    static Row const rows[] = {
        {"a firmware that tells no limit", 512, 0, 0, {3, 127}, 128},
        {"the fixed map's last size", 512, 128, 400, {3, 127}, 128},
        {"one device more", 1024, 129, 600, {3}, 129},
        {"an odd number of devices", 1024, 131, 600, {3, 130}, 131},
        {"a large controller", 1024, 1024, 512, {3, 130, 1023}, 1024},
        {"a map that ends with the reply", 640, 1024, 512, {3, 130, 1023}, 1024},
        {"a map that ends behind it", 639, 1024, 512, {3, 127}, 128},
        {"an offset behind the reply", 512, 1024, 0xFFF0, {3, 127}, 128},
        {"an offset at its end", 512, 129, 512, {3, 127}, 128},
        {"no extended map", 512, 1024, 0, {3, 127}, 128},
        {"more devices than there are", 1024, 0xFFFF, 512, {3, 127}, 128},
        {"a reply cut off within the fixed map", 69, 0, 0, {}, 128},
    };
    for (Row const& row : rows) {
        auto reply = identifyReply(1024, row.devices, row.offset);
        reply.resize(row.size);
        PhysicalDriveMap map;
        map.InitializeDriveMap(PhysicalDriveMap::ePresent, reply);
        EXPECT_EQ(row.expected, numbersOf(map)) << row.what;
        EXPECT_EQ(row.expectedSize, map.size()) << row.what;
        EXPECT_EQ(row.expected.size(), map.count()) << row.what;
    }
    auto const reply = identifyReply(512, 64, 0);
    PhysicalDriveMap external, other;
    external.InitializeDriveMap(PhysicalDriveMap::eExternal, reply);
    other.InitializeDriveMap(PhysicalDriveMap::eNonDisk, reply);
    EXPECT_EQ(Numbers{4}, numbersOf(external));
    EXPECT_EQ(Numbers{5}, numbersOf(other));
    auto const extended = identifyReply(1024, 1024, 512);
    external.InitializeDriveMap(PhysicalDriveMap::eExternal, extended);
    EXPECT_EQ((Numbers{3, 130, 1023}), numbersOf(external));
    external.InitializeDriveMap(PhysicalDriveMap::eExternal, reply);
    EXPECT_EQ(Numbers{4}, numbersOf(external)) << "what an earlier reply had is gone";
}

TEST(DriveMaps, AreSetsWithinTheirSize) {
    PhysicalDriveMap small(16), large(200);
    small.set(15);
    small.set(16);
    EXPECT_EQ(Numbers{15}, numbersOf(small));
    EXPECT_FALSE(small.test(16));
    EXPECT_FALSE(small.test(0xFFFFFFFF));
    large.set(15);
    large.set(199);
    EXPECT_FALSE(small == large);
    small |= large;
    EXPECT_TRUE(small == large);
    EXPECT_EQ(200U, small.size());
    large.reset(15);
    small -= large;
    EXPECT_EQ(Numbers{15}, numbersOf(small));
    EXPECT_EQ(4096U, DriveMap(0xFFFFFFFF).size());
    EXPECT_EQ(32U, Schema::LogicalDriveMap().size());
}

}  // namespace
}  // namespace storage_test
