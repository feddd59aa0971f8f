#include "simulator/preload/door.h"

#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

#include "simulator/files.h"
#include "simulator/machine.h"
#include "simulator/path_map.h"
#include "simulator/value.h"
#include "simulator/virtual_clock.h"

namespace simulator::preload {

namespace {

thread_local int depth = 0;

/// One machine for the process, opened when a call first needs it and never closed: calls may still come
/// while the process ends.
struct Door {
    std::string directory;
    std::string root;  ///< empty: no machine, everything is the host's
    std::mutex mutex;
    std::unique_ptr<Machine> machine;
    std::map<std::pair<dev_t, ino_t>, std::string> nodes;
};

Door* theDoor = nullptr;
pthread_once_t doorMade = PTHREAD_ONCE_INIT;

void makeDoor() {
    theDoor = new Door;
    if (char const* directory = std::getenv("KSL_MACHINE_DIR"); directory != nullptr && *directory == '/')
        theDoor->root = (theDoor->directory = directory) + "/root";
}

/// By pthread_once and not a static of the function: this library is never instrumented, and a thread
/// sanitizer in the program sees the former only.
Door& door() {
    ::pthread_once(&doorMade, makeDoor);
    return *theDoor;
}

/// Before there are threads, and before anybody sleeps (virtual_clock.h says why that matters).
__attribute__((constructor)) void makeDoorEarly() {
    door();
}

/// A child that is forked while another thread holds the door must find it unlocked.
void lockForFork() {
    door().mutex.lock();
}
void unlockAfterFork() {
    door().mutex.unlock();
}

void openMachine(Door& here) {
    if (here.machine) return;
    auto machine = std::make_unique<Machine>(here.directory);
    if (char const* faults = std::getenv("KSL_MACHINE_FAULTS"); faults != nullptr && *faults != '\0')
        machine->addFaults(parseJson(readText(faults), faults), faults);
    if (char const* run = std::getenv("KSL_MACHINE_RUN"); run != nullptr && *run != '\0')
        machine->shareRun(run);
    for (std::string const& node : machine->nodes()) {
        struct ::stat status {};
        if (::stat((here.root + node).c_str(), &status) == 0)
            here.nodes[{status.st_dev, status.st_ino}] = node;
    }
    here.machine = std::move(machine);
    ::pthread_atfork(lockForFork, unlockAfterFork, unlockAfterFork);
}

/// Runs `work` on the machine; what goes wrong with it is an input/output error to the program, and the
/// reason is on standard error once.
template <typename Work>
int onMachine(Work work) {
    Inside const inside;
    try {
        Door& here = door();
        std::lock_guard const guard(here.mutex);
        openMachine(here);
        return work(here);
    } catch (std::exception const& error) {
        static bool told = false;
        if (!told) std::fprintf(stderr, "ksl-door: %s\n", error.what());
        told = true;
        return EIO;
    }
}

std::string nodeOf(Door const& here, int descriptor) {
    struct ::stat status {};
    if (::fstat(descriptor, &status) != 0) return {};
    auto const found = here.nodes.find({status.st_dev, status.st_ino});
    return found == here.nodes.end() ? std::string() : found->second;
}

/// Where relative paths begin; empty when nobody can say, as for a directory that was removed.
std::string directoryOf(int descriptor) {
    char text[PATH_MAX];
    if (descriptor == AT_FDCWD) return ::getcwd(text, sizeof text) != nullptr ? text : "";
    std::string const link = "/proc/self/fd/" + std::to_string(descriptor);
    ssize_t const length = ::readlink(link.c_str(), text, sizeof text);
    return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : "";
}

}  // namespace

Inside::Inside() : m_errno(errno) {
    ++depth;
    ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_cancelState);
}

Inside::~Inside() {
    ::pthread_setcancelstate(m_cancelState, nullptr);
    --depth;
    errno = m_errno;
}

bool bypassed() {
    return depth != 0 || door().root.empty();
}

MappedPath::MappedPath(char const* path, int directory) : m_given(path) {
    if (path == nullptr || *path == '\0' || bypassed()) return;
    Inside const inside;
    try {
        std::string const whole = *path == '/' ? path : directoryOf(directory) + '/' + path;
        auto ours = machinePath(whole, true);
        if (!ours) return;
        m_ours = std::move(*ours);
        m_text = door().root + m_ours;
        // A slash at the end asks for what a link leads to.
        if (whole.ends_with('/') || whole.ends_with("/.")) m_text += '/';
        m_mapped = true;
    } catch (std::exception const&) {
        m_mapped = false;
    }
}

int MappedPath::openError() const {
    if (!m_mapped || !isNodePath(m_ours)) return 0;
    return onMachine([&](Door& here) { return here.machine->openNode(m_ours); });
}

std::string const& rootPath() {
    return door().root;
}

bool mayBeNode(int descriptor) {
    Inside const inside;
    struct ::stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool isNode(int descriptor) {
    bool node = false;
    onMachine([&](Door& here) {
        node = !nodeOf(here, descriptor).empty();
        return 0;
    });
    return node;
}

int nodeIoctl(int descriptor, unsigned long request, void* argument) {
    return onMachine(
        [&](Door& here) { return here.machine->ioctl(nodeOf(here, descriptor), request, argument); });
}

void sleepOnMachine(std::uint64_t microseconds) {
    Inside const inside;
    int const error = sleepInDirectory(door().directory.c_str(), microseconds);
    if (error != 0)
        std::fprintf(stderr, "ksl-door: the virtual clock can't go on: %s\n", std::strerror(error));
}

}  // namespace simulator::preload
