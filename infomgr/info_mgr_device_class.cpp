#include "infomgr/info_mgr_device_class.h"

#include "infomgr/api_handle_tree_walker.h"

InfoMgrDeviceClass::InfoMgrDeviceClass(ClassDiscoverer discoverer) : m_discoverer(std::move(discoverer)) {
    for (std::uint32_t const type : m_discoverer.objectTypes()) {
        m_objects[type];
    }
}

void InfoMgrDeviceClass::Rescan() {
    InfoMgrMutex::Hold const hold(m_mutex);
    m_discovered.clear();
}

int InfoMgrDeviceClass::InfoMgrEnumObject(std::uint32_t type, std::uint32_t index, HMGMTOBJECT* result) {
    std::uint32_t const proper = type & ~InfoMgr::RESCAN;
    bool rescan = (type & InfoMgr::RESCAN) != 0;
    boost::shared_ptr<InfoMgrSchemaObject> object;
    {
        InfoMgrMutex::Hold const hold(m_mutex);
        auto const row = m_objects.find(proper);
        if (row == m_objects.end()) {
            return InfoMgr::NOT_OFFERED;
        }
        if (!m_discovered.getMarkFor(proper)) {
            ApiHandleTreeWalker(m_discoverer).discover(proper, row->second);
            m_discovered.Mark(proper, true);
            rescan = false;  // all of them have just been asked
        }
        if (index >= row->second.size()) {
            return InfoMgr::NO_MORE;
        }
        object = row->second[index];
    }
    *result = object->handle();
    if (rescan) {
        object->Rescan();
    }
    return object->status();
}

void InfoMgrDeviceClass::count(std::uint32_t& discoveredTypes, std::uint32_t& objects) {
    InfoMgrMutex::Hold const hold(m_mutex);
    discoveredTypes = m_discovered.marks();
    objects = 0;
    for (auto const& [type, list] : m_objects) {
        objects += static_cast<std::uint32_t>(list.size());
    }
}
