#include "src/flashArray.h"

#include <vector>

#include "core/capability_finder.h"
#include "core/tolkmod.h"
#include "flash/vocabulary.h"
#include "src/CLI.h"
#include "src/DiscoveryInfo.h"
#include "src/arrayShiftBit.h"
#include "src/deviceAttributes.h"
#include "src/deviceCollection.h"
#include "src/imageArguments.h"
#include "src/operationResult.h"
#include "src/progress.h"
#include "src/romImage.h"
#include "src/runState.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/operations.h"

namespace {

namespace Names = Interface::StorageMod::ArrayController;
namespace FlashNames = Interface::FlashMod::ArrayController;
using DevicePointer = Common::shared_ptr<Core::Device>;
using OperationPointer = Common::shared_ptr<Core::DeviceOperation>;

constexpr int CONTROLLER_BUCKET = 0;

/// Takes the update without downtime although its operation doesn't offer it.
constexpr char ALWAYS_WITHOUT_DOWNTIME[] = "ZenoS8c";

void askForZeroDownTime(OperationPointer const& operation, DevicePointer const& device,
                        std::string const& model) {
    cli.logVerbose("gblisZeroDownTimeEnabled Supported\n");
    Core::CapabilityFinder finder(operation->getCapabilityPtr(device));
    finder.Add(Common::pair<Common::string, Core::AttributeValue>(
        Interface::TOLKMod::Capability::ATTR_NAME_ATTRIBUTE_NAME, FlashNames::ATTR_NAME_TOFU));
    if (finder.find()) {
        cli.logVerbose("Tofu Supported\n");
    } else if (model != ALWAYS_WITHOUT_DOWNTIME) {
        cli.logVerbose("Tofu not supported\n");
        return;
    }
    operation->SetArgument(Core::DeviceOperation::eSET, FlashNames::ATTR_NAME_TOFU,
                           FlashNames::ATTR_VALUE_TOFU_ENABLE);
}

}  // namespace

int FlashArray(DevicePointer const& device, std::string const& model, bool second) {
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(CONTROLLER_BUCKET, "");
    if (entry == nullptr) {
        cli.logVerbose("FlashArray: Unsupported device\n");
        return codeOk;
    }
    if (!isApplicableToFlash(model)) {
        cli.logVerbose("FlashArray: Not appliacble to flash: %s\n", model.c_str());
        return codeOk;
    }
    if (gblFakeError != 0) {
        cli.logVerbose("### requested failure was 0x%08x #############\n", gblFakeError);
        CheckFlashFailure(gblFakeError);
        return codeUnreadable;
    }
    cli.logVerbose("FlashArray: fw file name: %s\n", entry->payload.c_str());
    std::vector<unsigned char> image;
    if (ReadROMImage(entry->payload, image) != codeOk) {
        cli.logVerbose("Error: Firmware Info/Image read error for %s\n", model.c_str());
        return codeUnreadable;
    }
    char const* const name = Interface::FlashMod::OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE;
    OperationPointer const operation = device->getOperation(name);
    if (operation) {
        if (gblisZeroDownTimeEnabled) {
            askForZeroDownTime(operation, device, model);
        }
        setImageArguments(*operation, image);
    }
    if (!operation || !device->hasOperation(name)) {
        cli.logVerbose("Device refused OPERATION_WRITE_FLASH_ARRAY_CONTROLLER_FIRMWARE...\n");
        if (operation) {
            operation->ClearArgumentList();
        }
        return codeRefused;
    }
    cli.logVerbose("Requesting array flash.\n");
    std::string const installed = getValue(device, Names::ATTR_NAME_FIRMWARE_VERSION, "");
    std::string const slot = getValue(device, Names::ATTR_NAME_SLOT, "");
    cli.printMsg("Updating: %s Slot: %s from [%s] to [%s]\n", model.c_str(), slot.c_str(), installed.c_str(),
                 entry->version.c_str());
    int code = codeOk;
    {
        ProgressLine const progress(model);
        Core::OperationReturn const result = device->perform(operation);
        cli.logVerbose("Flash complete.\n");
        code = LogOperationReturn(result, "array flash");
    }
    sendReadBMICCommand(device);
    cli.logVerbose("Operation return code:%d\n\n", code);
    // An empty image counts as flashed too: the operation takes it, and sends nothing.
    if (code != codeOk) {
        if (second) {
            cli.log("Failed: %s Slot: %s from %s to %s\n", model.c_str(), slot.c_str(), installed.c_str(),
                    entry->version.c_str());
        }
        return code;
    }
    ++gblFlashed;
    if (second) {
        cli.log("Updated: %s Slot: %s from %s to %s\n", model.c_str(), slot.c_str(), installed.c_str(),
                entry->version.c_str());
    }
    return checkArrayForSetBit(device, model) ? setArrayShiftBit(device, model, second) : code;
}

void sendReadBMICCommand(DevicePointer const& device) {
    if (!device->hasOperation(Interface::StorageMod::OPERATION_READ_BMIC_COMMAND)) {
        cli.logVerbose("OPERATION_READ_BMIC_COMMAND not available");
        return;
    }
    device->getOperation(Interface::StorageMod::OPERATION_READ_BMIC_COMMAND);
}
