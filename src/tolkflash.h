#pragma once

#include "src/runState.h"

/// Performs the whole run: asks, one pass over the hardware without flashing, asks again, a second pass that
/// flashes what was marked. Returns the code that the process ends with. The end of input at a question lies
/// outside the passes and leaves as std::runtime_error.
int CheckState(int argc, char* argv[]);

/// Performs one pass: catalogue, options, walk of the device tree. Returns its code; an exception from the
/// walk is codeSerious.
int tolkinstall(int argc, char* argv[]);

/// Asks about one group of `count` devices, and marks the group's rows on a yes.
void askUserInput(updateState state, int count);

/// Releases the catalogue and the older configuration.
void clearMemory();

/// Walks the device tree once and returns the pass's code.
int xqrthflash();

/// Starts the storage library and activates the operations that this program uses; once per process.
void RegisterOperations();
