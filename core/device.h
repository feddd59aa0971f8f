#pragma once

#include "common/list.h"
#include "common/process_mutex.h"
#include "common/recursive_process_mutex.h"
#include "common/scoped_mutex_lock.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/attribute_source.h"
#include "core/device_association.h"
#include "core/device_event.h"
#include "core/device_operation.h"
#include "core/operation_context.h"
#include "core/operation_registry.h"
#include "core/operation_return.h"
#include "core/visitor_device.h"

namespace Core {

typedef Common::list<Common::shared_ptr<AttributeSource>> ReasonList;

// What a device can do.
class OperationSource {
  public:
    virtual OperationList::const_iterator beginOperation() const = 0;
    virtual OperationList::const_iterator endOperation() const = 0;
    virtual bool hasOperation(Common::string const& name) const = 0;
    virtual Common::shared_ptr<DeviceOperation> getOperation(Common::string const& name) const = 0;
    virtual ~OperationSource() = default;

  protected:
    friend class VisitorDevice;
    // The double dispatch of a device kind: see DispatchVisit().
    virtual OperationReturn performImpl(VisitorDevice& visitor) = 0;
};

// A node of the device tree: attributes, a parent, children (in DeviceComposite), associations to other
// devices, the operations available on it and the reasons why others are not.
//
// Lifetime: made with new, wrapped in a Common::shared_ptr at once, and offered to its parent with
// receive(). The parent's pointer keeps it; its own pointer to the parent is raw, and null for a root, for a
// clone that isn't attached, and once the parent is gone.
//
// Locks: every public operation on a device's place in the tree, its operations, reasons and associations,
// the const ones included, holds deviceMutex for its whole length. The mutex is recursive, and a device that
// enters a tree takes over the tree's, so that locking one device locks the tree. Process-wide order:
// reenumMutex() first, then a device's mutex. Three things aren't locked: attribute access
// (Core::AttributeSource); what a kind implements itself, which runs under its caller's lock; and pointers
// and iterators once they are returned, so a caller with concurrency holds the lock while it has one.
//
// Iterators over operations and reasons are dead after the next reenumeration.
class Device : public AttributePublisher,
               public AttributeSource,
               public DeviceSubscriber,
               public DeviceAssociationSubscriber,
               public OperationSource {
  public:
    class ReenumeratePredicate;
    class ReenumerationMark;

    typedef DeviceIterator ChildIterator;
    typedef OperationList::const_iterator OperationIterator;
    typedef ReasonList::const_iterator ReasonIterator;
    typedef Common::list<OperationReturn> ResultList;
    typedef Common::Synchronization::RecursiveProcessMutex Mutex;
    typedef Common::Synchronization::ScopedMutexLock<Mutex> Lock;

    ~Device() override;
    Device& operator=(Device const&) = delete;

    // False once the device was marked for removal and not confirmed since.
    virtual bool isValid() const;
    virtual bool hasParent() const;
    // Null for a root.
    virtual Common::shared_ptr<Device> pParent() const;
    // Two null iterators, which compare equal, for a device that can have no children.
    virtual ChildIterator beginChild() const;
    virtual ChildIterator endChild() const;
    // Post-order: first every child's Accept() in order, then visitor.visit(*this), the result of which is
    // dropped.
    virtual void Accept(VisitorDevice& visitor);
    // By operator== of the kind, not by pointer.
    virtual bool hasChild(Common::shared_ptr<Device> child) const;
    // The device's identity within its parent.
    virtual Common::string toString() const;
    // Identity among siblings, by the rules of the kind. The base says true.
    virtual bool operator==(Device const& other) const;
    // The pointer by which the parent holds this device; null without a parent. A root kind overrides it.
    virtual Common::shared_ptr<Device> getDevicePtr() const;

    // Reasons carry ATTR_NAME_OPERATION_NAME and what the filter said. Asking for operations or reasons
    // catches up a deferred registration of write operations first.
    virtual ReasonIterator beginUnavailableOperationReason() const;
    virtual ReasonIterator endUnavailableOperationReason() const;
    virtual bool hasUnavailableOperationReason(Common::string const& operationName) const;
    // Null when there is none.
    virtual Common::shared_ptr<AttributeSource> getUnavailableOperationReason(
        Common::string const& operationName) const;

    OperationIterator beginOperation() const override;
    OperationIterator endOperation() const override;
    bool hasOperation(Common::string const& name) const override;
    // Null when the operation isn't available here.
    Common::shared_ptr<DeviceOperation> getOperation(Common::string const& name) const override;

    virtual AssociationIterator beginAssociation() const;
    virtual AssociationIterator endAssociation() const;
    virtual bool hasAssociation(Common::string const& name) const;
    // Null when there is none.
    Common::shared_ptr<DeviceAssociation> getAssociation(Common::string const& name) const;
    void removeAssociation(Common::string const& name);
    // Drops all outgoing associations. Adds nothing to `results`.
    void DeleteAssociations(ResultList& results);

    // Runs the operation here and clears its arguments. The result carries the device's and the operation's
    // names. Status ATTR_VALUE_STATUS_DEVICE_DELETED on a stale device,
    // ATTR_VALUE_STATUS_PERFORM_NOT_REACHABLE when the operation doesn't work on this kind,
    // ATTR_VALUE_STATUS_NOT_SUPPORTED (and a line in the log) for a null operation.
    virtual OperationReturn perform(Common::shared_ptr<DeviceOperation> operation);

    // On this device alone: its read and association operations run, children stay as they are.
    virtual ResultList Refresh();
    // Re-evaluates the write operations without running anything.
    virtual void RefreshOperations();
    // Discovers nothing and drops every deletable child.
    virtual ResultList Reset();
    // Brings the tree from here down up to date: see device_reenumerate.cpp for the steps. The last entry of
    // the list is a success entry for the walk itself; failures of operations are among the others. Asked for
    // from within a reenumeration of the same thread it is refused: a line in the log and a failure entry
    // before the last.
    virtual ResultList Reenumerate(ReenumeratePredicate const& predicate);
    // Takes over fresh state from an equal, newly discovered device. Attributes follow by themselves.
    virtual void UpdateWith(Common::shared_ptr<Device> other);
    virtual ResultList DoReenumerate(ReenumeratePredicate const& predicate);

    // Offers a child. When an equal child exists that one stays, confirmed, with the new attributes merged
    // into it, and the result is false. Otherwise the child enters the tree, and the result tells whether it
    // was stored. A null child, this device itself or one of its ancestors is refused, logged: false.
    bool receive(Common::shared_ptr<Device> child) override;
    // Removes a child and takes its subtree apart: everything below it becomes stale, the child itself
    // keeps its mark. Returns the iterator behind it; endChild(), with a line in the log, for null and for a
    // device that is no child of this one.
    ChildIterator clear(Common::shared_ptr<Device> child) override;
    // The same for a child that is gone for good: it becomes stale too, and whoever still holds it learns so.
    void discard(Common::shared_ptr<Device> const& child);
    // Replaces the association of this name as a whole. An empty one is not kept: false.
    bool receive(Common::shared_ptr<DeviceAssociation> association) override;
    AssociationIterator clear(Common::shared_ptr<DeviceAssociation> association) override;

    // A deep copy of the subtree with a mutex of its own: attributes and children, without operations,
    // associations and reasons. The copy has no parent.
    Common::shared_ptr<Device> clone() const;

    void RefreshWriteOperations();
    void ClearUnavailableOperationReasons();

    // The steps of a reenumeration, for operations that rebuild a part of the tree. Results of operations
    // are appended to `results`. They take the device's lock, not reenumMutex(): hold a ReenumerationMark.
    void DeleteAssociationsFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                               ResultList& results);
    void ReenumerateChildrenFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                Common::shared_ptr<OperationContext> context, ResultList& results);
    void CreateAssociationsFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                               ResultList& results);
    void BottomUpReenumerateFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                Common::shared_ptr<OperationContext> context, ResultList& results);
    void RegisterWriteOperationsFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                    ResultList& results);
    void CreateAssociations(ResultList& results, ReenumeratePredicate const& predicate);
    void RegisterWriteOperations(ResultList& results, ReenumeratePredicate const& predicate);

    // The first child equal to `child`, by the listed child's operator==; `end` when none is.
    static ChildIterator findDevice(ChildIterator begin, ChildIterator end, Common::shared_ptr<Device> child);

    // Activates an operation for a device type. Unknown pairs are ignored without a word; a pair is
    // activated once.
    static void RegisterOperation(Common::string const& typeName, Common::string const& operationName);

    // False for any type but ATTR_VALUE_DEVICE_EVENT_TYPE_BEFORE_REENUMERATE.
    static bool AddDeviceEventSubscriber(Common::string const& type,
                                         Common::shared_ptr<DeviceEventSubscriber> subscriber);

    // State of the process, made on first use: initialisers of other files may need it.
    // The context that every operation holds between runs.
    static Common::shared_ptr<OperationContext> const& DefaultOperationContext();
    static Common::shared_ptr<DeviceEventPublisher> const& OnBeforeReenumerateEventPublisher();
    // Serialises all reenumerations of the process.
    static Common::shared_ptr<Common::Synchronization::ProcessMutex> const& reenumMutex();

    // For a caller that needs several calls to be one: `Core::Device::Lock lock(device->mutex());`
    Mutex& mutex() const { return *m_deviceMutex; }

  protected:
    Device();
    // Copies attributes and whether the parent's mutex is shared; everything else starts fresh.
    Device(Device const& other);

    virtual Common::string toStringImpl() const = 0;
    virtual Common::shared_ptr<Device> cloneImpl() const = 0;
    // False keeps the device in the tree though a discovery no longer reports it.
    virtual bool isDeletable() const;
    // False when the kind stores no children.
    virtual bool addChildImpl(Common::shared_ptr<Device> child);
    // Removes the entry that is this very object; a null iterator when the kind stores no children.
    virtual ChildIterator removeChildImpl(Common::shared_ptr<Device> child);
    // Tells a kind that answers getDevicePtr() itself which pointer owns it, after clone() made it.
    virtual void setDevicePtr(Common::shared_ptr<Device> const& self);

    void OnBeforeReenumerate();

  private:
    friend class DeviceComposite;
    friend class DeviceFactory;

    bool attach(Common::shared_ptr<Device> const& child);
    void receiveUniqueId();
    void shareMutex(Common::shared_ptr<Mutex> const& mutex);
    bool isSelfOrAncestor(Device const& device) const;
    void ClearChildrenFor(Common::shared_ptr<Device> child);

    void markChildrenStale();
    void runTopDownOperations(Common::shared_ptr<Device> const& self, ReenumeratePredicate const& predicate,
                              Common::shared_ptr<OperationContext> const& context, ResultList& results);
    void removeStaleChildren();
    OperationReturn performIn(Common::shared_ptr<OperationContext> const& context,
                              Common::shared_ptr<DeviceOperation> const& operation);
    bool passesFilter(Common::shared_ptr<Device> const& self, DeviceOperation& operation);
    void catchUpWriteOperations() const;

    Common::shared_ptr<Mutex> m_deviceMutex;
    bool m_sharesParentMutex;
    Device* m_parent;
    OperationList m_operations;
    bool m_writeOperationsPending;
    AssociationList m_associations;
    ReasonList m_unavailableReasons;
    bool m_isStale;
    bool m_registeringWriteOperations;
};

// While one stands, Reenumerate() is refused on this thread: it would take reenumMutex() behind a device's
// lock.
class Device::ReenumerationMark {
  public:
    ReenumerationMark();
    ~ReenumerationMark();
    ReenumerationMark(ReenumerationMark const&) = delete;
    ReenumerationMark& operator=(ReenumerationMark const&) = delete;

  private:
    bool m_outer;
};

// Steers a reenumeration. The base answers are those of a full one.
class Device::ReenumeratePredicate {
  public:
    virtual ~ReenumeratePredicate() = default;

    virtual bool canPerformAssociateFor(Common::shared_ptr<Device>,
                                        Common::string const& operationName) const;
    virtual bool canPerformDiscoverFor(Common::shared_ptr<Device>, Common::string const& operationName) const;
    virtual bool canPerformReadFor(Common::shared_ptr<Device>, Common::string const& operationName) const;
    // Go on to this device's children. The flag is false only when associations are being deleted.
    virtual bool canReenumerateChildrenFor(Common::shared_ptr<Device>, bool) const;
    // Leave the write operations to the first request for them; their filters ask hardware.
    virtual bool deferWriteOperationRegistration() const;
    virtual bool canRegisterWriteOperationsFor(Common::shared_ptr<Device>,
                                               Common::string const& operationName) const;
    // Mark this device's children stale before rediscovery.
    virtual bool canRemoveStaleChildrenFor(Common::shared_ptr<Device>) const;
};

}  // namespace Core
