#include "core/attribute_value.h"

namespace Core {

bool AttributeValue::equals(AttributeValue const& other) const {
    Common::Any::ValueInterface const* const mine = m_value.held();
    Common::Any::ValueInterface const* const others = other.m_value.held();
    return mine != nullptr && others != nullptr && *mine == *others;
}

bool operator==(AttributeValueList const& a, AttributeValueList const& b) {
    AttributeValueList::const_iterator left = a.begin();
    AttributeValueList::const_iterator right = b.begin();
    while (left != a.end() && right != b.end()) {
        if (!left->equals(*right)) return false;
        ++left;
        ++right;
    }
    return left == a.end() && right == b.end();
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
