#include "command/cache.h"
#include "command/cache_state.h"

using Interface::SysMod::Discovery::HandleList;

void ProcessStorageAdapterIterator(HandleList& controllers, HandleList& csmiAdapters,
                                   HandleList& plainAdapters) {
    controllers.clear();
    csmiAdapters.clear();
    plainAdapters.clear();
    if (!cacheControls().commandCacheEnabled) {
        Interface::SysMod::Discovery::DiscoverStorageAdapters(controllers, csmiAdapters, plainAdapters);
        return;
    }
    AdapterListCache& lists = adapterListCache();
    if (!lists.valid) {
        ClearModRootCache();
        Interface::SysMod::Discovery::DiscoverStorageAdapters(lists.controllers, lists.csmiAdapters,
                                                              lists.plainAdapters);
        lists.valid = true;
        cacheControls().firstDiscoveryFlag = false;
    }
    // Switching the cache off discards the states and the flag, but not the lists.
    if (!cacheControls().firstDiscoveryFlag) {
        for (Common::string const& handle : lists.controllers)
            InsertCacheState(handle);
        cacheControls().firstDiscoveryFlag = true;
    }
    controllers = lists.controllers;
    csmiAdapters = lists.csmiAdapters;
    plainAdapters = lists.plainAdapters;
}

void ClearModRootCache() {
    adapterListCache() = AdapterListCache();
}
