#include "src/CLI.h"
#include "src/enclosures.h"
#include "src/flashRun.h"

// An adapter's own firmware isn't updated: only what is behind it counts.
int CheckHBA(Common::shared_ptr<Core::Device> const& adapter) {
    cli.logVerbose("CheckHBA\n");
    return processEnclosures(adapter);
}
