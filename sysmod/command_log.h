#pragma once

#include "common/string.h"
#include "sysmod/requests.h"

/// Begin and end lines of every command, for streams that ask for their categories.
namespace Core::SysMod::CommandLog {

/// Level bits of the categories.
inline constexpr int BMIC = 16;
inline constexpr int SCSI = 32;
inline constexpr int CSMI = 64;

/// Whether anybody listens; formatting is skipped otherwise.
bool CheckCommandLogActive();

/// The text that a command's begin and end lines share, for instance "BMIC(0x11 0x00000000)".
Common::string subject(Interface::SysMod::Command::BMICRequest const& request);
/// `prefix` is "SCSI" or "SCSIPT".
Common::string subject(char const* prefix, Interface::SysMod::Command::SCSIRequest const& request);
/// A pass-through to a SAS address by way of a phy.
Common::string csmiSubject(unsigned phy, Common::string const& sasAddress);

void beginBMIC(Interface::SysMod::Command::BMICRequest const& request);
void endBMIC(Interface::SysMod::Command::BMICRequest const& request, bool sent);
void beginSCSI(char const* prefix, Interface::SysMod::Command::SCSIRequest const& request);
void endSCSI(char const* prefix, Interface::SysMod::Command::SCSIRequest const& request, bool sent);
void beginCSMI(Common::string const& subjectText, Interface::SysMod::Command::SCSIRequest const& request);
void endCSMI(Common::string const& subjectText, Interface::SysMod::Command::SCSIRequest const& request,
             bool sent);

}  // namespace Core::SysMod::CommandLog
