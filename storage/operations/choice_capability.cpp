#include "storage/operations/choice_capability.h"

#include <cstring>

#include "core/tolkmod.h"

namespace Operations {
namespace {

namespace Cap = Interface::TOLKMod::Capability;

bool isSame(char const* text, char const* value) {
    return text != nullptr && std::strcmp(text, value) == 0;
}

}  // namespace

Common::shared_ptr<Core::Capability> choiceCapability(char const* argument,
                                                      std::initializer_list<char const*> values,
                                                      char const* preset, char const* current) {
    Common::shared_ptr<Core::Capability> const choice(new Core::CapabilityClass(
        argument, Cap::ATTR_VALUE_INSTANCE_TYPE_STRING, Cap::ATTR_VALUE_CARDINALITY_SINGLE,
        Cap::ATTR_VALUE_ACTION_ABSOLUTE, Cap::ATTR_VALUE_INSTANCE_RANGE_CLOSED));
    for (char const* const value : values) {
        choice->Subscribe(Common::shared_ptr<Core::Capability>(
            new Core::CapabilityInstance(value, isSame(preset, value), isSame(current, value))));
    }
    return choice;
}

}  // namespace Operations
