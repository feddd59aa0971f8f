#include "sysmod/command_log.h"

#include <algorithm>
#include <cstdio>

#include "common/debug_logger.h"

namespace Core::SysMod::CommandLog {

using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::SCSIRequest;
using Interface::SysMod::Command::toText;

namespace {

constexpr std::uint32_t LONGEST_BLOCK = 16;

char const* outcome(bool sent) {
    return sent ? "OK" : "Failed";
}

}  // namespace

bool CheckCommandLogActive() {
    return Common::DebugLogger::QueryIsLoggable();
}

Common::string subject(BMICRequest const& request) {
    char text[48];
    std::snprintf(text, sizeof text, "BMIC(0x%02X 0x%08X)", static_cast<unsigned>(request.commandByte),
                  static_cast<unsigned>(request.details));
    return text;
}

Common::string subject(char const* prefix, SCSIRequest const& request) {
    Common::string text(prefix);
    text += "(";
    std::uint32_t const length = request.cdb == nullptr ? 0 : std::min(request.cdbLength, LONGEST_BLOCK);
    for (std::uint32_t i = 0; i < length; ++i) {
        char digits[8];
        std::snprintf(digits, sizeof digits, i == 0 ? "%02X" : " %02X",
                      static_cast<unsigned>(request.cdb[i]));
        text += digits;
    }
    text += ")";
    return text;
}

Common::string csmiSubject(unsigned phy, Common::string const& sasAddress) {
    char text[32];
    std::snprintf(text, sizeof text, "CSMIPT(%u) Address:", phy);
    return Common::string(text) + sasAddress;
}

void beginBMIC(BMICRequest const& request) {
    bool const inBlocks = request.cdbLengthOverride != 0;
    Common::DebugLogger::Log(BMIC, "%s Dir:%s,DBS:%u%s", subject(request).c_str(),
                             toText(request.transferType), static_cast<unsigned>(request.dataLength),
                             inBlocks ? "(Blocks)" : "");
}

void endBMIC(BMICRequest const& request, bool sent) {
    Common::DebugLogger::Log(BMIC, "%s Status:%s", subject(request).c_str(), outcome(sent));
}

void beginSCSI(char const* prefix, SCSIRequest const& request) {
    Common::DebugLogger::Log(SCSI, "%s Dir:%s,DBS:%u,SBS:%u", subject(prefix, request).c_str(),
                             toText(request.transferType), static_cast<unsigned>(request.dataLength),
                             static_cast<unsigned>(request.senseLength));
}

void endSCSI(char const* prefix, SCSIRequest const& request, bool sent) {
    Common::DebugLogger::Log(
        SCSI, "%s Status:%s,bStatus:0x%02X,LLCode:0x%08X", subject(prefix, request).c_str(), outcome(sent),
        static_cast<unsigned>(request.scsiStatus), static_cast<unsigned>(request.lowLevelStatus));
}

void beginCSMI(Common::string const& subjectText, SCSIRequest const& request) {
    Common::DebugLogger::Log(CSMI, "%s,Dir:%s,DBS:%u,SBS:%u", subjectText.c_str(),
                             toText(request.transferType), static_cast<unsigned>(request.dataLength),
                             static_cast<unsigned>(request.senseLength));
}

void endCSMI(Common::string const& subjectText, SCSIRequest const& request, bool sent) {
    Common::DebugLogger::Log(CSMI, "%s,Status:%s,DBS:%u,bStatus:0x%02X,LLCode:0x%08X", subjectText.c_str(),
                             outcome(sent), static_cast<unsigned>(request.dataLength),
                             static_cast<unsigned>(request.scsiStatus),
                             static_cast<unsigned>(request.lowLevelStatus));
}

}  // namespace Core::SysMod::CommandLog
