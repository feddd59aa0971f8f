#pragma once

#include "common/string.h"
#include "core/device.h"

namespace Schema {

/// Two devices are one when they are of one type and have one identifier within their parent.
template <typename Kind>
bool isSameKindAndIdentity(Kind const& device, Core::Device const& other) {
    return dynamic_cast<Kind const*>(&other) != nullptr && device.toString() == other.toString();
}

/// Publishes one attribute on a device; an empty text leaves it as it is.
inline void publish(Core::Device& device, char const* name, Core::AttributeValue const& value) {
    device.Publish(device, Common::pair<Common::string, Core::AttributeValue>(name, value));
}

}  // namespace Schema
