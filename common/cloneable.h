#pragma once

namespace Common {

// Implements Base's `Ptr cloneImpl() const` for Derived by Derived's copy constructor:
//     class Disk : public CloneableInherit<Device, shared_ptr<Device>, Disk> { ... };
// Base's constructors are forwarded.
template <class Base, class Ptr, class Derived>
class CloneableInherit : public Base {
  public:
    using Base::Base;

  protected:
    Ptr cloneImpl() const override { return Ptr(new Derived(*static_cast<Derived const*>(this))); }
};

}  // namespace Common
