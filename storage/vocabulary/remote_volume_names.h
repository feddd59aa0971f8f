#pragma once

#include "core/constant_text.h"

/// Every attribute name of the class.
namespace Interface::StorageMod::RemoteVolume {

KSL_TEXT_CONSTANT(ATTR_NAME_VOLUME_UNIQUE_IDENTIFIER);
KSL_TEXT_CONSTANT(ATTR_NAME_VOLUME_NUMBER);
KSL_TEXT_CONSTANT(ATTR_NAME_REMOTE_ENCLOSURE_BOX_INDEX);
KSL_TEXT_CONSTANT(ATTR_NAME_VOLUME_ENCLOSURE_PRODUCT_ID);
KSL_TEXT_CONSTANT(ATTR_NAME_VOLUME_ENCLOSURE_WWID);

}  // namespace Interface::StorageMod::RemoteVolume
