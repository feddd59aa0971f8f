#pragma once

#include <string>

/// Cuts `c` off both ends of `text`. A text made of `c` alone loses only one character.
void trimming(std::string& text, char c);
/// A copy with blanks and then tabs cut off by trimming(). A blank inside an outer tab stays.
std::string trim(std::string const& text);
/// The rest of `text` behind `prefix`, or `text` whole if it doesn't begin so; `found` tells which.
std::string removePrefix(std::string const& text, std::string const& prefix, bool* found = nullptr);
/// A copy with each `from` replaced by `to`.
std::string transliterate(std::string const& text, char from, char to);
/// What atoi() gives, but defined for every text: a number beyond the range of int gives the nearest int.
int textToInt(std::string const& text);
