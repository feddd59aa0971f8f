#include "infomgr/info_mgr_api_interface.h"

InfoMgrAPIInterface::Registry& InfoMgrAPIInterface::s_schemaObjectRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}

InfoMgrMutex& InfoMgrAPIInterface::s_registryProtectMutex() {
    static InfoMgrMutex& mutex = *new InfoMgrMutex;
    return mutex;
}

InfoMgrAPIInterface::InfoMgrAPIInterface() {
    InfoMgrMutex::Hold const hold(s_registryProtectMutex());
    s_schemaObjectRegistry()[this];
}

InfoMgrAPIInterface::~InfoMgrAPIInterface() {
    InfoMgrMutex::Hold const hold(s_registryProtectMutex());
    s_schemaObjectRegistry().erase(this);
}

void InfoMgrAPIInterface::publish(boost::shared_ptr<InfoMgrAPIInterface> const& object) {
    InfoMgrMutex::Hold const hold(s_registryProtectMutex());
    s_schemaObjectRegistry()[object.get()] = object;
}

boost::shared_ptr<InfoMgrAPIInterface> InfoMgrAPIInterface::hold(HMGMTOBJECT handle) {
    InfoMgrMutex::Hold const hold(s_registryProtectMutex());
    auto const entry = s_schemaObjectRegistry().find(handle);
    return entry == s_schemaObjectRegistry().end() ? boost::shared_ptr<InfoMgrAPIInterface>()
                                                   : entry->second.lock();
}

bool InfoMgrAPIInterface::isValidHandle(HMGMTOBJECT handle) {
    return hold(handle) != nullptr;
}

int InfoMgrAPIInterface::InfoMgrOpenObject(std::uint32_t, HMGMTOBJECT*) {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrCloseObject() {
    return InfoMgr::SUCCESS;
}
int InfoMgrAPIInterface::InfoMgrEnumObject(std::uint32_t, std::uint32_t, HMGMTOBJECT*) {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrGetObjectInfo(std::uint32_t, void*, std::uint32_t) {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrControlObject(std::uint32_t, std::uint32_t, void*, std::uint32_t,
                                              std::uint32_t*) {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrLockObject() {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrUnlockObject() {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrSetObjectInfo(std::uint32_t, void const*, std::uint32_t) {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrRegisterObject() {
    return InfoMgr::NOT_OFFERED;
}
int InfoMgrAPIInterface::InfoMgrUnregisterObject() {
    return InfoMgr::NOT_OFFERED;
}
