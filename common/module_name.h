#pragma once

#include "common/string.h"

namespace Common {

// "application.exe" on every platform: it names the debug XML file, which tools look for.
string moduleName();

}  // namespace Common
