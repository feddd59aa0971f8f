#pragma once

#include "src/runState.h"

/// What comparing a device's firmware with the catalogue's led to.
struct VersionJudgement {
    updateState state;
    bool needsFlash;  ///< older than the catalogue's, or flashing of current and newer devices is asked for
};

/// Only compares. Neither version is "not applicable".
updateState compareWithCatalogue(float installed, float catalogue);

/// Judges an enclosure processor or cache module: tells the verbose log and counts it.
VersionJudgement judgeVersion(float installed, float catalogue);
