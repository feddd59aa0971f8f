#pragma once

#include "core/operation_return.h"

namespace Core {

class Device;

// Visits devices by kind. A device's performImpl() cross-casts the visitor to the visitor interface of its
// own kind and calls the typed visit there, so kinds need no knowledge of the visitors that exist.
class VisitorDevice {
  public:
    virtual ~VisitorDevice() = default;

    // Dispatches to the typed visit through device.performImpl(*this). Overridden by visitors whose
    // behaviour doesn't depend on the kind.
    virtual OperationReturn visit(Device& device);
};

// The body of a kind's performImpl(): `device` is visited when `visitor` is also a VisitorInterface, a class
// with `virtual OperationReturn visit(DeviceKind&)`. Any other visitor gets the status
// ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE.
//
// A visitor that derives from VisitorDevice and typed interfaces should name the base's visit too
// (`using Core::DeviceOperation::visit;`), as the typed one hides it otherwise.
template <class VisitorInterface, class DeviceKind>
OperationReturn DispatchVisit(VisitorDevice& visitor, DeviceKind& device) {
    VisitorInterface* typed = dynamic_cast<VisitorInterface*>(&visitor);
    if (typed == nullptr) {
        return OperationReturn(Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE);
    }
    return typed->visit(device);
}

}  // namespace Core
