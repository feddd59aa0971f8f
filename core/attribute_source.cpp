#include "core/attribute_source.h"

namespace Core {

Common::string AttributeSource::getValueFor(Common::string const& name) const {
    AttributeIterator const found = m_attributes.find(name);
    return found == m_attributes.end() ? Common::string() : found->second.text();
}

AttributeValue AttributeSource::getPublicValueFor(Common::string const& name) const {
    AttributeIterator const found = m_attributes.find(name);
    return found == m_attributes.end() ? AttributeValue() : found->second;
}

bool AttributeSource::hasAttribute(Common::string const& name) const {
    return m_attributes.find(name) != m_attributes.end();
}

bool AttributeSource::hasAttributeAndIs(Common::string const& name, Common::string const& value) const {
    return hasAttribute(name) && getValueFor(name) == value;
}

void AttributeSource::Receive(Attribute const& attribute) {
    // A copy: the caller's pair may be the very node that is replaced.
    Attribute const received(attribute);

    AttributeMap::iterator before = m_attributes.findNode(received.first);
    m_attributes.clearCache();
    if (before != m_attributes.end()) {
        before = m_attributes.nodes().erase(before);
    } else {
        before = m_attributes.begin();
        while (before != m_attributes.end() && before->first < received.first)
            ++before;
    }
    m_attributes.setCache(received.first, m_attributes.nodes().insert(before, received));
}

void AttributeSource::Receive(AttributeSource const& other) {
    AttributeIterator attribute = other.beginAttribute();
    while (attribute != other.endAttribute()) {
        // Advanced first: when `other` is this object the node is about to be replaced.
        Attribute const& current = *attribute;
        ++attribute;
        Receive(current);
    }
}

void AttributeSource::Clear(Common::string const& name) {
    m_attributes.erase(m_attributes.findNode(name));
}

void AttributeSource::Clear() {
    m_attributes = AttributeMap();
}

void AttributePublisher::Publish(AttributeSubscriber& target, Attribute const& attribute,
                                 bool publishEmpty) const {
    if (!publishEmpty && attribute.second.text().empty()) return;
    target.Receive(attribute);
}

}  // namespace Core
