#include "sysmod/command_log.h"

#include <algorithm>
#include <cstdio>

#include "common/conversion.h"
#include "common/debug_logger.h"

namespace Core::SysMod::CommandLog {

using Common::DebugLogger;
using Interface::SysMod::Command::BMICRequest;
using Interface::SysMod::Command::EnTransferType;
using Interface::SysMod::Command::SCSIRequest;
using Interface::SysMod::Command::toText;

namespace {

constexpr std::uint32_t LONGEST_BLOCK = 16;

char const* outcome(bool sent) {
    return sent ? "OK" : "Failed";
}

Common::string blockSubject(char const* prefix, DataSpan block) {
    std::uint32_t const length = block.bytes == nullptr ? 0 : std::min(block.size, LONGEST_BLOCK);
    return Common::string(prefix) + "(" + Conversion::arrayToString(block.bytes, length, " ") + ")";
}

void endSCSI(Common::string const& subject, bool sent, std::uint8_t scsiStatus, int lowLevelError) {
    if (!subject.empty()) {
        DebugLogger::Log(SCSI, "%s Status:%s,bStatus:0x%02X,LLCode:0x%08X", subject.c_str(), outcome(sent),
                         static_cast<unsigned>(scsiStatus), static_cast<unsigned>(lowLevelError));
    }
}

}  // namespace

bool CheckCommandLogActive() {
    return DebugLogger::QueryIsLoggable();
}

BMICLines::BMICLines(BMICRequest const& request) {
    if (!CheckCommandLogActive()) {
        return;
    }
    char text[48];
    std::snprintf(text, sizeof text, "BMIC(0x%02X 0x%08X)", static_cast<unsigned>(request.commandByte),
                  static_cast<unsigned>(request.details));
    m_subject = text;
    DebugLogger::Log(BMIC, "%s Dir:%s,DBS:%u%s", text, toText(request.transferType),
                     static_cast<unsigned>(request.dataLength),
                     request.cdbLengthOverride != 0 ? "(Blocks)" : "");
}

void BMICLines::end(bool sent) const {
    if (!m_subject.empty()) {
        DebugLogger::Log(BMIC, "%s Status:%s", m_subject.c_str(), outcome(sent));
    }
}

SCSILines::SCSILines(SCSIRequest const& request) {
    if (CheckCommandLogActive()) {
        m_subject = blockSubject("SCSI", {request.cdb, request.cdbLength});
        DebugLogger::Log(SCSI, "%s", m_subject.c_str());
    }
}

void SCSILines::end(bool sent, SCSIRequest const& request) const {
    endSCSI(m_subject, sent, request.scsiStatus, request.lowLevelStatus);
}

PassthruLines::PassthruLines(DataSpan block, EnTransferType transferType, std::uint32_t dataSize,
                             std::uint32_t senseSize) {
    if (CheckCommandLogActive()) {
        m_subject = blockSubject("SCSIPT", block);
        DebugLogger::Log(SCSI, "%s Dir:%s,DBS:%u,SBS:%u", m_subject.c_str(), toText(transferType),
                         static_cast<unsigned>(dataSize), static_cast<unsigned>(senseSize));
    }
}

void PassthruLines::end(bool sent, std::uint8_t scsiStatus, int lowLevelError) const {
    endSCSI(m_subject, sent, scsiStatus, lowLevelError);
}

SspLines::SspLines(CSMIAddress const& address, EnTransferType transferType, std::uint32_t dataSize,
                   std::uint32_t senseSize) {
    if (!CheckCommandLogActive()) {
        return;
    }
    char text[32];
    std::snprintf(text, sizeof text, "CSMIPT(%u) Address:", static_cast<unsigned>(address.phy));
    m_subject = Common::string(text) + Conversion::arrayToString(address.sasAddress, 8, "");
    DebugLogger::Log(CSMI, "%s,Dir:%s,DBS:%u,SBS:%u", m_subject.c_str(), toText(transferType),
                     static_cast<unsigned>(dataSize), static_cast<unsigned>(senseSize));
}

void SspLines::end(bool sent, std::uint32_t dataSize, std::uint8_t scsiStatus, int lowLevelError) const {
    if (!m_subject.empty()) {
        DebugLogger::Log(CSMI, "%s,Status:%s,DBS:%u,bStatus:0x%02X,LLCode:0x%08X", m_subject.c_str(),
                         outcome(sent), static_cast<unsigned>(dataSize), static_cast<unsigned>(scsiStatus),
                         static_cast<unsigned>(lowLevelError));
    }
}

}  // namespace Core::SysMod::CommandLog
