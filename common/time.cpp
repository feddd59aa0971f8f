#include "common/time.h"

#include <cstdio>

namespace Common {

time::time() : m_time(::time(nullptr)) {}

string time::toString() const {
    struct tm local = {};
    localtime_r(&m_time, &local);
    char text[96];
    std::snprintf(text, sizeof text, "%04d:%02d:%02d:%02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return string(text);
}

}  // namespace Common
