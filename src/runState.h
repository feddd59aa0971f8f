#pragma once

/// State of one run of the program, shared by the routines of the front end. The front end is one thread;
/// nothing here is protected.

/// What the comparison with the catalogue found.
enum updateState {
    downgrade = 0,  ///< the device's firmware is newer
    reflash = 1,    ///< the two are equal
    upgrade = 2,    ///< the device's firmware is older
    notApplicable = 3,
};

/// Codes that routines report and that the process ends with; 0 means go on.
enum ReturnCode {
    codeOk = 0,
    codeUpdated = 1,  ///< at least one flash succeeded, none failed; a restart is needed
    codeCurrent = 2,  ///< every applicable device is current
    codeNothingUpdated = 3,
    codeCacheFileMissing = 4,  ///< the cache module's firmware file could not be opened
    codeCancelled = 5,
    codeRefused = 6,     ///< the device refused the flash operation
    codeUnreadable = 7,  ///< an image or catalogue entry could not be read, or a simulated failure
    codeSerious = 8,
    codeFlashFailed = 9,
    codeNotFound = 10,  ///< no way to the controller through the management objects
};

/// How the engine names itself in log lines.
inline constexpr char EngineDesc[] = "VQ Storage Enclosure ROM Flash";

/// Size of the texts below, the terminator included.
inline constexpr unsigned OPTION_TEXT_SIZE = 256;

extern bool gblFlashing;  ///< flashing is allowed in this pass
extern bool gblXMLMode;   ///< discovery pass in progress
extern bool gblDiscMode;  ///< -d: the run ends after the discovery pass
/// Set once the first walk has returned. The name says the opposite of its sense; the discovery document is
/// due while gblXMLMode holds and this doesn't.
extern bool notDiscovered;
extern int gblForceFlashing;                ///< -e, -f, -g: current and newer devices are offered too
extern bool gblForceIllegalFlashing;        ///< -F: the backplane advisory is skipped
extern bool gblisZeroDownTimeEnabled;       ///< -o: ask for an update without downtime
extern bool gblDisableZoneFlashing;         ///< -z: controllers with zoning are skipped
extern unsigned int gblEstimatedFlashTime;  ///< seconds, -xd
extern unsigned int gblFakeError;           ///< -x~: a failure word to simulate

/// Counters. They are never reset, also not between the passes: after two passes gblFound, gblUpgrades,
/// gblDowngrades and gblRefresh hold twice what one pass saw, and the tests of the return code rest on that.
extern int gblFound;
extern int gblFlashed;
extern int gblUpgrades;
extern int gblDowngrades;
extern int gblRefresh;

extern bool gblFlashInterrupt;  ///< the user declined at a prompt for a group of devices

extern char XMLTypeValue[OPTION_TEXT_SIZE];       ///< -k: `type` of the discovery document
extern char gblXMLFile[OPTION_TEXT_SIZE];         ///< -d: the document's path
extern char gblOverallVersion[OPTION_TEXT_SIZE];  ///< nothing writes it
extern char gblNewVersion[OPTION_TEXT_SIZE];      ///< nothing writes it

/// Whether the checks write to the discovery document and the device collection now.
inline bool isDiscoveryPass() {
    return gblXMLMode && !notDiscovered;
}
