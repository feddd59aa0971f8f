#pragma once

#include "command/concrete_devices.h"
#include "storage/schema/node.h"

namespace Schema {

/// A controller that is on the bus and doesn't answer. No commands, no children, and no operation works on
/// it.
class FailedArrayController : public Node<FailedArrayController, Core::Device, 3> {
  public:
    explicit FailedArrayController(Common::string const& handle);

  protected:
    Common::string toStringImpl() const override;

  private:
    Common::string m_handle;
};

/// A plain adapter: a SAS adapter that answers CSMI, or a function of the controller family's drivers that
/// shows no controller.
class HostBusAdapter : public Node<HostBusAdapter, Core::DeviceComposite, 1, ConcreteSCSIDevice> {
  public:
    explicit HostBusAdapter(Common::string const& handle);

  protected:
    Common::string toStringImpl() const override;
};

}  // namespace Schema
