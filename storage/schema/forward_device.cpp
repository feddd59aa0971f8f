#include "storage/schema/forward_device.h"

#include "core/device.h"

namespace Schema {

BMICDevice* ForwardDevice::forwardTarget() const {
    auto const* const self = dynamic_cast<Core::Device const*>(this);
    if (self == nullptr) return nullptr;
    // The tree holds the parent for longer than the one call for which the target is borrowed.
    Common::shared_ptr<Core::Device> const parent = self->pParent();
    if (!parent || !parent->isValid()) return nullptr;
    return dynamic_cast<BMICDevice*>(parent.get());
}

}  // namespace Schema
