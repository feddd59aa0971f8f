#pragma once

#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/drive_cage_names.h"

namespace Interface::StorageMod::DriveCage {

KSL_TEXT_CONSTANT(ATTR_VALUE_STATUS_OK);
KSL_TEXT_CONSTANT(ATTR_VALUE_DUPLEX_LOCATION_TOP);
KSL_TEXT_CONSTANT(ATTR_VALUE_DUPLEX_LOCATION_BOTTOM);

}  // namespace Interface::StorageMod::DriveCage
