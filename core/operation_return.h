#pragma once

#include "common/convertible.h"
#include "common/list.h"
#include "common/string.h"
#include "core/attribute_source.h"
#include "core/tolkmod.h"

namespace Core {

// What an operation has to say, as attributes: a status always, details as needed. Several results travel in
// one: status ATTR_VALUE_STATUS_OPERATION_RETURN_LIST, and ATTR_NAME_OPERATION_RETURN_LIST holds them as a
// Common::list<OperationReturn>.
class OperationReturn : public AttributePublisher, public AttributeSource, public Common::Convertible {
  public:
    // Status ATTR_VALUE_STATUS_SUCCESS.
    OperationReturn();
    explicit OperationReturn(Common::string const& status);

    // The status is success; false too when it was cleared.
    explicit operator bool() const;
};

// The same attributes in each; found by the comparison of held values.
bool operator==(Common::list<OperationReturn> const& a, Common::list<OperationReturn> const& b);

}  // namespace Core

// For logs: each item's attributes as "<name> = <value>", joined with ", ", the items with "; ".
template <>
struct Common::AnyToString<Common::list<Core::OperationReturn>> {
    static string text(list<Core::OperationReturn> const& returns);
};
