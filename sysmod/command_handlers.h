#pragma once

/// Short-lived senders, made for one command each. Every Send... returns true when the kernel took the
/// request and answered without a system error; `lowLevelError()` then is 0, else the errno, or the open
/// error of the node.

#include <cstdint>

#include "sysmod/csmi_phy_records.h"
#include "sysmod/device_handle.h"
#include "sysmod/kernel_records.h"
#include "sysmod/open_device_node.h"
#include "sysmod/requests.h"

namespace Core::SysMod {

/// A buffer that a handler borrows for one call.
struct DataSpan {
    unsigned char* bytes = nullptr;
    std::uint32_t size = 0;
};

/// SCSI command blocks by SG_IO, and the single gate to ioctl that all handlers share.
class SCSICommandHandler {
  public:
    /// `ioctl(fd, request)` with a null argument, else `ioctl(fd, request, argument)`. A negative result
    /// stores errno in `lowLevelError` and returns false.
    static bool SendIOCTL(int descriptor, unsigned long request, void* argument, int& lowLevelError);

    /// A command sent this way counts as good unless ioctl itself fails: nothing of the record is read back.
    bool SendSCSICommand(OpenDeviceNode const& node, Interface::SysMod::Command::EnTransferType transferType,
                         DataSpan block, std::uint32_t timeout, DataSpan data, DataSpan sense);

    int lowLevelError() const { return m_lowLevelError; }

  private:
    int m_lowLevelError = 0;
};

/// What a controller pass-through brings back.
struct PassthruStatus {
    std::uint8_t scsiStatus = 0;
    std::uint16_t commandStatus = 0;
    std::uint32_t residual = 0;  ///< bytes of the buffer that weren't moved
};

/// The controller family's pass-through (constructed with true) and CSMI proper (constructed with false).
class CSMICommandHandler {
  public:
    static constexpr std::uint32_t REPLY_SIZE = 712;

    explicit CSMICommandHandler(bool controllerPassthru) : m_controllerPassthru(controllerPassthru) {}

    /// One command block to a logical unit behind the controller's driver. Time-outs are clamped to 30 to
    /// 600 seconds. Up to 32 bytes of sense data go to `sense`.
    bool SendQRTHPassthruCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                 Interface::SysMod::Command::EnTransferType transferType, DataSpan block,
                                 std::uint32_t timeout, DataSpan data, DataSpan sense,
                                 PassthruStatus& status);

    /// A task management message; reports the command status only.
    bool SendQRTHPassthruMessage(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                                 Interface::SysMod::Command::EnTransferType transferType, DataSpan block,
                                 std::uint32_t timeout, std::uint16_t& commandStatus);

    /// One command block to a SAS device behind the adapter. `dataLength` comes back as the number of bytes
    /// that the device returned.
    bool SendCSMISSPPassthruCommand(OpenDeviceNode const& node, CSMIAddress const& address,
                                    Interface::SysMod::Command::EnTransferType transferType, DataSpan block,
                                    DataSpan data, std::uint32_t& dataLength, DataSpan sense,
                                    std::uint8_t& scsiStatus);

    /// What the adapter's phys are attached to. Fills `record`; `returnCode` is the header's.
    bool SendPhyInfoCommand(OpenDeviceNode const& node, CsmiPhyInfo& record, std::uint32_t& returnCode);

    /// One SMP request frame (without its CRC, at most CsmiSmpPassthru::FRAME bytes) to an expander.
    /// `response` receives what the expander returned, zero behind it; its size comes back as the number of
    /// bytes returned.
    bool SendSMPPassthruCommand(OpenDeviceNode const& node, CSMIAddress const& address, DataSpan frame,
                                DataSpan& response, std::uint32_t& returnCode);

    /// Pauses (0xCC770031) or resumes (0xCC770032) the background activity of a device.
    bool SendPauseBackgroundActivityCommand(OpenDeviceNode const& node, CSMIAddress const& address,
                                            bool pause);

    /// Fills the header of `record` (`size` bytes in all), sends it and hands back the header's return code.
    bool SendCSMICommand(OpenDeviceNode const& node, unsigned long request, unsigned char* record,
                         std::uint32_t size, std::uint32_t& returnCode);

    /// Requests into the handler's own reply buffer.
    bool SendHBAControllerConfigCommand(OpenDeviceNode const& node, std::uint32_t& returnCode);
    bool SendDriverInfoCommand(OpenDeviceNode const& node, std::uint32_t& returnCode);
    bool SendControllerStatusCommand(OpenDeviceNode const& node, std::uint32_t& returnCode);
    /// Clears the reply and returns false: the request has no meaning on this system.
    bool SendSAControllerConfigCommand(OpenDeviceNode const& node, std::uint32_t& returnCode);

    unsigned char const* reply() const { return m_reply; }
    int lowLevelError() const { return m_lowLevelError; }
    bool isControllerPassthru() const { return m_controllerPassthru; }

  private:
    bool carryCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                      Interface::SysMod::Command::EnTransferType transferType, DataSpan block,
                      std::uint32_t timeout, DataSpan data, DataSpan sense, PassthruStatus& status);
    bool carryMessage(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                      Interface::SysMod::Command::EnTransferType transferType, DataSpan block,
                      std::uint32_t timeout, std::uint16_t& commandStatus);
    bool carrySSP(OpenDeviceNode const& node, CSMIAddress const& address,
                  Interface::SysMod::Command::EnTransferType transferType, DataSpan block, DataSpan data,
                  std::uint32_t& dataLength, DataSpan sense, std::uint8_t& scsiStatus);
    bool sendReplyRequest(OpenDeviceNode const& node, unsigned long request, std::uint32_t size,
                          std::uint32_t& returnCode);

    int m_lowLevelError = 0;
    bool m_controllerPassthru;
    alignas(8) unsigned char m_reply[REPLY_SIZE] = {};
};

/// Controller management commands: ten-byte command blocks by the controller's pass-through.
class BMICCommandHandler {
  public:
    bool SendBMICCommand(OpenDeviceNode const& node, std::uint8_t const (&address)[8],
                         Interface::SysMod::Command::BMICRequest& request);
    int lowLevelError() const { return m_lowLevelError; }

  private:
    int m_lowLevelError = 0;
};

/// ATA taskfiles. This platform has no native ATA path: they travel as ATA PASS-THROUGH (16) of SAT.
class ATACommandHandler {
  public:
    static constexpr std::uint32_t BLOCK_SIZE = 16;

    /// Sends nothing and returns false; records the node's open error when there is one.
    bool SendATACommand(OpenDeviceNode const& node, Interface::SysMod::Command::ATARequest& request);
    /// Makes the command block; refuses any other block size than 16.
    static bool ConvertToSCSIRequest(Interface::SysMod::Command::ATARequest const& request, DataSpan block);
    /// Takes the registers out of an ATA Status Return descriptor (SAT) in sense data, where there is one.
    static void TakeResultRegisters(DataSpan sense, Interface::SysMod::Command::ATARequest& request);
    int lowLevelError() const { return m_lowLevelError; }

  private:
    int m_lowLevelError = 0;
};

}  // namespace Core::SysMod
