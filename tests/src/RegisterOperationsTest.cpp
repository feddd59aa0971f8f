#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "command/commandmod.h"
#include "common/debug_logger.h"
#include "core/device_factory.h"
#include "core/operation_registry.h"
#include "core/tolkmod.h"
#include "src/tolkflash.h"
#include "storage/schema/array_controller.h"
#include "tests/src/FakeDevices.h"
#include "tests/src/FrontEndFixture.h"

namespace {

constexpr char ROOT[] = "ATTR_VALUE_TYPE_MOD_ROOT";
constexpr char ADAPTER[] = "ATTR_VALUE_TYPE_HBA";
constexpr char CONTROLLER[] = "ATTR_VALUE_TYPE_ARRAY_CONTROLLER";
constexpr char ENCLOSURE[] = "ATTR_VALUE_TYPE_STORAGE_ENCLOSURE";
constexpr char SEP[] = "ATTR_VALUE_TYPE_SEP";
constexpr char DRIVE[] = "ATTR_VALUE_TYPE_PHYSICAL_DRIVE";
constexpr char CAGE[] = "ATTR_VALUE_TYPE_DRIVE_CAGE";

struct Pair {
    char const* type;
    char const* operation;
};

constexpr Pair PAIRS[] = {
    {ROOT, "OPERATION_DISCOVER_HOST_BUS_ADAPTERS"},
    {ROOT, "OPERATION_DISCOVER_ARRAY_CONTROLLERS"},
    {ROOT, "OPERATION_WRITE_ALLOWED_CONTROLLER_DISCOVERY"},
    {ADAPTER, "OPERATION_DISCOVER_STORAGE_ENCLOSURES"},
    {ADAPTER, "OPERATION_WRITE_FLASH_SEP_FIRMWARE"},
    {CONTROLLER, "OPERATION_READ_ARRAY_CONTROLLER_PRESENTATION"},
    {CONTROLLER, "OPERATION_READ_BMIC_COMMAND"},
    {CONTROLLER, "OPERATION_WRITE_BMIC_COMMAND"},
    {CONTROLLER, "OPERATION_READ_ARRAY_CONTROLLER_INFO"},
    {CONTROLLER, "OPERATION_DISCOVER_STORAGE_ENCLOSURES"},
    {CONTROLLER, "OPERATION_DISCOVER_SEPS"},
    {CONTROLLER, "OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE"},
    {CONTROLLER, "OPERATION_WRITE_FLASH_SEP_FIRMWARE"},
    {CONTROLLER, "OPERATION_WRITE_SOFT_RESET_ARRAY_CONTROLLER"},
    {CONTROLLER, "OPERATION_WRITE_FLASH_FBWC"},
    {CONTROLLER, "OPERATION_DISCOVER_PHYSICAL_DRIVES"},
    {ENCLOSURE, "OPERATION_DISCOVER_SEPS"},
    {SEP, "OPERATION_WRITE_FLASH_SEP_FIRMWARE"},
    // Pairs that come again are activated once: CONTROLLER with the soft reset, SEP with its flash.
    {ENCLOSURE, "OPERATION_DISCOVER_DRIVE_CAGES"},
    {DRIVE, "OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER"},
    {CAGE, "OPERATION_DISCOVER_PHYSICAL_DRIVES"},
    {DRIVE, "OPERATION_READ_PHYSICAL_DRIVE_INFO"},
};

/// Declared for every type besides the pairs above; none of them may become active.
constexpr char const* OTHERS[] = {"OPERATION_DISCOVER_FAILED_ARRAY_CONTROLLERS",
                                  "OPERATION_WRITE_TOGGLE_ACTIVE_ROM_IMAGE", "OPERATION_OF_TESTS"};

class NamedCreator : public Core::DeviceOperationCreatorBase {
  public:
    explicit NamedCreator(char const* name) : m_name(name) {}
    Common::shared_ptr<Core::DeviceOperation> createOperationPtr() override {
        return Common::shared_ptr<Core::DeviceOperation>(new FakeOperation(m_name));
    }

  private:
    char const* m_name;
};

/// Declares every name for every type ahead of the modules, so that whatever is asked for becomes active, and
/// returns what was: a line for each type.
std::string activations() {
    static std::map<std::string, Core::OperationList> active;
    for (Pair const& of : PAIRS) {
        Core::RegisterSchema(of.type, active[of.type]);
        for (Pair const& pair : PAIRS) {
            Core::RegisterOperation(of.type, new NamedCreator(pair.operation));
        }
        for (char const* other : OTHERS) {
            Core::RegisterOperation(of.type, new NamedCreator(other));
        }
    }
    RegisterOperations();
    std::string text;
    for (auto const& [type, operations] : active) {
        text += type + ":";
        for (auto const& operation : operations) {
            text += std::string(" ") + operation->name().c_str();
        }
        text += "\n";
    }
    return text;
}

/// The library starts once in a process, so each of these runs in a fresh one.
class RegisterOperationsDeathTest : public FrontEndTest {
  protected:
    RegisterOperationsDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Ends the process with `text` on standard error and nothing left in /tmp.
    [[noreturn]] void tell(std::string const& text) {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(directory());
        std::fputs(text.c_str(), stderr);
        std::exit(0);
    }
};

TEST_F(RegisterOperationsDeathTest, ActivatesItsPairsInTheirOrder) {
    std::map<std::string, std::string> expected;
    for (Pair const& pair : PAIRS) {
        expected[pair.type] += std::string(" ") + pair.operation;
    }
    std::string text;
    for (auto const& [type, operations] : expected) {
        text += type + ":" + operations + "\n";
    }
    EXPECT_EXIT(tell(activations()), ::testing::ExitedWithCode(0), ::testing::StrEq(text));
}

std::string startOfTheLibrary() {
    writeFile("tolklog.txt", "an older run\n");
    RegisterOperations();
    std::string text;
    // The first call of each keeps its flags, so these show that it was made, and with which.
    Interface::CommandMod::InitializeModule(true);
    Interface::TOLKMod::InitializeModule(true, true);
    text += Interface::CommandMod::profilingEnabled() ? "command times " : "";
    text += Interface::TOLKMod::debugXMLFileEnabled() ? "tree file " : "";
    text += Interface::TOLKMod::profilingEnabled() ? "operation times " : "";
    text += Core::DeviceFactory().pRoot() ? "root " : "";
    auto const count = [] {
        return std::to_string(Core::DeviceOperationRegistry<Schema::ArrayController>::sm_operations.size());
    };
    std::string const once = count();
    // 6 of the storage module's, reads and discoveries, and the three flashes and the soft reset of the flash
    // module's.
    text += once;
    Common::DebugLogger::Log(1, "a command");
    Common::DebugLogger::Log(4, "a trace");
    RegisterOperations();  // again: it would begin the log anew
    text += once == count() ? " once" : " twice";
    std::string const log = readFile("tolklog.txt");
    for (char const* line : {"an older run", "a command", "a trace"}) {
        text += log.find(line) != std::string::npos ? std::string(", ") + line : "";
    }
    return text;
}

TEST_F(RegisterOperationsDeathTest, StartsTheModulesAndANewDebugLogOnce) {
    EXPECT_EXIT(tell(startOfTheLibrary()), ::testing::ExitedWithCode(0),
                ::testing::StrEq("root 10 once, a command"));
}

}  // namespace
