#pragma once

// Devices that answer from a script and remember what they were sent, a kernel that does the same below the
// pass-through, a clock that counts instead of waiting, and a log that can be read back.

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "command/devices.h"
#include "common/debug_logger.h"
#include "common/sleep.h"
#include "sysmod/system_calls.h"

namespace command_test {

using Interface::SysMod::Command::ATARequest;
using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::CSMIRequest;
using Interface::SysMod::Command::EnTransferType;
using Interface::SysMod::Command::SCSIRequest;

using Bytes = std::vector<unsigned char>;

// As much of `from` as `room` takes.
inline void copyInto(unsigned char* to, std::size_t room, Bytes const& from) {
    if (to != nullptr) std::copy_n(from.begin(), std::min(from.size(), room), to);
}

struct Answer {
    bool sent = true;
    int lowLevelStatus = 0;
    unsigned commandStatus = 0;
    unsigned scsiStatus = 0;
    Bytes sense = {};
    Bytes data = {};    // put at the start of the buffer, as much as it takes
    int received = -1;  // bytes that the transport tells of; -1: the whole buffer

    template <class Request>
    bool to(Request& request) const {
        request.lowLevelStatus = lowLevelStatus;
        request.commandStatus = static_cast<std::uint16_t>(commandStatus);
        request.scsiStatus = static_cast<std::uint8_t>(scsiStatus);
        copyInto(request.senseBuffer, request.senseLength, sense);
        copyInto(request.dataBuffer, request.dataLength, data);
        if (received >= 0) request.dataLength = static_cast<std::uint32_t>(received);
        return sent;
    }
};

// Sense data of 18 bytes (fixed format) with key, ASC and ASCQ; the high nibble of byte 2 is set, so that
// taking the whole byte for the key shows.
inline Bytes senseOf(unsigned key, unsigned asc, unsigned ascq) {
    Bytes sense(18);
    sense[2] = static_cast<unsigned char>(0xA0 | key);
    sense[12] = static_cast<unsigned char>(asc);
    sense[13] = static_cast<unsigned char>(ascq);
    return sense;
}

inline Answer checkCondition(unsigned key, unsigned asc, unsigned ascq = 0x5A) {
    return {.sent = false, .commandStatus = 1, .scsiStatus = 2, .sense = senseOf(key, asc, ascq)};
}

// Answers in turn, and with the last of them from then on; good without data when there are none.
class Script {
  public:
    Script(std::initializer_list<Answer> answers = {}) : m_answers(answers) {}

    void add(Answer const& answer) { m_answers.push_back(answer); }
    Answer next() {
        if (m_answers.empty()) return {};
        Answer const answer = m_answers.front();
        if (m_answers.size() > 1) m_answers.pop_front();
        return answer;
    }

  private:
    std::deque<Answer> m_answers;
};

struct SentBmic {
    BMICRequest request;
    Bytes data;   // the buffer when it was sent
    Bytes sense;  // likewise
};

class FakeBMICDevice : public BMICDevice {
  public:
    explicit FakeBMICDevice(Script answers = {}) : script(answers) {}

    bool isRemote() const override { return remote; }
    unsigned short maxLogicalUnits() const override { return logicalUnits; }
    unsigned short maxPhysicalUnits() const override { return physicalUnits; }
    bool sendBMICCommand(BMICRequest& request) const override {
        SentBmic entry{request, {}, Bytes(request.senseBuffer, request.senseBuffer + request.senseLength)};
        if (request.dataBuffer != nullptr) {
            entry.data.assign(request.dataBuffer, request.dataBuffer + request.dataLength);
        }
        sent.push_back(entry);
        return script.next().to(request);
    }
    unsigned int readSizeFromCacheFor(unsigned char const& commandByte) override {
        return memo.count(commandByte) != 0 ? memo[commandByte] : 0;
    }
    void WriteSizeToCacheFor(unsigned char const& commandByte, unsigned int const& size) override {
        memo[commandByte] = size;
    }

    bool remote = false;
    unsigned short logicalUnits = 32;
    unsigned short physicalUnits = 128;
    std::map<unsigned char, unsigned int> memo;
    mutable Script script;
    mutable std::vector<SentBmic> sent;
};

class FakeSCSIDevice : public SCSIDevice {
  public:
    explicit FakeSCSIDevice(Script answers = {}) : script(answers) {}

    bool sendSCSICommand(SCSIRequest& request) const override {
        sent.push_back(request);
        return script.next().to(request);
    }
    unsigned int bufferSizeLimit() const override { return 0; }
    bool rescanScsiBus() const override { return false; }

    mutable Script script;
    mutable std::vector<SCSIRequest> sent;
};

// No wait takes time; how long was asked for is counted.
class FakeClock {
  public:
    FakeClock() {
        waits().clear();
        m_before = Common::Synchronization::SetSleepFunction(count);
    }
    ~FakeClock() { Common::Synchronization::SetSleepFunction(m_before); }
    FakeClock(FakeClock const&) = delete;
    FakeClock& operator=(FakeClock const&) = delete;

    static std::vector<unsigned>& waits() {  // microseconds
        static std::vector<unsigned> s_waits;
        return s_waits;
    }

  private:
    static void count(unsigned microseconds) { waits().push_back(microseconds); }

    Common::Synchronization::SleepFunction m_before;
};

// What the library logs while this lives, on the levels of `mask`.
class LogCapture {
  public:
    explicit LogCapture(int mask = 0xFF) {
        Common::DebugLogger::RegisterDebugOutputStream(
            mask, Common::shared_ptr<Common::OutputStream>(new Stream(m_text)));
    }
    ~LogCapture() { Common::DebugLogger::UnRegisterAllDebugOutputStreams(); }
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    std::string const& text() const { return m_text; }
    unsigned count(std::string const& wanted) const {
        unsigned found = 0;
        for (auto at = m_text.find(wanted); at != std::string::npos; at = m_text.find(wanted, at + 1))
            ++found;
        return found;
    }

  private:
    class Stream : public Common::OutputStream {
      public:
        explicit Stream(std::string& text) : m_text(text) {}
        void Accept(char const* data, unsigned int const& length) override { m_text.append(data, length); }

      private:
        std::string& m_text;
    };

    std::string m_text;
};

// One pass-through record as the kernel sees it, read at literal offsets (64-bit pointers).
struct KernelExchange {
    std::string node;
    unsigned long request = 0;
    Bytes record;  // all 88 bytes

    unsigned typeByte() const { return record[9]; }
    unsigned timeout() const { return record[10] | record[11] << 8; }
    Bytes block() const { return Bytes(record.begin() + 12, record.begin() + 12 + record[8]); }
    unsigned bufferSize() const { return record[76] | record[77] << 8; }
};

// The system below the pass-through.
class FakeKernel : public Core::SysMod::SystemCalls {
  public:
    static constexpr unsigned long PASSTHRU = 0xC058420B;
    static constexpr unsigned long REGISTER_NEW_DISKS = 0x420E;

    struct Reply {
        int error = 0;
        unsigned char scsiStatus = 0;
        unsigned commandStatus = 0;
        Bytes sense = {};
        Bytes data = {};
    };

    FakeKernel() { m_before = Core::SysMod::SetSystemCalls(this); }
    ~FakeKernel() override { Core::SysMod::SetSystemCalls(m_before); }

    int open(char const* path, int) override {
        m_node = path;
        return 7;
    }
    int close(int) override { return 0; }
    int ioctl(int, unsigned long request, void* argument) override {
        KernelExchange exchange{m_node, request, {}};
        auto* const record = static_cast<unsigned char*>(argument);
        if (record != nullptr) exchange.record.assign(record, record + 88);
        exchanges.push_back(exchange);
        Reply const reply = answer ? answer(exchange) : Reply();
        if (reply.error != 0) {
            errno = reply.error;
            return -1;
        }
        if (record != nullptr) {
            record[28] = reply.scsiStatus;
            record[30] = static_cast<unsigned char>(reply.commandStatus);
            record[31] = static_cast<unsigned char>(reply.commandStatus >> 8);
            copyInto(record + 44, 32, reply.sense);
            unsigned char* buffer = nullptr;
            std::memcpy(&buffer, record + 80, sizeof(buffer));
            copyInto(buffer, exchange.bufferSize(), reply.data);
        }
        return 0;
    }
    bool listDirectory(std::string const& path, std::vector<std::string>& names) override {
        ++directoryReads;
        return directory ? directory(path, names) : false;
    }
    bool readFirstLine(std::string const&, std::string&) override { return false; }
    bool readFile(std::string const&, std::string&, std::size_t) override { return false; }
    bool readLink(std::string const&, std::string&) override { return false; }

    std::vector<KernelExchange> exchanges;
    std::function<Reply(KernelExchange const&)> answer;
    std::function<bool(std::string const&, std::vector<std::string>&)> directory;
    unsigned directoryReads = 0;

  private:
    Core::SysMod::SystemCalls* m_before = nullptr;
    std::string m_node;
};

// A device handle: 25 texts, of which key (3), node (4) and route (19) matter here.
inline Common::string handleOf(char const* key, char const* node = "/dev/xqrth/c0d0",
                               char const* route = "QRTH:5A00000000000000") {
    std::string text;
    for (int slot = 0; slot < 25; ++slot) {
        if (slot != 0) text += "\r\n";
        if (slot == 3) text += key;
        if (slot == 4) text += node;
        if (slot == 19) text += route;
    }
    return Common::string(text.c_str());
}

}  // namespace command_test
