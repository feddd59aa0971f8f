#include "simulator/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "simulator/error.h"

namespace simulator {

namespace {

[[noreturn]] void fail(std::filesystem::path const& file, char const* what) {
    throw MachineError(file.string() + " " + what + ": " + std::strerror(errno));
}

class Descriptor {
  public:
    Descriptor(std::filesystem::path const& file, int flags)
        : m_number(::open(file.c_str(), flags | O_CLOEXEC, 0644)) {}
    ~Descriptor() {
        if (m_number >= 0) ::close(m_number);
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int number() const { return m_number; }

  private:
    int m_number;
};

void writeAll(std::filesystem::path const& file, int flags, char const* data, std::size_t size) {
    Descriptor const descriptor(file, flags);
    if (descriptor.number() < 0) fail(file, "can't be written");
    while (size > 0) {
        ssize_t const written = ::write(descriptor.number(), data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) fail(file, "can't be written");
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

template <typename Container>
Container readAll(std::filesystem::path const& file) {
    Descriptor const descriptor(file, O_RDONLY);
    if (descriptor.number() < 0) fail(file, "can't be read");
    Container contents;
    std::size_t used = 0;
    while (true) {
        contents.resize(used + 65536);
        ssize_t const got = ::read(descriptor.number(), contents.data() + used, 65536);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) fail(file, "can't be read");
        used += static_cast<std::size_t>(got);
        if (got == 0) break;
    }
    contents.resize(used);
    return contents;
}

}  // namespace

Bytes readWholeFile(std::filesystem::path const& file) {
    return readAll<Bytes>(file);
}

std::string readText(std::filesystem::path const& file) {
    return readAll<std::string>(file);
}

void writeWholeFile(std::filesystem::path const& file, std::span<std::uint8_t const> contents) {
    writeAll(file, O_WRONLY | O_CREAT | O_TRUNC, reinterpret_cast<char const*>(contents.data()),
             contents.size());
}

void writeText(std::filesystem::path const& file, std::string_view contents) {
    writeAll(file, O_WRONLY | O_CREAT | O_TRUNC, contents.data(), contents.size());
}

void overwriteText(std::filesystem::path const& file, std::string_view contents) {
    writeAll(file, O_WRONLY | O_CREAT, contents.data(), contents.size());
}

void replaceText(std::filesystem::path const& file, std::string_view contents) {
    std::filesystem::path beside = file;
    beside += ".new";
    writeText(beside, contents);
    if (::rename(beside.c_str(), file.c_str()) != 0) fail(file, "can't be replaced");
}

void appendText(std::filesystem::path const& file, std::string_view contents) {
    writeAll(file, O_WRONLY | O_CREAT | O_APPEND, contents.data(), contents.size());
}

FileLock::FileLock(std::filesystem::path const& file)
    : m_descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    if (m_descriptor < 0) fail(file, "can't be opened");
    while (::flock(m_descriptor, LOCK_EX) != 0) {
        if (errno == EINTR) continue;
        int const error = errno;
        ::close(m_descriptor);
        errno = error;
        fail(file, "can't be locked");
    }
}

FileLock::~FileLock() {
    ::close(m_descriptor);
}

}  // namespace simulator
