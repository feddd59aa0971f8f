#include "common/module_name.h"

namespace Common {

string moduleName() {
    return string("application.exe");
}

}  // namespace Common
