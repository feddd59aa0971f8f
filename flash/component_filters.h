#pragma once

#include "core/device.h"
#include "core/filter.h"

namespace Operations {

/// Refuses a drive that tells how it takes firmware and doesn't take it in pieces with offsets. SATA drives
/// are flashed another way, and drives of which nothing is told get the chance.
class FilterDriveFlash : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Admits drives in authenticated carriers, behind the controllers that pass firmware on to carriers.
class FilterDriveActiveCarrier : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Admits controllers that have a flash-backed write cache and pass firmware on to it.
class FilterFBWC : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

/// Admits controllers that reach memory on their I2C bus and have some there, which takes asking them.
class FilterNVRAM : public Core::Filter {
  protected:
    Core::FilterReturn applyImpl(Common::shared_ptr<Core::Device> device) const override;
};

}  // namespace Operations
