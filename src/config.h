#pragma once

#include <string>
#include <vector>

/// One row of the comma-separated configuration.
struct FlashConfig {
    std::string ProductId;
    float Version = 0;
    std::string ROMFileName;
    std::vector<unsigned char> ROMImage;
    std::string Group;
    std::string flashSep;
    int flashType = 0;
};

/// The comma-separated configuration that came before the XML catalogue. A run makes the singleton and cleans
/// it after each pass; nothing reads a file into it, so its list stays empty.
class Config {
  public:
    /// Created on first use.
    static Config* Instance();
    /// Leaves the instance alone: it lives to the end of the process.
    static void DeleteInstance();
    Config(Config const&) = delete;
    Config& operator=(Config const&) = delete;

    /// Reads a text file, one row a line, after emptying `List` and gblDeviceTags; ROM files are taken to lie
    /// in `directory` unless that is empty. False, and nothing changed, if the file can't be opened.
    bool ReadConfig(std::string const& path, std::string const& directory);
    /// The first row with this product id, outer blanks aside, or null. Owned by the Config.
    FlashConfig* GetConfig(std::string const& id);
    void CleanConfig();

    int FileMode = 0;
    unsigned char delimeter = ',';
    std::vector<FlashConfig*> List;  ///< Owned.

  private:
    Config() = default;
    ~Config();
};

/// Reads "Config.xml" and does nothing with it. Nothing calls it.
void getDeviceTagsFromXml();
