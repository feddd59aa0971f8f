#include "sysmod/system_calls.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <filesystem>
#include <fstream>

namespace Core::SysMod {
namespace {

constexpr std::size_t LINE_LIMIT = 4096;

std::atomic<SystemCalls*>& replacementInForce() {
    static std::atomic<SystemCalls*> replacement{nullptr};
    return replacement;
}

}  // namespace

int SystemCalls::open(char const* path, int flags) {
    return ::open(path, flags | O_CLOEXEC);
}

int SystemCalls::ioctl(int descriptor, unsigned long request, void* argument) {
    return argument == nullptr ? ::ioctl(descriptor, request) : ::ioctl(descriptor, request, argument);
}

int SystemCalls::close(int descriptor) {
    return ::close(descriptor);
}

bool SystemCalls::listDirectory(std::string const& path, std::vector<std::string>& names) {
    names.clear();
    std::error_code error;
    std::filesystem::directory_iterator entry(path, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return !error;
}

bool SystemCalls::readFirstLine(std::string const& path, std::string& line) {
    if (!readFile(path, line, LINE_LIMIT)) {
        return false;
    }
    line.resize(std::min(line.size(), line.find('\n')));
    return true;
}

bool SystemCalls::readFile(std::string const& path, std::string& contents, std::size_t limit) {
    contents.clear();
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return false;
    }
    contents.resize(limit);
    file.read(contents.data(), static_cast<std::streamsize>(limit));
    contents.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return !file.bad();
}

bool SystemCalls::readLink(std::string const& path, std::string& target) {
    char text[PATH_MAX];
    ssize_t const length = ::readlink(path.c_str(), text, sizeof text);
    if (length < 0) {
        return false;
    }
    target.assign(text, static_cast<std::size_t>(length));
    return true;
}

SystemCalls& systemCalls() {
    static SystemCalls real;
    SystemCalls* const replacement = replacementInForce().load();
    return replacement != nullptr ? *replacement : real;
}

SystemCalls* SetSystemCalls(SystemCalls* replacement) {
    return replacementInForce().exchange(replacement);
}

}  // namespace Core::SysMod
