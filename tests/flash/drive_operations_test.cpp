#include "flash/sense_deferred_update.h"
#include "flash/write_background_activity.h"
#include "storage/schema/adapters.h"
#include "storage/schema/drives.h"
#include "storage/schema/identity.h"
#include "storage/schema/sas_devices.h"
#include "sysmod/device_handle.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

Core::OperationReturn performOn(Core::Device& device, Core::DeviceOperation* operation,
                                std::vector<std::pair<char const*, std::string>> const& arguments) {
    OperationPointer const pointer(operation);
    for (auto const& [name, value] : arguments)
        pointer->SetArgument(Core::DeviceOperation::eSET, name, value.c_str());
    return device.perform(pointer);
}

/// A drive with the index 0x0102 behind the only controller.
class DeferredUpdate : public FlashTest {
  protected:
    DeferredUpdate() { discoverAgain(); }
    void discoverAgain() {
        discover(oneController(
            {{"identify", {{"sDDFFVersion", "1"}}},
             {"physical_devices",
              json::array({{{"address", "0000004000000102"}, {"kind", "drive"}, {"index", 0x0102}}})}}));
        auto* const made = new Schema::PhysicalDrive("", 0x0102, Schema::PhysicalDrive::eData);
        drive = DevicePointer(made);
        Schema::publish(*drive, "ATTR_NAME_INTERFACE", "ATTR_VALUE_INTERFACE_SAS");
        only().receive(drive);
    }
    std::string filter() const {
        auto const verdict = Operations::SenseDeferredUpdate().pFilter()->apply(drive);
        return verdict ? "available" : attribute(verdict, "ATTR_NAME_UNAVAILABLE_REASON");
    }

    DevicePointer drive;
};

TEST_F(DeferredUpdate, ReadsThePageOfTheDrive) {
    Bytes page(158, 0xEE);
    auto const address = std::to_string(reinterpret_cast<std::uintptr_t>(page.data()));
    std::size_t const before = journalSize();
    auto const result = performOn(*drive, new Operations::SenseDeferredUpdate,
                                  {{"ATTR_NAME_BUFFER_ADDRESS", address}, {"ATTR_NAME_BUFFER_SIZE", "156"}});
    EXPECT_TRUE(result) << status(result);
    EXPECT_EQ(Strings{"26000200000027009c01 in 156"}, exchanges(before))
        << "the index's low byte first in the address field, its high byte last";
    EXPECT_EQ(0x02, page[0]);
    EXPECT_EQ(0x9D, page[155]);
    EXPECT_EQ(0xEE, page[156]);
}

TEST_F(DeferredUpdate, RefusesOtherBuffersAndTellsOfAFailure) {
    Bytes page(156, 0xEE);
    auto const address = std::to_string(reinterpret_cast<std::uintptr_t>(page.data()));
    struct Row {
        std::vector<std::pair<char const*, std::string>> arguments;
        char const* status;
        char const* argument;
    };
    static constexpr char MISSING[] = "ATTR_VALUE_STATUS_ARGUMENT_MISSING";
    static constexpr char INVALID[] = "ATTR_VALUE_STATUS_ARGUMENT_INVALID";
    Row const rows[] = {
        {{}, MISSING, "ATTR_NAME_BUFFER_SIZE"},
        {{{"ATTR_NAME_BUFFER_ADDRESS", address}}, MISSING, "ATTR_NAME_BUFFER_SIZE"},
        {{{"ATTR_NAME_BUFFER_SIZE", "156"}}, MISSING, "ATTR_NAME_BUFFER_ADDRESS"},
        {{{"ATTR_NAME_BUFFER_ADDRESS", address}, {"ATTR_NAME_BUFFER_SIZE", "155"}},
         INVALID,
         "ATTR_NAME_BUFFER_SIZE"},
        {{{"ATTR_NAME_BUFFER_ADDRESS", address}, {"ATTR_NAME_BUFFER_SIZE", "157"}},
         INVALID,
         "ATTR_NAME_BUFFER_SIZE"},
        {{{"ATTR_NAME_BUFFER_ADDRESS", "0"}, {"ATTR_NAME_BUFFER_SIZE", "156"}},
         INVALID,
         "ATTR_NAME_BUFFER_ADDRESS"},
    };
    std::size_t const before = journalSize();
    for (Row const& row : rows) {
        auto const result = performOn(*drive, new Operations::SenseDeferredUpdate, row.arguments);
        EXPECT_EQ(row.status, status(result));
        EXPECT_EQ(row.argument, attribute(result, "ATTR_NAME_ARGUMENT_NAME"));
    }
    EXPECT_EQ(before, journalSize()) << "nothing is sent";
    addFault(R"({"match": {"command": "0x27"}, "action": {"scsi_status": 2, "sense": [5, 36, 0]}})");
    auto const failed = performOn(*drive, new Operations::SenseDeferredUpdate,
                                  {{"ATTR_NAME_BUFFER_ADDRESS", address}, {"ATTR_NAME_BUFFER_SIZE", "156"}});
    EXPECT_EQ("36", attribute(failed, "ATTR_NAME_SCSI_ASC"));
    EXPECT_EQ(Bytes(156, 0xEE), page);
    discoverAgain();
    addFault(R"({"match": {"command": "0x27"}, "action": {"truncate": 155}})");
    EXPECT_FALSE(performOn(*drive, new Operations::SenseDeferredUpdate,
                           {{"ATTR_NAME_BUFFER_ADDRESS", address}, {"ATTR_NAME_BUFFER_SIZE", "156"}}));
    EXPECT_EQ(Bytes(156, 0xEE), page);
}

TEST_F(DeferredUpdate, ServesTheDrivesThatTheControllersFirmwareCanTellOf) {
    struct Row {
        char const* version;
        char const* interface;
        char const* verdict;
    };
    static constexpr char SAS_ONLY[] = "ATTR_VALUE_DDFF_VERSION_SAS_ONLY";
    static constexpr char BOTH[] = "ATTR_VALUE_DDFF_VERSION_SAS_AND_SATA";
    static constexpr char NOT_SERVED[] = "ATTR_VALUE_UNAVAILABLE_REASON_DRIVE_TYPE_NOT_SUPPORTED_BY_DDFF";
    static constexpr char NO_VERSION[] = "ATTR_VALUE_UNAVAILABLE_REASON_DDFF_VERSION_NOT_AVAILABLE";
    static Row const rows[] = {
        {SAS_ONLY, "ATTR_VALUE_INTERFACE_SAS", "available"},
        {SAS_ONLY, "ATTR_VALUE_INTERFACE_SAS_SSD", "available"},
        {SAS_ONLY, "ATTR_VALUE_INTERFACE_SATA", NOT_SERVED},
        {BOTH, "ATTR_VALUE_INTERFACE_SAS", "available"},
        {BOTH, "ATTR_VALUE_INTERFACE_SATA", "available"},
        {BOTH, "ATTR_VALUE_INTERFACE_SATA_SSD", "available"},
        {BOTH, "ATTR_VALUE_INTERFACE_PARALLEL_SCSI", NOT_SERVED},
        {"ATTR_VALUE_DDFF_VERSION_UNKNOWN", "ATTR_VALUE_INTERFACE_SAS", NOT_SERVED},
    };
    EXPECT_EQ("available", filter()) << "what discovery made of the controller's record";
    for (Row const& row : rows) {
        Schema::publish(only(), "ATTR_NAME_DDFF_VERSION", row.version);
        Schema::publish(*drive, "ATTR_NAME_INTERFACE", row.interface);
        EXPECT_EQ(row.verdict, filter()) << row.version << " " << row.interface;
    }
    only().Clear("ATTR_NAME_DDFF_VERSION");
    EXPECT_EQ(NO_VERSION, filter());
}

/// Behind a SAS adapter a device is paused by its own address; the adapter itself has none.
TEST_F(FlashTest, BackgroundActivityBehindASasAdapter) {
    start({{"devices",
            json::array(
                {{{"name", "hba"},
                  {"kind", "csmi_adapter"},
                  {"pci", {{"address", "0000:05:00.0"}, {"driver", "mpt2sas"}}},
                  {"phys", json::array({{{"kind", "drive"}, {"sas_address", "5000C50000000001"}}})}}})}});
    static constexpr char STATE[] = "ATTR_NAME_BACKGROUND_ACTIVITY_STATE";
    Core::SysMod::PropertyTable table;
    table[Core::SysMod::NodePath] = "/dev/mpt2ctl:0";
    table[Core::SysMod::DeviceType] = "CSMI_HBA";
    Schema::HostBusAdapter adapter(Core::SysMod::toDeviceInfo(table));
    table[Core::SysMod::Route] = "CSMI:0:5000C50000000001";
    table[Core::SysMod::DeviceType] = "SEP";
    Common::string const handle = Core::SysMod::toDeviceInfo(table);
    Schema::SEP sep(handle);
    Schema::NonVaultlinePhysicalDrive drive(handle);
    struct Row {
        char const* what;
        Core::Device* device;
        std::vector<std::pair<char const*, std::string>> arguments;
        char const* command;  ///< of the journal; empty: nothing is sent
        char const* status;
    };
    static constexpr char SUCCESS[] = "ATTR_VALUE_STATUS_SUCCESS";
    Row const rows[] = {
        {"pause", &sep, {{STATE, "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE"}}, "0xCC770031", SUCCESS},
        {"resume", &sep, {{STATE, "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_ENABLE"}}, "0xCC770032", SUCCESS},
        {"any other value", &drive, {{STATE, "no state"}}, "0xCC770032", SUCCESS},
        {"pause", &drive, {{STATE, "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE"}}, "0xCC770031", SUCCESS},
        {"adapter", &adapter, {{STATE, "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE"}}, "", SUCCESS},
        {"missing", &sep, {}, "", "ATTR_VALUE_STATUS_ARGUMENT_MISSING"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        std::size_t const before = journalSize();
        auto const result = performOn(*row.device, new Operations::WriteBackgroundActivity, row.arguments);
        EXPECT_EQ(row.status, status(result));
        auto const journal = machine->journal();
        ASSERT_EQ(before + (*row.command == '\0' ? 0 : 1), journal.size());
        if (*row.command != '\0') {
            char number[16];
            std::snprintf(number, sizeof number, "0x%08lX",
                          static_cast<unsigned long>(journal.back().number));
            EXPECT_STREQ(row.command, number);
        }
    }
    DevicePointer const physical(new Schema::PhysicalDrive("", 1, Schema::PhysicalDrive::eData));
    EXPECT_EQ("ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE",
              status(performOn(*physical, new Operations::WriteBackgroundActivity,
                               {{STATE, "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE"}})));
}

}  // namespace
}  // namespace flash_test
