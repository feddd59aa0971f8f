#include "storage/operations/read_array_controller_bootable_status.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/identity.h"
#include "sysmod/device_handle.h"
#include "tests/storage/storage_fixture.h"
#include "tests/sysmod/fake_system.h"

namespace storage_test {
namespace {

/// The machine boots from 1E5C3354 at 0000:0b:00.0, which the kernel shows in slot 12.
void makeBootMachine(FakeSystem& system) {
    std::string const function = "/sys/bus/pci/devices/0000:0b:00.0";
    system.links[function] = "../../../devices/pci0000:0b/0000:0b:00.0";
    system.links[function + "/driver"] = "../../../bus/pci/drivers/vqsa";
    system.files[function + "/class"] = "0x010400\n";
    system.files[function + "/vendor"] = "0x1e5c\n";
    system.files[function + "/device"] = "0x3239\n";
    system.files[function + "/subsystem_vendor"] = "0x1e5c\n";
    system.files[function + "/subsystem_device"] = "0x3354\n";
    system.files["/sys/bus/pci/slots/12/address"] = "0000:0b:00\n";
    // UEFI: attributes; then the order, or an active load option "A": root bridge PNP0A03 0x0B, function 0.0.
    std::string const variable = "-8be4df61-93ca-11d2-aa0d-00e098032b8c";
    auto const bytes = [](std::initializer_list<int> values) {
        return std::string(values.begin(), values.end());
    };
    system.files["/sys/firmware/efi/efivars/BootOrder" + variable] = bytes({7, 0, 0, 0, 0, 0});
    system.files["/sys/firmware/efi/efivars/Boot0000" + variable] =
        bytes({7,    0,    0,    0,    1,    0, 0, 0, 22, 0, 'A', 0, 0, 0, 2,    1,    12, 0,
               0xD0, 0x41, 0x03, 0x0A, 0x0B, 0, 0, 0, 1,  1, 6,   0, 0, 0, 0x7F, 0xFF, 4,  0});
}

TEST(BootableStatus, AsksForTheSlotOfTheController) {
    struct Row {
        char const* family;
        char const* slot;      ///< the attribute
        char const* ownSlot;   ///< what the adapter's handle says
        char const* identity;  ///< decimal
        char const* expected;
    };
    static Row const rows[] = {
        {"DOGWOOD", "12", "S:12", "509358932", "ATTR_VALUE_IS_BOOT_CONTROLLER_TRUE"},
        {"DOGWOOD", "13", "S:13", "509358932", "ATTR_VALUE_IS_BOOT_CONTROLLER_FALSE"},
        {"DOGWOOD", "12", "S:12", "509358933", "ATTR_VALUE_IS_BOOT_CONTROLLER_FALSE"},
        // The slot attribute of an embedded controller isn't the machine's name of its place.
        {"ALDER", "0b", "S:12", "509358932", "ATTR_VALUE_IS_BOOT_CONTROLLER_TRUE"},
        {"ALDER", "0b", "S:13", "509358932", "ATTR_VALUE_IS_BOOT_CONTROLLER_FALSE"},
        // Slots of one character aren't asked about.
        {"DOGWOOD", "1", "S:1", "509358932", ABSENT},
        {"DOGWOOD", "", "", "509358932", ABSENT},
    };
    FakeSystem system;
    makeBootMachine(system);
    for (Row const& row : rows) {
        Core::SysMod::PropertyTable table;
        table[Core::SysMod::AdapterSlot] = row.ownSlot;
        DevicePointer const device(
            new Schema::ArrayController(Core::SysMod::toDeviceInfo(table), false, 128, 32, "key"));
        std::string const family = std::string("ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_") + row.family;
        Schema::publish(*device, "ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY", family.c_str());
        Schema::publish(*device, "ATTR_NAME_SUBSYSTEM_ID", row.identity);
        Schema::publish(*device, "ATTR_NAME_SLOT", row.slot);
        auto const result =
            device->perform(OperationPointer(new Operations::ReadArrayControllerBootableStatus));
        EXPECT_EQ("ATTR_VALUE_STATUS_SUCCESS", status(result));
        EXPECT_EQ(row.expected, attribute(*device, "ATTR_NAME_IS_BOOT_CONTROLLER"))
            << row.family << " " << row.slot << " " << row.ownSlot;
    }
}

}  // namespace
}  // namespace storage_test
