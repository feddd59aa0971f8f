#pragma once

namespace Interface::StorageMod {

/// Declares the storage device types and every operation that the library has for them, names the root of
/// the device tree, and describes the module's command statuses. Runs once; later calls return at once.
/// Nothing is switched on: see Core::Device::RegisterOperation.
void InitializeModule();

}  // namespace Interface::StorageMod
