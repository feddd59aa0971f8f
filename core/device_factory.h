#pragma once

#include "common/shared_ptr.h"
#include "core/device.h"

namespace Core {

// Where the root of the process's device tree comes from.
class DeviceFactory {
  public:
    // Makes a root device.
    typedef Common::shared_ptr<Device> (*RootCreator)();

    virtual ~DeviceFactory() = default;

    // The root, made on the first call: then its own read and association operations have run, but nothing
    // is discovered below it before a Reenumerate(). The same pointer ever after. Null, with a line in the
    // log, as long as no creator was set or the creator gave none.
    virtual Common::shared_ptr<Device> pRoot() const;

    // The kind of the root belongs to a module above this one, which names it here at its start. A null
    // creator takes it back; a root that was made stays.
    static void SetRootCreator(RootCreator creator);

    // Releases a root that isn't pRoot(), for instance a clone of it: such a device may hold the pointer to
    // itself and would never be freed otherwise.
    static void ReleaseRoot(Common::shared_ptr<Device> root);

    // For tests only: releases the root; the next pRoot() makes a new one.
    static void ForgetRoot();
};

}  // namespace Core
