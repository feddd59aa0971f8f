#pragma once

#include "core/constant_text.h"
#include "storage/vocabulary/mod_root_names.h"

namespace Interface::StorageMod::ModRoot {

KSL_TEXT_CONSTANT(ATTR_VALUE_MASK_TYPE_ENABLED);
KSL_TEXT_CONSTANT(ATTR_VALUE_MASK_TYPE_DISABLED);

}  // namespace Interface::StorageMod::ModRoot
