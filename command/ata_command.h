#pragma once

#include "command/devices.h"
#include "common/string.h"

// An ATA command, sent once. There is no outcome record: read the result registers.
class ATACommand {
  public:
    static constexpr unsigned int RESULT_REGISTER_COUNT = 8;

    virtual ~ATACommand() = default;

    // True when the command was delivered.
    bool operator()(ATADevice& device);

    // The eight result registers as two-digit hexadecimal numbers with a blank between them, for
    // Interface::TOLKMod::OperationReturn::ATTR_NAME_ATA_RESULT_REGISTERS.
    Common::string ResultRegisters() const;

    // As those of BmicCommand.
    void NoCache(bool const& noCache) { m_noCache = noCache; }
    void PassThrough(bool const& passThrough) { m_passThrough = passThrough; }
    void SelectiveCache(bool const& selectiveCache) { m_selectiveCache = selectiveCache; }
    void SetTimeout(unsigned int const& timeout) { m_timeout = timeout; }

  protected:
    // Only after a send that succeeded.
    virtual void PostProcessCommand() {}
    // Fills in transfer type, taskfile and data, and sends the request.
    virtual bool sendCommand(ATADevice& device, Interface::SysMod::Command::ATARequest& request) = 0;

  private:
    unsigned char m_resultRegisters[RESULT_REGISTER_COUNT] = {};
    bool m_noCache = false;
    bool m_passThrough = false;
    bool m_selectiveCache = false;
    unsigned int m_timeout = 0;
};
