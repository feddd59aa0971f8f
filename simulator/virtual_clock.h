#pragma once

/// The machine's clock file: the number of the next journal line and the virtual time, always 42 bytes,
/// written in place. They change with every exchange; the state hardly ever does.

#include <cstddef>
#include <cstdint>

namespace simulator {

struct ClockReading {
    std::uint64_t sequence = 0;      ///< of the next journal line
    std::uint64_t microseconds = 0;  ///< virtual time since the machine was made
};

inline constexpr std::size_t CLOCK_SIZE = 42;

void formatClock(ClockReading const& reading, char (&text)[CLOCK_SIZE + 1]);
/// False when `text` isn't a clock's.
bool parseClock(char const* text, ClockReading& reading);

/// Sleeps on the clock of the machine in `directory` and adds a line to its journal. Returns 0 or an errno.
///
/// Time passes only while all threads of the process wait for something (sleepers.h): then the clock goes on
/// to the earliest end of a sleep. Threads that sleep side by side thus take as long as the longest of them
/// does.
///
/// It works on the files alone, under their lock, without heap and without a mutex: a thread sanitizer looks
/// away while a program sleeps, and would take what it sees before and after for races.
int sleepInDirectory(char const* directory, std::uint64_t microseconds);

}  // namespace simulator
