#pragma once

#include <string>
#include <vector>

/// Reads a firmware image whole. 0, or codeUnreadable with the reason in the verbose log. A relative path is
/// resolved in the working directory.
int ReadROMImage(std::string const& path, std::vector<unsigned char>& image);
