#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/attribute_source.h"
#include "core/operation_return.h"

using Common::string;
using Core::Attribute;
using Core::AttributeSource;
using Core::AttributeValue;

namespace {

std::string str(string const& text) {
    return std::string(text.c_str(), text.size());
}

std::string names(AttributeSource const& source) {
    std::string joined;
    for (auto a = source.beginAttribute(); a != source.endAttribute(); ++a)
        joined += str(a->first) + " ";
    return joined;
}

TEST(AttributeValue, TextOfEachType) {
    Core::AttributeValueList list;
    list.push_back("a");
    list.push_back(7u);
    list.push_back("");
    list.push_back("z");
    struct {
        AttributeValue value;
        char const* text;
    } const cases[] = {
        {AttributeValue(), ""},
        {"text", "text"},
        {static_cast<char const*>(nullptr), ""},
        {string("s"), "s"},
        {-5, "-5"},
        {list, "a 7  z"},
        {Core::AttributeValueMap(), ""},
    };
    for (auto const& c : cases) {
        string const converted = c.value;
        EXPECT_EQ(str(converted), c.text);
        EXPECT_EQ(str(c.value.toString()), "") << "toString() stays that of Convertible";
    }
}

TEST(AttributeValue, ReadsBackOnlyAsItsOwnType) {
    AttributeValue const number(static_cast<unsigned short>(7));
    EXPECT_EQ(static_cast<unsigned short>(number), 7);
    EXPECT_EQ(static_cast<unsigned int>(number), 0u);

    Common::list<Core::OperationReturn> returns;
    returns.push_back(Core::OperationReturn("S"));
    AttributeValue const nested(returns);
    Common::list<Core::OperationReturn> const read = nested;
    EXPECT_EQ(read.size(), 1u);
    returns.push_back(Core::OperationReturn("T"));
    (--returns.end())->Receive(Attribute("A", 7u));
    EXPECT_EQ(str(AttributeValue(returns).text()), "ATTR_NAME_STATUS = S; A = 7, ATTR_NAME_STATUS = T");
}

TEST(AttributeValue, EqualsComparesTypeToo) {
    EXPECT_TRUE(AttributeValue("7").equals("7"));
    EXPECT_FALSE(AttributeValue("7").equals(7u));
    EXPECT_FALSE(AttributeValue(7).equals(7u));

    Core::AttributeValueList one;
    one.push_back("a");
    Core::AttributeValueList two(one);
    EXPECT_TRUE(AttributeValue(one).equals(two));
    two.push_back("b");
    EXPECT_FALSE(AttributeValue(one).equals(two));

    // Of these two, equal ones were once taken for different, and stood twice among arguments.
    Core::AttributeValueMap map;
    map["K"] = "1";
    Core::AttributeValueMap otherMap(map);
    EXPECT_TRUE(AttributeValue(map).equals(otherMap));
    otherMap["K"] = 1u;
    EXPECT_FALSE(AttributeValue(map).equals(otherMap));

    Common::list<Core::OperationReturn> returns;
    returns.push_back(Core::OperationReturn("S"));
    Common::list<Core::OperationReturn> otherReturns(returns);
    EXPECT_TRUE(AttributeValue(returns).equals(otherReturns));
    otherReturns.begin()->Receive(Attribute("A", "1"));
    EXPECT_FALSE(AttributeValue(returns).equals(otherReturns));
}

TEST(AttributePublisher, EmptyTextIsDroppedUnlessAskedFor) {
    struct {
        char const* earlier;  // null: absent
        char const* published;
        bool publishEmpty;
        bool present;
        char const* text;
    } const cases[] = {
        {nullptr, "", false, false, ""}, {nullptr, "", true, true, ""},      {"old", "", false, true, "old"},
        {"old", "", true, true, ""},     {"old", "new", false, true, "new"},
    };
    for (auto const& c : cases) {
        AttributeSource source;
        if (c.earlier != nullptr) source.Receive(Attribute("N", c.earlier));
        Core::AttributePublisher().Publish(source, Attribute("N", c.published), c.publishEmpty);
        EXPECT_EQ(source.hasAttribute("N"), c.present);
        EXPECT_EQ(str(source.getValueFor("N")), c.text);
    }
}

TEST(AttributeSource, AbsentReadsAsEmptyButIsNot) {
    AttributeSource source;
    EXPECT_EQ(str(source.getValueFor("N")), "");
    EXPECT_EQ(str(source.getPublicValueFor("N").text()), "");
    EXPECT_FALSE(source.hasAttributeAndIs("N", ""));
    source.Receive(Attribute("N", ""));
    EXPECT_TRUE(source.hasAttributeAndIs("N", ""));
}

TEST(AttributeSource, ComparesExactTextWhateverIsHeld) {
    AttributeSource source;
    source.Receive(Attribute("N", static_cast<unsigned short>(7)));
    EXPECT_TRUE(source.hasAttributeAndIs("N", "7"));
    EXPECT_FALSE(source.hasAttributeAndIs("N", "07"));
    source.Receive(Attribute("N", "Abc"));
    EXPECT_FALSE(source.hasAttributeAndIs("N", "abc"));
    EXPECT_EQ(static_cast<unsigned short>(source.getPublicValueFor("N")), 0) << "the type was replaced";
}

TEST(AttributeSource, IteratesInStrcmpOrder) {
    AttributeSource source;
    for (char const* name : {"b", "a", "B", "A_B", "AB", "a"})
        source.Receive(Attribute(name, name));
    EXPECT_EQ(names(source), "AB A_B B a b ");
    source.Receive(Attribute("B", "replaced"));
    EXPECT_EQ(names(source), "AB A_B B a b ");
}

// The look-up cache remembers absence; every change of the set has to correct it.
TEST(AttributeSource, LookUpsSeeEveryChange) {
    AttributeSource source;
    EXPECT_FALSE(source.hasAttribute("N"));
    source.Receive(Attribute("N", "1"));
    EXPECT_TRUE(source.hasAttribute("N"));
    source.Clear("N");
    EXPECT_FALSE(source.hasAttribute("N"));
    source.Receive(Attribute("N", "2"));
    EXPECT_EQ(str(source.getValueFor("N")), "2");
    source.Receive(Attribute("N", "3"));
    EXPECT_EQ(str(source.getValueFor("N")), "3");
    source.Clear();
    EXPECT_FALSE(source.hasAttribute("N"));
    source.Clear("N");
    EXPECT_EQ(names(source), "");

    AttributeSource other;
    other.Receive(Attribute("N", "4"));
    source = other;
    EXPECT_EQ(str(source.getValueFor("N")), "4");
    other.Receive(Attribute("N", "5"));
    EXPECT_EQ(str(source.getValueFor("N")), "4") << "copies are independent";
}

TEST(AttributeSource, ReceivingASourceGoesThroughTheVirtualSlot) {
    struct Counting : AttributeSource {
        using AttributeSource::Receive;
        void Receive(Attribute const& attribute) override {
            seen += str(attribute.first);
            AttributeSource::Receive(attribute);
        }
        std::string seen;
    } target;
    target.Receive(Attribute("a", "old"));
    target.Receive(Attribute("c", "kept"));
    AttributeSource other;
    other.Receive(Attribute("b", "2"));
    other.Receive(Attribute("a", "1"));
    target.seen.clear();
    target.Receive(other);
    EXPECT_EQ(target.seen, "ab");
    EXPECT_EQ(names(target), "a b c ");
    EXPECT_EQ(str(target.getValueFor("a")), "1");
    EXPECT_EQ(str(target.getValueFor("c")), "kept");
}

// A replaced attribute is a new node: walking the target itself once ran on freed nodes.
TEST(AttributeSource, MayReceiveItselfAndItsOwnPairs) {
    AttributeSource source;
    source.Receive(Attribute("a", "1"));
    source.Receive(Attribute("b", "2"));
    source.Receive(source);
    source.Receive(*source.beginAttribute());
    source.Clear(source.beginAttribute()->first);
    EXPECT_EQ(names(source), "b ");
    EXPECT_EQ(str(source.getValueFor("b")), "2");
}

TEST(OperationReturn, IsTrueForSuccessAlone) {
    EXPECT_TRUE(Core::OperationReturn());
    for (char const* status : {"ATTR_VALUE_STATUS_FAILURE", "ATTR_VALUE_STATUS_OPERATION_RETURN_LIST", ""}) {
        EXPECT_FALSE(Core::OperationReturn(status)) << status;
    }
    Core::OperationReturn cleared;
    cleared.AttributeSource::Clear("ATTR_NAME_STATUS");
    EXPECT_FALSE(cleared);
    EXPECT_TRUE(Core::OperationReturn("ATTR_VALUE_STATUS_SUCCESS"));
}

}  // namespace
