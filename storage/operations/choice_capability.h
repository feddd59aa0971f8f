#pragma once

#include <initializer_list>

#include "core/capability.h"

namespace Operations {

/// An argument that takes one of a few texts: a capability class with an instance for each. `preset` is the
/// default, `current` the value that holds now; null for none.
Common::shared_ptr<Core::Capability> choiceCapability(char const* argument,
                                                      std::initializer_list<char const*> values,
                                                      char const* preset, char const* current);

}  // namespace Operations
