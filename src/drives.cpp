#include "src/drives.h"

#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "src/CLI.h"
#include "src/deviceAttributes.h"
#include "src/deviceCollection.h"
#include "src/discoveryDocument.h"
#include "src/flashRun.h"
#include "src/version.h"
#include "src/versionJudgement.h"
#include "storage/vocabulary/array_controller_names.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/physical_drive_names.h"

std::vector<HDD_Info> hDDList;

namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;

constexpr char SOLID_STATE_MARK[] = "SSD";
constexpr char CARRIER_MODEL[] = "LD63i";
constexpr int CARRIER_ROW = 1;
/// The carrier has no catalogue entry to compare with.
constexpr float NO_CATALOGUE_VERSION = 0;

/// Whether a controller has solid state drives may hang on such a drive.
void tellUntoldInterface(Common::shared_ptr<Core::Device> const& drive) {
    if (!getValue(drive, Names::ATTR_NAME_INTERFACE, "").empty()) {
        return;
    }
    std::string const serial = getValue(drive, Names::ATTR_NAME_SERIAL_NUMBER, "");
    std::string const number = getValue(drive, Names::ATTR_NAME_DEVICE_NUMBER, "unknown");
    cli.logVerbose("Drive with %s %s tells no interface: counted as a rotating one\n",
                   serial.empty() ? "device number" : "serial number",
                   serial.empty() ? number.c_str() : serial.c_str());
}

}  // namespace

int CheckArrayForPhysicalDrives(Common::shared_ptr<Core::Device> const& controller,
                                std::string const& /*model*/) {
    std::string const serial =
        getValue(controller, Interface::StorageMod::ArrayController::ATTR_NAME_CONTROLLER_SERIAL_NUMBER, "");
    cli.logVerbose("   Finding Harddrives\n");
    Core::DeviceFinder finder(controller);
    finder.AddAttribute(
        Core::Attribute(Interface::TOLKMod::Device::ATTR_NAME_TYPE, Names::ATTR_VALUE_TYPE_PHYSICAL_DRIVE));
    Core::DeviceList drives;
    finder.find(drives, Core::DeviceFinder::eDownward);
    int const count = static_cast<int>(drives.size());
    cli.logVerbose("   Found %d Harddrives\n", count);
    int solidState = 0;
    int value = -1;
    for (auto const& drive : drives) {
        logAllAttributes(drive);
        value = CheckPhysicalDrive(drive);
        tellUntoldInterface(drive);
        if (value > 0) {
            ++solidState;
            value = 0;
        }
    }
    addHddInformation(serial, solidState, count);
    return value;
}

// For a drive that is a child of the root the walk takes the 1 of a solid state drive for a code, and ends
// with it. It stays so: no discovery that the front end switches on puts a drive there.
int CheckPhysicalDrive(Common::shared_ptr<Core::Device> const& drive) {
    logAllAttributes(drive);
    HDD_Info info;
    info.serialNum = getValue(drive, Names::ATTR_NAME_SERIAL_NUMBER, "");
    info.modelNum = getValue(drive, Names::ATTR_NAME_DRIVE_MODEL, "");
    info.scfwRev = getValue(drive, Names::ATTR_NAME_CARRIER_APPLICATION_VERSION, "");
    info.type = getValue(drive, Names::ATTR_NAME_INTERFACE, "");
    hDDList.push_back(info);
    return info.type.find(SOLID_STATE_MARK) != std::string::npos ? 1 : 0;
}

int printDriveInformation() {
    for (HDD_Info const& drive : hDDList) {
        addToDeviceCollection(CARRIER_MODEL, CARRIER_MODEL, CARRIER_MODEL, drive.scfwRev, CARRIER_ROW, "TMK",
                              drive.serialNum);
        if (isDiscoveryPass()) {
            updateState const state =
                compareWithCatalogue(VersionToFloat(drive.scfwRev), NO_CATALOGUE_VERSION);
            writeDocumentDevice(
                {drive.modelNum, "TTALLYMARK", "Controller ROM", NO_CATALOGUE_VERSION, drive.scfwRev, state});
        }
    }
    return codeOk;
}
