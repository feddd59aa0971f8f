#pragma once

namespace Interface::FlashMod {

/// Told after each piece of an image that a device took.
using ProgressObserver = void (*)(unsigned int done, unsigned int total);

/// Sets who is told how far a write operation has come; null for nobody, the state at start. Called on the
/// thread that performs the operation.
void SetProgressObserver(ProgressObserver observer);

/// For the operations of this module.
void reportProgress(unsigned int done, unsigned int total);

}  // namespace Interface::FlashMod
