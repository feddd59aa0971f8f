#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::PairedController {

KSL_TEXT_CONSTANT(ATTR_NAME_PAIRING_STATUS);
KSL_TEXT_CONSTANT(ATTR_NAME_PAIRED_CONTROLLER_SERIAL_NUMBER);

}  // namespace Interface::StorageMod::PairedController
