// What a device offers and what it is linked with: its operations, the reasons why others are unavailable,
// its associations.

#include "common/debug_logger.h"
#include "core/device.h"
#include "core/tolkmod.h"

namespace Core {

namespace {

// Drops what was appended since the list had this size.
template <class List>
void shrink(List& list, unsigned size) {
    while (list.size() > size)
        list.erase(--list.end());
}

}  // namespace

Device::OperationIterator Device::beginOperation() const {
    Lock lock(mutex());
    catchUpWriteOperations();
    return m_operations.begin();
}

Device::OperationIterator Device::endOperation() const {
    Lock lock(mutex());
    return m_operations.end();
}

bool Device::hasOperation(Common::string const& name) const {
    // The pointer is counted without atomic operations: it must die under the lock.
    Lock lock(mutex());
    return static_cast<bool>(getOperation(name));
}

Common::shared_ptr<DeviceOperation> Device::getOperation(Common::string const& name) const {
    Lock lock(mutex());
    catchUpWriteOperations();
    for (Common::shared_ptr<DeviceOperation> const& operation : m_operations) {
        if (operation->name() == name) return operation;
    }
    return Common::shared_ptr<DeviceOperation>();
}

Device::ReasonIterator Device::beginUnavailableOperationReason() const {
    Lock lock(mutex());
    catchUpWriteOperations();
    return m_unavailableReasons.begin();
}

Device::ReasonIterator Device::endUnavailableOperationReason() const {
    Lock lock(mutex());
    return m_unavailableReasons.end();
}

bool Device::hasUnavailableOperationReason(Common::string const& operationName) const {
    Lock lock(mutex());
    return static_cast<bool>(getUnavailableOperationReason(operationName));
}

Common::shared_ptr<AttributeSource> Device::getUnavailableOperationReason(
    Common::string const& operationName) const {
    Lock lock(mutex());
    catchUpWriteOperations();
    for (Common::shared_ptr<AttributeSource> const& reason : m_unavailableReasons) {
        if (reason->getValueFor(Interface::TOLKMod::OperationReturn::ATTR_NAME_OPERATION_NAME) ==
            operationName) {
            return reason;
        }
    }
    return Common::shared_ptr<AttributeSource>();
}

void Device::ClearUnavailableOperationReasons() {
    Lock lock(mutex());
    m_unavailableReasons.clear();
}

// The operation lists are caught up on first sight, so this is logically const.
void Device::catchUpWriteOperations() const {
    if (m_writeOperationsPending) const_cast<Device*>(this)->RefreshWriteOperations();
}

void Device::RefreshWriteOperations() {
    Lock lock(mutex());
    ResultList dropped;
    RegisterWriteOperations(dropped, ReenumeratePredicate());
}

void Device::RegisterWriteOperations(ResultList&, ReenumeratePredicate const& predicate) {
    Lock lock(mutex());
    if (!m_writeOperationsPending) return;
    // The flag stays set until the end, so a filter that asks this device for an operation comes back here.
    // It sees the operations registered so far.
    if (m_registeringWriteOperations) return;
    // All or nothing: when a filter throws the flag of the pending registration stays, and what was listed up
    // to then would be listed again by the next one.
    struct Done {
        Device& device;
        unsigned operations;
        unsigned reasons;
        ~Done() {
            device.m_registeringWriteOperations = false;
            if (!device.m_writeOperationsPending) return;
            shrink(device.m_operations, operations);
            shrink(device.m_unavailableReasons, reasons);
        }
    } const done{*this, m_operations.size(), m_unavailableReasons.size()};
    m_registeringWriteOperations = true;

    Common::shared_ptr<Device> const self = getDevicePtr();
    if (OperationRegistry* const registry = dynamic_cast<OperationRegistry*>(this)) {
        for (auto entry = registry->beginRegisteredOperation(); entry != registry->endRegisteredOperation();
             ++entry) {
            Common::shared_ptr<DeviceOperation> const& operation = *entry;
            if (operation->eType() != DeviceOperation::eWrite) continue;
            if (!predicate.canRegisterWriteOperationsFor(self, operation->name())) continue;

            Common::DebugLogger::Log(4, "Apply filter for operation: %s", operation->name().c_str());
            if (!passesFilter(self, *operation)) continue;
            operation->ClearArgumentList();
            operation->SetOperationContext(DefaultOperationContext());
            m_operations.push_back(operation);
        }
    }
    m_writeOperationsPending = false;
}

void Device::RefreshOperations() {
    Lock lock(mutex());
    if (!m_writeOperationsPending) {
        OperationList operations;
        ReasonList reasons;
        if (OperationRegistry* const registry = dynamic_cast<OperationRegistry*>(this)) {
            for (auto entry = registry->beginRegisteredOperation();
                 entry != registry->endRegisteredOperation(); ++entry) {
                DeviceOperation::EnType const type = (*entry)->eType();
                if (type != DeviceOperation::eRead && type != DeviceOperation::eDiscovery) continue;
                Common::string const name = (*entry)->name();
                if (hasOperation(name)) {
                    operations.push_back(*entry);
                } else if (Common::shared_ptr<AttributeSource> reason = getUnavailableOperationReason(name)) {
                    reasons.push_back(reason);
                }
            }
        }
        m_operations = operations;
        m_unavailableReasons = reasons;
        m_writeOperationsPending = true;
    }
    RefreshWriteOperations();
}

bool Device::passesFilter(Common::shared_ptr<Device> const& self, DeviceOperation& operation) {
    FilterReturn verdict = applyFilter(operation.pFilter(), self, operation.name());
    if (verdict) return true;

    verdict.Publish(
        verdict, Attribute(Interface::TOLKMod::OperationReturn::ATTR_NAME_OPERATION_NAME, operation.name()));
    Common::shared_ptr<AttributeSource> reason(new AttributeSource);
    reason->Receive(verdict);
    m_unavailableReasons.push_back(reason);
    return false;
}

void Device::RegisterOperation(Common::string const& typeName, Common::string const& operationName) {
    ActivateOperation(typeName, operationName);
}

AssociationIterator Device::beginAssociation() const {
    Lock lock(mutex());
    return m_associations.begin();
}

AssociationIterator Device::endAssociation() const {
    Lock lock(mutex());
    return m_associations.end();
}

bool Device::hasAssociation(Common::string const& name) const {
    Lock lock(mutex());
    return static_cast<bool>(getAssociation(name));
}

Common::shared_ptr<DeviceAssociation> Device::getAssociation(Common::string const& name) const {
    Lock lock(mutex());
    Common::shared_ptr<DeviceAssociation> last;
    for (Common::shared_ptr<DeviceAssociation> const& association : m_associations) {
        if (association->name() == name) last = association;
    }
    return last;
}

void Device::removeAssociation(Common::string const& name) {
    Lock lock(mutex());
    if (hasAssociation(name)) clear(getAssociation(name));
}

bool Device::receive(Common::shared_ptr<DeviceAssociation> association) {
    Lock lock(mutex());
    if (!association) {
        Common::DebugLogger::LogCommand("%s refused an association: null, expected an object",
                                        toString().c_str());
        return false;
    }
    removeAssociation(association->name());
    if (association->size() == 0) return false;
    m_associations.push_back(association);
    return true;
}

AssociationIterator Device::clear(Common::shared_ptr<DeviceAssociation> association) {
    Lock lock(mutex());
    AssociationList::iterator found = m_associations.begin();
    while (found != m_associations.end() && *found != association)
        ++found;
    return m_associations.erase(found);
}

void Device::DeleteAssociations(ResultList&) {
    Lock lock(mutex());
    AssociationIterator association = m_associations.begin();
    while (association != m_associations.end())
        association = clear(*association);
}

}  // namespace Core
