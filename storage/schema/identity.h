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

Common::string decimalText(unsigned long long value);

/// The key that stays with an adapter across discoveries: its place on the bus, or its node without one.
Common::string adapterKey(Common::string const& handle);

/// The key that tells a device behind an adapter from the others behind it, and stays with it: its address,
/// its route, or its identity; without all of them its adapter's key.
Common::string deviceKey(Common::string const& handle);

/// The next identifier of a type whose devices have neither place nor number: the prefix and a running
/// number of `counter`.
Common::string runningIdentifier(char const* prefix, unsigned& counter);

}  // namespace Schema
