#include "core/device.h"

#include <cstdio>

#include "common/debug_logger.h"
#include "common/timer.h"
#include "core/tolkmod.h"

namespace Core {

namespace {

namespace ReturnNames = Interface::TOLKMod::OperationReturn;

// Texts share their bytes under a plain count. What a caller takes away from under the lock must not share
// with what stays in the tree.
Common::string unshared(Common::string const& text) {
    return Common::string(text.c_str(), text.size());
}

// Arguments are shared by all users of an operation, so they go even when a visit throws.
struct ClearArguments {
    DeviceOperation& operation;
    ~ClearArguments() { operation.ClearArgumentList(); }
};

void logResult(OperationReturn const& result) {
    for (auto attribute = result.beginAttribute(); attribute != result.endAttribute(); ++attribute) {
        Common::string const line = attribute->first + " = " + attribute->second.text();
        Common::DebugLogger::LogMessage(1, line.c_str(), true, true);
    }
    Common::DebugLogger::LogCommand("%s", "");
}

}  // namespace

Device::Device()
    : m_deviceMutex(new Mutex),
      m_sharesParentMutex(true),
      m_parent(nullptr),
      m_writeOperationsPending(false),
      m_isStale(false),
      m_registeringWriteOperations(false) {}

Device::Device(Device const& other)
    : AttributePublisher(other),
      AttributeSource(other),
      DeviceSubscriber(),
      DeviceAssociationSubscriber(),
      OperationSource(),
      m_deviceMutex(new Mutex),
      m_sharesParentMutex(other.m_sharesParentMutex),
      m_parent(nullptr),
      m_writeOperationsPending(false),
      m_isStale(false),
      m_registeringWriteOperations(false) {}

Device::~Device() {
    m_associations.clear();
    m_unavailableReasons.clear();
}

bool Device::isValid() const {
    Lock lock(mutex());
    return !m_isStale;
}

bool Device::hasParent() const {
    Lock lock(mutex());
    return m_parent != nullptr;
}

Common::shared_ptr<Device> Device::pParent() const {
    Lock lock(mutex());
    return m_parent != nullptr ? m_parent->getDevicePtr() : Common::shared_ptr<Device>();
}

Device::ChildIterator Device::beginChild() const {
    Lock lock(mutex());
    return ChildIterator();
}

Device::ChildIterator Device::endChild() const {
    Lock lock(mutex());
    return ChildIterator();
}

void Device::Accept(VisitorDevice& visitor) {
    Lock lock(mutex());
    for (ChildIterator child = beginChild(); child != endChild(); ++child)
        (*child)->Accept(visitor);
    visitor.visit(*this);
}

bool Device::hasChild(Common::shared_ptr<Device> child) const {
    Lock lock(mutex());
    return findDevice(beginChild(), endChild(), child) != endChild();
}

Common::string Device::toString() const {
    Lock lock(mutex());
    return unshared(toStringImpl());
}

bool Device::operator==(Device const&) const {
    return true;
}

Common::shared_ptr<Device> Device::getDevicePtr() const {
    Lock lock(mutex());
    if (m_parent == nullptr) return Common::shared_ptr<Device>();
    for (ChildIterator child = m_parent->beginChild(); child != m_parent->endChild(); ++child) {
        if (child->get() == this) return *child;
    }
    return Common::shared_ptr<Device>();
}

OperationReturn Device::perform(Common::shared_ptr<DeviceOperation> operation) {
    Lock lock(mutex());
    Common::Synchronization::Timer timer;

    if (!operation) {
        Common::DebugLogger::LogCommand("Operation refused on %s: null, expected an operation",
                                        toString().c_str());
        OperationReturn refused(ReturnNames::ATTR_VALUE_STATUS_NOT_SUPPORTED);
        refused.Publish(refused, Attribute(ReturnNames::ATTR_NAME_UNIQUE_ID, toString()));
        return refused;
    }

    OperationReturn result(ReturnNames::ATTR_VALUE_STATUS_DEVICE_DELETED);
    {
        ClearArguments const afterwards{*operation};
        if (!m_isStale) {
            Common::DebugLogger::LogCommand("%s %s", "Performing Operation: ", operation->name().c_str());
            result = operation->visit(*this);
        }
    }

    result.Publish(result, Attribute(ReturnNames::ATTR_NAME_UNIQUE_ID, toString()));
    result.Publish(result, Attribute(ReturnNames::ATTR_NAME_OPERATION_NAME, unshared(operation->name())));
    bool const profiling = Interface::TOLKMod::profilingEnabled();
    if (profiling) {
        char seconds[64];
        std::snprintf(seconds, sizeof seconds, "%f", timer.elapsedSeconds());
        result.Publish(result, Attribute(ReturnNames::ATTR_NAME_PERFORM_TIME, seconds));
    }
    if (!result || profiling) logResult(result);
    return result;
}

void Device::UpdateWith(Common::shared_ptr<Device>) {}

bool Device::receive(Common::shared_ptr<Device> child) {
    Lock lock(mutex());
    if (!child || isSelfOrAncestor(*child)) {
        Common::DebugLogger::LogCommand("%s refused a child: %s, expected a new device", toString().c_str(),
                                        child ? "the device itself or one above it" : "null");
        return false;
    }
    ChildIterator const found = findDevice(beginChild(), endChild(), child);
    if (found == endChild()) return attach(child);

    Device& existing = **found;
    Lock existingLock(existing.mutex());
    existing.m_isStale = false;
    existing.UpdateWith(child);
    existing.Receive(*child);
    existing.receiveUniqueId();
    return false;
}

bool Device::attach(Common::shared_ptr<Device> const& child) {
    if (child->m_sharesParentMutex) child->shareMutex(m_deviceMutex);
    child->m_isStale = false;
    bool const stored = addChildImpl(child);
    // A device that isn't listed here could never be told that this one is gone, so it gets no parent.
    if (stored) {
        child->m_parent = this;
    } else {
        Common::DebugLogger::LogCommand("%s stores no children: %s has no parent", toString().c_str(),
                                        child->toString().c_str());
    }
    child->receiveUniqueId();
    return stored;
}

void Device::receiveUniqueId() {
    Receive(Attribute(Interface::TOLKMod::Device::ATTR_NAME_UNIQUE_ID, toString()));
}

// The devices below may have been attached while this one had a mutex of its own; a tree runs on one.
void Device::shareMutex(Common::shared_ptr<Mutex> const& mutex) {
    m_deviceMutex = mutex;
    for (ChildIterator child = beginChild(); child != endChild(); ++child) {
        if ((*child)->m_sharesParentMutex) (*child)->shareMutex(mutex);
    }
}

bool Device::isSelfOrAncestor(Device const& device) const {
    Device const* ancestor = this;
    while (ancestor != nullptr && ancestor != &device)
        ancestor = ancestor->m_parent;
    return ancestor != nullptr;
}

Device::ChildIterator Device::clear(Common::shared_ptr<Device> child) {
    Lock lock(mutex());
    if (!child || child->m_parent != this) {
        Common::DebugLogger::LogCommand("%s refused to remove %s: expected one of its children",
                                        toString().c_str(), child ? child->toString().c_str() : "null");
        return endChild();
    }
    Lock childLock(child->mutex());
    ClearChildrenFor(child);
    child->m_parent = nullptr;
    return removeChildImpl(child);
}

void Device::discard(Common::shared_ptr<Device> const& child) {
    Lock lock(mutex());
    if (child && child->m_parent == this) child->m_isStale = true;
    clear(child);
}

void Device::ClearChildrenFor(Common::shared_ptr<Device> child) {
    ChildIterator grandchild = child->beginChild();
    while (grandchild != child->endChild()) {
        ChildIterator const current = grandchild++;
        (*current)->m_isStale = true;
        child->clear(*current);
    }
}

Device::ChildIterator Device::findDevice(ChildIterator begin, ChildIterator end,
                                         Common::shared_ptr<Device> child) {
    if (!child) return end;
    while (begin != end && !(**begin == *child))
        ++begin;
    return begin;
}

Common::shared_ptr<Device> Device::clone() const {
    Lock lock(mutex());
    Common::shared_ptr<Device> const copy = cloneImpl();
    if (!copy) return copy;

    copy->setDevicePtr(copy);
    copy->m_parent = nullptr;
    copy->m_associations.clear();
    // A kind's own copy constructor may have brought the source's children along.
    ChildIterator leftOver = copy->beginChild();
    while (leftOver != copy->endChild())
        leftOver = copy->removeChildImpl(*leftOver);

    for (ChildIterator child = beginChild(); child != endChild(); ++child) {
        Common::shared_ptr<Device> const childCopy = (*child)->clone();
        if (!childCopy) continue;
        if (childCopy->m_sharesParentMutex) childCopy->shareMutex(copy->m_deviceMutex);
        if (copy->addChildImpl(childCopy)) childCopy->m_parent = copy.get();
    }
    return copy;
}

bool Device::isDeletable() const {
    return true;
}

bool Device::addChildImpl(Common::shared_ptr<Device>) {
    return false;
}

Device::ChildIterator Device::removeChildImpl(Common::shared_ptr<Device>) {
    return ChildIterator();
}

void Device::setDevicePtr(Common::shared_ptr<Device> const&) {}

bool Device::AddDeviceEventSubscriber(Common::string const& type,
                                      Common::shared_ptr<DeviceEventSubscriber> subscriber) {
    if (type != Interface::TOLKMod::Event::ATTR_VALUE_DEVICE_EVENT_TYPE_BEFORE_REENUMERATE) return false;
    OnBeforeReenumerateEventPublisher()->Attach(subscriber);
    return true;
}

void Device::OnBeforeReenumerate() {
    OnBeforeReenumerateEventPublisher()->Notify(getDevicePtr());
}

Common::shared_ptr<OperationContext> const& Device::DefaultOperationContext() {
    static Common::shared_ptr<OperationContext> const context(new OperationContext);
    return context;
}

Common::shared_ptr<DeviceEventPublisher> const& Device::OnBeforeReenumerateEventPublisher() {
    static Common::shared_ptr<DeviceEventPublisher> const publisher(new DeviceEventPublisher);
    return publisher;
}

Common::shared_ptr<Common::Synchronization::ProcessMutex> const& Device::reenumMutex() {
    static Common::shared_ptr<Common::Synchronization::ProcessMutex> const mutex(
        new Common::Synchronization::ProcessMutex);
    return mutex;
}

}  // namespace Core
