#pragma once

#include "flash/flashmod.h"
#include "simulator/rom_image.h"
#include "tests/storage/storage_fixture.h"

namespace flash_test {

using namespace storage_test;

/// A tree whose controllers have their flash operations, and the front end's way to perform them.
class FlashTest : public StorageTest {
  protected:
    FlashTest() {
        Interface::FlashMod::InitializeModule();
        activate({{"ARRAY_CONTROLLER", "WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE"},
                  {"ARRAY_CONTROLLER", "WRITE_TOGGLE_ACTIVE_ROM_IMAGE"},
                  {"ARRAY_CONTROLLER", "WRITE_SOFT_RESET_ARRAY_CONTROLLER"},
                  {"ARRAY_CONTROLLER", "WRITE_SET_BACKGROUND_ACTIVITY_STATE"}});
    }

    using Arguments = std::vector<std::pair<char const*, std::string>>;

    /// Performs an operation on the only controller; `sentLines` are the exchanges from here on.
    Core::OperationReturn perform(char const* name, Arguments const& arguments) {
        m_first = journalSize();
        OperationPointer const operation = only().getOperation(name);
        if (!operation) return Core::OperationReturn("(not available)");
        for (auto const& [argument, value] : arguments)
            operation->SetArgument(Core::DeviceOperation::eSET, argument, value.c_str());
        return only().perform(operation);
    }
    Core::OperationReturn flash(Bytes const& image, Arguments more = {}) {
        more.emplace_back("ATTR_NAME_BUFFER_ADDRESS",
                          std::to_string(reinterpret_cast<std::uintptr_t>(image.data())));
        more.emplace_back("ATTR_NAME_BUFFER_SIZE", std::to_string(image.size()));
        return perform("OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE", more);
    }
    /// What the last operation sent.
    Strings sentLines() const { return exchanges(m_first); }

  private:
    std::size_t m_first = 0;
};

}  // namespace flash_test
