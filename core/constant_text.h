#pragma once

// A named constant whose text is its own identifier, at namespace scope. Names of attributes, their values
// and operations are compared as text everywhere; making both from one word keeps them from drifting apart.
//
//     KSL_TEXT_CONSTANT(ATTR_NAME_TYPE);   // char const* with the text "ATTR_NAME_TYPE"
#define KSL_TEXT_CONSTANT(identifier) inline constexpr char const* const identifier = #identifier
