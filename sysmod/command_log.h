#pragma once

#include "common/string.h"
#include "sysmod/command_handlers.h"
#include "sysmod/device_handle.h"
#include "sysmod/requests.h"

/// A begin and an end line of every management and SCSI request and of every pass-through that carries one,
/// for streams that ask for their categories. Each object writes its begin line when it is made.
namespace Core::SysMod::CommandLog {

/// Level bits of the categories.
inline constexpr int BMIC = 16;
inline constexpr int SCSI = 32;
inline constexpr int CSMI = 64;

/// Whether anybody listens; formatting is skipped otherwise.
bool CheckCommandLogActive();

/// "BMIC(0x11 0x00000000) Dir:In,DBS:512", "BMIC(0x11 0x00000000) Status:OK".
class BMICLines {
  public:
    explicit BMICLines(Interface::SysMod::Command::BMICRequest const& request);
    void end(bool sent) const;

  private:
    Common::string m_subject;  ///< empty when nobody listens
};

/// "SCSI(12 00 00)", "SCSI(12 00 00) Status:OK,bStatus:0x00,LLCode:0x00000000".
class SCSILines {
  public:
    explicit SCSILines(Interface::SysMod::Command::SCSIRequest const& request);
    void end(bool sent, Interface::SysMod::Command::SCSIRequest const& request) const;

  private:
    Common::string m_subject;
};

/// "SCSIPT(12 00 00) Dir:In,DBS:95,SBS:32"; the end line as a SCSI request's.
class PassthruLines {
  public:
    PassthruLines(DataSpan block, Interface::SysMod::Command::EnTransferType transferType,
                  std::uint32_t dataSize, std::uint32_t senseSize);
    void end(bool sent, std::uint8_t scsiStatus, int lowLevelError) const;

  private:
    Common::string m_subject;
};

/// "CSMIPT(9) Address:5000C50011223344,Dir:In,DBS:95,SBS:32", "...
/// ,Status:OK,DBS:95,bStatus:0x00,LLCode:...".
class SspLines {
  public:
    SspLines(CSMIAddress const& address, Interface::SysMod::Command::EnTransferType transferType,
             std::uint32_t dataSize, std::uint32_t senseSize);
    void end(bool sent, std::uint32_t dataSize, std::uint8_t scsiStatus, int lowLevelError) const;

  private:
    Common::string m_subject;
};

}  // namespace Core::SysMod::CommandLog
