#pragma once

#include "common/list.h"
#include "common/local_static_allocator.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/attribute_source.h"
#include "core/tolkmod.h"

namespace Core {

class Capability;

class CapabilitySubscriber {
  public:
    virtual ~CapabilitySubscriber() = default;
    virtual void Subscribe(Common::shared_ptr<Capability> child) = 0;
    virtual void Unsubscribe(Common::shared_ptr<Capability> child) = 0;
};

// Marks classes that make capabilities.
class CapabilityPublisher {
  public:
    virtual ~CapabilityPublisher() = default;
};

// A node of the tree that describes an operation's arguments on one device. The tree alternates: a root of
// type ATTR_NAME_CAPABILITY, below it classes (one per argument), below a class its instances (the values it
// may take), below an instance further classes that are valid only for that value.
//
// Copying shares the children; clone() is deep.
class Capability : public AttributePublisher,
                   public AttributeSource,
                   public CapabilitySubscriber,
                   public Common::LocalStaticAllocator<Capability, 10000> {
  public:
    typedef Common::list<Common::shared_ptr<Capability>> CapabilityList;
    typedef CapabilityList::const_iterator ChildIterator;

    explicit Capability(Common::string const& type = Interface::TOLKMod::Capability::ATTR_NAME_CAPABILITY)
        : m_type(type) {}

    // One of ATTR_NAME_CAPABILITY, ATTR_NAME_CAPABILITY_CLASS, ATTR_NAME_CAPABILITY_INSTANCE.
    Common::string type() const { return m_type; }
    ChildIterator beginChild() const { return m_children.begin(); }
    ChildIterator endChild() const { return m_children.end(); }

    // Appends `child`. An instance that joins a class takes on the attribute that the class names: its value
    // moves from ATTR_NAME_CAPABILITY_INSTANCE to that name. One that has moved its value already keeps it as
    // it is; a class of another name gives it none, and that is logged. A null child is refused and logged.
    void Subscribe(Common::shared_ptr<Capability> child) override;
    // Removes the first child that is this very object, if any.
    void Unsubscribe(Common::shared_ptr<Capability> child) override;

    // A deep copy, every node of which is a plain Capability.
    Common::shared_ptr<Capability> clone() const;

  private:
    void adoptClassAttribute(Capability& instance) const;

    Common::string m_type;
    CapabilityList m_children;
};

// One argument: the attribute it sets, and what values it takes.
class CapabilityClass : public Capability {
  public:
    CapabilityClass(AttributeValue const& attributeName, AttributeValue const& instanceType,
                    AttributeValue const& cardinality, AttributeValue const& action,
                    AttributeValue const& instanceRange);
};

// One value of an argument.
class CapabilityInstance : public Capability {
  public:
    CapabilityInstance(AttributeValue const& value, bool const& isDefault, bool const& isCurrent);
};

}  // namespace Core
