// Which flash operations exist for which device type, in the order in which they are registered.

#include "flash/flashmod.h"

#include "tests/flash/flash_fixture.h"

namespace flash_test {
namespace {

/// Device type, and operation; " *" where it can be switched on, which takes its class.
constexpr std::pair<char const*, char const*> EXPECTED[] = {
    {"ARRAY_CONTROLLER", "WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE *"},
    {"ARRAY_CONTROLLER", "WRITE_FLASH_NVRAM *"},
    {"ARRAY_CONTROLLER", "READ_NVRAM *"},
    {"ARRAY_CONTROLLER", "WRITE_FLASH_FBWC *"},
    {"ARRAY_CONTROLLER", "WRITE_FLASH_SEP_FIRMWARE *"},
    {"ARRAY_CONTROLLER", "WRITE_TOGGLE_ACTIVE_ROM_IMAGE *"},
    {"ARRAY_CONTROLLER", "WRITE_SOFT_RESET_ARRAY_CONTROLLER *"},
    {"ARRAY_CONTROLLER", "WRITE_SET_BACKGROUND_ACTIVITY_STATE *"},
    {"HBA", "WRITE_FLASH_SEP_FIRMWARE *"},
    {"SEP", "WRITE_FLASH_SEP_FIRMWARE *"},
    {"SEP", "WRITE_RESET_SEP *"},
    {"SEP", "WRITE_SET_BACKGROUND_ACTIVITY_STATE *"},
    {"PHYSICAL_DRIVE", "WRITE_FLASH_DRIVE_ACTIVE_CARRIER *"},
    {"PHYSICAL_DRIVE", "WRITE_FLASH_PHYSICAL_DRIVE *"},
    {"PHYSICAL_DRIVE", "SENSE_DEFERRED_UPDATE_STATUS *"},
    {"PHYSICAL_DRIVE", "WRITE_SET_BACKGROUND_ACTIVITY_STATE *"},
    {"NON_VAULTLINE_PHYSICAL_DRIVE", "WRITE_SET_BACKGROUND_ACTIVITY_STATE *"},
};

TEST(FlashOperationRows, AreAllThereInTheirOrder) {
    auto const rows = Interface::FlashMod::operationRows();
    ASSERT_EQ(std::size(EXPECTED), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(std::string("ATTR_VALUE_TYPE_") + EXPECTED[i].first, rows[i].deviceType);
        EXPECT_EQ(std::string("OPERATION_") + EXPECTED[i].second,
                  std::string(rows[i].operationName) + (rows[i].creator != nullptr ? " *" : ""));
    }
}

}  // namespace
}  // namespace flash_test
