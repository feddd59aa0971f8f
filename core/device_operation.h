#pragma once

#include "common/list.h"
#include "common/pair.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/attribute_source.h"
#include "core/capability.h"
#include "core/filter.h"
#include "core/operation_context.h"
#include "core/visitor_device.h"

namespace Core {

// Marks classes that create devices.
class DevicePublisher {
  public:
    virtual ~DevicePublisher() = default;
};

// A named action on devices: reads, discovers, links or writes. A concrete operation also derives from the
// visitor interface of each device kind it works on, and implements the typed visits.
//
// One object serves all devices of a class, so an operation keeps nothing between runs. To run one:
// device->getOperation(name), SetArgument() as needed, optionally setDefaultArguments(), then
// device->perform(operation), which clears the arguments. A caller with concurrency holds the device's lock
// from the first argument to the end of perform().
class DeviceOperation : public VisitorDevice, public AttributePublisher, public DevicePublisher {
  public:
    // How reenumeration treats the operation, whatever its name says.
    enum EnType { eRead = 0, eWrite = 1, eDiscovery = 2, eAssociation = 3 };

    // When reenumeration runs it: a set of bits.
    enum EnTypeModifier : unsigned {
        eNever = 0,          // listed, but only an explicit perform() runs it
        eTopDown = 1,        // in the top-down pass; either of the two bits suffices
        eTopDownSecond = 2,  //
        eAssociate = 4,      // in the association step
        eBottomUp = 8,       // in the bottom-up pass (reads)
        eUsual = 7,
        eUsualAndBottomUp = 15,
    };

    // How an argument was derived from a capability.
    enum EnAction { eRelativeDefault = 1, eRelative = 4, eSET = 8 };

    // The outcome of setDefaultArguments().
    enum EnSetDefaultArguments {
        eAllDefaultsSet = 0,
        eNoDefault = 1,     // a required class has no default instance; everything else was filled
        eUnknownValue = 2,  // an argument of the caller names no known instance
    };

    typedef Common::pair<EnAction, Common::pair<Common::string, AttributeValue>> Argument;
    typedef Common::list<Argument> ArgumentList;
    typedef ArgumentList::const_iterator ArgumentIterator;

    explicit DeviceOperation(EnTypeModifier modifier = eUsual);
    ~DeviceOperation() override = default;

    // The arguments that the operation takes on this device. By default an empty tree.
    virtual Common::shared_ptr<Capability> getCapabilityPtr(Common::shared_ptr<Device> device);

    Common::string name() const { return nameImpl(); }
    EnType eType() const { return eTypeImpl(); }
    EnTypeModifier typeModifier() const { return m_typeModifier; }
    // A new filter, for one use; null when the pool of filters is exhausted.
    Common::shared_ptr<Filter> pFilter() const { return pFilterImpl(); }

    // Same name and same type.
    bool operator==(DeviceOperation const& other) const;

    void SetOperationContext(Common::shared_ptr<OperationContext> context) { m_context = context; }
    Common::shared_ptr<OperationContext> getOperationContext() const { return m_context; }

    // Appends a copy, after removing an equal argument. Another value for the same name is a second entry,
    // and readers find the earlier one: clear first to replace.
    void SetArgument(Argument const& argument);
    void SetArgument(EnAction action, Common::string const& name, AttributeValue const& value);
    // Removes the first argument with the same action, name, type of value and value.
    void ClearArgument(Argument const& argument);
    void ClearArgumentList() { m_arguments.clear(); }

    ArgumentIterator beginArgument() const { return m_arguments.begin(); }
    ArgumentIterator endArgument() const { return m_arguments.end(); }
    bool hasArgument(Common::string const& name) const;
    // Compared by text with the first argument of this name.
    bool hasArgumentAndIs(Common::string const& name, Common::string const& text) const;
    // The text of the first argument of this name; empty when absent.
    Common::string getArgValue(Common::string const& name) const;
    // The value itself; an empty text when absent.
    AttributeValue getArgAnyValue(Common::string const& name) const;

    // Fills in what the caller left out, from the capabilities on this device.
    EnSetDefaultArguments setDefaultArguments(Common::shared_ptr<Device> device);

  protected:
    virtual Common::string nameImpl() const = 0;
    virtual EnType eTypeImpl() const = 0;
    // By default a NullFilter.
    virtual Common::shared_ptr<Filter> pFilterImpl() const;

  private:
    typedef Common::list<Common::shared_ptr<Capability>> CapabilityList;

    ArgumentList::iterator findArgument(Argument const& argument);
    ArgumentIterator findArgument(Common::string const& name) const;

    void SetArgumentsFromCapabilityClassParent(EnSetDefaultArguments& result,
                                               Common::shared_ptr<Capability> const& parent);
    void followSuppliedArguments(EnSetDefaultArguments& result,
                                 Common::shared_ptr<Capability> const& argumentClass,
                                 Common::string const& name);
    void setAbsoluteDefaults(EnSetDefaultArguments& result, CapabilityList const& defaults,
                             Common::string const& name);
    void setRelativeValues(EnSetDefaultArguments& result, Common::shared_ptr<Capability> const& argumentClass,
                           Common::string const& name);

    EnTypeModifier m_typeModifier;
    ArgumentList m_arguments;
    Common::shared_ptr<OperationContext> m_context;
};

}  // namespace Core
