#pragma once

#include <memory>
#include <vector>

#include "command/devices.h"
#include "flash/sep_flash_request.h"
#include "flash/sep_flash_threadable.h"
#include "flash/sep_products.h"

namespace Operations {

/// Pauses or resumes what a controller does in the background; nobody looks at the result.
void pauseController(BMICDevice& controller, bool disablesHotplug);
void resumeController(BMICDevice& controller, bool disablesHotplug);

/// One flash of enclosure processors behind an adapter: makes the flash objects, flashes, resets, and sums
/// up. Lives for the run; `request` and the adapter outlive it.
class SepFlashRun {
  public:
    /// `adapter` is asked to look for devices after a reset.
    SepFlashRun(SepFlashRequest const& request, bool behindController, SCSIDevice& adapter);

    void flashSerially();
    void flashInParallel();
    Core::OperationReturn result() const;

  private:
    using FlashObjects = std::vector<std::unique_ptr<SEPFlashThreadable>>;
    /// Those in [first, last) of the objects.
    struct Range {
        FlashObjects::iterator first;
        FlashObjects::iterator last;
    };

    void makeObjects();
    void startThreads(Range batch);
    void reset(Range objects);
    Core::OperationReturn sumUp(FlashObjects::const_iterator first, FlashObjects::const_iterator last) const;

    SepFlashRequest const& m_request;
    bool m_behindController;
    SCSIDevice& m_adapter;
    FlashProductInfo m_info;
    FlashObjects m_objects;
};

}  // namespace Operations
