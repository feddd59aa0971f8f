#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::MirrorGroup {

KSL_TEXT_CONSTANT(ATTR_NAME_MIRROR_GROUP_NUMBER);

}  // namespace Interface::StorageMod::MirrorGroup
