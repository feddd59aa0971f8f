#include "core/attribute_value.h"

#include <algorithm>

namespace Core {

bool AttributeValue::equals(AttributeValue const& other) const {
    Common::Any::ValueInterface const* const mine = m_value.held();
    Common::Any::ValueInterface const* const others = other.m_value.held();
    return mine != nullptr && others != nullptr && *mine == *others;
}

bool sameAttribute(Attribute const& a, Attribute const& b) {
    return a.first == b.first && a.second.equals(b.second);
}

bool operator==(AttributeValueList const& a, AttributeValueList const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](AttributeValue const& x, AttributeValue const& y) { return x.equals(y); });
}

bool operator==(AttributeValueMap const& a, AttributeValueMap const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameAttribute);
}

}  // namespace Core

Common::string Common::AnyToString<Core::AttributeValueList>::text(Core::AttributeValueList const& values) {
    string joined;
    bool first = true;
    for (Core::AttributeValue const& value : values) {
        if (!first) joined += " ";
        joined += value.text();
        first = false;
    }
    return joined;
}
