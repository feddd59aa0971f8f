#include "src/operationResult.h"

#include "common/conversion.h"
#include "core/tolkmod.h"
#include "flash/vocabulary.h"
#include "src/CLI.h"
#include "src/runState.h"

namespace {

namespace Names = Interface::TOLKMod::OperationReturn;

struct SenseText {
    unsigned code;  ///< additional sense code
    char const* text;
};

constexpr SenseText SENSE_TEXTS[] = {
    {0x24, "Invalid Field in CDB"},
    {0x26, "Invalid ROM image"},
    {0x2C, "Internal enclosure error"},
    {0x44, "Hardware component not found"},
};

void logSenseText(unsigned code) {
    for (SenseText const& row : SENSE_TEXTS) {
        if (row.code == code) {
            cli.logVerbose("      %s.\n", row.text);
        }
    }
}

struct FailureText {
    unsigned bits;
    char const* text;
};

// Deployment tools look for these lines as they are, the odd blanks in the first and in 0x400 included.
constexpr FailureText FAILURE_TEXTS[] = {
    {0x1, "     Backplane component 1 failed to flash - replace\n"},
    {0x2, "    Backplane component 2 failed to flash - replace\n"},
    {0x4, "    Backplane component 3 failed to flash - replace\n"},
    {0x8, "    Backplane component 4 failed to flash - replace\n"},
    {0x10, "    Fan Control Module 1 failed to flash - replace\n"},
    {0x20, "    Fan Control Module 2 failed to flash - replace\n"},
    {0x40, "    Fan Control Module failed to flash - replace\n"},
    {0x80, "    Fan Control Module failed to flash - replace\n"},
    {0x100, "    HMM component 1 failed to flash - replace\n"},
    {0x200, "    HMM component 2 failed to flash - replace\n"},
    {0x400, "    HMM component  failed to flash - replace\n"},
    {0x800, "    HMM component failed to flash - replace\n"},
    {0x1000, "    7 Segment display component failed to flash - replace\n"},
};

constexpr unsigned CRITICAL = 0x80000000;

}  // namespace

int LogOperationReturn(Core::OperationReturn const& result, char const* label) {
    if (result) {
        cli.logVerbose("The %s operation succeeded.\n", label);
        return codeOk;
    }
    int code = codeFlashFailed;
    cli.logVerbose("The %s operation failed:\n", label);
    if (!result.hasAttribute(Names::ATTR_NAME_OPERATION_RETURN_LIST)) {
        cli.logVerbose("   No status information is available.\n");
        return code;
    }
    auto const list =
        Common::list<Core::OperationReturn>(result.getPublicValueFor(Names::ATTR_NAME_OPERATION_RETURN_LIST));
    bool seen = false;
    for (auto element = list.begin(); element != list.end(); ++element) {
        for (auto attribute = (*element).beginAttribute(); attribute != (*element).endAttribute();
             ++attribute) {
            seen = true;
            Common::string const& name = (*attribute).first;
            Common::string const value = (*attribute).second;
            cli.logVerbose("   %s = %s\n", name.c_str(), value.c_str());
            if (name == Interface::FlashMod::OperationReturn::ATTR_NAME_ADDITIONAL_STATUS) {
                int const failure = CheckFlashFailure(Conversion::toNumber<unsigned int>(value));
                code = code == codeSerious ? code : failure;
            } else if (name == Names::ATTR_NAME_SCSI_ASC) {
                logSenseText(Conversion::toNumber<unsigned int>(value));
            }
        }
    }
    if (!seen) {
        cli.logVerbose("   No additional status information is available.\n");
    }
    return code;
}

int CheckSupportedOperation(Common::shared_ptr<Core::Device> const& device, char const* operationName) {
    if (!device->hasOperation(operationName)) {
        cli.logVerbose("Device refused %s...\n", operationName);
        return codeFlashFailed;
    }
    Common::shared_ptr<Core::DeviceOperation> const operation = device->getOperation(operationName);
    cli.logVerbose("Requesting controller information...\n");
    Core::OperationReturn const result = device->perform(operation);
    cli.logVerbose(result ? "%s successful\n" : "%s failed\n", operationName);
    return codeOk;
}

int CheckFlashFailure(unsigned int failureWord) {
    cli.logVerbose("   Internal Failure code 0x%x\n", failureWord);
    for (FailureText const& row : FAILURE_TEXTS) {
        if ((failureWord & row.bits) != 0) {
            cli.logVerbose("%s", row.text);
        }
    }
    if ((failureWord & CRITICAL) != 0) {
        cli.logVerbose("   critical error: SEP component failed to flash - replace\n");
        cli.logVerbose("   possible data loss - power off, unplug all cables, and contact support\n");
        return codeSerious;
    }
    return codeFlashFailed;
}
