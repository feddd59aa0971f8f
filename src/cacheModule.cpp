#include "src/cacheModule.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "flash/vocabulary.h"
#include "src/CLI.h"
#include "src/DiscoveryInfo.h"
#include "src/deviceAttributes.h"
#include "src/deviceCollection.h"
#include "src/discoveryDocument.h"
#include "src/imageArguments.h"
#include "src/inputFile.h"
#include "src/operationResult.h"
#include "src/runState.h"
#include "src/version.h"
#include "src/versionJudgement.h"
#include "storage/vocabulary/array_controller_names.h"

namespace {

namespace Names = Interface::StorageMod::ArrayController;
namespace FlashNames = Interface::FlashMod::ArrayController;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr int NAMED_BUCKET = 1;
constexpr int CACHE_MODULE_ROW = 1;
/// Largest image that is read, as for every other image.
constexpr long IMAGE_LIMIT = 1L << 30;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// What the cache module runs; 0 when the controller doesn't tell, so that any firmware is newer.
float installedVersion(DevicePointer const& controller) {
    if (!controller->hasAttribute(Names::ATTR_NAME_CACHE_AUTO_REVISION)) {
        return 0;
    }
    float const version = VersionToFloat(getValue(controller, Names::ATTR_NAME_CACHE_AUTO_REVISION, ""));
    cli.logVerbose("FBWC Version : %f  \n", static_cast<double>(version));
    return version;
}

/// Reads a file whole, one zero byte behind its contents. `count` is how much was read. False, with the
/// reason in the verbose log, for what has no size or can't be read.
bool readImage(std::FILE* file, std::string const& path, std::vector<unsigned char>& image,
               unsigned int& count) {
    long const size = std::fseek(file, 0, SEEK_END) == 0 ? std::ftell(file) : -1;
    if (size < 0 || size > IMAGE_LIMIT) {
        cli.logVerbose("FlashPIC: %s refused: its size is %ld bytes, 0 to %ld expected\n", path.c_str(), size,
                       IMAGE_LIMIT);
        return false;
    }
    std::rewind(file);
    image.assign(static_cast<std::size_t>(size) + 1, 0);
    count = static_cast<unsigned int>(std::fread(image.data(), 1, image.size() - 1, file));
    if (std::ferror(file) != 0) {
        cli.logVerbose("FlashPIC: %s refused: %u of %ld bytes read: %s\n", path.c_str(), count, size,
                       std::strerror(errno));
        return false;
    }
    return true;
}

}  // namespace

int checkArrayForFBWC(DevicePointer const& controller, std::string const& tag) {
    cli.logVerbose("Inside checkArrayForFBWC\n");
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(NAMED_BUCKET, tag);
    if (entry == nullptr) {
        return codeUnreadable;
    }
    // The probe performs the flash operation without arguments, which the operation refuses by itself.
    if (CheckSupportedOperation(controller, Interface::FlashMod::OPERATION_WRITE_FLASH_FBWC) != codeOk) {
        return codeOk;
    }
    ++gblFound;
    float const catalogue = VersionToFloat(entry->version);
    float const installed = installedVersion(controller);
    VersionJudgement const judgement = judgeVersion(installed, catalogue);
    std::string const revision = getValue(controller, Names::ATTR_NAME_CACHE_AUTO_REVISION, "");
    setExpMinMaxFWVersion(revision);
    if (isDiscoveryPass()) {
        addToDeviceCollection("FWBC", tag, tag, revision, CACHE_MODULE_ROW, "", "");
        setUpdateStatusToDeviceCollection(tag, judgement.state);
        writeDocumentDevice(
            {tag, "FWBC", "Controller ROM", catalogue, versionText(installed), judgement.state});
    }
    // The mark in the row isn't asked, unlike for every other device: a cache module goes with its
    // controller's package, and an older one is flashed whatever was answered. Only a query holds it back.
    return gblFlashing && judgement.needsFlash ? flashPIC(controller, tag) : codeOk;
}

int flashPIC(DevicePointer const& controller, std::string const& tag) {
    cli.logVerbose("Start: flashPIC");
    auto const operation = controller->getOperation(Interface::FlashMod::OPERATION_WRITE_FLASH_FBWC);
    if (!operation) {
        cli.logVerbose("Device refused OPERATION_WRITE_FLASH_FBWC");
        return codeRefused;
    }
    float const installed = installedVersion(controller);
    cli.logVerbose("FlashPIC: Starts. Tag: %s\n", tag.c_str());
    DevInfo const* const entry = DiscoveryInfo::Instance()->getDevInfo(NAMED_BUCKET, tag);
    if (entry == nullptr) {
        cli.logVerbose("FlashPIC Unsupported device: %s\n", tag.c_str());
        return codeOk;
    }
    cli.logVerbose("FlashPIC: fw file name: %s\n", entry->payload.c_str());
    if (refuseWaitingFile(entry->payload)) {
        return codeUnreadable;
    }
    File const file(std::fopen(entry->payload.c_str(), "rb"));
    if (!file) {
        cli.logVerbose("FlashPIC: Firmware Info/Image not found for FBWC\n");
        return codeCacheFileMissing;
    }
    std::vector<unsigned char> image;
    unsigned int count = 0;
    if (!readImage(file.get(), entry->payload, image, count)) {
        return codeUnreadable;
    }
    cli.logVerbose("Preparing to flash devices on the FBWC pic...\n");
    setText(*operation, FlashNames::ATTR_NAME_BUFFER_ADDRESS, addressText(image.data()));
    cli.logVerbose("Setting buffer size to %u\n", count);
    setText(*operation, FlashNames::ATTR_NAME_BUFFER_SIZE, std::to_string(count));
    cli.logVerbose("Requesting FBWC PIC flash.\n");
    cli.printMsg("Updating: GoldPIC (FBWC) firmware version : from [%0.2f] to [%s]\n",
                 static_cast<double>(installed), entry->version.c_str());
    Core::OperationReturn const result = controller->perform(operation);
    cli.logVerbose("Flash complete.\n");
    int const code = LogOperationReturn(result, "FBWC PIC flash");
    cli.logVerbose("Operation return code:%d\n\n", code);
    if (code == codeOk) {
        ++gblFlashed;
    }
    cli.logVerbose("End: flashPIC");
    return code;
}
