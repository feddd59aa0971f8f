#include "infomgr/info_mgr_api.h"

#include "infomgr/info_mgr_root.h"
#include "infomgr/version.h"

namespace {

using ObjectPointer = boost::shared_ptr<InfoMgrAPIInterface>;

/// Calls the object of a handle while holding it. A root that can't be made is no live object either.
template <typename Call>
int onObject(HMGMTOBJECT handle, Call call) {
    ObjectPointer const object =
        handle == nullptr ? ObjectPointer(InfoMgrRoot::instance()) : InfoMgrAPIInterface::hold(handle);
    return object ? call(*object) : InfoMgr::NO_OBJECT;
}

/// The same for a call that makes a handle: it is null unless the call makes one.
template <typename Call>
int onObject(HMGMTOBJECT handle, HMGMTOBJECT* result, Call call) {
    if (result != nullptr) {
        *result = nullptr;
    }
    return onObject(handle, [&](InfoMgrAPIInterface& object) {
        return result == nullptr ? InfoMgr::BAD_ARGUMENT : call(object);
    });
}

}  // namespace

int InfoMgrOpenObject(HMGMTOBJECT handle, std::uint32_t type, HMGMTOBJECT* result, void*, void*) {
    return onObject(handle, result, [&](auto& object) { return object.InfoMgrOpenObject(type, result); });
}

int InfoMgrCloseObject(HMGMTOBJECT handle) {
    return onObject(handle, [](auto& object) { return object.InfoMgrCloseObject(); });
}

int InfoMgrEnumObject(HMGMTOBJECT handle, std::uint32_t type, std::uint32_t index, HMGMTOBJECT* result, void*,
                      void*) {
    return onObject(handle, result,
                    [&](auto& object) { return object.InfoMgrEnumObject(type, index, result); });
}

int InfoMgrGetObjectInfo(HMGMTOBJECT handle, std::uint32_t kind, void* buffer, std::uint32_t length) {
    return onObject(handle, [&](auto& object) { return object.InfoMgrGetObjectInfo(kind, buffer, length); });
}

int InfoMgrSetObjectInfo(HMGMTOBJECT handle, std::uint32_t kind, void const* buffer, std::uint32_t length) {
    return onObject(handle, [&](auto& object) { return object.InfoMgrSetObjectInfo(kind, buffer, length); });
}

int InfoMgrControlObject(HMGMTOBJECT handle, std::uint32_t function, std::uint32_t kind, void* request,
                         std::uint32_t length, std::uint32_t* resultLength, void*) {
    return onObject(handle, [&](auto& object) {
        return object.InfoMgrControlObject(function, kind, request, length, resultLength);
    });
}

int InfoMgrLockObject(HMGMTOBJECT handle) {
    return onObject(handle, [](auto& object) { return object.InfoMgrLockObject(); });
}

int InfoMgrUnlockObject(HMGMTOBJECT handle) {
    return onObject(handle, [](auto& object) { return object.InfoMgrUnlockObject(); });
}

int InfoMgrRegisterObject(HMGMTOBJECT handle) {
    return onObject(handle, [](auto& object) { return object.InfoMgrRegisterObject(); });
}

int InfoMgrUnregisterObject(HMGMTOBJECT handle) {
    return onObject(handle, [](auto& object) { return object.InfoMgrUnregisterObject(); });
}

int InfoMgrInitStatus() {
    return InfoMgrRoot::instance() ? InfoMgr::SUCCESS : InfoMgr::NO_ROOT;
}

int InfoMgrGetVersion(char* text, std::uint32_t length) {
    return InfoMgr::formatVersion(InfoMgr::VERSION, text, length) ? 1 : 0;
}

int InfoMgrOption() {
    return InfoMgr::NOT_OFFERED;
}
