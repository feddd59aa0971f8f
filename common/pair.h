#pragma once

#include "common/convertible.h"
#include "common/string.h"

namespace Common {

template <class A, class B>
class pair : public Convertible {
  public:
    using first_type = A;
    using second_type = B;

    pair() : first(), second() {}
    pair(A const& a, B const& b) : first(a), second(b) {}
    pair(pair const&) = default;
    pair& operator=(pair const&) = default;
    virtual ~pair() = default;

    A first;
    B second;
};

}  // namespace Common
