#pragma once

#include "command/controller_command.h"

// All encryption status is read by one command code; the page number in the address field tells what.
template <class Command, class T, std::uint32_t page>
class SenseEncryptionClass : public Command {
    static_assert(T::commandByte == 0x1E, "no encryption status page");

  protected:
    bool sendCommand(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request) override {
        this->SetDetails(page);
        return Command::sendCommand(device, request);
    }
};

template <class T, std::uint32_t page>
using SenseEncryptionPage = SenseEncryptionClass<SenseControllerCommand<T>, T, page>;

using SenseEncryptionLocalKEKCacheAttributes =
    SenseEncryptionPage<SenseEncryptionLocalKEKCacheAttributesTrait, 1>;
using SenseEncryptionRecoveryParams = SenseEncryptionPage<SetEncryptionRecoveryParamsTrait, 3>;
using SenseEncryptionBootPasswordStatus = SenseEncryptionPage<SenseEncryptionBootPasswordStatusTrait, 6>;
using SenseEncryptionIKEKStatus = SenseEncryptionPage<SenseEncryptionIKEKStatusTrait, 7>;
using SenseEncryptionBootStatus = SenseEncryptionPage<SenseEncryptionBootStatusTrait, 8>;
using SenseEncryptionPasswordStatus = SenseEncryptionPage<SenseEncryptionPasswordStatusTrait, 9>;
using SenseEncryptionKeyManagerStatus = SenseEncryptionPage<SenseEncryptionKeyManagerStatusTrait, 10>;
