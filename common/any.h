#pragma once

#include <concepts>
#include <type_traits>
#include <typeinfo>

#include "common/string.h"

namespace Common {

// The text of a value held by an Any. Specialise it for a type, with a static `string text(T const&)`,
// before the first Any of that type is made. Without a specialisation: the type's own toString(), or the
// empty string.
template <class T>
struct AnyToString {
    static string text(T const& value) {
        if constexpr (requires {
                          { value.toString() } -> std::convertible_to<string>;
                      }) {
            return value.toString();
        } else {
            return string();
        }
    }
};

template <>
struct AnyToString<string> {
    static string text(string const& value) { return value; }
};
template <>
struct AnyToString<char const*> {
    static string text(char const* value) { return string(value); }
};
template <>
struct AnyToString<unsigned char> {
    static string text(unsigned char value);
};
template <>
struct AnyToString<unsigned short> {
    static string text(unsigned short value);
};
template <>
struct AnyToString<unsigned int> {
    static string text(unsigned int value);
};
template <>
struct AnyToString<int> {
    static string text(int value);
};
template <>
struct AnyToString<unsigned long long> {
    static string text(unsigned long long value);
};
template <>
struct AnyToString<double> {
    static string text(double value);
};

// One value of any type, or none. Never throws for a wrong type: what isn't there reads as T().
class Any {
  public:
    class ValueInterface {
      public:
        virtual ~ValueInterface() = default;
        virtual std::type_info const& type() const = 0;
        virtual ValueInterface* clone() const = 0;  // the caller owns it
        virtual string toString() const = 0;
        virtual bool operator==(ValueInterface const& other) const = 0;
    };

    template <class T>
    class Value : public ValueInterface {
      public:
        explicit Value(T const& value) : m_value(value) {}

        std::type_info const& type() const override { return typeid(T); }
        ValueInterface* clone() const override { return new Value(m_value); }
        string toString() const override { return AnyToString<T>::text(m_value); }

        // A type without == has nothing to compare: such a value equals only itself.
        bool operator==(ValueInterface const& other) const override {
            Value const* const same = dynamic_cast<Value const*>(&other);
            if (same == nullptr) return false;
            if constexpr (requires(T const& a, T const& b) {
                              { a == b } -> std::convertible_to<bool>;
                          }) {
                return m_value == same->m_value;
            } else {
                return this == same;
            }
        }

        T const& value() const { return m_value; }

      private:
        T m_value;
    };

    Any() : m_value(nullptr) {}

    // Holds a copy. A text literal is held as `char const*`, not as a string.
    template <class T>
    requires(!std::is_base_of_v<Any, T>) Any(T const& value)
        : m_value(new Value<std::decay_t<T const&>>(value)) {}

    Any(Any const& other) : m_value(other.m_value != nullptr ? other.m_value->clone() : nullptr) {}
    ~Any() { delete m_value; }

    Any& operator=(Any const& other) {
        if (this != &other) {
            ValueInterface* const copy = other.m_value != nullptr ? other.m_value->clone() : nullptr;
            delete m_value;
            m_value = copy;
        }
        return *this;
    }

    bool empty() const { return m_value == nullptr; }
    ValueInterface const* held() const { return m_value; }  // null when empty

    // Empty string when empty.
    string toString() const { return m_value != nullptr ? m_value->toString() : string(); }

    // A copy of the held value, T() when there is none or it is of another type.
    template <class T>
    T value() const {
        if (m_value != nullptr && m_value->type() == typeid(T)) {
            return static_cast<Value<T> const*>(m_value)->value();
        }
        return T();
    }

    template <class T>
    operator T() const {
        return value<T>();
    }

  private:
    ValueInterface* m_value;
};

}  // namespace Common
