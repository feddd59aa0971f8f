#pragma once

namespace Common {

class string;

// Root of the value-like classes. The destructor is protected and not virtual: nothing is ever deleted
// through a Convertible pointer, and the classes below declare virtual destructors of their own.
class Convertible {
  public:
    Convertible() = default;
    Convertible(Convertible const&) = default;
    Convertible& operator=(Convertible const&) = default;

    // The empty string unless overridden.
    virtual string toString() const;

  protected:
    ~Convertible() = default;
};

// Base of the lock classes, whose copies would share nothing.
class NonCopyable {
  public:
    NonCopyable() = default;
    virtual ~NonCopyable() = default;
    NonCopyable(NonCopyable const&) = delete;
    NonCopyable& operator=(NonCopyable const&) = delete;
};

}  // namespace Common
