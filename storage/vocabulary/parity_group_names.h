#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::ParityGroup {

KSL_TEXT_CONSTANT(ATTR_NAME_PARITY_GROUP_NUMBER);

}  // namespace Interface::StorageMod::ParityGroup
