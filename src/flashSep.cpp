#include "src/flashSep.h"

#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "flash/vocabulary.h"
#include "flash/vocabulary_enclosure.h"
#include "src/CLI.h"
#include "src/DiscoveryInfo.h"
#include "src/deviceAttributes.h"
#include "src/deviceTags.h"
#include "src/flashTime.h"
#include "src/imageArguments.h"
#include "src/operationResult.h"
#include "src/romImage.h"
#include "src/runState.h"
#include "src/stringhelper.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/sep_names.h"

std::vector<std::string> gblWwIdList;

namespace {

namespace Names = Interface::StorageMod::SEP;
namespace ControllerNames = Interface::StorageMod::ArrayController;
namespace FlashNames = Interface::FlashMod::SEP;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr int NAMED_BUCKET = 1;
/// The expander that can't be flashed while zones are set up in it.
constexpr char ZONING_EXPANDER[] = "JB73";
/// A flash that is expected to take longer, in seconds, is announced with its length.
constexpr unsigned int SHORT_FLASH = 10;

/// A processor without a name can't be known again: all of them would pass for the first.
bool isName(std::string const& wwid) {
    return wwid.find_first_not_of('0') != std::string::npos;
}

bool isTakenOn(std::string const& wwid) {
    for (std::string const& known : gblWwIdList) {
        cli.logVerbose(" wwIdItr\n");
        if (known == wwid) {
            return true;
        }
    }
    return false;
}

/// Notes every applicable processor below the controller, of whatever product, as taken on. False when one of
/// them forbids the flash or was taken on before; those before it stay noted.
bool takeOn(DevicePointer const& controller, bool zoning) {
    Core::DeviceFinder finder(controller);
    finder.AddAttribute(
        Core::Attribute(Interface::TOLKMod::Device::ATTR_NAME_TYPE, Names::ATTR_VALUE_TYPE_SEP));
    Core::DeviceList seps;
    finder.find(seps, Core::DeviceFinder::eDownward);
    for (auto const& sep : seps) {
        std::string const productId = getValue(sep, Names::ATTR_NAME_PRODUCT_ID, "");
        std::string const wwid = getValue(sep, Names::ATTR_NAME_WWID, "");
        if (productId.empty()) {
            cli.logVerbose("  No product ID\n");
            continue;
        }
        // Those that no tag covers aren't noted: each of them has its product flashed once more.
        if (!isApplicable(productId)) {
            continue;
        }
        // The device pads its product id with blanks.
        if (zoning && trim(productId) == ZONING_EXPANDER) {
            cli.logVerbose("Controller has zoning enabled. Expander Flash not supported.\n");
            return false;
        }
        if (!isName(wwid)) {
            cli.logVerbose("FlashSEP: %s without a WWID, it may be flashed again\n", productId.c_str());
            continue;
        }
        if (isTakenOn(wwid)) {
            cli.logVerbose("SEP is already updated, double flashing of sep is not supported\n");
            return false;
        }
        cli.logVerbose("Adding wwidsep\n");
        gblWwIdList.push_back(wwid);
    }
    return true;
}

void setArguments(Core::DeviceOperation& operation, std::string const& tag,
                  std::vector<unsigned char> const& image) {
    setText(operation, FlashNames::ATTR_NAME_PRODUCT_ID, tag);
    setText(operation, FlashNames::ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE, "0");
    setImageArguments(operation, image);
    setText(operation, FlashNames::ATTR_NAME_RESET_SEP, FlashNames::ATTR_VALUE_RESET_SEP_FALSE);
}

}  // namespace

int FlashSEP(DevicePointer const& controller, std::string const& tag) {
    bool const zoning = getValue(controller, ControllerNames::ATTR_NAME_ZONING_ENABLED, "") ==
                        ControllerNames::ATTR_VALUE_ZONING_ENABLED_TRUE;
    cli.logVerbose("FlashSEP#2 Linux: Starts. Tag: %s\n", tag.c_str());
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(NAMED_BUCKET, tag);
    if (entry == nullptr) {
        cli.logVerbose("FlashSEP Unsupported device: %s\n", tag.c_str());
        return codeOk;
    }
    std::vector<unsigned char> image;
    if (ReadROMImage(entry->payload, image) != codeOk) {
        cli.logVerbose("Error: Firmware Info/Image read error for %s\n", tag.c_str());
        return codeUnreadable;
    }
    cli.logVerbose("FlashSEP: fw file name: %s\n", entry->payload.c_str());
    auto const operation = controller->getOperation(Interface::FlashMod::OPERATION_WRITE_FLASH_SEP_FIRMWARE);
    if (!operation) {
        // Not the end yet: what forbids the flash below comes before the refusal.
        cli.logVerbose("Device refused OPERATION_WRITE_FLASH...\n");
    }
    cli.logVerbose("Setting PRODUCT_ID to %s\n", tag.c_str());
    std::size_t const takenOnBefore = gblWwIdList.size();
    if (!takeOn(controller, zoning)) {
        return codeOk;
    }
    if (!operation) {
        // Nothing is flashed here, so the processors stay free for another path that can.
        cli.logVerbose("FlashSEP: %s skipped: no operation to perform\n", tag.c_str());
        gblWwIdList.resize(takenOnBefore);
        return codeRefused;
    }
    setArguments(*operation, tag, image);
    if (gblEstimatedFlashTime > SHORT_FLASH) {
        cli.logVerbose("Requesting flash - this could take up to %s...\n", getFlashTime().c_str());
    } else {
        cli.logVerbose("Requesting flash...\n");
    }
    cli.logVerbose("Requesting SEP flash.\n");
    Core::OperationReturn const result = controller->perform(operation);
    cli.logVerbose("Flash complete.\n");
    int const code = LogOperationReturn(result, "SEP flash");
    if (code == codeOk) {
        ++gblFlashed;
    }
    cli.logVerbose("Leaving FlashSEP");
    return code;
}
