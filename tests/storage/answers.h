#pragma once

#include <algorithm>
#include <array>
#include <map>

#include "simulator/kernel_records.h"
#include "tests/storage/storage_fixture.h"

// Replies that tests write byte by byte, before the machine's own.

namespace storage_test {

inline void put(Bytes& record, std::size_t at, std::string const& text) {
    std::copy(text.begin(), text.end(), record.begin() + static_cast<std::ptrdiff_t>(at));
}

/// Stands before the machine's door and answers what it has a reply for; the rest is the machine's.
class Answers : public Core::SysMod::SystemCalls {
  public:
    /// Of a management command: its byte, and bytes 2 and 3 (a place), 1 alone (a unit), or 2 and 9 (an
    /// index).
    using Key = std::array<unsigned, 3>;

    explicit Answers(Core::SysMod::SystemCalls& door)
        : m_door(door), m_previous(Core::SysMod::SetSystemCalls(this)) {}
    ~Answers() override { Core::SysMod::SetSystemCalls(m_previous); }
    Answers(Answers const&) = delete;
    Answers& operator=(Answers const&) = delete;

    std::map<Key, Bytes> management;  ///< what has none of these fails, of the codes of DEVICE_COMMANDS
    /// By first byte of the address and operation code; 0x107 is the element descriptor page, 0x4D00 and more
    /// are log pages (with the parameter asked for, 0x10000 each), 0x850000 and more ATA logs with their
    /// pages.
    std::map<unsigned, std::map<unsigned, Bytes>> scsi;
    Bytes units;                   ///< entries of the list of physical devices
    mutable unsigned lists = 0;    ///< how often that was asked for
    unsigned lastList = UINT_MAX;  ///< behind so many of them it isn't told

    void addUnit(unsigned index, unsigned type, unsigned mode = 0x40) {
        Bytes entry(32);
        entry[0] = static_cast<std::uint8_t>(index);
        entry[1] = static_cast<std::uint8_t>(index >> 8);
        entry[3] = static_cast<std::uint8_t>(mode);
        put(entry, 8, "\x50\x01\x02\x03\x04\x05\x06");
        entry[15] = static_cast<std::uint8_t>(index);
        entry[24] = static_cast<std::uint8_t>(index >> 8);
        entry[25] = static_cast<std::uint8_t>(index);
        entry[26] = static_cast<std::uint8_t>(type);
        units.insert(units.end(), entry.begin(), entry.end());
    }

    int open(char const* path, int flags) override { return m_door.open(path, flags); }
    int close(int descriptor) override { return m_door.close(descriptor); }
    bool listDirectory(std::string const& path, std::vector<std::string>& names) override {
        return m_door.listDirectory(path, names);
    }
    bool readFirstLine(std::string const& path, std::string& line) override {
        return m_door.readFirstLine(path, line);
    }
    bool readFile(std::string const& path, std::string& contents, std::size_t limit) override {
        return m_door.readFile(path, contents, limit);
    }
    bool readLink(std::string const& path, std::string& target) override {
        return m_door.readLink(path, target);
    }
    int ioctl(int descriptor, unsigned long number, void* record) override {
        simulator::Request const request = simulator::requestOf(number);
        simulator::Command command;
        std::string reason;
        if (simulator::decodeRecord(request, record, command, reason) == 0) {
            simulator::Reply reply;
            if (answer(command, reply)) {
                if (reply.data.size() > command.room()) reply.data.resize(command.room());
                simulator::encodeReply(request, record, command, reply);
                return 0;
            }
        }
        return m_door.ioctl(descriptor, number, record);
    }

  private:
    static Key keyOf(Bytes const& block) {
        unsigned const code = block[6];
        if (code == 0x65) return {code, block[2], block[3]};
        if (code == 0x50 || code == 0x12 || code == 0x55) return {code, block[1], 0};
        return {code, block[2], block[9]};
    }

    static unsigned operationOf(Bytes const& block) {
        if (block[0] == 0x1C && block[2] == 7) return 0x107;
        if (block[0] == 0x4D) return 0x4D00U | block[2] | block[6] << 16;
        if (block[0] == 0x85) return 0x850000U | block[8] << 8 | block[10];
        return block[0];
    }

    bool answer(simulator::Command const& command, simulator::Reply& reply) const {
        auto const& block = command.block;
        if (block.empty()) return false;
        if (command.address != std::array<std::uint8_t, 8>{}) {
            auto const unit = scsi.find(command.address[0]);
            unsigned const operation = operationOf(block);
            if (unit == scsi.end() || unit->second.count(operation) == 0) {
                reply.scsiStatus = 2;
                reply.commandStatus = 1;
            } else {
                reply.data = unit->second.at(operation);
            }
            return true;
        }
        if (block[0] == 0xC3 && lists++ >= lastList) {
            reply.scsiStatus = 2;
            reply.commandStatus = 1;
            return true;
        }
        if (block[0] == 0xC3) {
            reply.data = Bytes(8);
            reply.data[1] = static_cast<std::uint8_t>(units.size() >> 16);
            reply.data[2] = static_cast<std::uint8_t>(units.size() >> 8);
            reply.data[3] = static_cast<std::uint8_t>(units.size());
            reply.data[4] = 2;
            reply.data.insert(reply.data.end(), units.begin(), units.end());
            return true;
        }
        if (block.size() < 10 || block[0] != 0x26) return false;
        auto const found = management.find(keyOf(block));
        if (found != management.end()) {
            reply.data = found->second;
            if (reply.data.size() < command.room()) reply.commandStatus = 2;  // underrun
            return true;
        }
        reply.commandStatus = 4;  // invalid command
        constexpr unsigned DEVICE_COMMANDS[] = {0x12, 0x15, 0x55, 0x65, 0x92, 0xA0, 0xE5};
        return std::find(std::begin(DEVICE_COMMANDS), std::end(DEVICE_COMMANDS), block[6]) !=
               std::end(DEVICE_COMMANDS);
    }

    Core::SysMod::SystemCalls& m_door;
    Core::SysMod::SystemCalls* m_previous;
};

}  // namespace storage_test
