#pragma once

#include <span>

#include "core/operation_rows.h"

namespace Interface::FlashMod {

/// Declares the operations that carry firmware, and describes the module's command status. Runs once, after
/// the storage module; later calls return at once.
void InitializeModule();

/// As Interface::StorageMod::operationRows().
std::span<Core::OperationRow const> operationRows();

}  // namespace Interface::FlashMod
