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
    // Switching the cache off discarded the devices' states: what was found before is asked for anew.
    if (!lists.valid || !cacheControls().firstDiscoveryFlag) {
        ClearModRootCache();
        Interface::SysMod::Discovery::DiscoverStorageAdapters(lists.controllers, lists.csmiAdapters,
                                                              lists.plainAdapters);
        lists.valid = true;
        cacheControls().firstDiscoveryFlag = true;
        for (Common::string const& handle : lists.controllers)
            InsertCacheState(handle);
    }
    controllers = lists.controllers;
    csmiAdapters = lists.csmiAdapters;
    plainAdapters = lists.plainAdapters;
}

void ClearModRootCache() {
    adapterListCache() = AdapterListCache();
}
