#include "core/operation_return.h"

#include <algorithm>

namespace Core {

namespace Names = Interface::TOLKMod::OperationReturn;

OperationReturn::OperationReturn() : OperationReturn(Names::ATTR_VALUE_STATUS_SUCCESS) {}

OperationReturn::OperationReturn(Common::string const& status) {
    Receive(Attribute(Names::ATTR_NAME_STATUS, status));
}

OperationReturn::operator bool() const {
    return hasAttributeAndIs(Names::ATTR_NAME_STATUS, Names::ATTR_VALUE_STATUS_SUCCESS);
}

bool operator==(Common::list<OperationReturn> const& a, Common::list<OperationReturn> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](OperationReturn const& x, OperationReturn const& y) {
                          return std::equal(x.beginAttribute(), x.endAttribute(), y.beginAttribute(),
                                            y.endAttribute(), sameAttribute);
                      });
}

}  // namespace Core

Common::string Common::AnyToString<Common::list<Core::OperationReturn>>::text(
    list<Core::OperationReturn> const& returns) {
    string joined;
    for (Core::OperationReturn const& item : returns) {
        if (!joined.empty()) joined += "; ";
        bool first = true;
        for (auto attribute = item.beginAttribute(); attribute != item.endAttribute(); ++attribute) {
            if (!first) joined += ", ";
            joined += attribute->first;
            joined += " = ";
            joined += attribute->second.text();
            first = false;
        }
    }
    return joined;
}
