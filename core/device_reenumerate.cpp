// Bringing a tree up to date. One reenumeration of a device is, for the device and all below it:
//   1. outgoing associations are dropped,
//   2. top-down: read and discovery operations run in the registry's order; children that no discovery
//      confirmed are removed; then the same for each child, so that a child's operations may rely on
//      everything its parent learned,
//   3. association operations run: all their targets exist now,
//   4. bottom-up: those read operations that sum up what lies below a device,
//   5. write operations are offered. Their filters judge by final attributes, so they come last.
// There is no knowledge of hardware here: which operations a device has is its registry's affair, and the
// predicate steers each step.

#include <cstdio>

#include "common/debug_logger.h"
#include "common/module_name.h"
#include "common/output_stream.h"
#include "common/timer.h"
#include "core/device.h"
#include "core/device_factory.h"
#include "core/tolkmod.h"
#include "core/visitor_debug_xml.h"

namespace Core {

namespace {

namespace ReturnNames = Interface::TOLKMod::OperationReturn;

constexpr int traceLevel = 4;

// Whether this thread holds reenumMutex(), which isn't recursive, or rebuilds a part of a tree.
thread_local bool t_reenumerating = false;

class RefreshPredicate : public Device::ReenumeratePredicate {
  public:
    bool canPerformDiscoverFor(Common::shared_ptr<Device>, Common::string const&) const override {
        return false;
    }
    bool canReenumerateChildrenFor(Common::shared_ptr<Device>, bool) const override { return false; }
    bool canRemoveStaleChildrenFor(Common::shared_ptr<Device>) const override { return false; }
};

class ResetPredicate : public Device::ReenumeratePredicate {
  public:
    bool canPerformAssociateFor(Common::shared_ptr<Device>, Common::string const&) const override {
        return false;
    }
    bool canPerformDiscoverFor(Common::shared_ptr<Device>, Common::string const&) const override {
        return false;
    }
    bool canPerformReadFor(Common::shared_ptr<Device>, Common::string const&) const override { return false; }
    bool canRegisterWriteOperationsFor(Common::shared_ptr<Device>, Common::string const&) const override {
        return false;
    }
};

OperationReturn walkResult(Device const& device, char const* status) {
    OperationReturn result(status);
    result.Publish(result, Attribute(ReturnNames::ATTR_NAME_UNIQUE_ID, device.toString()));
    result.Publish(result, Attribute(ReturnNames::ATTR_NAME_OPERATION_NAME,
                                     Interface::TOLKMod::Device::OPERATION_DEVICE_INTERFACE));
    return result;
}

void writeDebugXML() {
    Common::shared_ptr<Device> const root = DeviceFactory().pRoot();
    if (!root) return;
    Common::string const path = Common::moduleName() + ".xml";
    Common::shared_ptr<Common::OutputStream> const stream(
        new Common::OutputStreamToFile(path.c_str(), false));
    VisitorDebugXML visitor(stream);
    visitor.visit(*root);
}

// A device's registry; nothing to walk for a device without one.
struct RegisteredOperations {
    explicit RegisteredOperations(Device& device) : registry(dynamic_cast<OperationRegistry*>(&device)) {}
    OperationList::const_iterator begin() const {
        return registry != nullptr ? registry->beginRegisteredOperation() : OperationList::const_iterator();
    }
    OperationList::const_iterator end() const {
        return registry != nullptr ? registry->endRegisteredOperation() : OperationList::const_iterator();
    }
    OperationRegistry* registry;
};

}  // namespace

// No deviceMutex before Reenumerate() takes reenumMutex(): a thread that held the device's and waited for
// the other's reenumeration, which waits for the device, would wait for ever.
Device::ResultList Device::Refresh() {
    return Reenumerate(RefreshPredicate());
}

Device::ResultList Device::Reset() {
    return Reenumerate(ResetPredicate());
}

Device::ReenumerationMark::ReenumerationMark() : m_outer(t_reenumerating) {
    t_reenumerating = true;
}

Device::ReenumerationMark::~ReenumerationMark() {
    t_reenumerating = m_outer;
}

Device::ResultList Device::Reenumerate(ReenumeratePredicate const& predicate) {
    if (t_reenumerating) {
        Common::DebugLogger::LogCommand("Reenumeration of %s refused: one is under way in this thread",
                                        toString().c_str());
        ResultList refused;
        refused.push_back(walkResult(*this, ReturnNames::ATTR_VALUE_STATUS_FAILURE));
        refused.push_back(walkResult(*this, ReturnNames::ATTR_VALUE_STATUS_SUCCESS));
        return refused;
    }
    Common::Synchronization::ScopedMutexLock<Common::Synchronization::ProcessMutex> reenumLock(
        *reenumMutex());
    ReenumerationMark const mark;
    Lock lock(mutex());
    OnBeforeReenumerate();
    return DoReenumerate(predicate);
}

Device::ResultList Device::DoReenumerate(ReenumeratePredicate const& predicate) {
    Lock lock(mutex());
    Common::DebugLogger::Log(traceLevel, "Reenumerate Start");
    Common::Synchronization::Timer timer;
    ResultList results;

    if (Common::shared_ptr<Device> const self = getDevicePtr()) {
        Common::shared_ptr<OperationContext> const context(
            new OperationContext(OperationContext::eTopDownReenumerate));
        context->addContextItem(OperationContext::ATTR_NAME_REENUMERATE_SOURCE_DEVICE_ID,
                                getValueFor(Interface::TOLKMod::Device::ATTR_NAME_UNIQUE_ID));
        DeleteAssociationsFor(self, predicate, results);
        Common::DebugLogger::Log(traceLevel, "Top-Down Reenumerate");
        ReenumerateChildrenFor(self, predicate, context, results);
        Common::DebugLogger::Log(traceLevel, "CreateAssociations");
        CreateAssociationsFor(self, predicate, results);
        Common::DebugLogger::Log(traceLevel, "Bottom-Up Reenumerate");
        context->SetReenumerateContext(OperationContext::eBottomUpReenumerate);
        BottomUpReenumerateFor(self, predicate, context, results);
        Common::DebugLogger::Log(traceLevel, "RegisterWriteOperations");
        RegisterWriteOperationsFor(self, predicate, results);
    } else {
        Common::DebugLogger::LogCommand(
            "Walk of %s refused: it has no parent and is no root, expected either", toString().c_str());
        results.push_back(walkResult(*this, ReturnNames::ATTR_VALUE_STATUS_FAILURE));
    }

    if (Interface::TOLKMod::debugXMLFileEnabled()) writeDebugXML();

    // The walk itself succeeded, whatever its operations reported.
    OperationReturn last = walkResult(*this, ReturnNames::ATTR_VALUE_STATUS_SUCCESS);
    if (Interface::TOLKMod::profilingEnabled()) {
        char seconds[64];
        std::snprintf(seconds, sizeof seconds, "%f", timer.elapsedSeconds());
        last.Publish(last, Attribute(ReturnNames::ATTR_NAME_PERFORM_TIME, seconds));
    }
    results.push_back(last);
    Common::DebugLogger::Log(traceLevel, "Reenumerate Complete");
    return results;
}

void Device::DeleteAssociationsFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                   ResultList& results) {
    if (!device) return;
    Lock lock(device->mutex());
    device->DeleteAssociations(results);
    if (!predicate.canReenumerateChildrenFor(device, false)) return;
    for (ChildIterator child = device->beginChild(); child != device->endChild(); ++child) {
        DeleteAssociationsFor(*child, predicate, results);
    }
}

void Device::ReenumerateChildrenFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                    Common::shared_ptr<OperationContext> context, ResultList& results) {
    if (!device) return;
    Lock lock(device->mutex());
    Common::DebugLogger::Log(traceLevel, "Processing device: %s", device->toString().c_str());
    device->m_operations.clear();
    device->ClearUnavailableOperationReasons();

    if (predicate.canRemoveStaleChildrenFor(device)) device->markChildrenStale();
    device->runTopDownOperations(device, predicate, context, results);
    device->removeStaleChildren();

    if (!predicate.canReenumerateChildrenFor(device, true)) return;
    for (ChildIterator child = device->beginChild(); child != device->endChild(); ++child) {
        ReenumerateChildrenFor(*child, predicate, context, results);
    }
}

void Device::markChildrenStale() {
    for (ChildIterator child = beginChild(); child != endChild(); ++child) {
        if ((*child)->isDeletable()) (*child)->m_isStale = true;
    }
}

void Device::removeStaleChildren() {
    ChildIterator child = beginChild();
    while (child != endChild()) {
        // Not from the iterator that clear() returns: for a child that entered another tree it is endChild().
        ChildIterator const current = child++;
        if (!(*current)->isValid()) clear(*current);
    }
}

void Device::runTopDownOperations(Common::shared_ptr<Device> const& self,
                                  ReenumeratePredicate const& predicate,
                                  Common::shared_ptr<OperationContext> const& context, ResultList& results) {
    for (Common::shared_ptr<DeviceOperation> const& operation : RegisteredOperations(*this)) {
        DeviceOperation::EnType const type = operation->eType();
        if (type != DeviceOperation::eRead && type != DeviceOperation::eDiscovery) continue;
        if (!passesFilter(self, *operation)) continue;

        constexpr unsigned topDown = DeviceOperation::eTopDown | DeviceOperation::eTopDownSecond;
        if ((operation->typeModifier() & topDown) != 0) {
            bool const allowed = type == DeviceOperation::eRead
                                     ? predicate.canPerformReadFor(self, operation->name())
                                     : predicate.canPerformDiscoverFor(self, operation->name());
            if (allowed) {
                results.push_back(performIn(context, operation));
            }
        }
        operation->SetOperationContext(DefaultOperationContext());
        m_operations.push_back(operation);
    }
}

OperationReturn Device::performIn(Common::shared_ptr<OperationContext> const& context,
                                  Common::shared_ptr<DeviceOperation> const& operation) {
    operation->SetOperationContext(context);
    struct Default {
        DeviceOperation& operation;
        ~Default() { operation.SetOperationContext(DefaultOperationContext()); }
    } const afterwards{*operation};
    return perform(operation);
}

void Device::CreateAssociationsFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                   ResultList& results) {
    if (!device) return;
    Lock lock(device->mutex());
    device->CreateAssociations(results, predicate);
    if (!predicate.canReenumerateChildrenFor(device, true)) return;
    for (ChildIterator child = device->beginChild(); child != device->endChild(); ++child) {
        CreateAssociationsFor(*child, predicate, results);
    }
}

void Device::CreateAssociations(ResultList& results, ReenumeratePredicate const& predicate) {
    Lock lock(mutex());
    Common::shared_ptr<Device> const self = getDevicePtr();
    for (Common::shared_ptr<DeviceOperation> const& operation : RegisteredOperations(*this)) {
        if (operation->eType() != DeviceOperation::eAssociation) continue;
        if ((operation->typeModifier() & DeviceOperation::eAssociate) == 0) continue;
        if (!predicate.canPerformAssociateFor(self, operation->name())) continue;
        if (passesFilter(self, *operation)) results.push_back(perform(operation));
    }
}

void Device::BottomUpReenumerateFor(Common::shared_ptr<Device> device, ReenumeratePredicate const& predicate,
                                    Common::shared_ptr<OperationContext> context, ResultList& results) {
    if (!device) return;
    Lock lock(device->mutex());
    if (predicate.canReenumerateChildrenFor(device, true)) {
        for (ChildIterator child = device->beginChild(); child != device->endChild(); ++child) {
            BottomUpReenumerateFor(*child, predicate, context, results);
        }
    }
    for (Common::shared_ptr<DeviceOperation> const& operation : RegisteredOperations(*device)) {
        if (operation->eType() != DeviceOperation::eRead) continue;
        // The top-down pass recorded a refusal already.
        if (!applyFilter(operation->pFilter(), device, operation->name())) continue;

        if ((operation->typeModifier() & DeviceOperation::eBottomUp) != 0 &&
            predicate.canPerformReadFor(device, operation->name())) {
            results.push_back(device->performIn(context, operation));
        }
        operation->SetOperationContext(DefaultOperationContext());
    }
}

void Device::RegisterWriteOperationsFor(Common::shared_ptr<Device> device,
                                        ReenumeratePredicate const& predicate, ResultList& results) {
    if (!device) return;
    Lock lock(device->mutex());
    device->m_writeOperationsPending = true;
    if (!predicate.deferWriteOperationRegistration()) device->RegisterWriteOperations(results, predicate);
    if (!predicate.canReenumerateChildrenFor(device, true)) return;
    for (ChildIterator child = device->beginChild(); child != device->endChild(); ++child) {
        RegisterWriteOperationsFor(*child, predicate, results);
    }
}

bool Device::ReenumeratePredicate::canPerformAssociateFor(Common::shared_ptr<Device>,
                                                          Common::string const&) const {
    return true;
}

bool Device::ReenumeratePredicate::canPerformDiscoverFor(Common::shared_ptr<Device>,
                                                         Common::string const&) const {
    return true;
}

bool Device::ReenumeratePredicate::canPerformReadFor(Common::shared_ptr<Device>,
                                                     Common::string const&) const {
    return true;
}

bool Device::ReenumeratePredicate::canReenumerateChildrenFor(Common::shared_ptr<Device>, bool) const {
    return true;
}

bool Device::ReenumeratePredicate::deferWriteOperationRegistration() const {
    return false;
}

bool Device::ReenumeratePredicate::canRegisterWriteOperationsFor(Common::shared_ptr<Device>,
                                                                 Common::string const&) const {
    return true;
}

bool Device::ReenumeratePredicate::canRemoveStaleChildrenFor(Common::shared_ptr<Device>) const {
    return true;
}

}  // namespace Core
