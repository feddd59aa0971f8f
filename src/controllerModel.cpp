#include "src/controllerModel.h"

#include <cstdio>

#include "src/CLI.h"
#include "src/stringhelper.h"
#include "storage/controller_models.h"

namespace {

constexpr char const* PREFIXES[] = {
    "ATTR_VALUE_STORAGE_SYSTEM_NAME_",
    "ATTR_VALUE_CONTROLLER_NAME_",
    "ATTR_VALUE_",
};

}  // namespace

std::string MakeEnclosureNameNice(std::string const& text) {
    if (text.find("KITEWING") != std::string::npos) {
        return "ZenoS8c";
    }
    std::string rest = text;
    for (char const* prefix : PREFIXES) {
        bool found = false;
        rest = removePrefix(text, prefix, &found);
        if (found) {
            break;
        }
    }
    return trim(transliterate(rest, '_', ' '));
}

std::string mapContollerName(std::string const& name) {
    std::string model = name;
    for (auto const& row : Interface::StorageMod::controllerModels()) {
        // "code name:model", as one text, so that a model given as the name finds its row too.
        std::string const text = transliterate(row.name, '_', ' ') + ":" + row.model;
        if (text.find(name) != std::string::npos) {
            model = text.substr(text.find(':') + 1);
            break;
        }
    }
    cli.logVerbose("mapped Controller %s\n", model.c_str());
    return model;
}

std::string applicabilityKey(std::string const& subsystemIdentifier) {
    // atoi in 32 bits: identifiers from 0x80000000 up come as negative numbers or wrapped ones and print the
    // same digits.
    auto const identifier = static_cast<unsigned>(std::strtoll(subsystemIdentifier.c_str(), nullptr, 10));
    char field[9] = {};
    std::snprintf(field, sizeof field, "%X", identifier);
    std::string const secondHalf(field + 4);
    if (secondHalf.empty()) {
        return std::string();
    }
    return secondHalf + std::string(field, 4);
}
