#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <map>
#include <utility>

#include "infomgr/info_mgr_api.h"
#include "infomgr/info_mgr_mutex.h"

/// Base of every object that a handle can name. The functions are those of info_mgr_api.h, on this object;
/// pointers for results are never null. What a class doesn't offer is NOT_OFFERED.
class InfoMgrAPIInterface {
  public:
    /// Makes an object that handles can name. Its handle is good until the last pointer to it goes.
    template <class T, class... Arguments>
    static boost::shared_ptr<T> make(Arguments&&... arguments) {
        boost::shared_ptr<T> const object(new T(std::forward<Arguments>(arguments)...));
        publish(object);
        return object;
    }

    static bool isValidHandle(HMGMTOBJECT handle);
    /// The object of a handle, held for as long as the caller keeps the pointer; null for a handle that isn't
    /// valid. The look-up and the hold are one step: between two, the object could go.
    static boost::shared_ptr<InfoMgrAPIInterface> hold(HMGMTOBJECT handle);

    virtual ~InfoMgrAPIInterface();
    InfoMgrAPIInterface(InfoMgrAPIInterface const&) = delete;
    InfoMgrAPIInterface& operator=(InfoMgrAPIInterface const&) = delete;

    virtual int InfoMgrOpenObject(std::uint32_t type, HMGMTOBJECT* result);
    virtual int InfoMgrCloseObject();
    virtual int InfoMgrEnumObject(std::uint32_t type, std::uint32_t index, HMGMTOBJECT* result);
    virtual int InfoMgrGetObjectInfo(std::uint32_t kind, void* buffer, std::uint32_t length);
    virtual int InfoMgrControlObject(std::uint32_t function, std::uint32_t kind, void* request,
                                     std::uint32_t length, std::uint32_t* resultLength);
    virtual int InfoMgrLockObject();
    virtual int InfoMgrUnlockObject();
    virtual int InfoMgrSetObjectInfo(std::uint32_t kind, void const* buffer, std::uint32_t length);
    virtual int InfoMgrRegisterObject();
    virtual int InfoMgrUnregisterObject();
    /// Type proper of the object; 0 for the root.
    virtual std::uint32_t objectType() const = 0;

    HMGMTOBJECT handle() { return this; }

  protected:
    InfoMgrAPIInterface();

  private:
    using Registry = std::map<void const*, boost::weak_ptr<InfoMgrAPIInterface>>;

    static void publish(boost::shared_ptr<InfoMgrAPIInterface> const& object);

    /// Every object there is. One that is still being made, or is going, has no pointer to hold it by, so it
    /// isn't valid. Both are made on first use, and there to the end of the process.
    static Registry& s_schemaObjectRegistry();
    static InfoMgrMutex& s_registryProtectMutex();
};
