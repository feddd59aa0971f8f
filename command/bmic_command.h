#pragma once

#include "command/devices.h"
#include "command/scsi_status.h"

// A controller management command. It lives for one operation on the stack and owns its buffer; run it with
// command(device), or through DeviceCommandReturn::executeCommand to have the outcome filed.
class BmicCommand : public SCSIStatus {
  public:
    static constexpr unsigned char DEFAULT_MAX_RETRIES = 60;
    static constexpr unsigned int RETRY_WAIT_MILLISECONDS = 2000;

    virtual ~BmicCommand() = default;

    // Sends the command and, while the device answers that it needs a moment (unit attention, or not ready
    // or an illegal request with ASC 4), sends it again every two seconds, at most the maximum retries more.
    // True when it succeeded, underrun and overrun included. Data is post-processed whatever happened, so
    // don't look into the buffer of a failed command.
    bool operator()(BMICDevice& device);

    // Bytes that came with the last reply. Behind them the buffer holds what was there before, zeros at
    // first.
    unsigned int receivedLength() const { return m_receivedLength; }

    // Look the reply up in the reply cache, but don't store it there.
    void NoCache(bool const& noCache) { m_noCache = noCache; }
    // Neither look it up nor store it.
    void PassThrough(bool const& passThrough) { m_passThrough = passThrough; }
    void SelectiveCache(bool const& selectiveCache) { m_selectiveCache = selectiveCache; }
    // In seconds. 0, the default, leaves it to the pass-through, which clamps it anyway.
    void SetTimeout(unsigned int const& timeout) { m_timeout = timeout; }
    // 0: the command is sent once, whatever comes.
    void SetNumMaxRetries(unsigned char const& maxRetries) { m_maxRetries = maxRetries; }

  protected:
    // Before the first send; once however often the command is sent.
    virtual void PreProcessCommand() {}
    // Fills in the request's command fields and buffer and sends it, as often as it takes. The transfer
    // type, command byte, details, unit, buffer and override are this function's; the rest is filled in.
    virtual bool sendCommand(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request) = 0;
    // After the last send, even if it failed.
    virtual void PostProcessCommand() {}

  private:
    bool sendWithRetries(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request);

    bool m_noCache = false;
    bool m_passThrough = false;
    bool m_selectiveCache = false;
    unsigned int m_timeout = 0;
    unsigned int m_receivedLength = 0;
    unsigned char m_maxRetries = DEFAULT_MAX_RETRIES;
};
