#include <string>

#include "common/sleep.h"
#include "core/tolkmod.h"
#include "src/CLI.h"
#include "src/DiscoveryInfo.h"
#include "src/cacheModule.h"
#include "src/controllerModel.h"
#include "src/deviceAttributes.h"
#include "src/deviceCollection.h"
#include "src/deviceTags.h"
#include "src/discoveryDocument.h"
#include "src/drives.h"
#include "src/enclosures.h"
#include "src/flashArray.h"
#include "src/flashRun.h"
#include "src/version.h"
#include "storage/vocabulary/array_controller.h"

namespace {

namespace Names = Interface::StorageMod::ArrayController;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr char CACHE_MODULE_TAG[] = "FBWC";
constexpr int CONTROLLER_BUCKET = 0;
constexpr int NAMED_BUCKET = 1;
constexpr int CONTROLLER_ROW = 0;

/// Microseconds between the two flashes of a controller.
constexpr unsigned int PAUSE_BETWEEN_FLASHES = 500000;

/// Models that a run treats in a way of their own.
struct ModelRule {
    char const* model;
    bool endsAfterFlash;  ///< nothing behind it is looked at once it was flashed
    bool hasCacheModule;  ///< its cache module is looked at in a package that carries one
};

constexpr ModelRule MODEL_RULES[] = {
    {"TR80", true, false},
    {"LD63i", false, true},
    {"LD16i", false, true},
};

ModelRule ruleFor(std::string const& model) {
    for (ModelRule const& rule : MODEL_RULES) {
        if (model == rule.model) {
            return rule;
        }
    }
    return {"", false, false};
}

/// What an inspection reads from the controller.
struct Controller {
    explicit Controller(DevicePointer const& device)
        : version(getValue(device, Names::ATTR_NAME_FIRMWARE_VERSION, "")),
          serial(getValue(device, Names::ATTR_NAME_CONTROLLER_SERIAL_NUMBER, "")),
          marketingName(getValue(device, Names::ATTR_NAME_MARKETING_NAME, "NA")),
          slot(getValue(device, Names::ATTR_NAME_SLOT, "")),
          key(applicabilityKey(getValue(device, Names::ATTR_NAME_SUBSYSTEM_ID, "0"))),
          model(mapContollerName(
              MakeEnclosureNameNice(getValue(device, Names::ATTR_NAME_CONTROLLER_NAME, "")))) {}

    std::string version;
    std::string serial;
    std::string marketingName;
    std::string slot;
    std::string key;
    std::string model;
};

updateState compareVersions(float current, float catalogue) {
    if (VersionsLT(current, catalogue)) {
        ++gblUpgrades;
        cli.logVerbose("Unit Requires Flashing.\n");
        return upgrade;
    }
    cli.logVerbose("ROM is up to date.\n");
    if (VersionsEqual(current, catalogue)) {
        ++gblRefresh;
        return reflash;
    }
    ++gblDowngrades;
    return downgrade;
}

void recordController(Controller const& controller, float catalogue, float current, updateState state) {
    addToDeviceCollection("ARRAY CONTROLLER", controller.model, controller.marketingName, controller.version,
                          CONTROLLER_ROW, controller.slot, controller.serial);
    setUpdateStatusToDeviceCollection(controller.model, state);
    writeDocumentDevice(
        {controller.model, controller.model, "Controller ROM", catalogue, versionText(current), state});
}

/// Every controller is flashed twice in a row; the second result is the one that counts.
int flashTwice(DevicePointer const& device, std::string const& model) {
    FlashArray(device, model, false);
    Common::Synchronization::SleepMicroseconds(PAUSE_BETWEEN_FLASHES);
    return FlashArray(device, model, true);
}

int checkBehind(DevicePointer const& device, std::string const& model, int result) {
    if (DiscoveryInfo::Instance()->getDevInfo(NAMED_BUCKET, CACHE_MODULE_TAG) != nullptr) {
        return ruleFor(model).hasCacheModule ? checkArrayForFBWC(device, CACHE_MODULE_TAG) : result;
    }
    CheckArrayForPhysicalDrives(device, model);
    return processEnclosures(device);
}

}  // namespace

int CheckArray(DevicePointer const& device) {
    cli.logVerbose("CheckArray\n");
    if (getValue(device, Names::ATTR_NAME_ZONING_ENABLED, "") == Names::ATTR_VALUE_ZONING_ENABLED_TRUE) {
        cli.logVerbose("Controller has zoning enabled...\n");
        if (gblDisableZoneFlashing) {
            return codeOk;
        }
    }
    if (!device->hasAttribute(Interface::TOLKMod::Device::ATTR_NAME_UNIQUE_ID)) {
        cli.logVerbose("  No Unique ID\n");
        return codeOk;
    }
    Controller const controller(device);
    if (!isApplicable(controller.key)) {
        return checkBehind(device, controller.model, codeOk);
    }
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(CONTROLLER_BUCKET, "");
    if (entry == nullptr) {
        cli.logVerbose("CheckArray: Unsupported device\n");
        return codeOk;
    }
    std::string const uniqueId = getValue(device, Interface::TOLKMod::Device::ATTR_NAME_UNIQUE_ID, "");
    if (isBeyondCollection(uniqueId)) {
        return codeOk;
    }
    ++gblFound;
    bool flashIt = gblForceFlashing != 0;
    if (!gblFlashing && !device->hasAttribute(Names::ATTR_NAME_FIRMWARE_VERSION)) {
        cli.logVerbose("Controller does not have a firmware version.");
        rememberWithoutRow(uniqueId);
        return codeOk;
    }
    float const catalogue = VersionToFloat(entry->version);
    float const current = VersionToFloat(controller.version);
    cli.logVerbose("Unit has %s vs %0.2f\n", controller.version.c_str(), static_cast<double>(catalogue));
    updateState const state = compareVersions(current, catalogue);
    // Whatever the comparison found: for a controller the choice lies with the mark in its row, which
    // FlashArray looks at. One that didn't tell what it is got no row, and its twin's is no choice for it.
    flashIt = !isWithoutRow(uniqueId);
    setMinMaxFWVersion(controller.version);
    if (isDiscoveryPass()) {
        recordController(controller, catalogue, current, state);
    }
    int result = codeOk;
    if (gblFlashing && flashIt) {
        result = flashTwice(device, controller.model);
        if (ruleFor(controller.model).endsAfterFlash || result != codeOk) {
            return result;
        }
    }
    return checkBehind(device, controller.model, result);
}
