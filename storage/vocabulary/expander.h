#pragma once

#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/expander_names.h"

namespace Interface::StorageMod::Expander {

KSL_TEXT_CONSTANT(ATTR_VALUE_STATUS_OK);
KSL_TEXT_CONSTANT(ATTR_VALUE_PORT_UNKNOWN);

}  // namespace Interface::StorageMod::Expander
