#include "src/deviceCollection.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "src/CLI.h"
#include "src/version.h"

Device_Info deviceInfoCltn[DEVICE_ROWS];
int discoveredDeviceCount = 0;

std::string gblMinFWVer = "0000";
std::string gblMaxFWVer = "0000";
std::string gblExpMinFWVer = "0000";
std::string gblExpMaxFWVer = "0000";
bool gblSetVersion = false;
bool gblExpSetVersion = false;

namespace {

void widen(std::string const& version, std::string& minimum, std::string& maximum, bool& isSet) {
    if (!isSet) {
        minimum = version;
        maximum = version;
        isSet = true;
        return;
    }
    minimum = std::min(minimum, version);
    maximum = std::max(maximum, version);
}

constexpr std::size_t SERIAL_LIMIT = 255;

/// Copies at most `limit` bytes, with a terminator behind them.
template <std::size_t Size>
void copyText(char (&target)[Size], std::string const& text, std::size_t limit = Size - 1) {
    std::size_t const length = std::min({text.size(), limit, Size - 1});
    std::memcpy(target, text.c_str(), length);
    target[length] = '\0';
}

template <typename Function>
void forEachRow(Function function) {
    std::for_each(deviceInfoCltn, deviceInfoCltn + discoveredDeviceCount, function);
}

}  // namespace

int addToDeviceCollection(std::string const& deviceType, std::string const& deviceId,
                          std::string const& marketingName, std::string const& version, int type,
                          std::string const& slot, std::string const& serial) {
    if (discoveredDeviceCount >= DEVICE_ROWS) {
        cli.logVerbose(
            "addToDeviceCollection: %s (serial number %s) refused: the table's %d rows are taken\n",
            deviceId.c_str(), serial.c_str(), DEVICE_ROWS);
        return discoveredDeviceCount;
    }
    Device_Info& row = deviceInfoCltn[discoveredDeviceCount];
    // The test for a duplicate compares the new id with the first free row, not with the row in hand. That
    // row is empty, so the test fires for an empty id alone, and two devices of one id get two rows: each
    // controller of a model keeps its own, which the serial number look-up needs.
    for (int i = 0; i < discoveredDeviceCount; ++i) {
        if (deviceId == row.deviceId) {
            return discoveredDeviceCount;
        }
    }
    row = Device_Info();
    copyText(row.deviceId, deviceId);
    copyText(row.deviceType, deviceType);
    copyText(row.serialNum, serial, SERIAL_LIMIT);
    copyText(row.deviceMarketingName, marketingName == "NA" ? deviceId : marketingName);
    row.deviceVersion = VersionToFloat(version);
    row.type = type;
    row.slot = slot;
    ++discoveredDeviceCount;
    cli.logVerbose("addToDeviceCollection. discoveredDeviceCount:%d\n", discoveredDeviceCount);
    return discoveredDeviceCount;
}

namespace {

std::set<std::string>& withoutRow() {
    static std::set<std::string> identifiers;
    return identifiers;
}

}  // namespace

void rememberWithoutRow(std::string const& uniqueId) {
    withoutRow().insert(uniqueId);
}

void forgetWithoutRow() {
    withoutRow().clear();
}

bool isWithoutRow(std::string const& uniqueId) {
    return withoutRow().count(uniqueId) != 0;
}

bool isBeyondCollection(std::string const& uniqueId) {
    static std::set<std::string> beyond;
    if (isDiscoveryPass() && discoveredDeviceCount >= DEVICE_ROWS) {
        beyond.insert(uniqueId);
    }
    if (beyond.count(uniqueId) == 0) {
        return false;
    }
    cli.logVerbose("%s refused: the table's %d rows are taken\n", uniqueId.c_str(), DEVICE_ROWS);
    return true;
}

void setUpdateStatusToDeviceCollection(std::string const& deviceId, updateState state) {
    forEachRow([&](Device_Info& row) {
        if (deviceId == row.deviceId) {
            row.status = state;
        }
    });
}

void setFlashToDeviceCollection(updateState state) {
    forEachRow([&](Device_Info& row) {
        if (row.status == state) {
            row.flash = true;
        }
    });
}

bool isApplicableToFlash(std::string const& deviceId) {
    for (int i = 0; i < discoveredDeviceCount; ++i) {
        if (deviceId == deviceInfoCltn[i].deviceId) {
            cli.logVerbose("Inside the strcmp of isApplicableToFlash: %s\n", deviceId.c_str());
            return deviceInfoCltn[i].flash;
        }
    }
    return false;
}

Device_Info* getDeviceInfo(std::string const& serial) {
    for (int i = 0; i < discoveredDeviceCount; ++i) {
        if (serial == deviceInfoCltn[i].serialNum) {
            return &deviceInfoCltn[i];
        }
    }
    cli.logVerbose("getDeviceInfo: no device with the serial number %s\n", serial.c_str());
    return nullptr;
}

void addSepInformation(std::string const& serial, int count) {
    cli.logVerbose("Adding seps %d %s\n", count, serial.c_str());
    forEachRow([&](Device_Info& row) {
        if (!row.sepsDiscovered) {
            row.numSeps = count;
            row.sepsDiscovered = true;
        }
    });
}

void addHddInformation(std::string const& serial, int solidStateDrives, int drives) {
    cli.logVerbose("Adding drives %d:%d %s\n", solidStateDrives, drives, serial.c_str());
    forEachRow([&](Device_Info& row) {
        if (!row.drivesDiscovered) {
            row.numSSD = solidStateDrives;
            row.numPhyDrives = drives;
            row.drivesDiscovered = true;
        }
    });
}

void setMinMaxFWVersion(std::string const& version) {
    widen(version, gblMinFWVer, gblMaxFWVer, gblSetVersion);
}

void setExpMinMaxFWVersion(std::string const& version) {
    widen(version, gblExpMinFWVer, gblExpMaxFWVer, gblExpSetVersion);
}

void printDiscoveryLog() {
    int controllers = 0;
    int expanders = 0;
    cli.log("Discovered applicable devices:\n");
    forEachRow([&](Device_Info const& row) {
        cli.log("\t%s: %.02f\n", row.deviceId, static_cast<double>(row.deviceVersion));
        controllers += row.type == 0 ? 1 : 0;
        expanders += row.type == 1 ? 1 : 0;
    });
    cli.log("Applicable devices found:         %d (%d Controller %d Expander)\n", gblFound, controllers,
            expanders);
    cli.log("Controller Info:\n");
    cli.log("\tOldest firmware version:  %s\n", gblMinFWVer.c_str());
    cli.log("\tNewest firmware version:  %s\n", gblMaxFWVer.c_str());
    cli.log("Expander Info:\n");
    cli.log("\tOldest firmware version:  %s\n", gblExpMinFWVer.c_str());
    cli.log("\tNewest firmware version:  %s\n", gblExpMaxFWVer.c_str());
    cli.log("Devices with older firmware:      %d\n", gblUpgrades);
    cli.log("Devices with current firmware:    %d\n", gblRefresh);
    cli.log("Devices with newer firmware:      %d\n\n", gblDowngrades);
}
