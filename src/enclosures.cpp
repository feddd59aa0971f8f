#include "src/enclosures.h"

#include <algorithm>
#include <set>

#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "flash/vocabulary.h"
#include "src/CLI.h"
#include "src/DiscoveryInfo.h"
#include "src/deviceAttributes.h"
#include "src/deviceCollection.h"
#include "src/deviceTags.h"
#include "src/discoveryDocument.h"
#include "src/flashSep.h"
#include "src/offlineLock.h"
#include "src/runState.h"
#include "src/stringhelper.h"
#include "src/version.h"
#include "src/versionJudgement.h"
#include "storage/vocabulary/array_controller_names.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/sep_names.h"

namespace {

namespace Names = Interface::StorageMod::SEP;
namespace ControllerNames = Interface::StorageMod::ArrayController;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr int NAMED_BUCKET = 1;
constexpr int EXPANDER_ROW = 1;
constexpr std::size_t TAG_SIZE = 16;  // characters, as the device pads its product id

/// The expander that may be flashed in the offline mode alone.
constexpr char OFFLINE_ONLY[] = "ENCL 12 SEP";

/// Backplanes of the advisory's enclosures carry firmware either below or above this version, never both.
constexpr float BACKPLANE_LIMIT = 1.49F;
constexpr char const* BACKPLANE_TAGS[] = {"QBX41", "QBX52"};

struct DisplayRow {
    char const* prefix;
    char const* name;
};
constexpr DisplayRow DISPLAY_NAMES[] = {{"J19 SAS ", "JB19"}, {"J28 SAS ", "JB28"}};

/// What the processors of one enclosure add up to.
struct EnclosureFindings {
    float lowest = 1000;  ///< oldest installed version
    float catalogue = 0;  ///< the catalogue's version for the processor that was looked at last
    bool needsFlash = false;
};

void recordSep(SEP_Info const& sep, std::string const& wwid, float catalogue, updateState state) {
    // The WWID stands where a marketing name would. It stays: nothing shows the column, and the WWID alone
    // tells two rows of one product apart.
    addToDeviceCollection("Expander", sep.productId, wwid, sep.displayRev, EXPANDER_ROW, " ", " ");
    setUpdateStatusToDeviceCollection(sep.productId, state);
    writeDocumentDevice(
        {sep.productId, sep.productId, "SEP Enclosure ROM", catalogue, sep.displayRev, state});
}

/// Whether the package is meant for this processor. The entry was found by the same name, blanks aside, so
/// the catalogue decides and not the tags.
bool isSupported(std::string const& productId, DevInfo const* entry) {
    return entry != nullptr && (isApplicable(productId) || productId == entry->devName);
}

/// False when the whole enclosure is to be left alone, whatever its other processors said.
bool inspectSep(DevicePointer const& device, Box_Info& box, EnclosureFindings& findings) {
    cli.logVerbose("Inspecting SEP Information\n");
    if (!device->hasAttribute(Names::ATTR_NAME_PRODUCT_ID)) {
        cli.logVerbose("  No product ID\n");
        return true;
    }
    if (!device->hasAttribute(Names::ATTR_NAME_FIRMWARE_REVISION)) {
        cli.logVerbose("  No firmware revision\n");
        return true;
    }
    SEP_Info sep;
    sep.productId = trim(getValue(device, Names::ATTR_NAME_PRODUCT_ID, ""));
    std::string const wwid = trim(getValue(device, Names::ATTR_NAME_WWID, ""));
    sep.displayRev = getValue(device, Names::ATTR_NAME_FIRMWARE_REVISION, "");
    sep.fwRev = VersionToFloat(sep.displayRev);
    if (findings.lowest > sep.fwRev) {
        findings.lowest = sep.fwRev;
    }
    sep.displayName = getDisplayName(sep.productId);
    cli.logVerbose("Discovered: %s\n", sep.displayName.c_str());
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(NAMED_BUCKET, sep.productId);
    if (entry != nullptr) {
        findings.catalogue = VersionToFloat(entry->version);
    }
    if (!isSupported(sep.productId, entry)) {
        cli.logVerbose("Unsupported device: %s\n", sep.displayName.c_str());
        return true;
    }
    cli.logVerbose("Device is supported: %s\n", sep.displayName.c_str());
    if (trim(entry->devName) == OFFLINE_ONLY && !IsLocked()) {
        cli.log("Online flashing of %s is not supported\n", sep.displayName.c_str());
        return false;
    }
    ++gblFound;
    cli.logVerbose("Unit has ROM %s.\n", sep.displayRev.c_str());
    VersionJudgement const judgement = judgeVersion(sep.fwRev, findings.catalogue);
    sep.outOfDate = judgement.state == upgrade;
    sep.needsFlash = judgement.needsFlash;
    findings.needsFlash = findings.needsFlash || judgement.needsFlash;
    setExpMinMaxFWVersion(sep.displayRev);
    if (isDiscoveryPass()) {
        recordSep(sep, wwid, findings.catalogue, judgement.state);
    }
    box.SEPs.push_back(sep);
    return true;
}

/// Whether the advisory on backplanes forbids the flash, which it then explains. The oldest installed version
/// is that of all processors, the catalogue's that of the one looked at last. It stays so: what is gathered
/// are single processors, and a maximum over several products would forbid flashes that are done today.
bool isForbiddenByAdvisory(EnclosureFindings const& findings) {
    bool isConcerned = false;
    for (char const* tag : BACKPLANE_TAGS) {
        isConcerned = isConcerned || isApplicable(tag);
    }
    if (!isConcerned) {
        return false;
    }
    double const version = findings.catalogue;
    if (findings.lowest < BACKPLANE_LIMIT && findings.catalogue > BACKPLANE_LIMIT) {
        cli.logVerbose("This enclosure requires a backplane replacement before updating the firmware\n");
        cli.logVerbose("to version %.02f.  To order a replacement backplane, contact VQ support and\n",
                       version);
        cli.logVerbose("order the appropriate CSR part number: 519268-007 for QBX41 or 627113-005 for\n");
        cli.logVerbose("QBX52.).\n");
        cli.logVerbose("Please refer to Customer Advisory c04173825 for additional information.\n");
        return true;
    }
    if (findings.lowest > BACKPLANE_LIMIT && findings.catalogue < BACKPLANE_LIMIT) {
        cli.logVerbose("This enclosure cannot run firmware version %.02f.\n", version);
        cli.logVerbose("Firmware version 2.14 or later should be used.\n");
        return true;
    }
    return false;
}

/// Flashes one product for the sake of one of its processors, and files a failure in `result`.
void flashFor(SEP_Info const& sep, DevicePointer const& controller, int& result) {
    std::string const& id = sep.productId;
    if (!sep.needsFlash && gblForceFlashing == 0) {
        cli.logVerbose("SEPFlash not applicable: %s", id.c_str());
        return;
    }
    if (!isApplicableToFlash(id)) {
        cli.logVerbose("SEPFlash not applicable: %s\n", id.c_str());
        return;
    }
    std::string tag = id;
    tag.resize(std::max(tag.size(), TAG_SIZE), ' ');
    cli.logVerbose("Process enclosure before FlashSEP\n");
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(NAMED_BUCKET, id);
    if (entry == nullptr) {
        cli.logVerbose("processEnclosures: Unsupported device\n");
        return;
    }
    double const catalogue = VersionToFloat(entry->version);
    cli.printMsg("Updating: %s from [%s] to [%0.2f]\n", id.c_str(), sep.displayRev.c_str(), catalogue);
    int const code = FlashSEP(controller, tag);
    cli.logVerbose("Process enclosure after FlashSEP\n");
    if (code == codeOk) {
        // Also for a processor whose call finds all of them taken on. As a rule the first call of its product
        // flashed this one too; after one that failed, or for another product below the same adapter, nothing
        // did.
        cli.log("Updated: %s from %s to %0.2f\n", id.c_str(), sep.displayRev.c_str(), catalogue);
        return;
    }
    if (result != codeRefused) {
        result = code;
    }
    cli.log("Failed: %s from %s to %0.2f\n", id.c_str(), sep.displayRev.c_str(), catalogue);
}

/// In the sorted order in which they are flashed.
std::set<std::string> productsToFlash(SA_Info const& info) {
    std::set<std::string> ids;
    for (Box_Info const& box : info.boxes) {
        for (SEP_Info const& sep : box.SEPs) {
            if (box.needsFlash && sep.needsFlash) {
                ids.insert(sep.productId);
            }
        }
    }
    return ids;
}

int flashProducts(SA_Info const& info, DevicePointer const& controller) {
    int result = codeOk;
    for (std::string const& id : productsToFlash(info)) {
        cli.logVerbose("Flashing %s\n", id.c_str());
        for (Box_Info const& box : info.boxes) {
            for (SEP_Info const& sep : box.SEPs) {
                if (sep.productId == id) {
                    flashFor(sep, controller, result);
                }
            }
        }
    }
    return result;
}

Core::DeviceList findEnclosures(DevicePointer const& controller) {
    Core::DeviceFinder finder(controller);
    char const* const type = Interface::TOLKMod::Device::ATTR_NAME_TYPE;
    // The second value for the type replaces the first, so processors alone are found, each standing as an
    // enclosure of its own. It stays: with the enclosures in the list as well, each processor would be judged
    // and counted twice.
    finder.AddAttribute(
        Core::Attribute(type, Interface::StorageMod::StorageEnclosure::ATTR_VALUE_TYPE_STORAGE_ENCLOSURE));
    finder.AddAttribute(Core::Attribute(type, Names::ATTR_VALUE_TYPE_SEP));
    Core::DeviceList found;
    finder.find(found, Core::DeviceFinder::eDownward);
    return found;
}

}  // namespace

int processEnclosures(DevicePointer const& controller) {
    std::string const serial = getValue(controller, ControllerNames::ATTR_NAME_CONTROLLER_SERIAL_NUMBER, "");
    cli.logVerbose("   Finding Enclosures\n");
    Core::DeviceList const found = findEnclosures(controller);
    int const count = static_cast<int>(found.size());
    cli.logVerbose("   Found %d Enclosures/SEPs\n", count);
    addSepInformation(serial, count);
    SA_Info info;
    info.slot = getValue(controller, ControllerNames::ATTR_NAME_SLOT, "");
    for (auto const& device : found) {
        if (cli.isVerbose()) {
            logAllAttributes(device);
        }
        if (getValue(device, Names::ATTR_NAME_PRODUCT_ID, "").empty()) {
            cli.logVerbose("  No product ID\n");
            continue;
        }
        Box_Info box;
        box.port = getValue(device, Names::ATTR_NAME_PORT, "");
        box.boxNumber = getValue(device, Names::ATTR_NAME_BOX, "");
        if (CheckEnclosure(device, box) != 0) {
            info.boxes.push_back(box);
            info.needsFlash = info.needsFlash || box.needsFlash;
        }
    }
    return info.needsFlash ? flashProducts(info, controller) : codeOk;
}

int CheckEnclosure(DevicePointer const& enclosure, Box_Info& box) {
    cli.logVerbose("Function CheckEnclosure...\n");
    EnclosureFindings findings;
    Core::DeviceFinder finder(enclosure);
    finder.AddAttribute(
        Core::Attribute(Interface::TOLKMod::Device::ATTR_NAME_TYPE, Names::ATTR_VALUE_TYPE_SEP));
    finder.AddOperation(Interface::FlashMod::OPERATION_WRITE_FLASH_SEP_FIRMWARE);
    Core::DeviceList seps;
    finder.find(seps, Core::DeviceFinder::eDownward);
    for (auto const& sep : seps) {
        if (!inspectSep(sep, box, findings)) {
            return 0;
        }
    }
    if (!gblFlashing) {
        return 0;
    }
    // The mark comes before the advisory and stays when the advisory says no; what keeps the enclosure from
    // being flashed then is the result.
    if (findings.needsFlash) {
        box.needsFlash = true;
    }
    if (findings.needsFlash && !gblForceIllegalFlashing && isForbiddenByAdvisory(findings)) {
        findings.needsFlash = false;
    }
    cli.logVerbose("Function CheckEnclosure ends...\n");
    return findings.needsFlash ? 1 : 0;
}

std::string getDisplayName(std::string const& productId) {
    if (productId.find("QBX7714") != std::string::npos) {
        return "ZenoS8c";
    }
    for (DisplayRow const& row : DISPLAY_NAMES) {
        if (productId.starts_with(row.prefix)) {
            return row.name;
        }
    }
    return productId;
}
