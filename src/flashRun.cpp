#include "src/flashRun.h"

#include "core/tolkmod.h"
#include "src/CLI.h"
#include "src/deviceAttributes.h"
#include "src/deviceTags.h"
#include "src/discoveryDocument.h"
#include "src/tolkflash.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/device_types.h"

Common::shared_ptr<Core::Device> pRoot;
Core::DeviceFactory factory;

namespace {

namespace Names = Interface::StorageMod;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr char SAS_SWITCH_TAG[] = "ENCL 14 SEP     ";

/// What a check says to the walk.
struct Verdict {
    int returnValue;
    bool endsWalk;
};

Verdict visitController(DevicePointer const& device, std::string const& name, int returnValue) {
    cli.logRuler();
    cli.logVerbose("Inspecting array controller: %s\n", name.c_str());
    cli.logRuler();
    int const code = CheckArray(device);
    cli.logRuler();
    return code != 0 ? Verdict{code, true} : Verdict{returnValue, false};
}

Verdict visitAdapter(DevicePointer const& device, int returnValue) {
    int code = CheckHBA(device);
    cli.logRuler();
    // 1 and 4 are not failures of an adapter, and they clear an earlier adapter's failure too.
    if (code == codeUpdated || code == codeCacheFileMissing || gblFlashInterrupt) {
        code = 0;
        returnValue = 0;
    }
    return {code != 0 ? code : returnValue, false};
}

Verdict visitDrive(DevicePointer const& device, int returnValue) {
    cli.logRuler();
    int const code = CheckPhysicalDrive(device);
    cli.logRuler();
    return code != 0 ? Verdict{code, true} : Verdict{returnValue, false};
}

Verdict visitChild(DevicePointer const& device, int returnValue) {
    if (!device->hasAttribute(Interface::TOLKMod::Device::ATTR_NAME_TYPE)) {
        cli.logVerbose("Missing Name attribute - api error\n");
        return {returnValue, false};
    }
    std::string const type = getValue(device, Interface::TOLKMod::Device::ATTR_NAME_TYPE, "");
    std::string const name = getValue(device, Names::ArrayController::ATTR_NAME_MARKETING_NAME, "NA");
    cli.logVerbose("Device: %s\n", name.c_str());
    if (cli.isVerbose()) {
        logAllAttributes(device);
    }
    if (type == Names::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER) {
        return visitController(device, name, returnValue);
    }
    if (type == Names::HostBusAdapter::ATTR_VALUE_TYPE_HBA) {
        return visitAdapter(device, returnValue);
    }
    if (type == Names::PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE) {
        return visitDrive(device, returnValue);
    }
    return {returnValue, false};
}

/// Fills the tree. Whatever goes wrong, the walk goes over what there is.
void fillTree() {
    RegisterOperations();
    pRoot = factory.pRoot();
    try {
        if (pRoot) {
            pRoot->Reenumerate(Core::Device::ReenumeratePredicate());
        }
    } catch (...) {
        cli.logVerbose("The search for hardware ended early; going on with what it found\n");
    }
}

int walkTree() {
    int returnValue = 0;
    if (!pRoot) {
        return returnValue;
    }
    for (auto child = pRoot->beginChild(); child != pRoot->endChild(); ++child) {
        Verdict const verdict = visitChild(*child, returnValue);
        returnValue = verdict.returnValue;
        if (verdict.endsWalk) {
            break;
        }
    }
    return returnValue;
}

/// The tag list shows its first tag twice, so a list of this one tag never equals it, and the notice stays
/// silent. The test stays as it is: with a looser one, tools that read the log would meet lines that no run
/// has written so far.
void noticeSasSwitch() {
    if (getTags() != SAS_SWITCH_TAG) {
        return;
    }
    static constexpr char WARNING[] =
        "\n** WARNING ** Resetting your SAS switch will disconnect the path through that switch.\n";
    static constexpr char DISCONNECTED[] =
        "Devices which do not have redundant connections will be disconnected from their host systems.\n";
    static constexpr char DOWNTIME[] =
        "For non-redundant configurations, VQ recommends resetting your SAS switch device during scheduled "
        "downtime.\n";
    cli.logVerbose("\nIt is necessary to reset your SAS switch for the new firmware to take effect.\n");
    cli.logVerbose(WARNING);
    cli.logVerbose(DISCONNECTED);
    cli.logVerbose(DOWNTIME);
    cli.logVerbose(WARNING);
    cli.logAndPrint(DISCONNECTED);
    cli.logVerbose(DOWNTIME);
    cli.logVerbose("Please consult your product documentation for additional details.\n");
}

/// The first rule that fits decides.
int computeCode(int returnValue) {
    bool const clean = returnValue == 0;
    if (gblFound == 0 && gblFlashing) {
        cli.logVerbose("No devices updated.\n");
        return codeNothingUpdated;
    }
    if (gblFlashed > 0 && clean) {
        return codeUpdated;
    }
    bool const nothingAsked = gblFlashed == 0 && gblFlashing && !gblFlashInterrupt && clean;
    if (nothingAsked && gblRefresh == gblFound && gblForceFlashing == 0) {
        return codeCurrent;
    }
    if (nothingAsked) {
        return codeNothingUpdated;
    }
    if (gblFlashed == 0 && gblFlashInterrupt && clean) {
        return codeCancelled;
    }
    if (gblFlashed > 0) {
        noticeSasSwitch();
    }
    return returnValue;
}

}  // namespace

int xqrthflash() {
    if (isDiscoveryPass()) {
        writeDocumentHead();
    }
    fillTree();
    int const returnValue = walkTree();
    if (isDiscoveryPass()) {
        writeDocumentTail();
        return codeNothingUpdated;
    }
    cli.logVerbose(
        "Return code variables: returnValue = %d, gblFound = %d, gblFlashing = %d, gblFlashed = %d, "
        "gblFlashInterrupt = %d\n",
        returnValue, gblFound, gblFlashing, gblFlashed, gblFlashInterrupt);
    cli.logVerbose("gblRefresh = %d gblDowngrades = %d gblUpgrades = %d gblForceFlashing = %d\n", gblRefresh,
                   gblDowngrades, gblUpgrades, gblForceFlashing);
    return computeCode(returnValue);
}
