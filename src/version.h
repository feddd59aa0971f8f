#pragma once

#include <string>

/// A firmware version as a number. Only the first four characters count. A character behind the dot that is
/// no digit counts as a decimal place all the same (1.2a is 0.12); before the dot it is dropped (a1.2
/// is 1.2).
float VersionToFloat(std::string const& text);
/// The difference is below 0.00001, which allows for the rounding of VersionToFloat.
bool VersionsEqual(float a, float b);
/// `b` is greater than `a`, and they aren't equal.
bool VersionsLT(float a, float b);
