// The arguments of an operation: the list a caller fills, and the defaults that capabilities add to it.

#include "core/capability_finder.h"
#include "core/device.h"
#include "core/device_operation.h"
#include "core/tolkmod.h"

namespace Core {

namespace Names = Interface::TOLKMod::Capability;

void DeviceOperation::SetArgument(Argument const& argument) {
    // It may be the entry that is about to be removed.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    Argument const copy(argument);
    ClearArgument(copy);
    m_arguments.push_back(copy);
}

void DeviceOperation::SetArgument(EnAction action, Common::string const& name, AttributeValue const& value) {
    SetArgument(Argument(action, Attribute(name, value)));
}

void DeviceOperation::ClearArgument(Argument const& argument) {
    m_arguments.erase(findArgument(argument));
}

DeviceOperation::ArgumentList::iterator DeviceOperation::findArgument(Argument const& argument) {
    ArgumentList::iterator entry = m_arguments.begin();
    while (entry != m_arguments.end() &&
           !(entry->first == argument.first && entry->second.first == argument.second.first &&
             entry->second.second.equals(argument.second.second))) {
        ++entry;
    }
    return entry;
}

DeviceOperation::ArgumentIterator DeviceOperation::findArgument(Common::string const& name) const {
    ArgumentIterator entry = m_arguments.begin();
    while (entry != m_arguments.end() && entry->second.first != name)
        ++entry;
    return entry;
}

bool DeviceOperation::hasArgument(Common::string const& name) const {
    return findArgument(name) != m_arguments.end();
}

bool DeviceOperation::hasArgumentAndIs(Common::string const& name, Common::string const& text) const {
    return hasArgument(name) && getArgValue(name) == text;
}

Common::string DeviceOperation::getArgValue(Common::string const& name) const {
    return getArgAnyValue(name).text();
}

AttributeValue DeviceOperation::getArgAnyValue(Common::string const& name) const {
    ArgumentIterator const entry = findArgument(name);
    return entry == m_arguments.end() ? AttributeValue() : entry->second.second;
}

DeviceOperation::EnSetDefaultArguments DeviceOperation::setDefaultArguments(
    Common::shared_ptr<Device> device) {
    EnSetDefaultArguments result = eAllDefaultsSet;
    SetArgumentsFromCapabilityClassParent(result, getCapabilityPtr(device));
    return result;
}

void DeviceOperation::SetArgumentsFromCapabilityClassParent(EnSetDefaultArguments& result,
                                                            Common::shared_ptr<Capability> const& parent) {
    if (!parent) return;
    for (Capability::ChildIterator child = parent->beginChild(); child != parent->endChild(); ++child) {
        Common::shared_ptr<Capability> const& argumentClass = *child;
        Common::string const name = argumentClass->getValueFor(Names::ATTR_NAME_ATTRIBUTE_NAME);
        if (hasArgument(name)) {
            followSuppliedArguments(result, argumentClass, name);
            continue;
        }

        CapabilityFinder defaultFinder(argumentClass);
        defaultFinder.Add(Attribute(Names::ATTR_NAME_DEFAULT_VALUE, Names::ATTR_VALUE_DEFAULT_VALUE_TRUE));
        CapabilityList defaults;
        defaultFinder.find(defaults);

        Common::string const action = argumentClass->getValueFor(Names::ATTR_NAME_ACTION);
        if (action == Names::ATTR_VALUE_ACTION_ABSOLUTE || action == Names::ATTR_VALUE_ACTION_BOTH) {
            setAbsoluteDefaults(result, defaults, name);
        } else if (action == Names::ATTR_VALUE_ACTION_RELATIVE) {
            setRelativeValues(result, argumentClass, name);
        } else {
            for (Common::shared_ptr<Capability> const& instance : defaults) {
                SetArgumentsFromCapabilityClassParent(result, instance);
            }
        }
    }
}

// The classes below an instance are valid for its value alone, so each value leads to its own.
void DeviceOperation::followSuppliedArguments(EnSetDefaultArguments& result,
                                              Common::shared_ptr<Capability> const& argumentClass,
                                              Common::string const& name) {
    // The list grows on the way down: the values first.
    AttributeValueList values;
    for (Argument const& argument : m_arguments) {
        if (argument.second.first == name) values.push_back(argument.second.second);
    }
    for (AttributeValue const& value : values) {
        CapabilityFinder finder(argumentClass);
        finder.Add(Attribute(name, value));
        Common::shared_ptr<Capability> const instance = finder.find();
        if (instance) {
            SetArgumentsFromCapabilityClassParent(result, instance);
        } else {
            result = eUnknownValue;
        }
    }
}

void DeviceOperation::setAbsoluteDefaults(EnSetDefaultArguments& result, CapabilityList const& defaults,
                                          Common::string const& name) {
    if (defaults.empty() && result == eAllDefaultsSet) result = eNoDefault;
    for (Common::shared_ptr<Capability> const& instance : defaults) {
        SetArgument(eSET, name, instance->getPublicValueFor(name));
        SetArgumentsFromCapabilityClassParent(result, instance);
    }
}

void DeviceOperation::setRelativeValues(EnSetDefaultArguments& result,
                                        Common::shared_ptr<Capability> const& argumentClass,
                                        Common::string const& name) {
    for (Capability::ChildIterator instance = argumentClass->beginChild();
         instance != argumentClass->endChild(); ++instance) {
        bool const isDefault = (*instance)->hasAttributeAndIs(Names::ATTR_NAME_DEFAULT_VALUE,
                                                              Names::ATTR_VALUE_DEFAULT_VALUE_TRUE);
        SetArgument(isDefault ? eRelativeDefault : eRelative, name, (*instance)->getPublicValueFor(name));
        SetArgumentsFromCapabilityClassParent(result, *instance);
    }
}

}  // namespace Core
