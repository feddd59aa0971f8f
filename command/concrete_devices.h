#pragma once

#include "command/devices.h"
#include "common/map.h"
#include "common/string.h"

// Devices on a handle (sysmod/device_handle.h). They send through the reply cache and, while profiling, log
// the processor time that each command took.

class ConcreteBMICDevice : public BMICDevice {
  public:
    ConcreteBMICDevice(Common::string const& handle, bool const& remote,
                       unsigned short const& maxLogicalUnits, unsigned short const& maxPhysicalUnits);

    ConcreteBMICDevice(ConcreteBMICDevice const&) = default;
    // Takes over all but the memo: what this object learnt of its device stays.
    ConcreteBMICDevice& operator=(ConcreteBMICDevice const& other);

    bool isRemote() const override { return m_isRemote; }
    unsigned short maxLogicalUnits() const override { return m_maxLogicalUnits; }
    unsigned short maxPhysicalUnits() const override { return m_maxPhysicalUnits; }
    bool sendBMICCommand(Interface::SysMod::Command::BMICRequest& request) const override;
    // The memo lives as long as this object.
    unsigned int readSizeFromCacheFor(unsigned char const& commandByte) override;
    void WriteSizeToCacheFor(unsigned char const& commandByte, unsigned int const& size) override;

  private:
    Common::string m_handle;
    bool m_isRemote;
    unsigned short m_maxLogicalUnits;
    unsigned short m_maxPhysicalUnits;
    Common::map<unsigned char, unsigned int> m_sizes;
};

class ConcreteSCSIDevice : public SCSIDevice {
  public:
    explicit ConcreteSCSIDevice(Common::string const& handle) : m_handle(handle) {}

    bool sendSCSICommand(Interface::SysMod::Command::SCSIRequest& request) const override;
    unsigned int bufferSizeLimit() const override { return 0; }
    // The driver first, then the controller; the controller isn't asked when the driver can't be.
    bool rescanScsiBus() const override;

    Common::string const& handle() const { return m_handle; }
    void UpdateHandle(Common::string const& handle) { m_handle = handle; }

  private:
    Common::string m_handle;
};

class ConcreteATADevice : public ATADevice {
  public:
    explicit ConcreteATADevice(Common::string const& handle) : m_handle(handle) {}

    bool sendATACommand(Interface::SysMod::Command::ATARequest& request) const override;

    Common::string const& Handle() const { return m_handle; }
    void UpdateHandle(Common::string const& handle) { m_handle = handle; }

  private:
    Common::string m_handle;
};

class ConcreteCSMIDevice : public CSMIDevice {
  public:
    explicit ConcreteCSMIDevice(Common::string const& handle) : m_handle(handle) {}

    bool sendCSMICommand(Interface::SysMod::Command::CSMIRequest& request) const override;

    Common::string const& CSMIHandle() const { return m_handle; }

  private:
    Common::string m_handle;
};
