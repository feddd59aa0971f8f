#include "simulator/in_process_door.h"

#include <cerrno>

#include "common/sleep.h"
#include "simulator/path_map.h"

namespace simulator {

namespace {

/// Above any descriptor of a real process, so that the two kinds can't be mistaken for each other.
constexpr int FIRST_DESCRIPTOR = 0x40000000;

Machine* sleepingMachine = nullptr;

void sleepOnMachine(unsigned int microseconds) {
    sleepingMachine->sleep(microseconds);
}

}  // namespace

InProcessDoor::InProcessDoor(Machine& machine)
    : m_machine(machine),
      m_previousCalls(Core::SysMod::SetSystemCalls(this)),
      m_previousSleep(nullptr),
      m_nextDescriptor(FIRST_DESCRIPTOR) {
    sleepingMachine = &machine;
    m_previousSleep = Common::Synchronization::SetSleepFunction(sleepOnMachine);
}

InProcessDoor::~InProcessDoor() {
    Common::Synchronization::SetSleepFunction(m_previousSleep);
    sleepingMachine = nullptr;
    Core::SysMod::SetSystemCalls(m_previousCalls);
}

std::string InProcessDoor::hostPath(std::string const& path) const {
    std::optional<std::string> const ours = machinePath(path, false);
    return ours ? m_machine.root().string() + *ours : path;
}

int InProcessDoor::open(char const* path, int flags) {
    std::optional<std::string> const ours = machinePath(path != nullptr ? path : "", false);
    if (!ours) return SystemCalls::open(path, flags);
    if (!isNodePath(*ours)) return SystemCalls::open(hostPath(*ours).c_str(), flags);
    int const error = m_machine.openNode(*ours);
    if (error != 0) {
        errno = error;
        return -1;
    }
    std::lock_guard const guard(m_mutex);
    m_nodes[m_nextDescriptor] = *ours;
    return m_nextDescriptor++;
}

int InProcessDoor::ioctl(int descriptor, unsigned long request, void* argument) {
    std::string node;
    if (descriptor >= FIRST_DESCRIPTOR) {
        std::lock_guard const guard(m_mutex);
        auto const found = m_nodes.find(descriptor);
        if (found == m_nodes.end()) {
            errno = EBADF;
            return -1;
        }
        node = found->second;
    } else {
        return SystemCalls::ioctl(descriptor, request, argument);
    }
    int const error = m_machine.ioctl(node, request, argument);
    if (error == 0) return 0;
    errno = error;
    return -1;
}

int InProcessDoor::close(int descriptor) {
    if (descriptor < FIRST_DESCRIPTOR) return SystemCalls::close(descriptor);
    std::lock_guard const guard(m_mutex);
    if (m_nodes.erase(descriptor) != 0) return 0;
    errno = EBADF;
    return -1;
}

bool InProcessDoor::listDirectory(std::string const& path, std::vector<std::string>& names) {
    return SystemCalls::listDirectory(hostPath(path), names);
}

bool InProcessDoor::readFirstLine(std::string const& path, std::string& line) {
    return SystemCalls::readFirstLine(hostPath(path), line);
}

bool InProcessDoor::readFile(std::string const& path, std::string& contents, std::size_t limit) {
    return SystemCalls::readFile(hostPath(path), contents, limit);
}

bool InProcessDoor::readLink(std::string const& path, std::string& target) {
    return SystemCalls::readLink(hostPath(path), target);
}

std::size_t InProcessDoor::openNodes() {
    std::lock_guard const guard(m_mutex);
    return m_nodes.size();
}

}  // namespace simulator
