#pragma once

#include "common/shared_ptr.h"
#include "core/device.h"
#include "core/device_factory.h"

/// The root of the device tree, once xqrthflash() has started the library.
extern Common::shared_ptr<Core::Device> pRoot;
extern Core::DeviceFactory factory;

/// What xqrthflash() hands each child of the root to. Each returns a code of ReturnCode.
int CheckArray(Common::shared_ptr<Core::Device> const& controller);
int CheckHBA(Common::shared_ptr<Core::Device> const& adapter);
int CheckPhysicalDrive(Common::shared_ptr<Core::Device> const& drive);
