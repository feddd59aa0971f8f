#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::Phy {

KSL_TEXT_CONSTANT(ATTR_NAME_ATTACHED_BMIC_INDEX);
KSL_TEXT_CONSTANT(ATTR_NAME_ATTACHED_DEVICE_TYPE);
KSL_TEXT_CONSTANT(ATTR_NAME_PHY_NUMBER);
KSL_TEXT_CONSTANT(ATTR_NAME_STATUS);
KSL_TEXT_CONSTANT(ATTR_NAME_NEGOTIATED_LINK_RATE);

}  // namespace Interface::StorageMod::Phy
