#include "src/DiscoveryInfo.h"

#include <cstdio>
#include <cstring>
#include <iostream>

#include "src/CLI.h"
#include "src/XML.h"
#include "src/stringhelper.h"

namespace {

constexpr int BucketCount = 3;
constexpr std::size_t PayloadPathSize = 200;  // bytes, the terminating null included

DiscoveryInfo* instance = nullptr;

// The children of a Device element by position; their tags don't matter.
struct CatalogueEntry {
    std::string bucket;
    std::string devName;
    std::string payload;
    std::string version;
};

CatalogueEntry readEntry(C_XML& xml, C_XML::C_Element* device) {
    CatalogueEntry entry;
    auto* field = xml.GetFirstChild(device);
    for (std::string* text : {&entry.bucket, &entry.devName, &entry.payload, &entry.version}) {
        xml.FindFirstText(field, text);
        field = xml.GetFollowingSibling(field);
    }
    return entry;
}

std::string payloadPath(std::string const& catalogue, std::string const& directory,
                        std::string const& payload) {
    if (directory.empty()) return payload;
    char path[PayloadPathSize];
    int const length = std::snprintf(path, sizeof path, "%s/%s", directory.c_str(), payload.c_str());
    if (length >= static_cast<int>(sizeof path)) {
        cli.logVerbose("%s: payload path of %d bytes cut, at most %zu expected: %s\n", catalogue.c_str(),
                       length, sizeof path - 1, path);
    }
    return path;
}

}  // namespace

DevCltn::DevCltn(int buckets) : size(buckets), dTable(new DevInfo*[static_cast<std::size_t>(buckets)]()) {}

DevCltn::~DevCltn() {
    for (int bucket = 0; bucket < size; ++bucket) {
        while (DevInfo* const head = dTable[bucket]) {
            dTable[bucket] = head->nextDev;
            delete head;
        }
    }
}

DiscoveryInfo::DiscoveryInfo() : devCtln(std::make_unique<DevCltn>(BucketCount)) {}

DiscoveryInfo* DiscoveryInfo::Instance() {
    if (!instance) instance = new DiscoveryInfo;
    return instance;
}

void DiscoveryInfo::DeleteInstance() {
    delete instance;
    instance = nullptr;
}

int DiscoveryInfo::createDeviceConfig(std::string const& path) {
    if (isPopulated) return 0;
    cli.logVerbose("createDeviceConfig...\n");

    C_XML xml;
    xml.TrimWhiteSpace(true);
    std::string const fileName = path.empty() ? "Config.xml" : path + "/Config.xml";
    cli.logVerbose("Config xml file: %s\n", fileName.c_str());
    if (!xml.Parse(fileName)) {
        cli.logVerbose("Parse config xml failed: %s\n", fileName.c_str());
        return -1;
    }
    auto* const devices = xml.FindFirstElement("/Devices");
    if (!devices) {
        std::cout << "Error: XML data invalid. <Devices>" << std::endl;
        return -1;
    }

    for (auto* child = xml.GetFirstChild(devices); child; child = xml.GetFollowingSibling(child)) {
        if (child->GetTag() == "Device") {
            CatalogueEntry const entry = readEntry(xml, child);
            bool const added = setDevInfo(textToInt(entry.bucket), payloadPath(fileName, path, entry.payload),
                                          entry.version, entry.devName);
            if (!added) {
                cli.logVerbose("%s: device %s skipped: bucket %s found, 0 to %d expected\n", fileName.c_str(),
                               entry.devName.c_str(), entry.bucket.c_str(), devCtln->size - 1);
            }
        } else if (child->GetTag() == "cpxml") {
            std::string name;
            if (xml.FindFirstText(xml.GetFirstChild(child), &name)) {
                setcpxml(name);
            } else {
                cli.logVerbose("%s: cpxml skipped: no child element found, one expected\n", fileName.c_str());
            }
        }
    }
    isPopulated = true;
    return 0;
}

void DiscoveryInfo::DisplayConfigInfo() {
    for (int bucket = 0; bucket < devCtln->size; ++bucket) {
        for (DevInfo const* entry = devCtln->dTable[bucket]; entry; entry = entry->nextDev) {
            cli.logVerbose("Dev Name: %s PayLoad: %s Version: %s\n", entry->devName.c_str(),
                           entry->payload.c_str(), entry->version.c_str());
        }
    }
}

DevInfo* DiscoveryInfo::getDevInfo(int bucket, std::string const& name) {
    cli.logVerbose("DiscoveryInfo: %s", name.c_str());
    std::string const wanted = trim(name);
    cli.logVerbose("DiscoveryInfo::getDevInfo starts...Tag:%s:\n", wanted.c_str());
    if (!hasBucket(bucket)) {
        cli.logVerbose("getDevInfo: no entry for %s: bucket %d found, 0 to %d expected\n", wanted.c_str(),
                       bucket, devCtln->size - 1);
        return nullptr;
    }

    DevInfo* const head = devCtln->dTable[bucket];
    // A package carries one controller firmware: every controller that passed isApplicable() takes it.
    if (bucket == 0) return head;
    for (DevInfo* entry = head; entry; entry = entry->nextDev) {
        cli.logVerbose("getDevInfo iterator devName:%s: \n", entry->devName.c_str());
        if (std::strcmp(trim(entry->devName).c_str(), wanted.c_str()) == 0) {
            cli.logVerbose("getDevInfo devName matched:%s: fw name %s\n", entry->devName.c_str(),
                           entry->payload.c_str());
            return entry;
        }
    }
    return nullptr;
}

bool DiscoveryInfo::setDevInfo(int bucket, std::string const& payload, std::string const& version,
                               std::string const& name) {
    if (!hasBucket(bucket)) return false;
    devCtln->dTable[bucket] = new DevInfo{name, payload, version, devCtln->dTable[bucket]};
    return true;
}
