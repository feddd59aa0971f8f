#pragma once

/// The threads of this process that sleep on a machine's clock. Without heap and without a mutex, as what
/// sleeps on it (virtual_clock.h).

#include <cstddef>
#include <cstdint>

namespace simulator {

/// One thread's sleep, from its making to its end.
class Sleeper {
  public:
    /// `until`: virtual microseconds.
    explicit Sleeper(std::uint64_t until);
    ~Sleeper();
    Sleeper(Sleeper const&) = delete;
    Sleeper& operator=(Sleeper const&) = delete;

    bool isAwake() const;
    /// Whether nothing happens any more before this one wakes: it is the first to, and every other thread of
    /// the process sleeps here or waits in the kernel, for a mutex, another thread or a file.
    bool isNextToWake() const;
    /// Wakes all whose time has come.
    static void wakeUntil(std::uint64_t now);

  private:
    bool isFirst() const;

    std::size_t m_place;  ///< PLACES when there was none left: then nobody waits for others
};

}  // namespace simulator
