#pragma once

#include "common/map.h"
#include "common/pair.h"
#include "common/string.h"
#include "core/attribute_value.h"

namespace Core {

class AttributeSubscriber {
  public:
    virtual ~AttributeSubscriber() = default;
    virtual void Receive(Attribute const& attribute) = 0;
    virtual void Clear(Common::string const& name) = 0;
};

// A set of named values, in ascending order of names by strcmp. No lock, and even a const look-up writes a
// cache: one object must not be used by two threads at once, not even to read.
class AttributeSource : public AttributeSubscriber {
  public:
    typedef Common::map<Common::string, AttributeValue> AttributeMap;
    typedef AttributeMap::const_iterator AttributeIterator;

    AttributeIterator beginAttribute() const { return m_attributes.begin(); }
    AttributeIterator endAttribute() const { return m_attributes.end(); }

    // The text of the value; empty when absent.
    Common::string getValueFor(Common::string const& name) const;
    // The value itself; an empty text when absent.
    AttributeValue getPublicValueFor(Common::string const& name) const;
    bool hasAttribute(Common::string const& name) const;
    // Present, and its text is exactly `value`, whatever type is held.
    bool hasAttributeAndIs(Common::string const& name, Common::string const& value) const;

    // Stores or replaces, empty values too. A replaced attribute is a new node: iterators to the old die.
    void Receive(Attribute const& attribute) override;
    // Each of the other's attributes in turn, through the virtual Receive. Others of this object stay.
    void Receive(AttributeSource const& other);

    // No effect when absent.
    void Clear(Common::string const& name) override;
    void Clear();

  private:
    AttributeMap m_attributes;
};

class AttributePublisher {
  public:
    virtual ~AttributePublisher() = default;

    // target.Receive(attribute), except that a value without text is dropped, and an earlier one stays,
    // unless `publishEmpty` is set: what hardware reports as empty isn't there.
    void Publish(AttributeSubscriber& target, Attribute const& attribute, bool publishEmpty = false) const;
};

}  // namespace Core
