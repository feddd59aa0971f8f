#include <algorithm>
#include <cstdint>

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "flash/controller_filters.h"
#include "flash/controller_operations.h"
#include "flash/image_arguments.h"
#include "flash/progress.h"
#include "flash/vocabulary.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::FlashMod::ArrayController;
namespace Cap = Interface::TOLKMod::Capability;
namespace Controller = Interface::StorageMod::ArrayController;
using Core::OperationReturn;

constexpr std::uint32_t CHUNK_SIZE = 16384;
constexpr unsigned CHUNK_SHIFT = 14;
/// Chunk numbers have 16 bits on the wire.
constexpr std::uint32_t MOST_CHUNKS = 0xFFFF;

/// Address field of the flash command: run the new firmware at once, or after the next reset.
constexpr std::uint32_t ACTIVATE_WITHOUT_DOWNTIME = 2;
constexpr std::uint32_t ACTIVATE_DEFERRED = 0;

/// The image, borrowed from the caller.
struct Image {
    unsigned char const* bytes;
    std::uint32_t size;

    std::uint32_t chunks() const { return (size >> CHUNK_SHIFT) + ((size & (CHUNK_SIZE - 1)) != 0 ? 1 : 0); }
};

template <typename Trait>
void sendUnchecked(Schema::ArrayController& controller) {
    NoTransferControllerCommand<Trait> command;
    command(controller);
}

/// Number of a chunk and of all chunks as the collect command's address field has them: byte 0 the number's
/// low byte, byte 1 the total's, byte 2 the number's high byte, byte 3 the total's.
std::uint32_t chunkAddress(std::uint32_t number, std::uint32_t total) {
    return (number & 0xFF) | (total & 0xFF) << 8 | (number >> 8 & 0xFF) << 16 | (total >> 8 & 0xFF) << 24;
}

/// Collects the image in the controller, piece by piece, until a piece fails.
void collect(Schema::ArrayController& controller, Image const& image, OperationReturn& result) {
    std::uint32_t const chunks = image.chunks();
    for (std::uint32_t number = 1; number <= chunks && result; ++number) {
        std::uint32_t const offset = (number - 1) * CHUNK_SIZE;
        SetControllerCommand<CollectBufferTrait> command;
        command.SetBuffer(image.bytes + offset, std::min(CHUNK_SIZE, image.size - offset));
        command.SetDetails(chunkAddress(number, chunks));
        DeviceCommandReturn::executeCommand(command, controller, result);
        if (result) {
            Interface::FlashMod::reportProgress(number, chunks);
        }
    }
}

void activate(Schema::ArrayController& controller, bool withoutDowntime, OperationReturn& result) {
    if (!result) {
        return;
    }
    NoTransferControllerCommand<FlashControllerFirmwareTrait> command;
    command.SetDetails(withoutDowntime ? ACTIVATE_WITHOUT_DOWNTIME : ACTIVATE_DEFERRED);
    DeviceCommandReturn::executeCommand(command, controller, result);
}

bool canUpdateWithoutDowntime(Core::Device const& device) {
    return device.hasAttributeAndIs(Controller::ATTR_NAME_CONTROLLER_FIRMWARE_FAMILY,
                                    Controller::ATTR_VALUE_CONTROLLER_FIRMWARE_FAMILY_QBX_HARRIER) &&
           !device.hasAttributeAndIs(Controller::ATTR_NAME_CONTROLLER_NAME,
                                     Controller::ATTR_VALUE_CONTROLLER_NAME_KITEWING_SAS) &&
           device.hasAttributeAndIs(Controller::ATTR_NAME_IS_TOFU_SUPPORTED,
                                    Controller::ATTR_VALUE_IS_TOFU_SUPPORTED_TRUE);
}

}  // namespace

OperationReturn WriteFlashArrayControllerFirmware::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    auto const address =
        Conversion::toNumber<unsigned long long>(getArgValue(Names::ATTR_NAME_BUFFER_ADDRESS));
    Image const image = {
        reinterpret_cast<unsigned char const*>(static_cast<std::uintptr_t>(address)),
        Conversion::toNumber<unsigned int>(getArgValue(Names::ATTR_NAME_BUFFER_SIZE)),
    };
    if (image.size == 0) {
        return result;
    }
    if (image.bytes == nullptr || image.chunks() > MOST_CHUNKS) {
        Common::DebugLogger::LogCommand(
            "Image of %u bytes at %p refused: an address and at most %u bytes expected",
            static_cast<unsigned>(image.size), static_cast<void const*>(image.bytes),
            static_cast<unsigned>(MOST_CHUNKS * CHUNK_SIZE));
        DeviceCommandReturn::ArgumentProblem(
            Interface::TOLKMod::OperationReturn::ATTR_VALUE_STATUS_ARGUMENT_INVALID,
            image.bytes == nullptr ? Names::ATTR_NAME_BUFFER_ADDRESS : Names::ATTR_NAME_BUFFER_SIZE, result);
        return result;
    }
    bool const withoutDowntime = hasArgumentAndIs(Names::ATTR_NAME_TOFU, Names::ATTR_VALUE_TOFU_ENABLE);
    sendUnchecked<PauseBackgroundActivityTrait>(controller);
    // Drops what an earlier run left in the controller's collection.
    sendUnchecked<FreeCollectedBufferTrait>(controller);
    collect(controller, image, result);
    activate(controller, withoutDowntime, result);
    if (result) {
        sendUnchecked<ResumeBackgroundActivityTrait>(controller);
    }
    return result;
}

Common::shared_ptr<Core::Capability> WriteFlashArrayControllerFirmware::getCapabilityPtr(
    Common::shared_ptr<Core::Device> device) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    root->Subscribe(fileCapability(Names::ATTR_NAME_FIRMWARE_FILE_NAME));
    if (device && canUpdateWithoutDowntime(*device)) {
        Common::shared_ptr<Core::Capability> const withoutDowntime(new Core::CapabilityClass(
            Names::ATTR_NAME_TOFU, Cap::ATTR_VALUE_INSTANCE_TYPE_STRING, Cap::ATTR_VALUE_CARDINALITY_SINGLE,
            Cap::ATTR_VALUE_ACTION_ABSOLUTE, Cap::ATTR_VALUE_INSTANCE_RANGE_CLOSED));
        for (char const* value : {Names::ATTR_VALUE_TOFU_ENABLE, Names::ATTR_VALUE_TOFU_DISABLE}) {
            withoutDowntime->Subscribe(
                Common::shared_ptr<Core::Capability>(new Core::CapabilityInstance(value, false, false)));
        }
        root->Subscribe(withoutDowntime);
    }
    return root;
}

}  // namespace Operations
