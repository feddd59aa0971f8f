#include "command/concrete_devices.h"

#include <cstdio>

#include "command/cache.h"
#include "command/commandmod.h"
#include "command/qrth_scan.h"
#include "common/debug_logger.h"
#include "common/timer.h"

namespace {

constexpr int LEVEL_BMIC = 16;

// The seconds that a command took, as the log has them.
struct Seconds {
    explicit Seconds(Common::Synchronization::Timer const& timer) {
        std::snprintf(text, sizeof(text), "%f", timer.elapsedSeconds());
    }

    char text[64];
};

}  // namespace

ConcreteBMICDevice::ConcreteBMICDevice(Common::string const& handle, bool const& remote,
                                       unsigned short const& maxLogicalUnits,
                                       unsigned short const& maxPhysicalUnits)
    : m_handle(handle),
      m_isRemote(remote),
      m_maxLogicalUnits(maxLogicalUnits),
      m_maxPhysicalUnits(maxPhysicalUnits) {}

ConcreteBMICDevice& ConcreteBMICDevice::operator=(ConcreteBMICDevice const& other) {
    m_handle = other.m_handle;
    m_isRemote = other.m_isRemote;
    m_maxLogicalUnits = other.m_maxLogicalUnits;
    m_maxPhysicalUnits = other.m_maxPhysicalUnits;
    return *this;
}

bool ConcreteBMICDevice::sendBMICCommand(Interface::SysMod::Command::BMICRequest& request) const {
    Common::Synchronization::Timer const timer;
    bool const sent = ProcessBMICCommand(m_handle, request);
    if (Interface::CommandMod::profilingEnabled()) {
        Common::DebugLogger::Log(LEVEL_BMIC, "BMIC Opcode 0x%02X took %s seconds", request.commandByte,
                                 Seconds(timer).text);
    }
    return sent && request.scsiStatus == 0;
}

unsigned int ConcreteBMICDevice::readSizeFromCacheFor(unsigned char const& commandByte) {
    auto const found = m_sizes.find(commandByte);
    return found != m_sizes.end() ? found->second : 0;
}

void ConcreteBMICDevice::WriteSizeToCacheFor(unsigned char const& commandByte, unsigned int const& size) {
    m_sizes.insert({commandByte, size});
}

bool ConcreteSCSIDevice::sendSCSICommand(Interface::SysMod::Command::SCSIRequest& request) const {
    Common::Synchronization::Timer const timer;
    bool const sent = ProcessSCSICommand(m_handle, request);
    if (Interface::CommandMod::profilingEnabled()) {
        unsigned char const operationCode =
            request.cdb != nullptr && request.cdbLength != 0 ? request.cdb[0] : 0;
        Common::DebugLogger::LogCommand("SCSI Command 0x%02X took %s seconds", operationCode,
                                        Seconds(timer).text);
    }
    return sent && request.scsiStatus == 0;
}

bool ConcreteSCSIDevice::rescanScsiBus() const {
    if (!ProcessRegNewDisk(m_handle)) return false;
    ConcreteSCSIDevice device(m_handle);
    QRTHScan scan;
    return scan(device);
}

bool ConcreteATADevice::sendATACommand(Interface::SysMod::Command::ATARequest& request) const {
    Common::Synchronization::Timer const timer;
    bool const sent = ProcessATACommand(m_handle, request);
    if (Interface::CommandMod::profilingEnabled()) {
        Common::DebugLogger::LogCommand("ATA Command took %s seconds", Seconds(timer).text);
    }
    return sent;
}

bool ConcreteCSMIDevice::sendCSMICommand(Interface::SysMod::Command::CSMIRequest& request) const {
    Common::Synchronization::Timer const timer;
    bool const sent = ProcessCSMICommand(m_handle, request);
    if (Interface::CommandMod::profilingEnabled()) {
        Common::DebugLogger::LogCommand("CSMI Command took %s seconds", Seconds(timer).text);
    }
    return sent;
}
