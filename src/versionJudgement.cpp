#include "src/versionJudgement.h"

#include "src/CLI.h"
#include "src/version.h"

updateState compareWithCatalogue(float installed, float catalogue) {
    if (VersionsLT(installed, catalogue)) {
        return upgrade;
    }
    return VersionsEqual(installed, catalogue) ? reflash : downgrade;
}

VersionJudgement judgeVersion(float installed, float catalogue) {
    updateState const state = compareWithCatalogue(installed, catalogue);
    if (state == upgrade) {
        cli.logVerbose("Unit requires firmware update.\n");
        ++gblUpgrades;
        return {state, true};
    }
    cli.logVerbose("The firmware is up to date.\n");
    ++(state == reflash ? gblRefresh : gblDowngrades);
    return {state, gblForceFlashing != 0};
}
