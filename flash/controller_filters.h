#pragma once

#include "core/filter.h"

namespace Operations {

/// Refuses a controller that isn't present.
class FilterPresence : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Refuses a controller whose firmware is locked by encryption, and one that isn't present. It looks at no
/// status: firmware is what mends a controller that isn't OK.
class FilterFirmwareLock : public FilterPresence {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Refuses a controller without a second ROM image.
class FilterRecoveryRom : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Admits the device types whose background activity can be paused.
class FilterBackgroundActivity : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

}  // namespace Operations
