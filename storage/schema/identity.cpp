#include "storage/schema/identity.h"

#include "common/any.h"
#include "sysmod/device_handle.h"

namespace Schema {

Common::string decimalText(unsigned long long value) {
    return Common::AnyToString<unsigned long long>::text(value);
}

Common::string adapterKey(Common::string const& handle) {
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    return table[Core::SysMod::UniqueKey].empty() ? table[Core::SysMod::NodePath]
                                                  : table[Core::SysMod::UniqueKey];
}

Common::string deviceKey(Common::string const& handle) {
    // Of a CSMI route the address alone: the phy before it is another one after recabling.
    Common::string const address = Core::SysMod::getSasAddress(handle);
    if (!address.empty()) return address;
    Core::SysMod::PropertyTable table;
    Core::SysMod::toPropertyTable(handle, table);
    if (!table[Core::SysMod::Route].empty()) return table[Core::SysMod::Route];
    if (!table[Core::SysMod::IdentityBytes].empty()) return table[Core::SysMod::IdentityBytes];
    return adapterKey(handle);
}

Common::string runningIdentifier(char const* prefix, unsigned& counter) {
    return prefix + decimalText(counter++);
}

}  // namespace Schema
