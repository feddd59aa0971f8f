#pragma once

#include "storage/vocabulary/device_types.h"

namespace Interface::StorageMod::CachingManager {

KSL_TEXT_CONSTANT(ATTR_NAME_CACHING_MANAGER_NAME);
KSL_TEXT_CONSTANT(ATTR_NAME_CACHING_MANAGER_VERSION);

}  // namespace Interface::StorageMod::CachingManager
