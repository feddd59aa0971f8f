#pragma once

/// The door for tests: while it stands, this process's system calls and sleeps meet a virtual machine.

#include <map>
#include <mutex>
#include <string>

#include "simulator/machine.h"
#include "sysmod/system_calls.h"

namespace simulator {

/// Paths under /sys/bus/pci, /sys/block, /dev/xqrth, /dev/sg<n> and /dev/mpt2ctl are the machine's; all
/// others are the host's. Nodes open as descriptors that no other call of the process knows. One door stands
/// at a time; it must not be put up or taken down while commands are under way.
class InProcessDoor : public Core::SysMod::SystemCalls {
  public:
    /// Installs itself and the virtual sleep; `machine` is borrowed.
    explicit InProcessDoor(Machine& machine);
    /// Puts back what was in force before.
    ~InProcessDoor() override;
    InProcessDoor(InProcessDoor const&) = delete;
    InProcessDoor& operator=(InProcessDoor const&) = delete;

    int open(char const* path, int flags) override;
    int ioctl(int descriptor, unsigned long request, void* argument) override;
    int close(int descriptor) override;
    bool listDirectory(std::string const& path, std::vector<std::string>& names) override;
    bool readFirstLine(std::string const& path, std::string& line) override;
    bool readFile(std::string const& path, std::string& contents, std::size_t limit) override;
    bool readLink(std::string const& path, std::string& target) override;

    /// Nodes that are open now; 0 after a well-behaved run.
    std::size_t openNodes();

  private:
    std::string hostPath(std::string const& path) const;

    Machine& m_machine;
    Core::SysMod::SystemCalls* m_previousCalls;
    void (*m_previousSleep)(unsigned int);
    std::mutex m_mutex;
    std::map<int, std::string> m_nodes;  ///< descriptor to node path
    int m_nextDescriptor;
};

}  // namespace simulator
