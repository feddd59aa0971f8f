#include "src/imageArguments.h"

#include <cstdint>

#include "flash/vocabulary.h"
#include "src/CLI.h"

std::string addressText(void const* address) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(address));
}

void setText(Core::DeviceOperation& operation, char const* name, std::string const& value) {
    operation.SetArgument(Core::DeviceOperation::eSET, name, value.c_str());
}

void setImageArguments(Core::DeviceOperation& operation, std::vector<unsigned char> const& image) {
    // The argument names of every flash operation are the same texts.
    namespace Names = Interface::FlashMod::ArrayController;
    std::string const address = addressText(image.data());
    cli.logVerbose("Setting buffer address to %s for %p\n", address.c_str(),
                   static_cast<void const*>(image.data()));
    setText(operation, Names::ATTR_NAME_BUFFER_ADDRESS, address);
    std::string const size = std::to_string(image.size());
    cli.logVerbose("Setting buffer size to %s\n", size.c_str());
    setText(operation, Names::ATTR_NAME_BUFFER_SIZE, size);
}
