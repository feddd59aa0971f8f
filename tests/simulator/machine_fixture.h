#pragma once

/// A virtual machine in a temporary directory, and the commands that the tests send to it.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "simulator/machine.h"
#include "simulator/rom_image.h"

namespace simulator_test {

using nlohmann::json;
using simulator::Bytes;
using simulator::Carrier;
using simulator::Command;
using simulator::Direction;
using simulator::Reply;

class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::string text = "/tmp/simulator-test-XXXXXX";
        if (::mkdtemp(text.data()) == nullptr) std::abort();
        m_path = text;
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;
    std::filesystem::path const& path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

/// Two controllers: "one" at /dev/xqrth/c0d0, "two" at /dev/sg0.
inline json twoControllers() {
    return json::parse(R"({
      "devices": [
        {"name": "one", "kind": "array_controller", "product": "MODEL ONE", "family": "DOGWOOD", "serial": "SER1",
         "firmware": {"active": "6.40", "inactive": "6.28"},
         "pci": {"address": "0000:0b:00.0", "vendor": "0x1E5C", "device": "0x3239", "subsystem_vendor": "0x1E5C",
                 "subsystem_device": "0x3354", "driver": "xqrth", "slot": "1"}},
        {"name": "two", "kind": "array_controller", "product": "MODEL TWO", "family": "DOGWOOD", "serial": "SER2",
         "firmware": {"active": "6.64", "inactive": null}, "supports_tofu": true, "fast_path": "disabled",
         "pci": {"address": "0000:13:00.0", "vendor": "0x1E5C", "device": "0x3239", "subsystem_vendor": "0x1E5C",
                 "subsystem_device": "0x3355", "driver": "vqsa"}}
      ]})");
}

inline constexpr char const* ONE = "/dev/xqrth/c0d0";
inline constexpr char const* TWO = "/dev/sg0";

/// A management command of the pass-through. `details` are bytes 2 to 5 of the command block.
inline Command management(std::uint8_t code, Direction direction, std::size_t size, std::uint32_t details = 0,
                          Bytes data = {}) {
    Command command;
    command.carrier = Carrier::PassThrough;
    command.block = {static_cast<std::uint8_t>(direction == Direction::In ? 0x26 : 0x27),
                     0,
                     static_cast<std::uint8_t>(details >> 24),
                     static_cast<std::uint8_t>(details >> 16),
                     static_cast<std::uint8_t>(details >> 8),
                     static_cast<std::uint8_t>(details),
                     code,
                     static_cast<std::uint8_t>(size >> 8),
                     static_cast<std::uint8_t>(size),
                     0};
    command.direction = direction;
    command.bufferSize = size;
    command.dataOut = std::move(data);
    command.timeoutMilliseconds = 30000;
    return command;
}

inline Command sense(std::uint8_t code, std::size_t size, std::uint32_t details = 0) {
    return management(code, Direction::In, size, details);
}
inline Command order(std::uint8_t code, std::uint32_t details = 0) {
    return management(code, Direction::None, 0, details);
}
/// A management read whose block has an index of two bytes: low in byte 2, high in byte 9.
inline Command toIndex(std::uint8_t code, std::size_t size, unsigned index) {
    Command command = sense(code, size, (index & 0xFF) << 24);
    command.block[9] = static_cast<std::uint8_t>(index >> 8);
    return command;
}
/// A SCSI command to a drive or a processor behind a controller, by its number.
inline Command toMember(std::uint8_t number, Bytes block, Direction direction = Direction::None,
                        std::size_t size = 0, Bytes data = {}) {
    Command command;
    command.carrier = Carrier::PassThrough;
    command.address = {number, 0, 0, 0, 0, 0, 0, 1};
    command.block = std::move(block);
    command.direction = direction;
    command.bufferSize = direction == Direction::Out ? data.size() : size;
    command.dataOut = std::move(data);
    return command;
}
/// WRITE BUFFER to a drive or a processor.
inline Command writeBuffer(std::uint8_t number, std::uint8_t mode, std::size_t offset, Bytes data) {
    Bytes block = {0x3B, mode, 0, 0, 0, 0, 0, 0, 0, 0};
    simulator::putBig(&block[3], 3, offset);
    simulator::putBig(&block[6], 3, data.size());
    Direction const direction = data.empty() ? Direction::None : Direction::Out;
    return toMember(number, block, direction, 0, std::move(data));
}
/// Chunk `number` of `count` of the collect command.
inline Command chunk(unsigned number, unsigned count, Bytes data) {
    std::uint32_t const details =
        (count >> 8) << 24 | (number >> 8) << 16 | (count & 0xFF) << 8 | (number & 0xFF);
    std::size_t const size = data.size();
    return management(0xD2, Direction::Out, size, details, std::move(data));
}

inline constexpr std::uint8_t PAUSE = 0x98;
inline constexpr std::uint8_t RESUME = 0x99;
inline constexpr std::uint8_t FREE = 0xD3;
inline constexpr std::uint8_t FLASH = 0xF7;
inline constexpr std::uint8_t SOFT_RESET = 0x40;
inline constexpr std::uint8_t TOGGLE = 0xFC;
inline constexpr std::uint8_t IDENTIFY = 0x11;

/// The key, code and qualifier of a failed command as a text like "5/24/0"; "good", or "errno 5".
inline std::string outcome(Reply const& reply) {
    if (reply.error != 0) return "errno " + std::to_string(reply.error);
    if (reply.scsiStatus == 0 && reply.commandStatus == 0) return "good";
    if (reply.scsiStatus == 0) return "command status " + std::to_string(reply.commandStatus);
    char text[32];
    std::snprintf(text, sizeof text, "%u/%02X/%u", reply.sense.key, reply.sense.asc, reply.sense.ascq);
    return text;
}

class MachineTest : public ::testing::Test {
  protected:
    simulator::Machine& make(json const& scenario) {
        machine.reset();
        simulator::Machine::create(place(), scenario);
        machine = std::make_unique<simulator::Machine>(place());
        return *machine;
    }
    /// As another run on the same machine.
    simulator::Machine& reopen() {
        machine = std::make_unique<simulator::Machine>(place());
        return *machine;
    }
    std::filesystem::path place() const { return directory.path() / "machine"; }

    Reply send(char const* node, Command const& command) { return machine->transact(node, command); }

    /// Frees, then collects `image`; every command must be good.
    void collect(char const* node, Bytes const& image) {
        EXPECT_EQ("good", outcome(send(node, order(FREE))));
        unsigned const count = static_cast<unsigned>((image.size() + 16383) / 16384);
        for (unsigned n = 1; n <= count; ++n) {
            auto const begin = image.begin() + 16384 * (n - 1);
            auto const end = n == count ? image.end() : begin + 16384;
            EXPECT_EQ("good", outcome(send(node, chunk(n, count, Bytes(begin, end))))) << "chunk " << n;
        }
    }
    /// The whole sequence of an update.
    Reply update(char const* node, Bytes const& image, std::uint32_t mode = 0) {
        send(node, order(PAUSE));
        collect(node, image);
        Reply const reply = send(node, order(FLASH, mode));
        send(node, order(RESUME));
        return reply;
    }
    simulator::DeviceSummary device(std::string const& name) {
        for (simulator::DeviceSummary const& row : machine->devices())
            if (row.name == name) return row;
        ADD_FAILURE() << "no device " << name;
        return {};
    }
    /// "running stored inactive state"
    std::string firmware(std::string const& name) {
        simulator::DeviceSummary const row = device(name);
        return row.running + " " + row.stored + " " + (row.inactive.empty() ? "-" : row.inactive) + " " +
               row.state;
    }
    simulator::JournalEntry last(std::string const& event = "exchange") const {
        simulator::JournalEntry found;
        for (simulator::JournalEntry const& entry : machine->journal())
            if (entry.event == event) found = entry;
        return found;
    }

    TemporaryDirectory directory;
    std::unique_ptr<simulator::Machine> machine;
};

}  // namespace simulator_test
