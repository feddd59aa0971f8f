#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::FailedArrayController {

KSL_TEXT_CONSTANT(ATTR_NAME_FAILED_ARRAY_CONTROLLER_LOCKUP_CODE);
KSL_TEXT_CONSTANT(ATTR_NAME_MARKETING_NAME);

}  // namespace Interface::StorageMod::FailedArrayController
