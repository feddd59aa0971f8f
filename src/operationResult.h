#pragma once

#include "common/shared_ptr.h"
#include "core/device.h"
#include "core/operation_return.h"

/// Writes what an operation returned to the verbose log, under the label. 0 for a success; otherwise
/// codeFlashFailed, or what a failure word among the results says.
int LogOperationReturn(Core::OperationReturn const& result, char const* label);

/// Probes an operation by performing it without arguments. codeFlashFailed when the device denies it, else
/// 0 whatever the operation returned.
int CheckSupportedOperation(Common::shared_ptr<Core::Device> const& device, char const* operationName);

/// Spells out the failure word that a flash returns, to the verbose log. codeSerious when its top bit says
/// that the component failed critically, else codeFlashFailed.
int CheckFlashFailure(unsigned int failureWord);
