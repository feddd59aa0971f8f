#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::ModRoot {

KSL_TEXT_CONSTANT(ATTR_NAME_MASK_TYPE);
KSL_TEXT_CONSTANT(ATTR_NAME_BUS_RESCAN_TYPE);
KSL_TEXT_CONSTANT(ATTR_NAME_INFOMGR_VERSION);
KSL_TEXT_CONSTANT(ATTR_NAME_COMMAND_CACHE);
KSL_TEXT_CONSTANT(ATTR_NAME_DEVICE_CACHE_DEFAULT);

}  // namespace Interface::StorageMod::ModRoot
