#pragma once

#include <span>

#include "core/operation_rows.h"

namespace Interface::StorageMod {

/// Declares the storage device types and every operation that the library has for them, names the root of
/// the device tree, and describes the module's command statuses. Runs once; later calls return at once.
/// Nothing is switched on: see Core::Device::RegisterOperation.
void InitializeModule();

/// Every operation of the module by device type, in the order of registration, those that aren't written
/// yet included.
std::span<Core::OperationRow const> operationRows();

}  // namespace Interface::StorageMod
