#pragma once

#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Admits the root and array controllers.
class FilterCacheOwner : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Works the reply cache (command/cache.h).
///
/// On the root: ATTR_NAME_COMMAND_CACHE turns all of it on or off. Turning it on also needs
/// ATTR_NAME_DEVICE_CACHE_DEFAULT, which tells whether devices found from then on have theirs on; they
/// inherit it.
/// On a controller: ATTR_NAME_DEVICE_CACHE turns its own cache on or off, ATTR_NAME_CLEAR_DEVICE_CACHE with
/// its value _TRUE empties it. One of the two is needed.
///
/// A missing argument or an unknown value leaves everything as it was.
class WriteCacheSettings
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_WRITE_CACHE_SETTINGS,
                                  Core::DeviceOperation::eWrite, FilterCacheOwner, Schema::VisitorModRoot,
                                  Schema::VisitorArrayController> {
  public:
    using Core::DeviceOperation::visit;
    using NamedOperation::visit;
    Core::OperationReturn visit(Schema::ModRoot& root) override;
    Core::OperationReturn visit(Schema::ArrayController& controller) override;
    Common::shared_ptr<Core::Capability> getCapabilityPtr(Common::shared_ptr<Core::Device> device) override;

  private:
    bool readSwitch(char const* argument, char const* on, char const* off, bool& value,
                    Core::OperationReturn& result) const;
};

}  // namespace Operations
