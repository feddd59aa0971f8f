#pragma once

#include "core/filter.h"

namespace Operations {

/// Admits enclosure processors that can be flashed, and adapters whose processors can. A controller's own
/// firmware must be new enough to pass the commands on.
class WriteFlashSEPFirmwareFilter : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Admits enclosure processors that can be reset.
class WriteResetSEPFilter : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

}  // namespace Operations
