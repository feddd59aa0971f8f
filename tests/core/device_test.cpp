#include "core/device.h"

#include "core/device_event.h"
#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::Attribute;
using Core::Device;
using Core::DeviceAssociation;

namespace {

struct DeviceTest : Fixture {
    static Device::Mutex const* mutexOf(DevicePtr const& device) { return &device->mutex(); }

    static Common::shared_ptr<DeviceAssociation> association(char const* name, DevicePtr const& member) {
        Common::shared_ptr<DeviceAssociation> const result(new DeviceAssociation(name));
        if (member) result->receive(member);
        return result;
    }
};

TEST_F(DeviceTest, NewChildEntersTheTree) {
    DevicePtr const child(new Node("c"));
    EXPECT_FALSE(child->hasParent());
    EXPECT_FALSE(child->getDevicePtr());
    EXPECT_NE(mutexOf(child), mutexOf(root));

    EXPECT_TRUE(root->receive(child));
    EXPECT_EQ(mutexOf(child), mutexOf(root));
    EXPECT_EQ(child->pParent().get(), root.get());
    EXPECT_EQ(child->getDevicePtr().get(), child.get());
    EXPECT_TRUE(child->hasAttributeAndIs("ATTR_NAME_UNIQUE_ID", "c"));
    EXPECT_TRUE(root->hasChild(DevicePtr(new Node("c")))) << "by identity, not by pointer";
    EXPECT_FALSE(root->hasChild(DevicePtr(new Node("d"))));
}

TEST_F(DeviceTest, EqualChildIsMergedIntoTheOldOne) {
    DevicePtr const old = add(root, "c");
    old->Receive(Attribute("KEPT", "old"));
    old->Receive(Attribute("BOTH", "old"));
    add(old, "grandchild");
    DevicePtr const found(new Node("c"));
    found->Receive(Attribute("BOTH", "new"));
    found->Receive(Attribute("ATTR_NAME_UNIQUE_ID", "not its own"));

    EXPECT_FALSE(root->receive(found));
    EXPECT_EQ(childrenOf(root), Texts{"c"});
    EXPECT_EQ(root->beginChild()->get(), old.get());
    EXPECT_EQ(childrenOf(old), Texts{"grandchild"});
    EXPECT_TRUE(old->hasAttributeAndIs("KEPT", "old"));
    EXPECT_TRUE(old->hasAttributeAndIs("BOTH", "new"));
    EXPECT_TRUE(old->hasAttributeAndIs("ATTR_NAME_UNIQUE_ID", "c"));
    EXPECT_EQ(dynamic_cast<Node&>(*old).m_updates, Texts{"c over old"}) << "before the merge";
    EXPECT_FALSE(found->hasParent());
}

TEST_F(DeviceTest, RefusesWhatCannotBeAChild) {
    DevicePtr const child = add(root, "c");
    LogCapture log(1);
    EXPECT_FALSE(root->receive(DevicePtr()));
    EXPECT_FALSE(child->receive(child));
    EXPECT_FALSE(child->receive(root)) << "a cycle would never end a walk";
    EXPECT_EQ(log.lines(),
              (Texts{"MR:0 refused a child: null, expected a new device",
                     "c refused a child: the device itself or one above it, expected a new device",
                     "c refused a child: the device itself or one above it, expected a new device"}));
}

TEST_F(DeviceTest, ALeafStoresNothing) {
    DevicePtr const leaf(new Leaf("leaf"));
    EXPECT_TRUE(root->receive(leaf));
    DevicePtr const child(new Node("c"));
    EXPECT_FALSE(leaf->receive(child));
    EXPECT_FALSE(child->hasParent());
    EXPECT_TRUE(leaf->beginChild() == leaf->endChild());
    EXPECT_EQ(str(child->getValueFor("ATTR_NAME_UNIQUE_ID")), "c");
}

TEST_F(DeviceTest, SubtreeBuiltOutsideRunsOnTheTreesMutex) {
    DevicePtr const parent(new Node("p"));
    DevicePtr const child = add(parent, "c");
    EXPECT_TRUE(root->receive(parent));
    EXPECT_EQ(mutexOf(child), mutexOf(root));
}

TEST_F(DeviceTest, ClearTakesTheSubtreeApart) {
    DevicePtr const first = add(root, "1");
    DevicePtr const second = add(root, "2");
    DevicePtr const child = add(first, "1.1");
    DevicePtr const grandchild = add(child, "1.1.1");

    Device::ChildIterator const next = root->clear(first);
    EXPECT_EQ(next->get(), second.get());
    EXPECT_EQ(childrenOf(root), Texts{"2"});
    EXPECT_FALSE(first->hasParent());
    EXPECT_FALSE(child->hasParent());
    EXPECT_EQ(childrenOf(first), Texts{});
    EXPECT_FALSE(child->isValid());
    EXPECT_FALSE(grandchild->isValid());
    EXPECT_TRUE(first->isValid()) << "the removed device keeps its own mark";
    EXPECT_TRUE(root->receive(child));
    EXPECT_TRUE(child->isValid()) << "offered again";
}

TEST_F(DeviceTest, ClearOfAStrangerChangesNothing) {
    DevicePtr const first = add(root, "1");
    DevicePtr const child = add(first, "1.1");
    LogCapture log(1);
    EXPECT_TRUE(root->clear(child) == root->endChild());
    EXPECT_TRUE(root->clear(DevicePtr()) == root->endChild());
    EXPECT_EQ(childrenOf(first), Texts{"1.1"});
    EXPECT_EQ(log.lines(), (Texts{"MR:0 refused to remove 1.1: expected one of its children",
                                  "MR:0 refused to remove null: expected one of its children"}));
}

// The parent pointer is raw: it once dangled in a child that was still held.
TEST_F(DeviceTest, ChildrenThatOutliveTheirParentHaveNone) {
    DevicePtr parent(new Node("p"));
    DevicePtr const child = add(parent, "c");
    parent = DevicePtr();
    EXPECT_FALSE(child->hasParent());
    EXPECT_FALSE(child->pParent());
}

TEST_F(DeviceTest, AcceptVisitsChildrenFirst) {
    DevicePtr const first = add(root, "1");
    add(first, "1.1");
    add(first, "1.2");
    add(root, "2");
    struct Names : Core::VisitorDevice {
        Core::OperationReturn visit(Device& device) override {
            seen.push_back(str(device.toString()));
            return Core::OperationReturn("ATTR_VALUE_STATUS_FAILURE");
        }
        Texts seen;
    } visitor;
    root->Accept(visitor);
    EXPECT_EQ(visitor.seen, (Texts{"1.1", "1.2", "1", "2", "MR:0"}));
}

// Its copy constructor brings the children along.
struct Keeper : KindOf<Core::DeviceComposite, Keeper> {
    explicit Keeper(char const* id) : KindOf("TYPE_KEEPER", id) {}
    Keeper(Keeper const& other) : KindOf(other) {
        for (auto child = other.beginChild(); child != other.endChild(); ++child)
            addChildImpl(*child);
    }
};

TEST_F(DeviceTest, CloneIsDeepAndBare) {
    activate<Keeper>("W", Core::DeviceOperation::eWrite);
    activate<Keeper>("NO", Core::DeviceOperation::eWrite).m_refusal = [](DevicePtr) { return "REASON"; };
    DevicePtr const source(new Keeper("s"));
    root->receive(source);
    DevicePtr const below = add(add(source, "s.1"), "s.1.1");
    source->Receive(Attribute("A", "source"));
    source->RefreshOperations();
    DevicePtr clone;
    // In the midst of a walk the source is stale.
    activate<Root>("D", Core::DeviceOperation::eDiscovery).m_body = [&](Device&) {
        source->receive(association("LINK", below));
        clone = source->clone();
        EXPECT_TRUE(!source->isValid() && source->hasOperation("W") &&
                    source->hasUnavailableOperationReason("NO"));
        return Core::OperationReturn();
    };
    reenumerate();
    Keeper::sm_operations.clear();

    EXPECT_FALSE(clone->hasParent());
    EXPECT_TRUE(clone->isValid());
    EXPECT_TRUE(clone->beginAssociation() == clone->endAssociation());
    EXPECT_TRUE(clone->beginOperation() == clone->endOperation());
    EXPECT_TRUE(clone->beginUnavailableOperationReason() == clone->endUnavailableOperationReason());
    EXPECT_TRUE(*clone == *source);
    ASSERT_EQ(childrenOf(clone), Texts{"s.1"});
    DevicePtr const clonedChild = *clone->beginChild();
    ASSERT_EQ(childrenOf(clonedChild), Texts{"s.1.1"});
    DevicePtr const clonedGrandchild = *clonedChild->beginChild();
    EXPECT_NE(clonedGrandchild.get(), below.get());
    EXPECT_EQ(clonedGrandchild->pParent().get(), clonedChild.get());

    clone->Receive(Attribute("A", "changed"));
    EXPECT_TRUE(source->hasAttributeAndIs("A", "source"));
    EXPECT_NE(mutexOf(clone), mutexOf(source));
    EXPECT_EQ(mutexOf(clonedChild), mutexOf(clone));
    EXPECT_EQ(mutexOf(clonedGrandchild), mutexOf(clone)) << "one new mutex for the whole clone";
}

TEST_F(DeviceTest, ClonedRootKnowsItself) {
    add(root, "1");
    DevicePtr const clone = root->clone();
    EXPECT_EQ(clone->getDevicePtr().get(), clone.get());
    EXPECT_EQ((*clone->beginChild())->pParent().get(), clone.get());
    Core::DeviceFactory::ReleaseRoot(clone);
}

TEST_F(DeviceTest, AssociationIsReplacedAsAWhole) {
    DevicePtr const a = add(root, "a");
    DevicePtr const b = add(root, "b");
    EXPECT_TRUE(root->receive(association("LINK", a)));
    EXPECT_TRUE(root->receive(association("LINK", b)));
    EXPECT_EQ(root->getAssociation("LINK")->size(), 1u);
    EXPECT_EQ(root->getAssociation("LINK")->beginDevice()->get(), b.get());

    EXPECT_FALSE(root->receive(association("LINK", DevicePtr()))) << "an empty one removes and isn't kept";
    EXPECT_FALSE(root->hasAssociation("LINK"));
    EXPECT_FALSE(root->getAssociation("LINK"));
    EXPECT_FALSE(root->receive(Common::shared_ptr<DeviceAssociation>()));

    root->receive(association("ONE", a));
    root->receive(association("TWO", b));
    root->removeAssociation("ONE");
    root->removeAssociation("ABSENT");
    EXPECT_EQ(str((*root->beginAssociation())->name()), "TWO");
}

TEST_F(DeviceTest, AssociationTakesAMemberTwice) {
    DeviceAssociation link("LINK");
    DevicePtr const a = add(root, "a");
    DevicePtr const b = add(root, "b");
    EXPECT_TRUE(link.receive(a));
    EXPECT_TRUE(link.receive(b));
    EXPECT_TRUE(link.receive(a));
    EXPECT_FALSE(link.receive(DevicePtr()));
    EXPECT_EQ(link.size(), 3u);
    EXPECT_EQ(link.clear(a)->get(), b.get()) << "the iterator behind the first of them";
    EXPECT_EQ(link.size(), 2u);
    EXPECT_TRUE(link.clear(root) == link.endDevice());
}

struct CountingSubscriber : Core::DeviceEventSubscriber {
    void OnDeviceEvent(DevicePtr device) override {
        seen.push_back(device ? str(device->toString()) : "null");
    }
    Texts seen;
};

TEST_F(DeviceTest, SubscribersHearOfAReenumerationOnce) {
    Common::shared_ptr<CountingSubscriber> const subscriber(new CountingSubscriber);
    EXPECT_FALSE(Device::AddDeviceEventSubscriber("ATTR_VALUE_DEVICE_EVENT_TYPE_OTHER", subscriber));
    char const* const type = "ATTR_VALUE_DEVICE_EVENT_TYPE_BEFORE_REENUMERATE";
    EXPECT_TRUE(Device::AddDeviceEventSubscriber(type, subscriber));
    EXPECT_TRUE(Device::AddDeviceEventSubscriber(type, subscriber));
    EXPECT_TRUE(Device::AddDeviceEventSubscriber(type, Common::shared_ptr<CountingSubscriber>()));
    Texts heardBefore;
    activate<Root>("R", Core::DeviceOperation::eRead).m_body = [&](Device&) {
        heardBefore = subscriber->seen;
        return Core::OperationReturn();
    };
    reenumerate();
    EXPECT_EQ(subscriber->seen, Texts{"MR:0"});
    EXPECT_EQ(heardBefore, Texts{"MR:0"});
}

TEST(DeviceFactory, RootIsMadeOnceAndRefreshed) {
    Core::DeviceFactory const factory;
    {
        LogCapture log(1);
        EXPECT_FALSE(factory.pRoot());
        EXPECT_EQ(log.lines(), Texts{"Root device refused: no creator was set"});
    }
    ScriptedOperation* const read = new ScriptedOperation("OPERATION_READ", Core::DeviceOperation::eRead);
    ScriptedOperation* const discover =
        new ScriptedOperation("OPERATION_DISC", Core::DeviceOperation::eDiscovery);
    Root::sm_operations.push_back(OperationPtr(read));
    Root::sm_operations.push_back(OperationPtr(discover));
    bool rootWasThere = false;
    read->m_body = [&](Device& device) {
        rootWasThere = factory.pRoot().get() == &device;
        return Core::OperationReturn();
    };

    Core::DeviceFactory::SetRootCreator(&Root::create);
    DevicePtr const first = factory.pRoot();
    ASSERT_TRUE(first);
    EXPECT_EQ(factory.pRoot().get(), first.get());
    EXPECT_EQ(read->m_ranOn, Texts{"MR:0"});
    EXPECT_EQ(discover->m_ranOn, Texts{}) << "nothing is discovered";
    EXPECT_TRUE(rootWasThere) << "an operation of the first refresh gets the root";

    Core::DeviceFactory::ForgetRoot();
    EXPECT_NE(factory.pRoot().get(), first.get());
    Core::DeviceFactory::SetRootCreator([] { return DevicePtr(); });
    Core::DeviceFactory::ForgetRoot();
    EXPECT_FALSE(factory.pRoot());
    Core::DeviceFactory::SetRootCreator(nullptr);
    Root::sm_operations.clear();
}

}  // namespace
