#pragma once

namespace Interface::FlashMod {

/// Declares the operations that carry firmware, and describes the module's command status. Runs once, after
/// the storage module; later calls return at once.
void InitializeModule();

}  // namespace Interface::FlashMod
