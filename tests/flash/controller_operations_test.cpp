#include "flash/controller_operations.h"
#include "flash/write_background_activity.h"

#include "storage/schema/adapters.h"
#include "storage/schema/array_controller.h"
#include "storage/schema/identity.h"
#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

using ControllerOperations = FlashTest;

constexpr char BACKGROUND[] = "OPERATION_WRITE_SET_BACKGROUND_ACTIVITY_STATE";

TEST_F(ControllerOperations, BackgroundActivity) {
    static constexpr char ENABLE[] = "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_ENABLE";
    static constexpr char DISABLE[] = "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE";
    struct Row {
        char const* state;    ///< null: not given
        char const* hotplug;  ///< null: not given
        Strings sent;
        char const* status;
    };
    static constexpr char SUCCESS[] = "ATTR_VALUE_STATUS_SUCCESS";
    static Row const rows[] = {
        {DISABLE, nullptr, {"27000000000198000000 none 0"}, SUCCESS},
        {ENABLE, nullptr, {"27000000000199000000 none 0"}, SUCCESS},
        {DISABLE, "ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE", {"27000000000198000000 none 0"}, SUCCESS},
        {ENABLE, "ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE", {"27000000000199000000 none 0"}, SUCCESS},
        {DISABLE, "ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_FALSE", {"27000000000098000000 none 0"}, SUCCESS},
        {ENABLE, "ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_FALSE", {"27000000000099000000 none 0"}, SUCCESS},
        {DISABLE, "TRUE", {"27000000000098000000 none 0"}, SUCCESS},
        {DISABLE, "", {"27000000000098000000 none 0"}, SUCCESS},
        {"", nullptr, {}, SUCCESS},
        {"ENABLE", "ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE", {}, SUCCESS},
        {nullptr, nullptr, {}, "ATTR_VALUE_STATUS_ARGUMENT_MISSING"},
        {nullptr, "ATTR_VALUE_DISABLE_HOTPLUG_EVENTS_TRUE", {}, "ATTR_VALUE_STATUS_ARGUMENT_MISSING"},
    };
    discover(oneController());
    for (Row const& row : rows) {
        Arguments arguments;
        if (row.state != nullptr) arguments.emplace_back("ATTR_NAME_BACKGROUND_ACTIVITY_STATE", row.state);
        if (row.hotplug != nullptr) arguments.emplace_back("ATTR_NAME_DISABLE_HOTPLUG_EVENTS", row.hotplug);
        auto const result = perform(BACKGROUND, arguments);
        std::string const label = std::to_string(&row - rows);
        EXPECT_EQ(row.status, status(result)) << label;
        EXPECT_EQ(row.state == nullptr ? "ATTR_NAME_BACKGROUND_ACTIVITY_STATE" : ABSENT,
                  attribute(result, "ATTR_NAME_ARGUMENT_NAME"))
            << label;
        EXPECT_EQ(row.sent, sentLines()) << label;
    }
}

/// What the controller says to these, and whether a result tells of it.
TEST_F(ControllerOperations, OneCommandEach) {
    struct Row {
        char const* operation;
        Arguments arguments;
        char const* command;
        char const* sent;
        bool tellsOfFailure;
    };
    static Row const rows[] = {
        {"OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER", {}, "0x40", "27000000000040000000 none 0", false},
        {"OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE", {}, "0xFC", "270000000000fc000000 none 0", true},
        {BACKGROUND,
         {{"ATTR_NAME_BACKGROUND_ACTIVITY_STATE", "ATTR_VALUE_BACKGROUND_ACTIVITY_STATE_DISABLE"}},
         "0x98",
         "27000000000198000000 none 0",
         false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.operation);
        for (char const* action : {"", R"({"errno": "ENODEV"})", R"({"scsi_status": 2, "sense": [5, 32, 0]})",
                                   R"({"command_status": 4})", R"({"vanish": true})"}) {
            discover(oneController({{"identify", {{"bActiveROMStatus", 1}}}}));
            if (*action != '\0') {
                machine->addFaults({{{"match", {{"command", row.command}}}, {"action", json::parse(action)}}},
                                   "test");
            }
            auto const result = perform(row.operation, row.arguments);
            EXPECT_EQ(*action == '\0' || !row.tellsOfFailure, static_cast<bool>(result)) << action;
            EXPECT_EQ(Strings{row.sent}, sentLines()) << action;
        }
    }
}

TEST_F(ControllerOperations, ResetAndToggleTakeEffect) {
    discover(oneController({{"identify", {{"bActiveROMStatus", 1}}}}));
    Bytes const image = simulator::makeImage("DOGWOOD", "6.64", 100, 7);
    ASSERT_TRUE(flash(image));
    EXPECT_EQ("6.40 6.64 6.40 restart needed", firmware("one"));
    EXPECT_TRUE(perform("OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER", {}));
    EXPECT_EQ("6.64 6.64 6.40 ok", firmware("one"));
    EXPECT_TRUE(perform("OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE", {}));
    EXPECT_EQ("6.64 6.40 6.64 restart needed", firmware("one"));
}

TEST(FlashFilters, DecideByTheAttributes) {
    using Attributes = std::vector<std::pair<char const*, char const*>>;
    static std::pair<char const*, char const*> const LOCKED = {"ATTR_NAME_ENCRYPTION_FW_LOCKED",
                                                               "ATTR_VALUE_ENCRYPTION_FW_LOCKED_TRUE"};
    static std::pair<char const*, char const*> const ABSENT_CONTROLLER = {
        "ATTR_NAME_CONTROLLER_STATE", "ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_NOT_PRESENT"};
    static constexpr char FREE[] = "available";
    static constexpr char UNKNOWN[] = "ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN";
    static constexpr char NO_ROM[] = "ATTR_VALUE_UNAVAILABLE_REASON_RECOVERY_ROM_NOT_SUPPORTED";
    static constexpr char FW_LOCKED[] = "ATTR_VALUE_UNAVAILABLE_REASON_ENCRYPTION_FW_LOCKED";
    struct Row {
        Attributes attributes;
        char const* firmware;
        char const* reset;
        char const* toggle;
    };
    static Row const rows[] = {
        {{}, FREE, FREE, FREE},
        {{LOCKED}, FW_LOCKED, FREE, FREE},
        {{LOCKED, ABSENT_CONTROLLER}, FW_LOCKED, UNKNOWN, FREE},
        {{ABSENT_CONTROLLER}, UNKNOWN, UNKNOWN, FREE},
        {{{"ATTR_NAME_ENCRYPTION_FW_LOCKED", "ATTR_VALUE_ENCRYPTION_FW_LOCKED_FALSE"}}, FREE, FREE, FREE},
        {{{"ATTR_NAME_CONTROLLER_STATE", "ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_COMMUNICATION_ERROR"},
          {"ATTR_NAME_STATUS", "ATTR_VALUE_STATUS_NOT_OK"}},
         FREE,
         FREE,
         FREE},
        {{{"ATTR_NAME_RECOVERY_ROM_SUPPORTED", "ATTR_VALUE_RECOVERY_ROM_SUPPORTED_FALSE"}},
         FREE,
         FREE,
         NO_ROM},
        {{{"ATTR_NAME_RECOVERY_ROM_SUPPORTED", "ATTR_VALUE_RECOVERY_ROM_SUPPORTED_TRUE"}}, FREE, FREE, FREE},
    };
    auto const verdict = [](Core::DeviceOperation const& operation, DevicePointer const& device) {
        Core::FilterReturn const result = operation.pFilter()->apply(device);
        return result ? std::string(FREE) : attribute(result, "ATTR_NAME_UNAVAILABLE_REASON");
    };
    for (Row const& row : rows) {
        DevicePointer const device(new Schema::ArrayController("", false, 128, 32, "key"));
        for (auto const& [name, value] : row.attributes)
            Schema::publish(*device, name, value);
        std::string const label = std::to_string(&row - rows);
        EXPECT_EQ(row.firmware, verdict(Operations::WriteFlashArrayControllerFirmware(), device)) << label;
        EXPECT_EQ(row.reset, verdict(Operations::WriteSoftResetArrayController(), device)) << label;
        EXPECT_EQ(row.toggle, verdict(Operations::WriteToggleActiveRomImage(), device)) << label;
        EXPECT_EQ(FREE, verdict(Operations::WriteBackgroundActivity(), device)) << label;
    }
}

TEST(FlashFilters, BackgroundActivityGoesByTheKindOfDevice) {
    struct Row {
        char const* type;
        char const* adapterType;
        bool available;
    };
    static Row const rows[] = {
        {"ATTR_VALUE_TYPE_ARRAY_CONTROLLER", nullptr, true},
        {"ATTR_VALUE_TYPE_HBA", "ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA", true},
        {"ATTR_VALUE_TYPE_HBA", "ATTR_VALUE_ADAPTER_TYPE_GENERIC_HBA", false},
        {"ATTR_VALUE_TYPE_HBA", nullptr, false},
        {"ATTR_VALUE_TYPE_SEP", nullptr, true},
        {"ATTR_VALUE_TYPE_NON_VAULTLINE_PHYSICAL_DRIVE", nullptr, true},
        {"ATTR_VALUE_TYPE_PHYSICAL_DRIVE", nullptr, false},
        {"ATTR_VALUE_TYPE_MOD_ROOT", nullptr, false},
        {"ATTR_VALUE_TYPE_STORAGE_ENCLOSURE", "ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA", false},
    };
    for (Row const& row : rows) {
        DevicePointer const device(new Schema::HostBusAdapter(""));
        Schema::publish(*device, "ATTR_NAME_TYPE", row.type);
        if (row.adapterType != nullptr) Schema::publish(*device, "ATTR_NAME_ADAPTER_TYPE", row.adapterType);
        Core::FilterReturn const result = Operations::WriteBackgroundActivity().pFilter()->apply(device);
        EXPECT_EQ(row.available, static_cast<bool>(result)) << row.type;
        EXPECT_EQ(row.available ? ABSENT : "ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE",
                  attribute(result, "ATTR_NAME_UNAVAILABLE_REASON"));
    }
}

/// The reason why an operation isn't there can be asked of the device.
TEST_F(ControllerOperations, WhatIsUnavailableIsNotOfferedAndSaysWhy) {
    discover(oneController({{"identify", {{"dwEncryptionStatus", 0x10}, {"bActiveROMStatus", 0}}}}));
    EXPECT_FALSE(only().hasOperation("OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE"));
    EXPECT_FALSE(only().hasOperation("OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE"));
    EXPECT_TRUE(only().hasOperation("OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER"));
    Strings reasons;
    for (auto reason = only().beginUnavailableOperationReason();
         reason != only().endUnavailableOperationReason(); ++reason) {
        reasons.push_back(attribute(**reason, "ATTR_NAME_OPERATION_NAME") + " " +
                          attribute(**reason, "ATTR_NAME_UNAVAILABLE_REASON"));
    }
    EXPECT_EQ((Strings{"OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE "
                       "ATTR_VALUE_UNAVAILABLE_REASON_ENCRYPTION_FW_LOCKED",
                       "OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE "
                       "ATTR_VALUE_UNAVAILABLE_REASON_RECOVERY_ROM_NOT_SUPPORTED"}),
              reasons);
}

}  // namespace
}  // namespace flash_test
