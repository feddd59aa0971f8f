#include "core/capability.h"

#include "common/debug_logger.h"

namespace Core {

namespace Names = Interface::TOLKMod::Capability;

void Capability::Subscribe(Common::shared_ptr<Capability> child) {
    if (!child) {
        Common::DebugLogger::LogCommand("%s refused a child: null, expected a capability", m_type.c_str());
        return;
    }
    if (m_type == Names::ATTR_NAME_CAPABILITY_CLASS &&
        child->type() == Names::ATTR_NAME_CAPABILITY_INSTANCE) {
        adoptClassAttribute(*child);
    }
    // A second instance with the same value is kept: finders give the first.
    m_children.push_back(child);
}

// Lets finders select an instance by the name that its class sets.
void Capability::adoptClassAttribute(Capability& instance) const {
    Common::string const name = getValueFor(Names::ATTR_NAME_ATTRIBUTE_NAME);
    if (!instance.hasAttribute(Names::ATTR_NAME_CAPABILITY_INSTANCE)) {
        if (!instance.hasAttribute(name)) {
            Common::DebugLogger::LogCommand(
                "Value of %s refused to an instance: it has no %s, a class took it over before", name.c_str(),
                Names::ATTR_NAME_CAPABILITY_INSTANCE);
        }
        return;
    }
    AttributeValue const value = instance.getPublicValueFor(Names::ATTR_NAME_CAPABILITY_INSTANCE);
    instance.Receive(Attribute(name, value));
    instance.AttributeSource::Clear(Names::ATTR_NAME_CAPABILITY_INSTANCE);
}

void Capability::Unsubscribe(Common::shared_ptr<Capability> child) {
    CapabilityList::iterator found = m_children.begin();
    while (found != m_children.end() && *found != child)
        ++found;
    m_children.erase(found);
}

Common::shared_ptr<Capability> Capability::clone() const {
    Common::shared_ptr<Capability> const copy(new Capability(*this));
    copy->m_children.clear();
    for (Common::shared_ptr<Capability> const& child : m_children)
        copy->m_children.push_back(child->clone());
    return copy;
}

CapabilityClass::CapabilityClass(AttributeValue const& attributeName, AttributeValue const& instanceType,
                                 AttributeValue const& cardinality, AttributeValue const& action,
                                 AttributeValue const& instanceRange)
    : Capability(Names::ATTR_NAME_CAPABILITY_CLASS) {
    Receive(Attribute(Names::ATTR_NAME_ATTRIBUTE_NAME, attributeName));
    Receive(Attribute(Names::ATTR_NAME_INSTANCE_TYPE, instanceType));
    Receive(Attribute(Names::ATTR_NAME_CARDINALITY, cardinality));
    Receive(Attribute(Names::ATTR_NAME_ACTION, action));
    Receive(Attribute(Names::ATTR_NAME_INSTANCE_RANGE, instanceRange));
}

CapabilityInstance::CapabilityInstance(AttributeValue const& value, bool const& isDefault,
                                       bool const& isCurrent)
    : Capability(Names::ATTR_NAME_CAPABILITY_INSTANCE) {
    Receive(Attribute(Names::ATTR_NAME_CAPABILITY_INSTANCE, value));
    Receive(Attribute(Names::ATTR_NAME_CURRENT_VALUE, isCurrent ? Names::ATTR_VALUE_CURRENT_VALUE_TRUE
                                                                : Names::ATTR_VALUE_CURRENT_VALUE_FALSE));
    Receive(Attribute(Names::ATTR_NAME_DEFAULT_VALUE, isDefault ? Names::ATTR_VALUE_DEFAULT_VALUE_TRUE
                                                                : Names::ATTR_VALUE_DEFAULT_VALUE_FALSE));
}

}  // namespace Core
