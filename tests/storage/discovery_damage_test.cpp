/// Discovery over replies that are damaged in all ways: it must end, leave no node open and keep its hands
/// off memory that isn't the reply's. The sanitizers are the other half of these tests.

#include <algorithm>
#include <random>

#include "tests/storage/storage_fixture.h"

namespace storage_test {
namespace {

json damagedMachine() {
    json const drives =
        json::array({{{"configuration", json::object()}}, {{"configuration", json::object()}}});
    return {
        {"devices",
         {controller("a", "0000:01:00.0", "0x3376", {{"logical_drives", drives}, {"pci", {{"slot", "1"}}}}),
          controller("b", "0000:02:00.0", "0x33B1", {{"pci", {{"driver", "xqrth"}}}}),
          controller("c", "0000:03:00.0", "0x7777", {{"fast_path", "enabled"}})}}};
}

class DamagedReplies : public StorageTest {
  protected:
    /// One discovery of a machine in a new run.
    void discoverWith(json const& rules) {
        restart();
        machine->addFaults(rules, "damage");
        discover();
        for (auto const& device : controllers()) {
            std::string const status = attribute(*device, "ATTR_NAME_STATUS");
            EXPECT_TRUE(status == "ATTR_VALUE_STATUS_OK" || status == "ATTR_VALUE_STATUS_NOT_OK") << status;
            EXPECT_TRUE(device->hasAttribute("ATTR_NAME_CONTROLLER_NAME"));
        }
        powerOff();
    }
    /// Exchanges that a rule struck since the machine was made.
    std::size_t damaged() const {
        auto const journal = machine->journal();
        return static_cast<std::size_t>(std::count_if(
            journal.begin(), journal.end(), [](auto const& entry) { return !entry.fault.empty(); }));
    }
};

TEST_F(DamagedReplies, ChangedBytesAndShortReplies) {
    make(damagedMachine());
    for (unsigned run = 0; run < 100; ++run) {
        SCOPED_TRACE(run);
        std::mt19937 random(run);
        json rules = json::array();
        for (unsigned exchange = 1; exchange <= 40; ++exchange) {
            json const actions[] = {
                {{"corrupt", random()}}, {{"truncate", random() % 700}}, {{"random_reply", random()}}};
            rules.push_back({{"match", {{"exchange", exchange}}}, {"action", actions[random() % 3]}});
        }
        discoverWith(rules);
    }
    EXPECT_GT(damaged(), 100U * 10);
}

/// A reply that was cut tells nothing: half a version would pass for another, a lock for open, a zone for
/// none.
TEST_F(DamagedReplies, ACutReplyIsNoReply) {
    make(oneController({{"identify",
                         {{"dwEvenMoreControllerFlags", 512},
                          {"dwEncryptionStatus", 16},
                          {"dwFixedStructureLength", 512}}}}));
    for (char const* command : {"0x11", "0x66", "0xC1"}) {
        bool const isIdentify = command == std::string("0x11");
        for (unsigned const length : {0U, 4U, 8U, 9U, 75U, 199U, 200U, 260U, 511U, 600U}) {
            SCOPED_TRACE(std::string(command) + " " + std::to_string(length));
            restart();
            machine->addFaults({{{"match", {{"command", command}}}, {"action", {{"truncate", length}}}}},
                               "short");
            discover();
            ASSERT_EQ(1U, controllers().size());
            bool const isKnown = !isIdentify || length == 600;
            EXPECT_EQ(isKnown ? "6.40" : ABSENT, attribute(only(), "ATTR_NAME_FIRMWARE_VERSION"));
            EXPECT_EQ(isKnown ? "ATTR_VALUE_ZONING_ENABLED_TRUE" : ABSENT,
                      attribute(only(), "ATTR_NAME_ZONING_ENABLED"));
            EXPECT_EQ(isKnown ? "ATTR_VALUE_ENCRYPTION_FW_LOCKED_TRUE" : ABSENT,
                      attribute(only(), "ATTR_NAME_ENCRYPTION_FW_LOCKED"));
            EXPECT_EQ(isKnown ? ABSENT : "ATTR_VALUE_CONTROLLER_STATE_CONTROLLER_COMMUNICATION_ERROR",
                      attribute(only(), "ATTR_NAME_CONTROLLER_STATE"));
            bool const hasSubsystem = isKnown && command != std::string("0x66");
            EXPECT_EQ(hasSubsystem ? "SERIAL-one" : ABSENT,
                      attribute(only(), "ATTR_NAME_CONTROLLER_SERIAL_NUMBER"));
            // A stage that isn't read is the last.
            bool const hasCache = hasSubsystem && (command != std::string("0xC1") || length >= 260);
            EXPECT_EQ(hasCache ? "0" : ABSENT, attribute(only(), "ATTR_NAME_CACHE_PARITY_READ_ERRORS"));
            EXPECT_EQ(hasCache, only().hasAttribute("ATTR_NAME_QUEUE_DEPTH"));
        }
    }
}

TEST_F(DamagedReplies, LengthsThatAReplyAnnouncesAreChecked) {
    for (std::uint32_t const length : {0U, 1U, 511U, 512U, 513U, 4096U, 65536U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        SCOPED_TRACE(length);
        for (char const* record : {"identify", "subsystem", "cache", "redundant_parameters"}) {
            discover(oneController({{record, {{"dwTotalStructureLength", length}}}}));
            ASSERT_EQ(1U, controllers().size());
            EXPECT_EQ("6.40", attribute(only(), "ATTR_NAME_FIRMWARE_VERSION"));
        }
        discover(oneController({{"identify", {{"dwFixedStructureLength", length}}}}));
        ASSERT_EQ(1U, controllers().size());
    }
}

}  // namespace
}  // namespace storage_test
