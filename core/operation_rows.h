#pragma once

#include <span>

#include "core/operation_registry.h"

namespace Core {

/// One operation of one device type, a row of a module's registration table. The order of the rows is the
/// order of registration.
struct OperationRow {
    char const* deviceType;
    OperationList& (*operations)();
    char const* operationName;
    /// Null for an operation that isn't written yet: its device type is registered, and switching the
    /// operation on has no effect, as with any name that no module knows.
    DeviceOperationCreatorBase* (*creator)();
};

template <class Kind>
OperationList& operationsOf() {
    return DeviceOperationRegistry<Kind>::sm_operations;
}

template <class Operation>
DeviceOperationCreatorBase* creatorOf() {
    return new DeviceOperationCreator<Operation>;
}

inline void RegisterOperationRows(std::span<OperationRow const> rows) {
    for (OperationRow const& row : rows) {
        RegisterSchema(row.deviceType, row.operations());
        if (row.creator != nullptr) RegisterOperation(row.deviceType, row.creator());
    }
}

}  // namespace Core
