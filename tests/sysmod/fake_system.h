#pragma once

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "sysmod/system_calls.h"
#include "tests/common/CaptureStream.h"

/// A system made of texts: files, links and nodes by path. Records every ioctl as the bytes that were sent,
/// and answers it as the test says. In force for its lifetime.
class FakeSystem : public Core::SysMod::SystemCalls {
  public:
    struct Call {
        std::string node;
        unsigned long request = 0;
        std::vector<unsigned char> record;
        bool hasArgument = false;
        std::vector<unsigned char> block;  ///< the command block that an SG_IO record points at
    };

    FakeSystem() : m_previous(Core::SysMod::SetSystemCalls(this)) {}
    ~FakeSystem() override { Core::SysMod::SetSystemCalls(m_previous); }

    std::map<std::string, std::string> files;
    std::map<std::string, std::string> links;
    std::set<std::string> nodes;
    std::map<std::string, int> openErrors;
    std::vector<Call> calls;
    std::vector<int> openFlags;
    int openCount = 0;
    int closeCount = 0;
    /// Returns 0 or an errno, and may write to the record.
    std::function<int(Call const&, unsigned char*)> answer = [](Call const&, unsigned char*) { return 0; };

    int open(char const* path, int flags) override {
        if (nodes.count(path) == 0) {
            errno = openErrors.count(path) != 0 ? openErrors[path] : ENOENT;
            return -1;
        }
        ++openCount;
        openFlags.push_back(flags);
        m_open.push_back(path);
        return FIRST_DESCRIPTOR + static_cast<int>(m_open.size()) - 1;
    }

    int ioctl(int descriptor, unsigned long request, void* argument) override {
        Call call;
        call.node = m_open.at(static_cast<std::size_t>(descriptor - FIRST_DESCRIPTOR));
        call.request = request;
        call.hasArgument = argument != nullptr;
        auto* const bytes = static_cast<unsigned char*>(argument);
        if (bytes != nullptr) {
            call.record.assign(bytes, bytes + recordSize(request, bytes));
            if (request == 0x2285) {
                unsigned char const* block = nullptr;
                std::memcpy(&block, bytes + 24, sizeof block);
                call.block.assign(block, block + bytes[8]);
            }
        }
        calls.push_back(call);
        int const error = answer(call, bytes);
        errno = error;
        return error == 0 ? 0 : -1;
    }

    int close(int) override {
        ++closeCount;
        return 0;
    }

    bool listDirectory(std::string const& path, std::vector<std::string>& names) override {
        std::set<std::string> found;
        std::string const start = path + "/";
        for (auto const* paths : {&files, &links}) {
            for (auto const& [name, text] : *paths) {
                if (name.compare(0, start.size(), start) == 0) {
                    found.insert(name.substr(start.size(), name.find('/', start.size()) - start.size()));
                }
            }
        }
        names.assign(found.begin(), found.end());
        return !found.empty();
    }

    bool readFirstLine(std::string const& path, std::string& line) override {
        if (!readFile(path, line, 4096)) {
            return false;
        }
        line = line.substr(0, line.find('\n'));
        return true;
    }

    bool readFile(std::string const& path, std::string& contents, std::size_t limit) override {
        auto const file = files.find(path);
        if (file == files.end()) {
            return false;
        }
        contents = file->second.substr(0, limit);
        return true;
    }

    bool readLink(std::string const& path, std::string& target) override {
        auto const link = links.find(path);
        if (link == links.end()) {
            return false;
        }
        target = link->second;
        return true;
    }

  private:
    static constexpr int FIRST_DESCRIPTOR = 1000;

    /// By the request number's own size field where it has one.
    static std::size_t recordSize(unsigned long request, unsigned char const* bytes) {
        if (request == 0x2285) {
            return 88;
        }
        if ((request >> 16) == 0xCC77) {
            std::uint32_t length = 0;
            std::memcpy(&length, bytes + 4, sizeof length);
            return length;
        }
        return request >> 16 & 0x3FFF;
    }

    Core::SysMod::SystemCalls* m_previous;
    std::vector<std::string> m_open;
};

/// What the library logs in its lifetime, in every category.
class CapturedLog {
  public:
    CapturedLog() { CaptureStream::attach(m_lines, 0xFF); }
    ~CapturedLog() { Common::DebugLogger::UnRegisterAllDebugOutputStreams(); }
    std::string text() const { return m_lines.text(); }

  private:
    CaptureStream::Lines m_lines;
};

/// A little-endian number at a literal offset of a record.
template <typename Number>
Number numberAt(std::vector<unsigned char> const& record, std::size_t offset) {
    Number number = 0;
    if (offset + sizeof number <= record.size()) {
        std::memcpy(&number, record.data() + offset, sizeof number);
    }
    return number;
}
