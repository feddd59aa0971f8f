#pragma once

/// A virtual machine: PCI functions, device nodes and the devices behind them, kept in a directory.
///
///   DIR/machine.json   the scenario it was made from
///   DIR/state.json     what changes: firmware, ROM images, what is paused, what has vanished
///   DIR/clock          the next journal number and the virtual time
///   DIR/journal.jsonl  one line per exchange and event
///   DIR/firmware/      ROM images and collection buffers
///   DIR/root/          the file tree: sys/bus/pci, sys/block, dev, var/ksl
///   DIR/lock           held (flock) for the length of one exchange
///
/// A machine knows nothing of how calls reach it; the doors (in_process_door.h, preload/) bring them.
/// All members may be called from several threads, and several processes may work on one directory.

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "simulator/error.h"
#include "simulator/exchange.h"
#include "simulator/journal.h"

namespace simulator {

/// A row of `ksl-machine show`.
struct DeviceSummary {
    std::string name;
    std::string kind;
    std::string node;      ///< empty without a node
    std::string product;   ///< empty where none is simulated, as the following
    std::string running;   ///< firmware version that runs
    std::string stored;    ///< firmware version in the active ROM: what runs after a restart
    std::string inactive;  ///< firmware version in the inactive ROM
    std::string state;     ///< words joined by ", ": "restart needed", "paused", "vanished"; else "ok"
    std::map<unsigned, unsigned> nvram;  ///< of a controller: the bytes that aren't zero, by offset
};

enum class Rom { Active, Inactive };

class MachineCore;

class Machine {
  public:
    /// Makes a machine in `directory`, over an older machine if there is one. Throws ScenarioError
    /// for a bad scenario and MachineError when `directory` holds anything else or can't be
    /// written; what was there is untouched then.
    static void create(std::filesystem::path const& directory, std::filesystem::path const& scenarioFile);
    static void create(std::filesystem::path const& directory, nlohmann::json const& scenario);

    /// Opens the machine in `directory` and begins a run: exchanges and fault rules count from here.
    explicit Machine(std::filesystem::path const& directory);
    ~Machine();
    Machine(Machine const&) = delete;
    Machine& operator=(Machine const&) = delete;

    std::filesystem::path const& directory() const;
    std::filesystem::path root() const;

    /// Appends rules to the fault plan of this run; `source` names them in messages. Throws ScenarioError.
    void addFaults(nlohmann::json const& rules, std::string const& source);
    /// Keeps the run's counters in `file`, so that all processes of one run count together.
    void shareRun(std::filesystem::path const& file);
    /// Exchanges of this run so far.
    std::uint64_t exchangeCount();

    /// Paths of the device nodes, as a program names them ("/dev/xqrth/c0d0").
    std::vector<std::string> nodes() const;

    /// Whether a node can be opened: 0 or an errno (ENOENT, ENODEV). A failure is journalled.
    int openNode(std::string const& node);
    /// A request with its record in this process's memory: 0, or the errno of a call that returns -1.
    int ioctl(std::string const& node, unsigned long request, void* record);
    /// A command without a kernel record: the entry for doors that have none, and for tests.
    Reply transact(std::string const& node, Command const& command);

    /// Advances the virtual clock.
    void sleep(std::uint64_t microseconds);
    /// Virtual time since the machine was made, in microseconds.
    std::uint64_t now();

    /// Power off and on: what is stored in the active ROMs runs, vanished devices are back.
    void powerCycle();

    std::vector<DeviceSummary> devices();
    std::vector<JournalEntry> journal() const;
    /// The image in a controller's ROM, or that of what is behind or in it ("left/drive-3/carrier"), byte for
    /// byte as it arrived; empty when that ROM is.
    Bytes romImage(std::string const& device, Rom rom);

  private:
    std::unique_ptr<MachineCore> m_core;
};

}  // namespace simulator
