#pragma once

#include "core/device_operation.h"
#include "core/filter.h"

namespace Core {

/// An operation with its name, its kind, its filter and the device kinds that it visits said once, in its
/// list of bases:
///
///     class WriteResetSEP : public Core::NamedOperation<Interface::FlashMod::OPERATION_WRITE_RESET_SEP,
///                                                       Core::DeviceOperation::eWrite, FilterOfThat,
///                                                       Schema::VisitorSEP> { ... visit(Schema::SEP&) ... };
///
/// `Name` is a text constant (core/constant_text.h); `FilterKind` is made anew for each use.
template <char const* const& Name, DeviceOperation::EnType Type, class FilterKind, class... Visitors>
class NamedOperation : public DeviceOperation, public Visitors... {
  public:
    using DeviceOperation::visit;
    using Visitors::visit...;

  protected:
    explicit NamedOperation(EnTypeModifier modifier = eUsual) : DeviceOperation(modifier) {}

    Common::string nameImpl() const override { return Name; }
    EnType eTypeImpl() const override { return Type; }
    Common::shared_ptr<Filter> pFilterImpl() const override {
        return Common::shared_ptr<Filter>(new FilterKind);
    }
};

}  // namespace Core
