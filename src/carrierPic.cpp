#include "src/carrierPic.h"

#include <vector>

#include "flash/vocabulary.h"
#include "src/CLI.h"
#include "src/config.h"
#include "src/deviceAttributes.h"
#include "src/enclosures.h"
#include "src/imageArguments.h"
#include "src/operationResult.h"
#include "src/romImage.h"
#include "src/runState.h"
#include "storage/vocabulary/array_controller_names.h"

namespace {

using DevicePointer = Common::shared_ptr<Core::Device>;

/// Whether to go on; otherwise `code` is what to return.
bool isWanted(DevicePointer const& drive, FlashConfig const& row, int& code) {
    std::string const installed =
        getValue(drive, Interface::StorageMod::ArrayController::ATTR_NAME_CACHE_AUTO_REVISION, "");
    cli.logVerbose("Device [%s]:  FW Ver [Current:%s ; Apply:%0.02f ?]", "FBWC", installed.c_str(),
                   static_cast<double>(row.Version));
    cli.logVerbose("\n");
    Answer const answer = cli.askFlashIt(row.Group, 1);
    switch (answer) {
        case AnsYes:
            return true;
        case AnsNo:
        case AnsQuit:
            gblFlashInterrupt = true;
            if (answer == AnsQuit) {
                gblFlashing = false;
            }
            cli.logVerbose("\n");
            code = codeOk;
            return false;
        default:
            cli.logVerbose("Bad return from askFlashIt: %d\n", answer);
            code = codeUnreadable;
            return false;
    }
}

int flashImage(DevicePointer const& drive, FlashConfig& row) {
    cli.logVerbose("Preparing to flash devices on the TALLYMARK pic...\n");
    auto const operation =
        drive->getOperation(Interface::FlashMod::OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER);
    if (!operation) {
        cli.logVerbose("Device refused OPERATION_WRITE_FLASH_DRIVE_ACTIVE_CARRIER");
        return codeRefused;
    }
    if (ReadROMImage(row.ROMFileName, row.ROMImage) != codeOk) {
        cli.logVerbose("Error: Firmware Info/Image read error for TALLYMARK PIC\n");
        return codeUnreadable;
    }
    if (row.ROMImage.empty()) {
        return codeRefused;
    }
    setImageArguments(*operation, row.ROMImage);
    cli.logVerbose("Requesting TMK PIC flash.\n");
    Core::OperationReturn const result = drive->perform(operation);
    cli.logVerbose("Flash complete.\n");
    int const code = LogOperationReturn(result, "TALLYMARK PIC flash");
    cli.logVerbose("Operation return code:%d\n\n", code);
    if (code == codeOk) {
        ++gblFlashed;
    }
    return code;
}

}  // namespace

int flashTallyMarkPIC(DevicePointer const& drive, std::string const& tag) {
    cli.logVerbose("Inside the  flashTallyMarkPIC");
    Config* const config = Config::Instance();
    if (config == nullptr) {
        return codeUnreadable;
    }
    FlashConfig* const row = config->GetConfig(tag);
    if (row == nullptr) {
        cli.logVerbose("Error: Config not found for %s\n", getDisplayName(tag).c_str());
        return codeUnreadable;
    }
    int declined = codeOk;
    if (!cli.isSilent() && !isWanted(drive, *row, declined)) {
        return declined;
    }
    if (gblFakeError != 0) {
        cli.logAndPrint("######## BOGUS ERROR STATE TRIGGERED  #############\n");
        cli.logAndPrint("### requested failure was 0x%08x #############\n", gblFakeError);
        CheckFlashFailure(gblFakeError);
        return codeUnreadable;
    }
    int const code = flashImage(drive, *row);
    std::vector<unsigned char>().swap(row->ROMImage);
    return code;
}
