#include "core/capability.h"

#include "core/capability_finder.h"
#include "tests/core/test_tree.h"

using Core::Attribute;
using Core::Capability;
using Core::CapabilityClass;
using Core::CapabilityFinder;
using Core::CapabilityInstance;

namespace {

typedef Common::shared_ptr<Capability> CapabilityPtr;

using TestTree::str;

CapabilityPtr makeClass(char const* name) {
    return CapabilityPtr(new CapabilityClass(name, "T", "C", "A", "R"));
}

CapabilityPtr makeInstance(char const* value, bool isDefault = false, bool isCurrent = false) {
    return CapabilityPtr(new CapabilityInstance(value, isDefault, isCurrent));
}

// root - MODE - { fast - LEVEL - { 1, 2 }, slow }
//      - SIZE - { 1 }
struct CapabilityTree : testing::Test {
    CapabilityTree()
        : root(new Capability), mode(makeClass("MODE")), size(makeClass("SIZE")), level(makeClass("LEVEL")) {
        root->Subscribe(mode);
        root->Subscribe(size);
        CapabilityPtr const fast = makeInstance("fast", true);
        mode->Subscribe(fast);
        mode->Subscribe(makeInstance("slow", false, true));
        fast->Subscribe(level);
        level->Subscribe(makeInstance("1"));
        level->Subscribe(makeInstance("2"));
        size->Subscribe(makeInstance("1"));
    }
    CapabilityPtr root, mode, size, level;
};

TEST(Capability, InstanceTakesOnTheAttributeOfItsClass) {
    CapabilityPtr const argument = makeClass("NAME");
    CapabilityPtr const instance(new CapabilityInstance(5u, false, false));
    argument->Subscribe(instance);
    EXPECT_FALSE(instance->hasAttribute("ATTR_NAME_CAPABILITY_INSTANCE"));
    EXPECT_EQ(static_cast<unsigned>(instance->getPublicValueFor("NAME")), 5u) << "the type is kept";

    // Once adopted it lost its value to the next class that it joined.
    TestTree::LogCapture log(1);
    argument->Subscribe(instance);
    makeClass("OTHER")->Subscribe(instance);
    EXPECT_EQ(static_cast<unsigned>(instance->getPublicValueFor("NAME")), 5u);
    EXPECT_FALSE(instance->hasAttribute("OTHER"));
    EXPECT_EQ(log.lines(), TestTree::Texts{"Value of OTHER refused to an instance: it has no "
                                           "ATTR_NAME_CAPABILITY_INSTANCE, a class took it over before"});

    CapabilityPtr const root(new Capability);
    root->Subscribe(argument);
    EXPECT_FALSE(argument->hasAttribute("NAME"));
    CapabilityPtr const stray = makeInstance("v");
    root->Subscribe(stray);
    EXPECT_TRUE(stray->hasAttribute("ATTR_NAME_CAPABILITY_INSTANCE"))
        << "only a class hands its attribute on";
}

TEST(Capability, UnsubscribeRemovesTheFirstSamePointerOnly) {
    CapabilityPtr const argument = makeClass("NAME");
    CapabilityPtr const twice = makeInstance("v");
    CapabilityPtr const equal = makeInstance("v");
    argument->Subscribe(twice);
    argument->Subscribe(equal);
    argument->Subscribe(twice);
    argument->Subscribe(CapabilityPtr());
    argument->Unsubscribe(makeInstance("v"));
    argument->Unsubscribe(twice);
    auto child = argument->beginChild();
    EXPECT_EQ(child->get(), equal.get());
    ++child;
    EXPECT_EQ(child->get(), twice.get());
    ++child;
    EXPECT_TRUE(child == argument->endChild());
}

TEST_F(CapabilityTree, CopySharesChildrenAndCloneDoesNot) {
    Capability const copy(*root);
    EXPECT_EQ(copy.beginChild()->get(), mode.get());

    CapabilityPtr const clone = root->clone();
    CapabilityPtr const clonedMode = *clone->beginChild();
    EXPECT_NE(clonedMode.get(), mode.get());
    EXPECT_EQ(str(clonedMode->type()), "ATTR_NAME_CAPABILITY_CLASS");
    EXPECT_EQ(dynamic_cast<CapabilityClass*>(clonedMode.get()), nullptr) << "clones are plain capabilities";
    CapabilityPtr const clonedFast = *clonedMode->beginChild();
    clonedFast->Receive(Attribute("MODE", "changed"));
    EXPECT_TRUE((*mode->beginChild())->hasAttributeAndIs("MODE", "fast"));
    EXPECT_TRUE((*clonedFast->beginChild())->hasAttributeAndIs("ATTR_NAME_ATTRIBUTE_NAME", "LEVEL"));
}

TEST_F(CapabilityTree, FindLooksAtDirectChildrenOnly) {
    CapabilityFinder finder(mode);
    EXPECT_TRUE(finder.find()->hasAttributeAndIs("MODE", "fast")) << "without criteria the first";
    finder.Add(Attribute("MODE", "slow"));
    finder.Add(Attribute("ATTR_NAME_CURRENT_VALUE", "ATTR_VALUE_CURRENT_VALUE_TRUE"));
    EXPECT_TRUE(finder.find()->hasAttributeAndIs("MODE", "slow"));
    finder.Add(Attribute("ATTR_NAME_CURRENT_VALUE", "ATTR_VALUE_CURRENT_VALUE_FALSE"));
    EXPECT_FALSE(finder.find()) << "the second value for a name replaced the first";

    CapabilityFinder deep(root);
    deep.Add(Attribute("MODE", "fast"));
    EXPECT_FALSE(deep.find());
    EXPECT_FALSE(CapabilityFinder(CapabilityPtr(new Capability)).find());
    EXPECT_FALSE(CapabilityFinder(CapabilityPtr()).find());
}

TEST_F(CapabilityTree, FindRecursiveGivesPathsInPreorder) {
    CapabilityFinder all(root);
    CapabilityFinder::PathList paths;
    CapabilityFinder::CapabilityList found;
    all.findRecursive(found, paths);
    std::vector<std::string> texts;
    for (Common::string const& path : paths)
        texts.push_back(str(path));
    EXPECT_EQ(texts, (std::vector<std::string>{"ROOT|MODE", "ROOT|MODE|fast", "ROOT|MODE|fast|LEVEL",
                                               "ROOT|MODE|fast|LEVEL|1", "ROOT|MODE|fast|LEVEL|2",
                                               "ROOT|MODE|slow", "ROOT|SIZE", "ROOT|SIZE|1"}));
    EXPECT_EQ(found.begin()->get(), mode.get());
    EXPECT_EQ(found.size(), 8u);

    CapabilityFinder one(root);
    one.Add(Attribute("LEVEL", "2"));
    CapabilityFinder::PathList path;
    one.findRecursive(path);
    ASSERT_EQ(path.size(), 1u);
    EXPECT_EQ(str(*path.begin()), "ROOT|MODE|fast|LEVEL|2");
}

}  // namespace
