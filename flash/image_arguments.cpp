#include "flash/image_arguments.h"

#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"

namespace Operations {

namespace Results = Interface::TOLKMod::OperationReturn;
namespace Cap = Interface::TOLKMod::Capability;

bool demandArguments(Core::DeviceOperation const& operation, std::initializer_list<char const*> names,
                     Core::OperationReturn& result) {
    for (char const* const name : names) {
        if (!operation.hasArgument(name)) {
            DeviceCommandReturn::ArgumentProblem(Results::ATTR_VALUE_STATUS_ARGUMENT_MISSING, name, result);
        }
    }
    return static_cast<bool>(result);
}

ImageSpan readImage(Core::DeviceOperation const& operation, char const* addressName, char const* sizeName,
                    std::size_t largest, Core::OperationReturn& result) {
    auto const address = Conversion::toNumber<unsigned long long>(operation.getArgValue(addressName));
    // Read in full width: a size that is cut to 32 bits would flash a part of the image.
    auto const size = Conversion::toNumber<unsigned long long>(operation.getArgValue(sizeName));
    ImageSpan const image = {reinterpret_cast<unsigned char const*>(static_cast<std::uintptr_t>(address)),
                             static_cast<std::size_t>(size)};
    if (image.bytes == nullptr) {
        refuseArgument(addressName, operation.getArgValue(addressName), "an address", result);
    } else if (image.size == 0 || image.size > largest) {
        Common::string const expected = "1 to " + Conversion::toString(static_cast<unsigned>(largest));
        refuseArgument(sizeName, operation.getArgValue(sizeName), expected.c_str(), result);
    }
    return image;
}

void refuseArgument(char const* name, Common::string const& found, char const* expected,
                    Core::OperationReturn& result) {
    Common::DebugLogger::LogCommand("%s \"%s\" refused: %s expected", name, found.c_str(), expected);
    DeviceCommandReturn::ArgumentProblem(Results::ATTR_VALUE_STATUS_ARGUMENT_INVALID, name, result);
}

Common::shared_ptr<Core::Capability> fileCapability(char const* name) {
    return Common::shared_ptr<Core::Capability>(new Core::CapabilityClass(
        name, Cap::ATTR_VALUE_INSTANCE_TYPE_FILE, Cap::ATTR_VALUE_CARDINALITY_SINGLE,
        Cap::ATTR_VALUE_ACTION_ABSOLUTE, Cap::ATTR_VALUE_INSTANCE_RANGE_OPEN));
}

}  // namespace Operations
