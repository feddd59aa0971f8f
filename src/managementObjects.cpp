#include "src/managementObjects.h"

#include "src/CLI.h"

NvramAccess* gblNvramAccess = nullptr;

namespace {

constexpr int REFUSED = -1;

bool isReachable(HMGMTOBJECT controller, char const* routine) {
    if (gblNvramAccess != nullptr && controller != nullptr) {
        return true;
    }
    cli.logVerbose("%s: no management object, expected a handle from getHandle\n", routine);
    return false;
}

}  // namespace

HMGMTOBJECT getHandle(std::string const& serial) {
    if (gblNvramAccess == nullptr) {
        cli.logVerbose("InfoMgrOpenObject failed");
        return nullptr;
    }
    return gblNvramAccess->open(serial);
}

std::string SenseSubsystemInformation(HMGMTOBJECT controller) {
    return isReachable(controller, "SenseSubsystemInformation") ? gblNvramAccess->serialNumber(controller)
                                                                : std::string();
}

int ReadNVRAMBootStrap(HMGMTOBJECT controller, unsigned char& value) {
    return isReachable(controller, "ReadNVRAMBootStrap") ? gblNvramAccess->read(controller, value) : REFUSED;
}

int writeNVRAMBootStrap(HMGMTOBJECT controller, unsigned char value, unsigned short offset) {
    return isReachable(controller, "writeNVRAMBootStrap") ? gblNvramAccess->write(controller, value, offset)
                                                          : REFUSED;
}
