#pragma once

#include "core/named_operation.h"
#include "core/tolkmod.h"

namespace Operations {

/// Admits the controllers of this machine, as opposed to those reached through another.
class FilterLocalController : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Brings a controller's part of the tree up to date. ATTR_NAME_REENUMERATE_TYPE says which:
///   _DEFAULT   all of it, also without the argument
///   _LOGICAL   arrays and what is below them are made anew; physical devices stay as they are
///   _PHYSICAL  the physical devices right below the controller, and with them all below, are made anew, by
///              the discoveries that are switched on; the logical side stays
/// Devices that are made anew are other objects than before: pointers to the old ones hold stale devices.
/// A step that fails makes the result ATTR_VALUE_STATUS_FAILURE, the others run all the same.
/// The steps run under the device's lock alone; perform it from no operation of a reenumeration.
class WriteStorageReenumerate
    : public Core::NamedOperation<Interface::TOLKMod::Device::OPERATION_WRITE_REENUMERATE,
                                  Core::DeviceOperation::eWrite, FilterLocalController> {
  public:
    using Core::DeviceOperation::visit;
    using NamedOperation::visit;
    Core::OperationReturn visit(Core::Device& device) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;
};

}  // namespace Operations
