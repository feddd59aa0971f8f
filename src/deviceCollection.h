#pragma once

#include <string>

#include "src/runState.h"

/// What the run remembers of one device between the passes. Rows are filled in the discovery pass and read
/// in the update pass; they are all that carries a decision from one to the other.
struct Device_Info {
    char deviceType[255] = "";            ///< "ARRAY CONTROLLER", "Expander", or "FWBC" for a cache module
    char deviceId[512] = "";              ///< the row's key: mapped controller model, or SEP product id
    char deviceMarketingName[1024] = "";  ///< the deviceId when the name is "NA"
    char serialNum[512] = "";             ///< at most 255 bytes; a single blank for expanders
    float deviceVersion = 0;              ///< installed version
    bool flash = false;                   ///< marked for flashing in the update pass
    updateState status = notApplicable;
    int type = 0;      ///< 0 for a controller, 1 for an expander or cache module
    std::string slot;  ///< a single blank for expanders
    int numSSD = 0;    ///< solid state drives behind the controller
    int numPhyDrives = 0;
    int numSeps = 0;                ///< enclosures and SEPs behind it
    bool drivesDiscovered = false;  ///< the counts have been set
    bool sepsDiscovered = false;
    bool alreadyFlashed = false;
};

inline constexpr int DEVICE_ROWS = 1024;
extern Device_Info deviceInfoCltn[DEVICE_ROWS];
extern int discoveredDeviceCount;

/// Oldest and newest version text seen, of controllers and of expanders; "0000" until the first.
extern std::string gblMinFWVer;
extern std::string gblMaxFWVer;
extern std::string gblExpMinFWVer;
extern std::string gblExpMaxFWVer;
extern bool gblSetVersion;     ///< a controller's version was seen
extern bool gblExpSetVersion;  ///< an expander's version was seen

/// Fills the next free row and returns the new count. Without a free row nothing is filled, with a line in
/// the verbose log.
int addToDeviceCollection(std::string const& deviceType, std::string const& deviceId,
                          std::string const& marketingName, std::string const& version, int type,
                          std::string const& slot, std::string const& serial);

/// Whether a device, by its unique identifier, is left out of the run because the table has no row for it.
/// Decided in the discovery pass, and remembered: the update pass finds rows by model, and would take a
/// controller without a row for its twin that has one.
bool isBeyondCollection(std::string const& uniqueId);

/// A device that the discovery pass inspected without giving it a row. The update pass finds rows by model,
/// and would take the device for its twin that has one.
void rememberWithoutRow(std::string const& uniqueId);
bool isWithoutRow(std::string const& uniqueId);
/// At the end of a run.
void forgetWithoutRow();

/// Sets the status of every row with this id, so that of two devices with one id the later check decides.
void setUpdateStatusToDeviceCollection(std::string const& deviceId, updateState state);

/// Marks every row of this status for flashing.
void setFlashToDeviceCollection(updateState state);

/// Whether the first row with this id is marked; false without such a row.
bool isApplicableToFlash(std::string const& deviceId);

/// The first row of this serial number, or null.
Device_Info* getDeviceInfo(std::string const& serial);

/// Give their counts to every row that has none yet, whatever its serial number: rows exist when their
/// controller is walked, and a later row starts with its own call.
void addSepInformation(std::string const& serial, int count);
void addHddInformation(std::string const& serial, int solidStateDrives, int drives);

/// Note a device's version among the oldest and newest seen. Compared as text, not as numbers.
void setMinMaxFWVersion(std::string const& version);
void setExpMinMaxFWVersion(std::string const& version);

/// Writes the summary of the discovery to the ordinary log.
void printDiscoveryLog();
