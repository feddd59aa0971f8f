#pragma once

#include "storage/vocabulary/device_names.h"

/// Which side of a controller a reenumeration is to bring up to date.
namespace Interface::StorageMod::Device {

KSL_TEXT_CONSTANT(ATTR_VALUE_REENUMERATE_TYPE_DEFAULT);
KSL_TEXT_CONSTANT(ATTR_VALUE_REENUMERATE_TYPE_LOGICAL);
KSL_TEXT_CONSTANT(ATTR_VALUE_REENUMERATE_TYPE_PHYSICAL);

}  // namespace Interface::StorageMod::Device
