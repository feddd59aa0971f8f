/// Every management command as it arrives at a controller's node, after all layers have had their hands on
/// it: what the journal has is compared with the literal rows.

#include "command/concrete_devices.h"
#include "command/controller_command.h"
#include "command/logical_drive_command.h"
#include "sysmod/device_handle.h"
#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

enum Addressed { Controller, LogicalDrive };
enum Direction { In, Out, NoneOrIn };

constexpr std::uint16_t DRIVE = 0x0203;

template <class T, Addressed A, Direction D>
void send(BMICDevice& device) {
    if constexpr (A == LogicalDrive && D == In) {
        SenseLogicalDriveCommand<T>{DRIVE}(device);
    } else if constexpr (A == LogicalDrive) {
        SetLogicalDriveCommand<T>{DRIVE}(device);
    } else if constexpr (D == In) {
        SenseControllerCommand<T>{}(device);
    } else if constexpr (D == Out) {
        SetControllerCommand<T>{}(device);
    } else {
        NoTransferControllerCommand<T>{}(device);
    }
}

struct Row {
    char const* trait;
    unsigned code;
    Addressed addressed;
    Direction direction;
    unsigned size;
    void (*send)(BMICDevice&);
};

constexpr Row ROWS[] = {
#define ROW(trait, code, addressed, direction, size, totalLengthAt) \
    {#trait, code, addressed, direction, size, send<trait, addressed, direction>},
#include "tests/command/command_rows.inc"
#undef ROW
};

class CommandJournal : public StorageTest {};

TEST_F(CommandJournal, HasEveryCommandWithItsCodeDirectionSizeAndAddress) {
    ASSERT_EQ(46U, std::size(ROWS));
    start(oneController());
    Core::SysMod::PropertyTable table;
    table[Core::SysMod::NodePath] = "/dev/sg0";
    table[Core::SysMod::Route] = "QRTH:0000000000000000";
    for (Row const& row : ROWS) {
        ConcreteBMICDevice device(Core::SysMod::toDeviceInfo(table), false, 32, 128);
        std::size_t const before = journalSize();
        row.send(device);
        bool const hasData = row.direction != NoneOrIn;
        unsigned const length = hasData ? row.size : 0;
        char expected[64];
        std::snprintf(expected, sizeof expected, "%s%s00000000%02x%04x%s %s %u",
                      row.direction == In ? "26" : "27", row.addressed == LogicalDrive ? "03" : "00",
                      row.code, length, row.addressed == LogicalDrive ? "02" : "00",
                      row.direction == In    ? "in"
                      : row.direction == Out ? "out"
                                             : "none",
                      length);
        EXPECT_EQ(Strings{expected}, exchanges(before)) << row.trait;
    }
}

}  // namespace
}  // namespace storage_test
