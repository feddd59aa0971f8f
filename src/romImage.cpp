#include "src/romImage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "src/CLI.h"
#include "src/inputFile.h"
#include "src/runState.h"

namespace {

/// Largest image that is read. The flash operations carry at most 65,535 chunks of 16 KiB; nothing near that
/// exists, and a catalogue that names a larger file is at fault.
constexpr off_t IMAGE_LIMIT = off_t{1} << 30;

/// Closes a descriptor at the end of its scope.
class Descriptor {
  public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int number() const { return m_number; }

  private:
    int m_number;
};

}  // namespace

int ReadROMImage(std::string const& path, std::vector<unsigned char>& image) {
    if (refuseWaitingFile(path)) {
        return codeUnreadable;
    }
    Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.number() < 0) {
        cli.logVerbose("Error: [%s] ROM image file \"%s\" could not be opened\n", std::strerror(errno),
                       path.c_str());
        return codeUnreadable;
    }
    struct stat status = {};
    if (::fstat(file.number(), &status) < 0) {
        cli.logVerbose("Error: [%s] ROM image file \"%s\" could not be accessed\n", std::strerror(errno),
                       path.c_str());
        return codeUnreadable;
    }
    if (status.st_size > IMAGE_LIMIT) {
        cli.logVerbose("Error: ROM image file \"%s\" has %lld bytes, at most %lld expected\n", path.c_str(),
                       static_cast<long long>(status.st_size), static_cast<long long>(IMAGE_LIMIT));
        return codeUnreadable;
    }
    cli.logVerbose("ROM is %u bytes\n", static_cast<unsigned>(status.st_size));
    image.assign(static_cast<std::size_t>(status.st_size), 0);
    ssize_t const count = ::read(file.number(), image.data(), image.size());
    if (count < 0) {
        cli.logVerbose("Cannot read ROM image %s: %s\n", path.c_str(), std::strerror(errno));
        return codeUnreadable;
    }
    // A short read passes without a message, and the image's tail stays zero: the vector has the file's size
    // at this point, which is what the decision hangs on. A device refuses such an image by its checksum.
    if (static_cast<std::size_t>(count) == image.size()) {
        cli.logVerbose("ROM Image %d bytes read from disk\n", static_cast<int>(count));
    } else if (image.size() != static_cast<std::size_t>(status.st_size)) {
        cli.logVerbose("Cannot read ROM image %s: (%d bytes read): %s\n", path.c_str(),
                       static_cast<int>(count), std::strerror(errno));
        return codeUnreadable;
    }
    return codeOk;
}
