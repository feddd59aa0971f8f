#include "infomgr/info_mgr_root.h"

#include <vector>

#include "infomgr/os_interface.h"
#include "infomgr/request_records.h"

namespace {

/// The device classes and the object types of each.
struct ClassRow {
    std::uint32_t type;
    std::vector<std::uint32_t> objectTypes;
};
ClassRow const CLASSES[] = {
    {InfoMgr::STORAGE_CLASS, {InfoMgr::ARRAY_CONTROLLER, InfoMgr::SAS_ADAPTER}},
};

}  // namespace

InfoMgrMutex& InfoMgrRoot::instanceMutex() {
    static InfoMgrMutex& mutex = *new InfoMgrMutex;
    return mutex;
}

boost::shared_ptr<InfoMgrRoot>& InfoMgrRoot::theInstance() {
    static auto& root = *new boost::shared_ptr<InfoMgrRoot>;
    return root;
}

boost::shared_ptr<InfoMgrRoot> InfoMgrRoot::instance() {
    InfoMgrMutex::Hold const hold(instanceMutex());
    if (!theInstance()) {
        if (OperatingSystem::OsInterface* const system = OperatingSystem::OsInterface::instance()) {
            theInstance() = make<InfoMgrRoot>(*system);
        }
    }
    return theInstance();
}

void InfoMgrRoot::Destroy() {
    boost::shared_ptr<InfoMgrRoot> leaving;  // goes when the mutex is free again
    InfoMgrMutex::Hold const hold(instanceMutex());
    leaving.swap(theInstance());
}

InfoMgrRoot::InfoMgrRoot(OperatingSystem::OsInterface& system) {
    for (ClassRow const& row : CLASSES) {
        m_classes[row.type] = make<InfoMgrDeviceClass>(ClassDiscoverer(row.type, row.objectTypes, system));
    }
}

int InfoMgrRoot::InfoMgrOpenObject(std::uint32_t type, HMGMTOBJECT* result) {
    auto const entry = m_classes.find(type & ~InfoMgr::RESCAN);
    if (entry == m_classes.end()) {
        return InfoMgr::NOT_OFFERED;
    }
    if ((type & InfoMgr::RESCAN) != 0) {
        entry->second->Rescan();
    }
    *result = entry->second->handle();
    return InfoMgr::SUCCESS;
}

int InfoMgrRoot::InfoMgrControlObject(std::uint32_t function, std::uint32_t, void* request,
                                      std::uint32_t length, std::uint32_t* resultLength) {
    if (resultLength != nullptr) {
        *resultLength = length;
    }
    if (function != InfoMgr::CLASS_FUNCTION) {
        return InfoMgr::NOT_OFFERED;
    }
    if (length < InfoMgr::ClassRequest::LENGTH) {
        return InfoMgr::TOO_SHORT;
    }
    if (request == nullptr) {
        return InfoMgr::BAD_ARGUMENT;
    }
    auto& record = *static_cast<InfoMgr::ClassRequest*>(request);
    auto const entry = m_classes.find(record.type);
    if (entry == m_classes.end()) {
        return InfoMgr::NOT_OFFERED;
    }
    entry->second->count(record.discoveredTypes, record.objects);
    return InfoMgr::SUCCESS;
}
