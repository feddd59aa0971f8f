#pragma once

#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/paired_controller_names.h"

namespace Interface::StorageMod::PairedController {

KSL_TEXT_CONSTANT(ATTR_VALUE_PAIRING_STATUS_PAIRED);
KSL_TEXT_CONSTANT(ATTR_VALUE_PAIRING_STATUS_NOT_PAIRED);
KSL_TEXT_CONSTANT(ATTR_VALUE_PAIRING_STATUS_FAILED);

}  // namespace Interface::StorageMod::PairedController
