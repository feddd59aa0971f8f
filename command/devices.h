#pragma once

// What commands run against. Operations see these interfaces as an extra base of a schema device, or as a
// short-lived concrete object (command/concrete_devices.h).

#include "sysmod/requests.h"

class BMICDevice {
  public:
    // Reached through another controller; some commands turn their address field for it.
    virtual bool isRemote() const = 0;
    virtual unsigned short maxLogicalUnits() const = 0;
    virtual unsigned short maxPhysicalUnits() const = 0;
    // True when the request was delivered and the SCSI status is good; what happened stands in the request.
    virtual bool sendBMICCommand(Interface::SysMod::Command::BMICRequest& request) const = 0;
    // The size memo: what the replies to a command byte were found to measure on this device. 0: unknown.
    virtual unsigned int readSizeFromCacheFor(unsigned char const& commandByte) = 0;
    virtual void WriteSizeToCacheFor(unsigned char const& commandByte, unsigned int const& size) = 0;
    virtual ~BMICDevice() = default;
};

class SCSIDevice {
  public:
    // As sendBMICCommand.
    virtual bool sendSCSICommand(Interface::SysMod::Command::SCSIRequest& request) const = 0;
    // Most bytes that one command may carry; 0: no limit.
    virtual unsigned int bufferSizeLimit() const = 0;
    // Has the device and its driver look for new devices.
    virtual bool rescanScsiBus() const = 0;
    virtual ~SCSIDevice() = default;
};

class ATADevice {
  public:
    virtual bool sendATACommand(Interface::SysMod::Command::ATARequest& request) const = 0;
    virtual ~ATADevice() = default;
};

class CSMIDevice {
  public:
    virtual bool sendCSMICommand(Interface::SysMod::Command::CSMIRequest& request) const = 0;
    virtual ~CSMIDevice() = default;
};
