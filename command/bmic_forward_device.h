#pragma once

#include "command/devices.h"

// A device that passes every BMIC call on to the controller above it. Whoever mixes it in tells where that
// is; without one every call gives 0 (false), and a request tells that it wasn't delivered.
class BMICForwardDevice : public BMICDevice {
  public:
    bool isRemote() const override;
    unsigned short maxLogicalUnits() const override;
    unsigned short maxPhysicalUnits() const override;
    bool sendBMICCommand(Interface::SysMod::Command::BMICRequest& request) const override;
    unsigned int readSizeFromCacheFor(unsigned char const& commandByte) override;
    void WriteSizeToCacheFor(unsigned char const& commandByte, unsigned int const& size) override;

  protected:
    // The parent as a BMIC device, borrowed for the one call; null without a parent, when the parent is not
    // present, or when it is no BMIC device.
    virtual BMICDevice* forwardTarget() const = 0;
};
