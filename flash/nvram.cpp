#include "flash/nvram.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "command/controller_command.h"
#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "flash/image_arguments.h"
#include "flash/vocabulary_enclosure.h"
#include "storage/schema/array_controller.h"

namespace Operations {
namespace {

namespace Names = Interface::FlashMod::NVRAM;
namespace Cap = Interface::TOLKMod::Capability;
namespace Results = Interface::TOLKMod::OperationReturn;
using Core::OperationReturn;

constexpr unsigned IDENTITIES = 256;
constexpr unsigned MEMORY_SIZE = 256;
constexpr unsigned char REPEATS = 2;
/// Commands that may not reach the controller in a search: each can take as long as its timeout.
constexpr unsigned MOST_UNDELIVERED = 2;
/// Beside the identity in the address field of a write.
constexpr std::uint32_t WRITE_FLAG = 0x10000;

using SenseNVRAM = SenseControllerCommand<NVRAMPassThroughTrait>;

/// False, with a line in the log and without the file, when not all of it was written. What isn't a regular
/// file stays.
bool writeWhole(std::FILE* file, char const* path, unsigned char const* bytes) {
    bool const written = std::fwrite(bytes, 1, MEMORY_SIZE, file) == MEMORY_SIZE;
    if (std::fclose(file) == 0 && written) return true;
    Common::DebugLogger::LogCommand("File %s refused: fewer than %u bytes could be written: %s", path,
                                    MEMORY_SIZE, std::strerror(errno));
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored)) std::filesystem::remove(path, ignored);
    return false;
}

/// In the highest byte of the address field.
constexpr std::uint32_t identityField(unsigned identity) {
    return static_cast<std::uint32_t>(identity) << 24;
}

unsigned readIdentity(Core::DeviceOperation const& operation, OperationReturn& result) {
    Common::string const text = operation.getArgValue(Names::ATTR_NAME_BMIC_I2C_ID);
    unsigned long long identity = 0;
    if (!readNumber(text, IDENTITIES - 1, identity)) {
        refuseArgument(Names::ATTR_NAME_BMIC_I2C_ID, text, "0 to 255", result);
    }
    return static_cast<unsigned>(identity);
}

Common::shared_ptr<Core::Capability> identityCapability(Common::shared_ptr<Core::Device> const& device) {
    Common::shared_ptr<Core::Capability> const choice(
        new Core::CapabilityClass(Names::ATTR_NAME_BMIC_I2C_ID, Cap::ATTR_VALUE_INSTANCE_TYPE_NUMERIC,
                                  Cap::ATTR_VALUE_CARDINALITY_SINGLE, Cap::ATTR_VALUE_ACTION_ABSOLUTE,
                                  Cap::ATTR_VALUE_INSTANCE_RANGE_CLOSED));
    if (!device) return choice;
    for (std::uint8_t const identity : answeringI2CIdentities(*device)) {
        choice->Subscribe(Common::shared_ptr<Core::Capability>(new Core::CapabilityInstance(
            Conversion::toString(static_cast<unsigned>(identity)), false, false)));
    }
    return choice;
}

Common::shared_ptr<Core::Capability> capabilityOf(char const* fileName,
                                                  Common::shared_ptr<Core::Device> const& device) {
    Common::shared_ptr<Core::Capability> const root(new Core::Capability);
    root->Subscribe(fileCapability(fileName));
    root->Subscribe(identityCapability(device));
    return root;
}

}  // namespace

std::vector<std::uint8_t> answeringI2CIdentities(Core::Device& controller) {
    std::vector<std::uint8_t> answering;
    auto* const commands = dynamic_cast<BMICDevice*>(&controller);
    if (commands == nullptr) return answering;
    unsigned undelivered = 0;
    for (unsigned identity = 0; identity < IDENTITIES; ++identity) {
        SenseNVRAM sense;
        sense.SetDetails(identityField(identity));
        // Of passing conditions only: nobody there isn't one.
        sense.SetNumMaxRetries(REPEATS);
        if (sense(*commands) && sense.receivedLength() != 0) {
            answering.push_back(static_cast<std::uint8_t>(identity));
        } else if (!sense.isDelivered() && ++undelivered == MOST_UNDELIVERED) {
            Common::DebugLogger::LogCommand(
                "I2C identities behind %u not looked at: the controller isn't reached", identity);
            break;
        }
    }
    return answering;
}

OperationReturn WriteFlashNVRAM::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    if (!demandArguments(
            *this,
            {Names::ATTR_NAME_BUFFER_ADDRESS, Names::ATTR_NAME_BUFFER_SIZE, Names::ATTR_NAME_BMIC_I2C_ID},
            result)) {
        return result;
    }
    ImageSpan const image = readImage(*this, Names::ATTR_NAME_BUFFER_ADDRESS, Names::ATTR_NAME_BUFFER_SIZE,
                                      LARGEST_COMMAND, result);
    unsigned const identity = readIdentity(*this, result);
    if (!result) return result;
    SetControllerCommand<NVRAMPassThroughTrait> command;
    command.SetBuffer(image.bytes, static_cast<unsigned>(image.size));
    command.SetDetails(identityField(identity) | WRITE_FLAG);
    DeviceCommandReturn::executeCommand(command, controller, result);
    return result;
}

Common::shared_ptr<Core::Capability> WriteFlashNVRAM::getCapabilityPtr(
    Common::shared_ptr<Core::Device> device) {
    return capabilityOf(Names::ATTR_NAME_FIRMWARE_FILE_NAME, device);
}

OperationReturn ReadNVRAM::visit(Schema::ArrayController& controller) {
    OperationReturn result;
    if (!demandArguments(*this, {Names::ATTR_NAME_OUTPUT_FILE_NAME, Names::ATTR_NAME_BMIC_I2C_ID}, result)) {
        return result;
    }
    unsigned const identity = readIdentity(*this, result);
    if (!result) return result;
    SenseNVRAM command;
    command.SetDetails(identityField(identity));
    DeviceCommandReturn::executeCommand(command, controller, result);
    if (result && command.receivedLength() != MEMORY_SIZE) {
        Common::DebugLogger::LogCommand("Memory of I2C identity %u refused: %u bytes came, %u expected",
                                        identity, command.receivedLength(), MEMORY_SIZE);
        result.Receive(Core::Attribute(Results::ATTR_NAME_STATUS, Results::ATTR_VALUE_STATUS_FAILURE));
    }
    if (!result) return result;
    Common::string const path = getArgValue(Names::ATTR_NAME_OUTPUT_FILE_NAME);
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    // A file that can't be opened has never been a failure here, and callers look for it themselves.
    if (file != nullptr && !writeWhole(file, path.c_str(), command.buffer().data())) {
        result.Receive(Core::Attribute(Results::ATTR_NAME_STATUS, Results::ATTR_VALUE_STATUS_FAILURE));
    }
    return result;
}

Common::shared_ptr<Core::Capability> ReadNVRAM::getCapabilityPtr(Common::shared_ptr<Core::Device> device) {
    return capabilityOf(Names::ATTR_NAME_OUTPUT_FILE_NAME, device);
}

}  // namespace Operations
