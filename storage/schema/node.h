#pragma once

#include "common/cloneable.h"
#include "common/local_static_allocator.h"
#include "core/device_composite.h"
#include "core/operation_registry.h"
#include "core/tolkmod.h"
#include "storage/schema/identity.h"
#include "storage/schema/visitors.h"

namespace Schema {

/// What all device types have in common: the bases in their order, identity, double dispatch and renewal.
///
///   Kind        the device type, with a member `toStringImpl`: its identifier, which starts with a prefix of
///               the type and tells it from its siblings. Where the device has a place or a number, that is
///               its identity, so that a rediscovery finds it again.
///   Base        Core::DeviceComposite, or Core::Device for a leaf: whatever is offered to one is refused
///   Expected    the number of instances that the design provides for
///   Interfaces  what commands run against, see command/devices.h
template <class Kind, class Base, unsigned Expected, class... Interfaces>
class Node : public Common::CloneableInherit<Base, Common::shared_ptr<Core::Device>, Kind>,
             public Interfaces...,
             public Core::DeviceOperationRegistry<Kind>,
             public Common::LocalStaticAllocator<Kind, Expected> {
  public:
    bool operator==(Core::Device const& other) const override {
        return isSameKindAndIdentity(static_cast<Kind const&>(*this), other);
    }

    /// Takes over the interfaces of a newly discovered twin: its handles may be others than before.
    void UpdateWith(Common::shared_ptr<Core::Device> other) override {
        if (auto const* twin = dynamic_cast<Kind const*>(other.get())) {
            (void(static_cast<Interfaces&>(*this) = static_cast<Interfaces const&>(*twin)), ...);
            takeOver(*twin);
        }
    }

  protected:
    explicit Node(char const* type, Interfaces const&... interfaces) : Interfaces(interfaces)... {
        publish(*this, Interface::TOLKMod::Device::ATTR_NAME_TYPE, type);
    }

    /// What a kind knows beside its interfaces and attributes, taken from a newly discovered twin.
    virtual void takeOver(Kind const&) {}

    /// A visitor of Kind has its visit called; for a kind without visitors nothing is reachable.
    Core::OperationReturn performImpl(Core::VisitorDevice& visitor) override {
        return Core::DispatchVisit<KindVisitor<Kind>>(visitor, static_cast<Kind&>(*this));
    }
};

}  // namespace Schema
