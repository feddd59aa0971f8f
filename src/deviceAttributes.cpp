#include "src/deviceAttributes.h"

#include "src/CLI.h"
#include "src/stringhelper.h"

std::string getValue(Common::shared_ptr<Core::Device> const& device, char const* name,
                     std::string const& otherwise) {
    return device->hasAttribute(name) ? std::string(device->getValueFor(name).c_str()) : otherwise;
}

void logAttribute(std::string const& name, std::string const& value) {
    std::string const shortName = removePrefix(name, "ATTR_NAME_");
    std::string shortValue = removePrefix(value, "ATTR_VALUE_");
    shortValue = removePrefix(shortValue, shortName + "_");
    cli.logVerbose("   %s = %s\n", transliterate(shortName, '_', ' ').c_str(), shortValue.c_str());
}

void logAllAttributes(Common::shared_ptr<Core::Device> const& device) {
    for (auto attribute = device->beginAttribute(); attribute != device->endAttribute(); ++attribute) {
        Common::string const value = (*attribute).second;
        logAttribute((*attribute).first.c_str(), value.c_str());
    }
}
