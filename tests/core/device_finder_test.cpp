#include "core/device_finder.h"

#include "core/device_association.h"
#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::Attribute;
using Core::DeletedDeviceFinder;
using Core::DeviceFinder;
using Core::DeviceList;

namespace {

// MR:0 - a - { a.1 - a.1.x, a.2 }
//      - b - { b.1 }
struct FinderTest : Fixture {
    FinderTest() {
        a = add(root, "a", "TYPE_A");
        b = add(root, "b", "TYPE_A");
        a1 = add(a, "a.1", "TYPE_B");
        add(a, "a.2", "TYPE_B");
        x = add(a1, "a.1.x", "TYPE_A");
        add(b, "b.1", "TYPE_B");
    }

    static Texts all(DeviceFinder const& finder, DeviceFinder::EnDirection direction) {
        DeviceList found;
        finder.find(found, direction);
        Texts ids;
        for (DevicePtr const& device : found)
            ids.push_back(str(device->toString()));
        return ids;
    }
    static std::string one(DevicePtr const& device) { return device ? str(device->toString()) : "null"; }

    DevicePtr a, b, a1, x;
};

TEST_F(FinderTest, WalksInPreorderFromTheStartingDevice) {
    EXPECT_EQ(all(DeviceFinder(root), DeviceFinder::eDownward),
              (Texts{"MR:0", "a", "a.1", "a.1.x", "a.2", "b", "b.1"}));
    EXPECT_EQ(all(DeviceFinder(x), DeviceFinder::eUpward), (Texts{"a.1.x", "a.1", "a", "MR:0"}));
    EXPECT_EQ(all(DeviceFinder(a), DeviceFinder::eSelf), Texts{"a"});

    DeviceFinder typed(root);
    typed.AddAttribute(Attribute("ATTR_NAME_TYPE", "TYPE_B"));
    EXPECT_EQ(all(typed, DeviceFinder::eDownward), (Texts{"a.1", "a.2", "b.1"}));
    EXPECT_EQ(one(typed.find(DeviceFinder::eDownward)), "a.1");
    EXPECT_EQ(one(typed.find(b, DeviceFinder::eDownward)), "b.1");
    EXPECT_EQ(one(typed.find(x, DeviceFinder::eUpward)), "a.1");
    EXPECT_EQ(one(typed.find(x, DeviceFinder::eSelf)), "null");
    EXPECT_EQ(one(typed.find(a1, DeviceFinder::eUpward)), "a.1") << "a match is the start itself";

    DeviceList appended;
    appended.push_back(root);
    typed.find(appended, DeviceFinder::eDownward);
    EXPECT_EQ(appended.size(), 4u);
}

TEST_F(FinderTest, LastValueForANameHolds) {
    DeviceFinder finder(root);
    finder.AddAttribute(Attribute("ATTR_NAME_TYPE", "TYPE_B"));
    finder.AddAttribute(Attribute("ATTR_NAME_TYPE", "TYPE_A"));
    EXPECT_EQ(all(finder, DeviceFinder::eDownward), (Texts{"a", "a.1.x", "b"}));
    finder.AddAttribute(Attribute("ATTR_NAME_UNIQUE_ID", "B"));
    EXPECT_EQ(all(finder, DeviceFinder::eDownward), Texts{}) << "case counts";
    finder.AddAttribute(Attribute("ATTR_NAME_UNIQUE_ID", "b"));
    EXPECT_EQ(all(finder, DeviceFinder::eDownward), Texts{"b"}) << "all criteria must hold";
}

TEST_F(FinderTest, StaleDevicesHideWhatIsBehindThem) {
    root->clear(b);  // takes b apart
    DevicePtr const stale = a1;
    // A discovery that stopped reporting a.1, seen from within: still listed, already marked.
    struct KeepPass : Core::Device::ReenumeratePredicate {
        bool canReenumerateChildrenFor(DevicePtr, bool) const override { return false; }
    };
    Texts hidden, deleted;
    DevicePtr firstMatch;
    ScriptedOperation& look = activate<Node>("OPERATION_LOOK", Core::DeviceOperation::eRead);
    look.m_body = [&](Core::Device&) {
        hidden = all(DeviceFinder(root), DeviceFinder::eDownward);
        deleted = all(DeletedDeviceFinder(root), DeviceFinder::eDownward);
        firstMatch = DeviceFinder(x).find(DeviceFinder::eUpward);
        EXPECT_EQ(one(DeviceFinder(stale).find(DeviceFinder::eDownward)), "null");
        EXPECT_EQ(one(DeletedDeviceFinder(stale).find(DeviceFinder::eDownward)), "null");
        return Core::OperationReturn();
    };
    a->Reenumerate(KeepPass());
    EXPECT_EQ(hidden, (Texts{"MR:0", "a"}));
    EXPECT_EQ(deleted, (Texts{"MR:0", "a", "a.1", "a.1.x", "a.2"}));
    EXPECT_EQ(one(firstMatch), "a.1.x");
}

TEST_F(FinderTest, OperationsAssociationsAndFiltersAreCriteria) {
    Common::shared_ptr<Core::DeviceAssociation> const link(new Core::DeviceAssociation("LINK"));
    link->receive(b);
    a->receive(link);
    DeviceFinder linked(root);
    linked.AddAssociation("LINK");
    EXPECT_EQ(all(linked, DeviceFinder::eDownward), Texts{"a"});

    DeviceFinder filtered(root);
    filtered.AddFilter(Common::shared_ptr<Core::Filter>(
        new ScriptedFilter([](DevicePtr device) { return device->hasParent() ? nullptr : "REASON"; })));
    EXPECT_EQ(all(filtered, DeviceFinder::eDownward).size(), 6u);
    filtered.AddFilter(Common::shared_ptr<Core::Filter>());
    EXPECT_EQ(all(filtered, DeviceFinder::eDownward), Texts{}) << "a filter that couldn't be made refuses";
    a->removeAssociation("LINK");
}

TEST_F(FinderTest, RefusedOperationHidesADeviceThatMatchesOtherwise) {
    ScriptedOperation& write = activate<Node>("OPERATION_WRITE", Core::DeviceOperation::eWrite);
    write.m_refusal = [](DevicePtr device) { return str(device->toString()) == "a" ? "REASON" : nullptr; };
    a->RefreshOperations();
    b->RefreshOperations();
    DeviceFinder finder(root);
    finder.AddAttribute(Attribute("ATTR_NAME_TYPE", "TYPE_A"));
    finder.AddOperation("OPERATION_WRITE");
    EXPECT_EQ(all(finder, DeviceFinder::eDownward), Texts{"b"});
}

// Attributes, operations, filters, associations: a group that fails spares the device the dearer ones.
TEST_F(FinderTest, CriteriaAreTestedInOrderUntilAGroupFails) {
    struct {
        char const* type;
        char const* operationReason;
        char const* filterReason;
        Texts asked;
    } const cases[] = {
        {"TYPE_B", nullptr, nullptr, {}},
        {"TYPE_A", "REASON", nullptr, {"operation"}},
        {"TYPE_A", nullptr, "REASON", {"operation", "filter"}},
        {"TYPE_A", nullptr, nullptr, {"operation", "filter"}},
    };
    for (auto const& c : cases) {
        Texts asked;
        Node::sm_operations.clear();
        activate<Node>("W", Core::DeviceOperation::eWrite).m_refusal = [&](DevicePtr) {
            asked.push_back("operation");
            return c.operationReason;
        };
        b->Reenumerate(DeferPredicate());
        DeviceFinder finder(b);
        finder.AddAssociation("ABSENT");
        finder.AddFilter(Common::shared_ptr<Core::Filter>(new ScriptedFilter([&](DevicePtr) {
            asked.push_back("filter");
            return c.filterReason;
        })));
        finder.AddOperation("W");
        finder.AddAttribute(Attribute("ATTR_NAME_TYPE", c.type));
        EXPECT_FALSE(finder.find(DeviceFinder::eSelf));
        EXPECT_EQ(asked, c.asked);
    }
}

TEST(DeviceFinder, NullStartFindsNothing) {
    LogCapture log(1);
    DeviceFinder const finder((DevicePtr()));
    DeviceList out;
    EXPECT_FALSE(finder.find(DeviceFinder::eDownward));
    finder.find(out, DeviceFinder::eUpward);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(log.lines(), (Texts{"Device search refused: no device to start from",
                                  "Device search refused: no device to start from"}));
}

TEST(FilterReturn, OneAssignmentRefuses) {
    Core::FilterReturn verdict;
    EXPECT_TRUE(verdict);
    verdict = "";
    EXPECT_FALSE(verdict) << "a refusal without a reason is one too";
    verdict = "ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN";
    EXPECT_FALSE(verdict);
    EXPECT_TRUE(
        verdict.hasAttributeAndIs("ATTR_NAME_UNAVAILABLE_REASON", "ATTR_VALUE_UNAVAILABLE_REASON_UNKNOWN"));
    Core::FilterReturn copy;
    copy = verdict;
    EXPECT_FALSE(copy);
    EXPECT_TRUE(copy.hasAttribute("ATTR_NAME_UNAVAILABLE_REASON"));
}

}  // namespace
