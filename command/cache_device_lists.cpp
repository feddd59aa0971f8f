#include "command/cache_device_lists.h"

#include "command/cache.h"

using Interface::SysMod::Discovery::HandleList;
using Interface::SysMod::Discovery::HandleMap;

namespace {

// `answer` is the member of a DeviceListCache that holds answers of this kind.
template <class Answer, class Discover>
void process(Common::string const& handle, DeviceListCache CACHE_STATE::*kept,
             Answer DeviceListCache::*answer, Discover discover, Answer& result) {
    bool const isCached = GetCommandCacheState() && GetCacheStateForDevice(handle);
    if (isCached && (findCacheState(handle)->*kept).valid) {
        result = findCacheState(handle)->*kept.*answer;
        return;
    }
    result.clear();
    discover(handle, result);
    // Looked up again: the commands of a discovery may have emptied the state, or switched the cache off.
    CACHE_STATE* const state = isCached ? findCacheState(handle) : nullptr;
    if (state == nullptr) return;
    (state->*kept).valid = true;
    state->*kept.*answer = result;
}

}  // namespace

void ProcessDeviceList(Common::string const& handle, DeviceListCache CACHE_STATE::*kept,
                       DiscoverDevices discover, HandleMap& devices) {
    process(handle, kept, &DeviceListCache::map, discover, devices);
}

void ProcessVolumeList(Common::string const& handle, DiscoverVolumes discover, HandleList& volumes) {
    process(handle, &CACHE_STATE::storageVolumes, &DeviceListCache::list, discover, volumes);
}
