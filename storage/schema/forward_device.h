#pragma once

#include "command/bmic_forward_device.h"

namespace Schema {

/// A device that passes management commands on to its parent, which may pass them on in turn. The parent
/// counts while it is in the tree: without one, with a stale one, or with one that takes no management
/// commands, every call gives 0 (false).
class ForwardDevice : public BMICForwardDevice {
  protected:
    BMICDevice* forwardTarget() const override;
};

}  // namespace Schema
