#pragma once

#include "command/concrete_devices.h"
#include "common/cloneable.h"
#include "common/local_static_allocator.h"
#include "core/device_composite.h"
#include "core/operation_registry.h"
#include "storage/schema/visitors.h"

namespace Schema {

/// A controller that is on the bus and doesn't answer. No commands, no children.
class FailedArrayController
    : public Common::CloneableInherit<Core::Device, Common::shared_ptr<Core::Device>, FailedArrayController>,
      public Core::DeviceOperationRegistry<FailedArrayController>,
      public Common::LocalStaticAllocator<FailedArrayController, 3> {
  public:
    explicit FailedArrayController(Common::string const& handle);

    bool operator==(Core::Device const& other) const override;

  protected:
    /// No operation works on it.
    Core::OperationReturn performImpl(Core::VisitorDevice& visitor) override;
    Common::string toStringImpl() const override;

  private:
    Common::string m_handle;
};

/// A plain adapter: a SAS adapter that answers CSMI, or a function of the controller family's drivers that
/// shows no controller.
class HostBusAdapter : public Common::CloneableInherit<Core::DeviceComposite,
                                                       Common::shared_ptr<Core::Device>, HostBusAdapter>,
                       public ConcreteSCSIDevice,
                       public Core::DeviceOperationRegistry<HostBusAdapter>,
                       public Common::LocalStaticAllocator<HostBusAdapter, 1> {
  public:
    explicit HostBusAdapter(Common::string const& handle);

    bool operator==(Core::Device const& other) const override;

  protected:
    Core::OperationReturn performImpl(Core::VisitorDevice& visitor) override;
    Common::string toStringImpl() const override;
};

}  // namespace Schema
