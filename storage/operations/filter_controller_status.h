#pragma once

#include "core/filter.h"

namespace Operations {

/// Admits a controller whose status is OK and which is present. Refuses one that has no status yet.
class FilterControllerStatusNoEncryptionLockoutCheck : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// The same, and refuses a controller that its encryption has locked.
class FilterControllerStatus : public FilterControllerStatusNoEncryptionLockoutCheck {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Refuses a controller that runs as a plain adapter, or will after the next restart.
class FilterControllerStatusHBAMode : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

}  // namespace Operations
