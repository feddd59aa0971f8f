#include "src/arrayShiftBit.h"

#include "src/CLI.h"
#include "src/deviceAttributes.h"
#include "src/deviceCollection.h"
#include "src/flashRun.h"
#include "src/managementObjects.h"
#include "src/runState.h"
#include "storage/vocabulary/array_controller_names.h"

namespace {

namespace Names = Interface::StorageMod::ArrayController;

/// The two boot strap bytes, at offsets 2045 and 2046 of NVRAM.
struct BootStrap {
    unsigned char first;
    unsigned char second;
};
constexpr unsigned short FIRST_OFFSET = 2045;
constexpr unsigned short SECOND_OFFSET = 2046;

constexpr BootStrap SMALL_STRAP = {2, 254};
constexpr BootStrap LARGE_STRAP = {0, 0};
/// The first byte of a controller that is left as it is.
constexpr unsigned char FIXED = 1;
constexpr unsigned char UNREAD = 255;

constexpr char const* SHIFT_BIT_MODELS[] = {"TR57", "TR57i"};

/// A handful of rotating drives in at most one enclosure. No drives at all don't count as few: their number
/// wasn't found out then.
bool isSmall(Device_Info const& info) {
    return info.numSSD == 0 && info.numSeps <= 1 && info.numPhyDrives >= 1 && info.numPhyDrives <= 8;
}

/// Nothing else tells two controllers of one serial number apart: the first row and the first management
/// object stay the ones. The tree is asked, not the rows: a controller that the package doesn't concern has
/// no row, and may be the one that is written to. Asking the management objects would cost commands.
void warnOfTwins(std::string const& serial) {
    int controllers = 0;
    if (pRoot) {
        for (auto child = pRoot->beginChild(); child != pRoot->endChild(); ++child) {
            controllers += (*child)->hasAttribute(Names::ATTR_NAME_CONTROLLER_SERIAL_NUMBER) &&
                           getValue(*child, Names::ATTR_NAME_CONTROLLER_SERIAL_NUMBER, "") == serial;
        }
    }
    if (controllers > 1) {
        cli.logVerbose(
            "setArrayShiftBit: %d controllers with serial number %s, 1 expected: taking the first\n",
            controllers, serial.c_str());
    }
}

/// The ordinary log gets its line once for the pair of flashes, behind that of the update.
int leaveAsItIs(std::string const& model, std::string const& reason, bool second) {
    cli.logVerbose("setArrayShiftBit: %s skipped: %s\n", model.c_str(), reason.c_str());
    if (second) {
        cli.log("Skipped: %s: %s: NVRAM bytes %d and %d were left as they are\n", model.c_str(),
                reason.c_str(), FIRST_OFFSET, SECOND_OFFSET);
    }
    return codeOk;
}

int writeByte(HMGMTOBJECT controller, unsigned char value, unsigned short offset) {
    int const status = writeNVRAMBootStrap(controller, value, offset);
    cli.logVerbose("writeNVRAMBootStrap retuns: %d:byteValue %d\n", status, value);
    return status;
}

/// The status of the second write alone: a first one that failed before a second that succeeded has always
/// passed as done. The second flash of the pair writes both bytes anew, but for one case: it takes the first
/// byte of the small strap for the whole, so that a second byte which alone failed stays what it was.
int writeStrap(HMGMTOBJECT controller, BootStrap strap) {
    writeByte(controller, strap.first, FIRST_OFFSET);
    return writeByte(controller, strap.second, SECOND_OFFSET);
}

}  // namespace

bool checkArrayForSetBit(Common::shared_ptr<Core::Device> const& /*controller*/, std::string const& model) {
    for (char const* known : SHIFT_BIT_MODELS) {
        if (model == known) {
            return true;
        }
    }
    return false;
}

int setArrayShiftBit(Common::shared_ptr<Core::Device> const& controller, std::string const& model,
                     bool second) {
    // Without a serial number or a row nothing tells which controller to write to and what. The firmware is
    // there all the same, and a failure would keep the run from the controllers behind this one.
    // An empty number would be that of the row of a cache module.
    std::string const serial = getValue(controller, Names::ATTR_NAME_CONTROLLER_SERIAL_NUMBER, "");
    if (serial.empty()) {
        return leaveAsItIs(model, "no serial number", second);
    }
    Device_Info const* const row = getDeviceInfo(serial);
    if (row == nullptr) {
        return leaveAsItIs(model, "no row for serial number " + serial, second);
    }
    warnOfTwins(serial);
    // A copy, so that the mark doesn't reach the row: both flashes of a controller get here.
    Device_Info info = *row;
    if (info.alreadyFlashed) {
        return codeOk;
    }
    info.alreadyFlashed = true;

    HMGMTOBJECT const handle = getHandle(serial);
    if (handle == nullptr) {
        return codeNotFound;
    }
    unsigned char byteValue = UNREAD;
    int const status = ReadNVRAMBootStrap(handle, byteValue);
    cli.logVerbose("ReadNVRAMBootStrap retuns: %d:byteValue %d\n", status, byteValue);
    int result = status == 0 ? codeOk : codeSerious;
    if (byteValue == FIXED) {
        return codeOk;  // also after a read that reported a failure: the byte is there
    }
    cli.logVerbose("pDevInfo.numSSD: %d pDevInfo.numSeps: %d pDevInfo.numPhyDrives: %d\n", info.numSSD,
                   info.numSeps, info.numPhyDrives);
    bool const small = isSmall(info);
    if (small && byteValue == SMALL_STRAP.first) {
        return result;
    }
    if (writeStrap(handle, small ? SMALL_STRAP : LARGE_STRAP) != 0) {
        result = codeSerious;
    }
    return result;
}
