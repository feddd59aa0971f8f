#pragma once

namespace Common::Synchronization {

using SleepFunction = void (*)(unsigned int microseconds);

// Every wait of the library goes through this one function, so that a virtual clock can stand in for
// usleep. Returns the function that was set before; null restores usleep.
SleepFunction SetSleepFunction(SleepFunction function);

void SleepMicroseconds(unsigned int microseconds);

void Sleep(unsigned int milliseconds);

}  // namespace Common::Synchronization
