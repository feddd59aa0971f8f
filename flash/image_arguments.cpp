#include "flash/image_arguments.h"

#include <charconv>
#include <cstdint>

#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"

namespace Operations {

namespace Results = Interface::TOLKMod::OperationReturn;
namespace Cap = Interface::TOLKMod::Capability;

bool readNumber(Common::string const& text, unsigned long long largest, unsigned long long& value) {
    unsigned long long number = 0;
    char const* const end = text.c_str() + text.size();
    auto const [stop, error] = std::from_chars(text.c_str(), end, number);
    if (error != std::errc() || stop != end || number > largest) return false;
    value = number;
    return true;
}

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
    unsigned long long address = 0;
    unsigned long long size = 0;
    ImageSpan image = {nullptr, 0};
    if (!readNumber(operation.getArgValue(addressName), UINTPTR_MAX, address) || address == 0) {
        refuseArgument(addressName, operation.getArgValue(addressName), "an address", result);
    } else if (!readNumber(operation.getArgValue(sizeName), largest, size) || size == 0) {
        Common::string const expected = "1 to " + Conversion::toString(static_cast<unsigned>(largest));
        refuseArgument(sizeName, operation.getArgValue(sizeName), expected.c_str(), result);
    } else {
        image = {reinterpret_cast<unsigned char const*>(static_cast<std::uintptr_t>(address)),
                 static_cast<std::size_t>(size)};
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
