#include "core/visitor_device.h"

#include "core/device.h"

namespace Core {

OperationReturn VisitorDevice::visit(Device& device) {
    OperationSource& source = device;
    return source.performImpl(*this);
}

}  // namespace Core
