#include "command/cache.h"

#include "command/cache_state.h"
#include "sysmod/device_handle.h"
#include "sysmod/send_command.h"

bool ProcessATACommand(Common::string const& handle, Interface::SysMod::Command::ATARequest& request) {
    return Interface::SysMod::Command::SendATACommand(handle, request);
}

bool ProcessCSMICommand(Common::string const& handle, Interface::SysMod::Command::CSMIRequest& request) {
    return Interface::SysMod::Command::SendCSMICommand(handle, request);
}

bool ProcessRegNewDisk(Common::string const& handle) {
    return Interface::SysMod::Command::SendRegNewDiskMessage(handle);
}

bool GetCommandCacheState() {
    return cacheControls().commandCacheEnabled;
}

void SetCommandCacheState(bool enabled) {
    CacheControls& controls = cacheControls();
    if (controls.commandCacheEnabled != enabled) {
        cacheStates() = CacheStateMap();
        controls.commandCacheEnabled = enabled;
    }
    if (!enabled) {
        controls.defaultCacheFlag = false;
        controls.defaultInheritanceFlag = false;
        controls.firstDiscoveryFlag = false;
        controls.discoveryRescanOption = true;
    }
}

bool GetDefaultCacheFlag() {
    return cacheControls().defaultCacheFlag;
}

void SetDefaultCacheFlag(bool enabled) {
    cacheControls().defaultCacheFlag = enabled;
}

bool GetDefaultInheritanceFlag() {
    return cacheControls().defaultInheritanceFlag;
}

void SetDefaultInheritanceFlag(bool inherit) {
    cacheControls().defaultInheritanceFlag = inherit;
}

bool GetDiscoveryRescanOption() {
    return cacheControls().discoveryRescanOption;
}

void SetDiscoveryRescanOption(bool enabled) {
    cacheControls().discoveryRescanOption = enabled;
}

void InsertCacheState(Common::string const& handle) {
    if (findCacheState(handle) != nullptr) return;
    CACHE_STATE state;
    state.enabled = cacheControls().defaultCacheFlag;
    cacheStates().insert({Core::SysMod::getDeviceUniqueKey(handle), state});
}

bool IsValidDeviceHandle(Common::string const& handle) {
    return findCacheState(handle) != nullptr;
}

bool GetCacheStateForDevice(Common::string const& handle) {
    CACHE_STATE const* const state = findCacheState(handle);
    return state != nullptr && state->enabled;
}

namespace {

void SetCacheStateFor(Common::string const& handle, bool enabled) {
    if (!enabled) EmptyCacheFor(handle, true);
    InsertCacheState(handle);
    findCacheState(handle)->enabled = enabled;
}

}  // namespace

void SetCacheStateForDevice(Common::string const& handle, bool enabled) {
    if (GetCacheStateForDevice(handle) != enabled) SetCacheStateFor(handle, enabled);
    CACHE_STATE* const state = findCacheState(handle);
    if (state != nullptr) state->inherited = false;
}

bool GetInheritanceFlagForDevice(Common::string const& handle) {
    CACHE_STATE const* const state = findCacheState(handle);
    return state != nullptr && state->inherited;
}

bool GetCacheHasContentsForDevice(Common::string const& handle) {
    CACHE_STATE const* const state = findCacheState(handle);
    return state != nullptr && (!state->bmicReplies.empty() || !state->scsiReplies.empty());
}

void EmptyCacheFor(Common::string const& handle, bool const&) {
    CACHE_STATE* const state = findCacheState(handle);
    if (state == nullptr) return;
    CACHE_STATE empty;
    empty.enabled = state->enabled;
    empty.inherited = state->inherited;
    *state = empty;
}

void ClearCacheContentsForDevice(Common::string const& handle, bool flag) {
    if (GetCacheStateForDevice(handle)) EmptyCacheFor(handle, flag);
}
