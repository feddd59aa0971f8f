// Whether a processor is found again after its reset, and where its operations are available.

#include "tests/flash/sep_fixture.h"

namespace flash_test {
namespace {

struct Rule {
    char const* what;
    char const* product;
    Page before;
    Page after;
    bool isFound;
};

constexpr char ENCL_11[] = "ENCL 11 SEP     ";
constexpr char ENCL_18[] = "ENCL 18 SEP     ";

TEST_F(SepTest, FindsADeviceAfterItsReset) {
    // WWID's end, port, box, model, revision, paths, second port, second box
    static Rule const RULES[] = {
        {"the same WWID elsewhere", ENCL_18, {0x10, "1E", 1}, {0x10, "2E", 9}, true},
        {"another WWID elsewhere", ENCL_18, {0x10, "1E", 1}, {0x11, "2E", 9}, false},
        {"another WWID at its place", ENCL_18, {0x10, "1E", 1}, {0x11, "1E", 1}, true},
        {"the same port, another box", ENCL_18, {0x10, "1E", 1}, {0x11, "1E", 2}, false},
        {"box 253", ENCL_18, {0, "1E", 253}, {0, "1E", 253}, true},
        {"no WWID and box 254", ENCL_18, {0, "1E", 254}, {0, "1E", 254}, false},
        {"an unknown port", ENCL_18, {0x10, "??", 1}, {0x11, "??", 1}, false},
        {"a blank port", ENCL_18, {0x10, "  ", 1}, {0x11, "  ", 1}, false},
        {"its second path", ENCL_18, {0x10, "1E", 1, "", "", 3, "2E", 7}, {0x11, "2E", 7, "", "", 1}, true},
        {"without paths", ENCL_18, {0x10, "1E", 1, "", "", 3, "2E", 7}, {0x11, "2E", 7, "", "", 2}, false},
        {"one path before", ENCL_18, {0x10, "1E", 1, "", "", 1, "2E", 7}, {0x11, "2E", 7, "", "", 1}, false},
        {"05 as 06", "ENCL 05 SEP     ", {0x10, "1E", 1}, {0x44, "2E", 9, "VQ      ENCL 06 SEP"}, true},
        {"06 as 05", "ENCL 06 SEP     ", {0x10, "1E", 1}, {0x44, "2E", 9, "VQ      ENCL 05 SEP"}, true},
        {"05 as 07", "ENCL 05 SEP     ", {0x10, "1E", 1}, {0x44, "2E", 9, "VQ      ENCL 07 SEP"}, false},
        {"11 from 1.42 up", ENCL_11, {0x10, "1E", 1, "", "1.42"}, {0x18, "2E", 9}, true},
        {"11 from 1.42 down", ENCL_11, {0x10, "1E", 1, "", "1.42"}, {0x08, "2E", 9}, false},
        {"11 from 1.43 down", ENCL_11, {0x10, "1E", 1, "", "1.43"}, {0x08, "2E", 9}, true},
        {"11 from 1.43 up", ENCL_11, {0x10, "1E", 1, "", "1.43"}, {0x18, "2E", 9}, false},
        {"11 over a carry", ENCL_11, {0xFA, "1E", 1, "", "1.00"}, {0x02, "2E", 9}, true},
        {"11 without a revision", ENCL_11, {0x10, "1E", 1, "", "none"}, {0x18, "2E", 9}, false},
        {"18 moves no WWID", ENCL_18, {0x10, "1E", 1, "", "1.00"}, {0x18, "2E", 9}, false},
    };
    Schema::publish(*controller, "ATTR_NAME_MULTI_PATH_SUPPORTED", "ATTR_VALUE_MULTI_PATH_SUPPORTED_TRUE");
    for (Rule const& rule : RULES) {
        SCOPED_TRACE(rule.what);
        while (controller->beginChild() != controller->endChild())
            controller->clear(*controller->beginChild());
        seps.clear();
        addSeps(1, rule.product);
        controller->pages = {{1, rule.before.bytes()}};
        // It comes back under another index.
        controller->afterScan = [&] { controller->pages = {{7, rule.after.bytes()}}; };
        auto const result = run(*controller, {{"ATTR_NAME_PRODUCT_ID", rule.product},
                                              {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"},
                                              {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}});
        EXPECT_EQ(rule.isFound ? "ATTR_VALUE_STATUS_SUCCESS" : "ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR",
                  status(result));
        EXPECT_EQ(rule.isFound ? ABSENT : "2147483648", attribute(result, "ATTR_NAME_ADDITIONAL_STATUS"));
    }
}

TEST_F(SepTest, ADeviceThatFailedAndIsGoneHasBothInItsStatus) {
    addSeps(1, "ENCL 20 SEP     ");
    seps[0]->answer = [](std::size_t, Written const& sent) {
        return sent.mode == 15 ? Outcome() : FLASH_ERROR;
    };
    controller->afterScan = [&] { controller->pages.clear(); };
    auto const result = run(*controller, {{"ATTR_NAME_PRODUCT_ID", "ENCL 20 SEP     "},
                                          {"ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE", "0"},
                                          {"ATTR_NAME_RESET_SEP", "ATTR_VALUE_RESET_SEP_TRUE"}});
    EXPECT_EQ("2452903544", attribute(result, "ATTR_NAME_ADDITIONAL_STATUS")) << "0x92345678";
}

TEST_F(SepTest, OperationsAreAvailableWhereTheyWork) {
    static constexpr char AVAILABLE[] = "available";
    static constexpr char UPGRADE[] = "ATTR_VALUE_UNAVAILABLE_REASON_REQUIRE_CONTROLLER_FIRMWARE_UPGRADE";
    static constexpr char BELOW[] = "ATTR_VALUE_UNAVAILABLE_REASON_SEP_FIRMWARE_BELOW_MINIMUM_REVISION";
    static constexpr char NO_RESET[] = "ATTR_VALUE_UNAVAILABLE_REASON_SEP_CANNOT_BE_RESET";
    struct Row {
        char const* name;  ///< of the controller
        char const* family;
        char const* version;
        char const* product;
        char const* revision;
        char const* controllerVerdict;
        char const* flashVerdict;
        char const* resetVerdict;
    };
    constexpr Row rows[] = {
        {"ROWAN8", "ELM", "1.72", ENCL_18, "1", AVAILABLE, AVAILABLE, AVAILABLE},
        {"ROWAN8", "ELM", "1.71", ENCL_18, "1", UPGRADE, UPGRADE, UPGRADE},
        {"ELM2", "ELM", "9.99", ENCL_18, "1", UPGRADE, UPGRADE, UPGRADE},
        {"DOGWOOD4", "DOGWOOD", "1.54", ENCL_18, "1", AVAILABLE, AVAILABLE, AVAILABLE},
        {"DOGWOOD4", "DOGWOOD", "", ENCL_18, "1", UPGRADE, UPGRADE, UPGRADE},
        {"CEDAR4", "CEDAR", "0.02", "ENCL 02 SEP     ", "1", AVAILABLE, AVAILABLE, NO_RESET},
        {"CEDAR4", "CEDAR", "0.02", "ENCL 04 SEP     ", "1.1", AVAILABLE, BELOW, BELOW},
        {"CEDAR4", "CEDAR", "0.02", "NO SEP", "1", AVAILABLE,
         "ATTR_VALUE_UNAVAILABLE_REASON_SEP_NOT_FLASHABLE", NO_RESET},
    };
    addSeps(1, ENCL_18);
    auto const verdict = [](Core::DeviceOperation const& operation, Core::Device& device) {
        auto const told = operation.pFilter()->apply(device.getDevicePtr());
        return told ? AVAILABLE : attribute(told, "ATTR_NAME_UNAVAILABLE_REASON");
    };
    Operations::WriteFlashSEPFirmware const flash;
    Operations::WriteResetSEP const reset;
    for (Row const& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.version + " " + row.product);
        Schema::publish(*controller, "ATTR_NAME_CONTROLLER_NAME",
                        (std::string("ATTR_VALUE_CONTROLLER_NAME_") + row.name).c_str());
        Schema::publish(*controller, "ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY",
                        (std::string("ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_") + row.family).c_str());
        controller->Clear("ATTR_NAME_FIRMWARE_VERSION");
        Schema::publish(*controller, "ATTR_NAME_FIRMWARE_VERSION", row.version);
        Schema::publish(*seps[0], "ATTR_NAME_PRODUCT_ID", row.product);
        Schema::publish(*seps[0], "ATTR_NAME_FIRMWARE_REVISION", row.revision);
        EXPECT_EQ(row.controllerVerdict, verdict(flash, *controller));
        EXPECT_EQ(row.flashVerdict, verdict(flash, *seps[0]));
        EXPECT_EQ(row.resetVerdict, verdict(reset, *seps[0]));
    }
    static constexpr char NOT_APPLICABLE[] = "ATTR_VALUE_UNAVAILABLE_REASON_NOT_APPLICABLE";
    Schema::publish(*controller, "ATTR_NAME_LOCATION", "ATTR_VALUE_LOCATION_REMOTE");
    EXPECT_EQ(NOT_APPLICABLE, verdict(flash, *controller));
    EXPECT_EQ(NOT_APPLICABLE, verdict(flash, *adapter));
    Schema::publish(*adapter, "ATTR_NAME_ADAPTER_TYPE", "ATTR_VALUE_ADAPTER_TYPE_CSMI_HBA");
    EXPECT_EQ(AVAILABLE, verdict(flash, *adapter));
}

TEST_F(SepTest, ResetSendsOneCommandAndTellsOfItsFailure) {
    addSeps(1, ENCL_18);
    EXPECT_TRUE(seps[0]->perform(OperationPointer(new Operations::WriteResetSEP)));
    ASSERT_EQ(1U, seps[0]->written.size());
    EXPECT_EQ(15U, seps[0]->written[0].mode);
    EXPECT_EQ(0U, seps[0]->written[0].length);
    seps[0]->answer = [](std::size_t, Written const&) { return OTHER_ERROR; };
    EXPECT_EQ("ATTR_VALUE_STATUS_FAILURE",
              status(seps[0]->perform(OperationPointer(new Operations::WriteResetSEP))));
}

TEST_F(SepTest, CapabilityListsTheDevicesThatCanBeFlashed) {
    addSeps(3, ENCL_18);
    Schema::publish(*seps[1], "ATTR_NAME_FIRMWARE_REVISION", "0.01");
    auto const root = Operations::WriteFlashSEPFirmware().getCapabilityPtr(controller->getDevicePtr());
    Strings listed;
    for (auto option = root->beginChild(); option != root->endChild(); ++option) {
        if (attribute(**option, "ATTR_NAME_MAXIMUM_VALUE") != ABSENT) {
            EXPECT_EQ("2", attribute(**option, "ATTR_NAME_MAXIMUM_VALUE"));
        }
        for (auto value = (*option)->beginChild(); value != (*option)->endChild(); ++value) {
            if (attribute(**value, "ATTR_NAME_UNIQUE_ID") != ABSENT)
                listed.push_back(attribute(**value, "ATTR_NAME_UNIQUE_ID"));
        }
    }
    EXPECT_EQ(
        (Strings{attribute(*seps[0], "ATTR_NAME_UNIQUE_ID"), attribute(*seps[2], "ATTR_NAME_UNIQUE_ID")}),
        listed);
}

}  // namespace
}  // namespace flash_test
