#pragma once

#include "core/constant_text.h"

// The two values of a boolean attribute, ATTR_VALUE_<attribute>_TRUE and ATTR_VALUE_<attribute>_FALSE.
#define KSL_BOOLEAN_VALUES(attribute)                 \
    KSL_TEXT_CONSTANT(ATTR_VALUE_##attribute##_TRUE); \
    KSL_TEXT_CONSTANT(ATTR_VALUE_##attribute##_FALSE)
