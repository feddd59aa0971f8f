#include "infomgr/version.h"

#include <cstdio>
#include <cstring>

namespace InfoMgr {

bool formatVersion(char const* version, char* text, std::uint32_t length) {
    char first[16];
    char second[16];
    char rest = 0;
    char joined[sizeof first + sizeof second];
    if (text == nullptr || std::sscanf(version, "%15[0-9.] %15[0-9.]%c", first, second, &rest) != 2) {
        return false;
    }
    std::snprintf(joined, sizeof joined, "%s-%s", first, second);
    std::size_t const size = std::strlen(joined) + 1;
    if (size > length) {
        return false;
    }
    std::memcpy(text, joined, size);
    return true;
}

}  // namespace InfoMgr
