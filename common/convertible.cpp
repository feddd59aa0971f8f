#include "common/convertible.h"

#include "common/string.h"

namespace Common {

string Convertible::toString() const {
    return string();
}

}  // namespace Common
