#pragma once

#include <ostream>
#include <string>

#include "common/istring.h"
#include "common/string.h"

namespace Common {

inline void PrintTo(string const& s, std::ostream* out) {
    *out << '"' << std::string(s.c_str(), s.size()) << '"';
}
inline void PrintTo(istring const& s, std::ostream* out) {
    *out << '"' << std::string(s.c_str(), s.size()) << '"';
}

}  // namespace Common
