#include "core/device_association_operation.h"

#include "core/device_finder.h"
#include "tests/core/test_tree.h"

using namespace TestTree;
using Core::Device;

namespace {

// Links nodes whose ids end with the same character, under the name "LINK".
class LinkOperation : public Core::DeviceAssociationOperation {
  public:
    using Core::DeviceAssociationOperation::AddAssociationFor;

    LinkOperation() : DeviceAssociationOperation("LINK") {}

    struct SameEnd : AssociationPredicate {
        bool operator()(DevicePtr source, DevicePtr candidate) const override {
            std::string const a = str(source->toString()), b = str(candidate->toString());
            return a != b && a.back() == b.back();
        }
    };

    Core::OperationReturn visit(Device& device) override {
        TargetList targets;
        Common::shared_ptr<AssociationPredicate> const sameEnd(new SameEnd);
        targets.push_back({sameEnd, "TYPE_DRIVE"});
        targets.push_back(
            {m_withoutPredicate ? Common::shared_ptr<AssociationPredicate>() : sameEnd, "TYPE_SEP"});
        buildAssociations(device.getDevicePtr(), targets);
        return Core::OperationReturn();
    }

    bool m_withoutPredicate = false;

  protected:
    Common::string nameImpl() const override { return "OPERATION_LINK"; }
};

struct AssociationTest : Fixture {
    AssociationTest() : shared(new LinkOperation) {
        DevicePtr const box = add(root, "box", "TYPE_BOX");
        source = add(box, "s1", "TYPE_SOURCE");
        for (char const* id : {"d1", "d2"})
            add(box, id, "TYPE_DRIVE");
        DevicePtr const other = add(root, "other", "TYPE_BOX");
        add(other, "e1", "TYPE_DRIVE");
        add(other, "sep1", "TYPE_SEP");
        add(other, "x1", "TYPE_OTHER");
    }

    static Texts membersOf(DevicePtr const& device) {
        Texts ids;
        if (!device->hasAssociation("LINK")) return ids;
        auto const link = device->getAssociation("LINK");
        for (auto member = link->beginDevice(); member != link->endDevice(); ++member) {
            ids.push_back(str((*member)->toString()));
        }
        return ids;
    }
    DevicePtr find(char const* id) {
        Core::DeviceFinder finder(root);
        finder.AddAttribute(Core::Attribute("ATTR_NAME_UNIQUE_ID", id));
        return finder.find(Core::DeviceFinder::eDownward);
    }

    OperationPtr shared;
    DevicePtr source;
};

TEST_F(AssociationTest, LinksBothWaysAcrossTheTree) {
    source->perform(shared);
    EXPECT_EQ(membersOf(source), (Texts{"d1", "e1", "sep1"}));
    for (char const* id : {"d1", "e1", "sep1"})
        EXPECT_EQ(membersOf(find(id)), Texts{"s1"}) << id;
    for (char const* id : {"d2", "x1", "other"})
        EXPECT_EQ(membersOf(find(id)), Texts{}) << id;

    source->perform(shared);
    EXPECT_EQ(membersOf(source), (Texts{"d1", "e1", "sep1"})) << "no member twice";
    EXPECT_EQ(shared->eType(), 3);
    EXPECT_EQ(shared->typeModifier(), 7u);
}

TEST_F(AssociationTest, MissingPartsAreLoggedAndTheRestIsLinked) {
    LinkOperation& operation = dynamic_cast<LinkOperation&>(*shared);
    operation.m_withoutPredicate = true;
    LogCapture log(1);
    source->perform(shared);
    EXPECT_EQ(membersOf(source), (Texts{"d1", "e1"}));
    EXPECT_TRUE(log.contains("Association LINK with TYPE_SEP refused: no predicate"));

    operation.AddAssociationFor("LINK", source, DevicePtr());
    operation.AddAssociationFor("LINK", DevicePtr(), source);
    EXPECT_TRUE(log.contains("Association LINK refused: no target device"));
    EXPECT_TRUE(log.contains("Association LINK refused: no source device"));
    EXPECT_EQ(membersOf(source), (Texts{"d1", "e1"}));
}

TEST_F(AssociationTest, WithoutARootAboveNothingIsLinked) {
    DevicePtr const parent(new Node("p"));
    DevicePtr const child = add(parent, "c1");
    LogCapture log(1);
    child->perform(shared);
    EXPECT_EQ(membersOf(child), Texts{});
    EXPECT_TRUE(log.contains("Association LINK with TYPE_DRIVE refused: no root above c1"));
}

}  // namespace
