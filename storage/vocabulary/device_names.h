#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::Device {

KSL_TEXT_CONSTANT(ATTR_NAME_ATA_COMMAND);
KSL_TEXT_CONSTANT(ATTR_NAME_BMIC_COMMAND);
KSL_TEXT_CONSTANT(ATTR_NAME_SCSI_COMMAND);
KSL_TEXT_CONSTANT(ATTR_NAME_REENUMERATE_TYPE);

}  // namespace Interface::StorageMod::Device
