#include "command/bmic_forward_device.h"

bool BMICForwardDevice::isRemote() const {
    BMICDevice const* const target = forwardTarget();
    return target != nullptr && target->isRemote();
}

unsigned short BMICForwardDevice::maxLogicalUnits() const {
    BMICDevice const* const target = forwardTarget();
    return target != nullptr ? target->maxLogicalUnits() : 0;
}

unsigned short BMICForwardDevice::maxPhysicalUnits() const {
    BMICDevice const* const target = forwardTarget();
    return target != nullptr ? target->maxPhysicalUnits() : 0;
}

bool BMICForwardDevice::sendBMICCommand(Interface::SysMod::Command::BMICRequest& request) const {
    BMICDevice const* const target = forwardTarget();
    if (target == nullptr) {
        request.lowLevelStatus = Interface::SysMod::Command::NOT_DELIVERED;
        return false;
    }
    return target->sendBMICCommand(request);
}

unsigned int BMICForwardDevice::readSizeFromCacheFor(unsigned char const& commandByte) {
    BMICDevice* const target = forwardTarget();
    return target != nullptr ? target->readSizeFromCacheFor(commandByte) : 0;
}

void BMICForwardDevice::WriteSizeToCacheFor(unsigned char const& commandByte, unsigned int const& size) {
    BMICDevice* const target = forwardTarget();
    if (target != nullptr) target->WriteSizeToCacheFor(commandByte, size);
}
