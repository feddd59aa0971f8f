#pragma once

#include <cstdint>

#include "common/string.h"
#include "core/tolkmod.h"
#include "sysmod/requests.h"

// The outcome of a BMIC or SCSI command, and the texts that stand for outcomes.
//
// Two process-wide lists of descriptions, filled with the defaults on first use and extended by modules at
// their start-up. No lock: extend them before commands run on other threads.
class SCSIStatus {
  public:
    static constexpr char const* DEFAULT_SUCCESS =
        Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_SUCCESS;
    static constexpr char const* DEFAULT_FAILURE =
        Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_FAILURE;
    static constexpr char const* DEFAULT_COMMUNICATION_ERROR = "ATTR_VALUE_STATUS_COMMUNICATION_ERROR";

    // Wildcards of a description. Mind that a command status of 0x00FF is no wildcard: it means exactly
    // that status. Two modules add rows with it, and they stay that narrow.
    static constexpr std::uint16_t ANY_COMMAND_STATUS = 0xFFFF;
    static constexpr std::uint8_t ANY_BYTE = 0xFF;

    // False only when the transport itself failed; then i32LowLevelStatus() says why.
    bool isDelivered() const { return m_delivered; }
    std::int32_t i32LowLevelStatus() const { return m_i32LowLevelStatus; }
    std::uint16_t wCommandStatus() const { return m_wCommandStatus; }
    std::uint8_t bScsiStatus() const { return m_bScsiStatus; }
    std::uint8_t bSenseKey() const { return m_bSenseKey; }
    std::uint8_t bASC() const { return m_bASC; }
    std::uint8_t bASCQ() const { return m_bASCQ; }

    // An entry matches, or the command was not delivered.
    bool hasStatusDescription() const;
    // The text of the first matching entry, in order of addition; without one DEFAULT_FAILURE, or
    // DEFAULT_COMMUNICATION_ERROR for a command that was not delivered.
    Common::string statusDescription() const;

    // Adds an entry behind the others; an earlier one of the same key goes.
    static void AddStatusDescription(std::uint16_t commandStatus, std::uint8_t scsiStatus,
                                     std::uint8_t senseKey, std::uint8_t asc, std::uint8_t ascq,
                                     Common::string const& text);
    static void AddLowLevelStatusDescription(std::int32_t lowLevelStatus, Common::string const& text);
    // For tests only: back to the defaults.
    static void ForgetStatusDescriptions();

  protected:
    ~SCSIStatus() = default;

    // Good, all else zero.
    void ResetStatus() { *this = SCSIStatus(); }

    // Takes the outcome out of a request that came back. Returns what the command as a whole returns:
    // `sent` when the device reported nothing; otherwise true only for a data underrun (2) or overrun (3),
    // which are the normal end of a reply with its own size.
    template <class Request>
    bool TakeStatus(Request const& request, bool sent) {
        if (request.lowLevelStatus != 0) {
            m_i32LowLevelStatus = request.lowLevelStatus;
            m_delivered = false;
            return false;
        }
        if (request.commandStatus == 0 && request.scsiStatus == 0) return sent;
        m_wCommandStatus = request.commandStatus;
        m_bScsiStatus = request.scsiStatus;
        if (request.senseLength >= 2) TakeSense(request.senseBuffer);
        return m_wCommandStatus == Interface::SysMod::Command::DATA_UNDERRUN ||
               m_wCommandStatus == Interface::SysMod::Command::DATA_OVERRUN;
    }

  private:
    // `sense` is the buffer of SENSE_BUFFER_SIZE bytes that the command gave.
    void TakeSense(unsigned char const* sense);

    bool m_delivered = true;
    std::int32_t m_i32LowLevelStatus = 0;
    std::uint16_t m_wCommandStatus = 0;
    std::uint8_t m_bScsiStatus = 0;
    std::uint8_t m_bSenseKey = 0;
    std::uint8_t m_bASC = 0;
    std::uint8_t m_bASCQ = 0;
};
