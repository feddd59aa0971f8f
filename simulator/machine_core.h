#pragma once

/// What machine.cpp (calls) and machine_store.cpp (files) share; nobody else includes it.

#include <sys/stat.h>

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <type_traits>

#include "simulator/files.h"
#include "simulator/machine.h"
#include "simulator/scenario.h"

namespace simulator {

struct RequestInfo {
    std::string name;
    std::uint32_t number = 0;
    bool hasCommand = false;  ///< whether the request carries a command block
};

/// A machine's devices, what its files say, and the lock on both.
class MachineCore {
  public:
    explicit MachineCore(std::filesystem::path const& directory);

    /// Runs `work` with the machine locked against threads and processes and its state as on disk. What
    /// changed is written when `work` returns; an exception leaves the files alone.
    template <typename Work>
    auto locked(Work work) {
        std::lock_guard const guard(m_mutex);
        FileLock const lock(directory / "lock");
        begin();
        if constexpr (std::is_void_v<decltype(work())>) {
            work();
            commit();
        } else {
            auto result = work();
            commit();
            return result;
        }
    }

    Device* find(std::string const& node);
    Reply exchange(Device& device, Command const& command, RequestInfo const& info, int refusedWith,
                   std::string const& reason);

    // For `work` only
    void journal(JournalEntry entry);
    void journalEvent(std::string const& event, std::string const& device, std::string const& text);
    /// Notes that a device's state may have changed.
    void changed(Device const& device);

    std::filesystem::path directory;
    Scenario scenario;
    std::filesystem::path runFile;  ///< counters of a run of several processes, or empty

    // As the files have it; valid in `work`.
    std::uint64_t clock = 0;  ///< virtual microseconds
    std::set<std::string> vanished;

  private:
    Reply carryOut(Device& device, Command const& command, FaultRule const* rule);
    void begin();
    void commit();
    void loadState();

    std::mutex m_mutex;
    std::map<std::string, Device*> m_byNode;
    std::uint64_t m_sequence = 0;  ///< of the next journal entry
    std::string m_lines;           ///< journal lines not written yet

    struct ::stat m_stateFile {};                   ///< of state.json as last read or written
    std::map<std::string, nlohmann::json> m_saved;  ///< device states in it, by device
    std::set<std::string> m_savedVanished;
    bool m_stateChanged = false;
    std::string m_clockText;        ///< contents of the clock file
    std::uint64_t m_exchanges = 0;  ///< in the run's file
    bool m_underWay = false;        ///< still set after an exception: memory may be ahead of the files
};

}  // namespace simulator
