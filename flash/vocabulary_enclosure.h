#pragma once

#include "core/constant_text.h"

/// What the flash operations behind a controller take: enclosure processors, the cache module's
/// microcontroller and that of a drive carrier. Numbers travel as decimal text, addresses in full width.
namespace Interface::FlashMod {

namespace SEP {
KSL_TEXT_CONSTANT(ATTR_NAME_PRODUCT_ID);
KSL_TEXT_CONSTANT(ATTR_NAME_MAX_SEPS_PARALLEL_FLASHABLE);
KSL_TEXT_CONSTANT(ATTR_NAME_BUFFER_ADDRESS);
KSL_TEXT_CONSTANT(ATTR_NAME_BUFFER_SIZE);
KSL_TEXT_CONSTANT(ATTR_NAME_RESET_SEP);
KSL_TEXT_CONSTANT(ATTR_VALUE_RESET_SEP_TRUE);
KSL_TEXT_CONSTANT(ATTR_VALUE_RESET_SEP_FALSE);
}  // namespace SEP

}  // namespace Interface::FlashMod
