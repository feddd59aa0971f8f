#pragma once

#include <string>

#include "src/DiscoveryInfo.h"
#include "src/config.h"
#include "src/deviceCollection.h"
#include "src/deviceTags.h"
#include "src/drives.h"
#include "src/flashSep.h"
#include "src/runState.h"
#include "tests/src/FrontEndFixture.h"

/// What a run keeps for the process, as it is before the first pass; put back so at the end.
class RunTest : public FrontEndTest {
  protected:
    RunTest() {
        reset();
        cli.setLogFile(directory() + "/component.log");
        cli.setXMLFile(directory() + "/document.xml");
    }
    ~RunTest() override { reset(); }

    enum Pass { discovery, update };
    /// As the run sets the switches for a pass.
    static void begin(Pass pass) {
        gblFlashing = pass == update;
        gblXMLMode = pass == discovery;
        notDiscovered = pass == update;
    }

    /// An entry of the catalogue's named bucket, whose image holds "image of <name>".
    static void catalogue(std::string const& name, std::string const& version) {
        writeFile(name + ".rom", "image of " + name);
        DiscoveryInfo::Instance()->setDevInfo(1, name + ".rom", version, name);
    }

    /// A row as the discovery pass leaves it, with the answer to the question about it.
    static Device_Info& row(std::string const& id, bool marked, std::string const& serial = " ") {
        int const count = addToDeviceCollection("Expander", id, "NA", "1.00", 1, " ", serial);
        deviceInfoCltn[count - 1].flash = marked;
        return deviceInfoCltn[count - 1];
    }

    static void forgetRows() {
        discoveredDeviceCount = 0;
        forgetWithoutRow();
        for (Device_Info& one : deviceInfoCltn) {
            one = Device_Info();
        }
    }

    std::string componentLog() const { return readFile(directory() + "/component.log"); }
    std::string document() const { return readFile(directory() + "/document.xml"); }
    bool verboseLogHas(std::string const& text) const {
        return readFile(directory() + "/verbose.log").find(text) != std::string::npos;
    }

  private:
    static void reset() {
        gblFlashing = true;
        gblXMLMode = false;
        notDiscovered = false;
        gblForceFlashing = 0;
        gblForceIllegalFlashing = false;
        gblisZeroDownTimeEnabled = false;
        gblDisableZoneFlashing = false;
        gblEstimatedFlashTime = 900;
        gblFakeError = 0;
        gblFound = gblFlashed = gblUpgrades = gblDowngrades = gblRefresh = 0;
        gblFlashInterrupt = false;
        forgetRows();
        gblMinFWVer = gblMaxFWVer = gblExpMinFWVer = gblExpMaxFWVer = "0000";
        gblSetVersion = gblExpSetVersion = false;
        gblDeviceTags.clear();
        gblWwIdList.clear();
        hDDList.clear();
        DiscoveryInfo::DeleteInstance();
        Config::Instance()->CleanConfig();
    }
};
