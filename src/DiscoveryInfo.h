#pragma once

#include <memory>
#include <string>

/// One entry of the firmware catalogue.
struct DevInfo {
    std::string devName;
    std::string payload;  ///< Firmware file name.
    std::string version;  ///< Version of the firmware in that file, as text.
    DevInfo* nextDev = nullptr;
};

/// A table of `size` buckets, each the head of a singly linked list of entries, which it owns.
struct DevCltn {
    explicit DevCltn(int buckets);
    ~DevCltn();
    DevCltn(DevCltn const&) = delete;
    DevCltn& operator=(DevCltn const&) = delete;

    int size;
    std::unique_ptr<DevInfo*[]> dTable;
};

/// The firmware catalogue: what the package carries. Bucket 0 holds array controller firmware, bucket 1
/// everything that is found by name (SEPs and expanders by product id, and the entry "FBWC"); nothing reads
/// bucket 2.
class DiscoveryInfo {
  public:
    /// Created on first use.
    static DiscoveryInfo* Instance();
    /// Destroys the instance and every entry; entries handed out end with it.
    static void DeleteInstance();
    DiscoveryInfo(DiscoveryInfo const&) = delete;
    DiscoveryInfo& operator=(DiscoveryInfo const&) = delete;

    /// Reads "Config.xml" from the directory `path`, or from the working directory when it is empty. Returns
    /// 0, or -1 on failure, which may be tried again. Once read, further calls return 0 at once.
    int createDeviceConfig(std::string const& path);
    /// Writes every entry to the verbose log.
    void DisplayConfigInfo();
    /// The entry that stands last in the catalogue under this name (outer blanks aside, case counts), or
    /// null. Bucket 0 gives its last entry whatever the name. A bucket outside the table gives null.
    DevInfo* getDevInfo(int bucket, std::string const& name);
    /// Adds an entry at the head of its bucket. False, and nothing added, for a bucket outside the table.
    bool setDevInfo(int bucket, std::string const& payload, std::string const& version,
                    std::string const& name);
    /// Base name of the component file, without ".xml".
    std::string getcpxml() const { return cpxml; }
    void setcpxml(std::string const& name) { cpxml = name; }

  private:
    DiscoveryInfo();
    bool hasBucket(int bucket) const { return bucket >= 0 && bucket < devCtln->size; }

    bool isPopulated = false;
    std::unique_ptr<DevCltn> devCtln;
    std::string cpxml;
};
