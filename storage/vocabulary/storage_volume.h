#pragma once

#include "storage/vocabulary/boolean_values.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/storage_volume_names.h"

namespace Interface::StorageMod::StorageVolume {

KSL_TEXT_CONSTANT(ATTR_VALUE_VOLUME_BUS_TYPE_SCSI);
KSL_TEXT_CONSTANT(ATTR_VALUE_VOLUME_BUS_TYPE_ATA);
KSL_TEXT_CONSTANT(ATTR_VALUE_VOLUME_BUS_TYPE_RAID);
KSL_TEXT_CONSTANT(ATTR_VALUE_VOLUME_BUS_TYPE_OTHER);
KSL_BOOLEAN_VALUES(VOLUME_IN_USE);

}  // namespace Interface::StorageMod::StorageVolume
