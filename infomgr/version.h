#pragma once

#include <cstdint>

namespace InfoMgr {

/// Two fields of digits and dots, separated by a blank: the interface's version and the implementation's.
inline constexpr char VERSION[] = "1.0 0.1.0";

/// Writes both fields joined by "-" into `length` bytes at `text`. False, and nothing written, when a field
/// isn't there or the text doesn't fit.
bool formatVersion(char const* version, char* text, std::uint32_t length);

}  // namespace InfoMgr
