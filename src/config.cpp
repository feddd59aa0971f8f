#include "src/config.h"

#include <fstream>
#include <memory>

#include "src/CLI.h"
#include "src/XML.h"
#include "src/deviceTags.h"
#include "src/stringhelper.h"
#include "src/version.h"

namespace {

Config* instance = nullptr;

std::vector<std::string> splitFields(std::string const& line, char delimeter) {
    std::vector<std::string> fields;
    std::string::size_type start = 0;
    for (;;) {
        auto const end = line.find(delimeter, start);
        fields.push_back(trim(line.substr(start, end - start)));
        if (end == std::string::npos) return fields;
        start = end + 1;
    }
}

void setField(FlashConfig& row, std::size_t position, std::string const& text, std::string const& directory) {
    switch (position) {
        case 0:
            row.ProductId = text;
            // Not through addTags(): here the first tag goes in once.
            if (!text.empty()) gblDeviceTags.push_back(text);
            break;
        case 1:
            row.Version = VersionToFloat(text);
            break;
        case 2:
            row.ROMFileName = directory.empty() ? text : directory + "/" + text;
            break;
        case 3:
            row.Group = text;
            break;
        case 4:
            row.flashSep = text;
            break;
        case 5:
            row.flashType = textToInt(text);
            break;
        default:
            cli.logAndPrint("Unexpected entry in config file [%s]\n", text.c_str());
    }
}

}  // namespace

Config::~Config() {
    CleanConfig();
}

Config* Config::Instance() {
    if (!instance) instance = new Config;
    return instance;
}

// The test is the wrong way round, so nothing is ever deleted, and rows that were handed out stay good to the
// end of the process.
void Config::DeleteInstance() {
    if (!instance) delete instance;
}

bool Config::ReadConfig(std::string const& path, std::string const& directory) {
    std::ifstream file(path);
    if (!file.is_open()) return false;
    CleanConfig();
    gblDeviceTags.clear();

    std::string line;
    while (std::getline(file, line)) {
        line = trim(line);
        if (line.starts_with('#')) continue;
        auto row = std::make_unique<FlashConfig>();
        auto const fields = splitFields(line, static_cast<char>(delimeter));
        for (std::size_t i = 0; i < fields.size(); ++i)
            setField(*row, i, fields[i], directory);
        List.push_back(row.get());
        static_cast<void>(row.release());
    }
    return true;
}

FlashConfig* Config::GetConfig(std::string const& id) {
    std::string const wanted = trim(id);
    for (FlashConfig* row : List) {
        if (row->ProductId == wanted) return row;
    }
    return nullptr;
}

void Config::CleanConfig() {
    for (FlashConfig* row : List) {
        std::vector<unsigned char>().swap(row->ROMImage);
        delete row;
    }
    List.clear();
}

void getDeviceTagsFromXml() {
    C_XML xml;
    xml.TrimWhiteSpace(true);
    xml.Parse("Config.xml");
}
