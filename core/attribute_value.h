#pragma once

#include <type_traits>

#include "common/any.h"
#include "common/convertible.h"
#include "common/list.h"
#include "common/map.h"
#include "common/pair.h"
#include "common/string.h"

namespace Core {

class AttributeValue;
class OperationReturn;

typedef Common::list<AttributeValue> AttributeValueList;
typedef Common::map<Common::string, AttributeValue> AttributeValueMap;

// The types that a value may be read back as, besides its text.
template <class T>
concept ReadableAttributeType = std::is_same_v<T, unsigned char> || std::is_same_v<T, unsigned short> ||
    std::is_same_v<T, unsigned int> || std::is_same_v<T, int> || std::is_same_v<T, unsigned long long> ||
    std::is_same_v<T, double> || std::is_same_v<T, AttributeValueList> ||
    std::is_same_v<T, AttributeValueMap> || std::is_same_v<T, Common::list<OperationReturn>>;

// The value of an attribute: one thing of any type. Its text is the conversion to Common::string, and that
// is what attributes are compared by. toString() isn't the text: it stays the empty string of Convertible.
class AttributeValue : public Common::Convertible {
  public:
    // An empty text, not an absent value.
    AttributeValue() : m_value(Common::string()) {}
    // Held as a Common::string. A null pointer is the empty text.
    AttributeValue(char const* text) : m_value(Common::string(text)) {}
    template <class T>
    requires(!std::is_convertible_v<T const&, char const*> && !std::is_base_of_v<AttributeValue, T>)
        AttributeValue(T const& value)
        : m_value(value) {}
    AttributeValue(AttributeValue const&) = default;
    AttributeValue& operator=(AttributeValue const&) = default;
    virtual ~AttributeValue() = default;

    operator Common::string() const { return m_value.toString(); }
    // T() when the value is of another type: nothing is converted.
    template <ReadableAttributeType T>
    operator T() const {
        return m_value.value<T>();
    }

    Common::string text() const { return m_value.toString(); }
    // Same type and equal, not just the same text.
    bool equals(AttributeValue const& other) const;

  private:
    Common::Any m_value;
};

typedef Common::pair<Common::string, AttributeValue> Attribute;

// The same name, and values that equals() takes for equal.
bool sameAttribute(Attribute const& a, Attribute const& b);

// Item by item, in order; found by the comparison of held values.
bool operator==(AttributeValueList const& a, AttributeValueList const& b);
bool operator==(AttributeValueMap const& a, AttributeValueMap const& b);

}  // namespace Core

// The items' texts joined with one blank.
template <>
struct Common::AnyToString<Core::AttributeValueList> {
    static string text(Core::AttributeValueList const& values);
};

// A map has no text.
template <>
struct Common::AnyToString<Core::AttributeValueMap> {
    static string text(Core::AttributeValueMap const&) { return string(); }
};
