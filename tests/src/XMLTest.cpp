#include "src/XML.h"

#include <sys/stat.h>

#include <vector>

#include "src/XMLParser.h"
#include "tests/src/FrontEndFixture.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

class XMLTest : public FrontEndTest {
  protected:
    bool parse(C_XML& xml, std::string const& text) {
        writeFile("document.xml", text);
        return xml.Parse("document.xml");
    }
};

TEST_F(XMLTest, WhiteSpaceIsTrimmedPieceByPiece) {
    struct {
        char const* document;
        bool trim;
        char const* data;
        bool cdata;
        char const* path = "/a";
    } const cases[] = {
        {"<a>\n  <b/>\n  <c/>\n</a>", true, "", false},
        {"<a>\n  <b/>\n  <c/>\n</a>", false, "\n  \n  \n", false},
        {"<a> x <b/> y </a>", true, " x  y ", false},
        // A leaf is no text between elements: its blanks stay.
        {"<a>  </a>", true, "  ", false},
        {"<a><b/><c>  </c></a>", true, "  ", false, "/a/c"},
        {"<a>\n<b/>x</a>", true, "x", false},
        {"<a>\n<b/>x</a>", false, "\nx", false},
        {"<a>x<b/>  </a>", true, "x", false},
        {"<a>x<b/>  </a>", false, "x  ", false},
        // The line end is a piece of its own, and text doesn't end the state "behind a closed child".
        {"<a><b/>one\ntwo</a>", true, "onetwo", false},
        {"<a>one\ntwo<b/></a>", true, "one\ntwo", false},
        {"<a><![CDATA[  ]]></a>", true, "  ", true},
        {"<a><b/><![CDATA[  ]]></a>", true, "  ", true},
        {"<a> \t<![CDATA[  ]]><b/></a>", true, "  ", true},
        {"<a> \t<![CDATA[  ]]></a>", false, " \t  ", true},
        {"<a>x<![CDATA[<&]]>y</a>", true, "x<&y", true},
        {"<a><![CDATA[x]]>\n</a>", true, "x", true},
        {"<a><![CDATA[]]></a>", true, "", false},
        {"<a>&lt;&#65;&gt;</a>", true, "<A>", false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.document);
        C_XML xml;
        xml.TrimWhiteSpace(c.trim);
        EXPECT_TRUE(parse(xml, c.document));
        auto* const a = xml.FindFirstElement(c.path);
        ASSERT_NE(a, nullptr);
        EXPECT_EQ(a->GetData(), c.data);
        EXPECT_EQ(a->HasCdata(), c.cdata);
    }
}

TEST_F(XMLTest, WhatCannotBeReadIsAnEmptyDocumentAndNoFailure) {
    mkdir("directory", 0700);
    writeFile("empty", "");
    for (char const* path : {"missing", "directory", "empty", ""}) {
        C_XML xml;
        EXPECT_TRUE(xml.Parse(path)) << path;
        EXPECT_EQ(xml.FindFirstElement("/*"), nullptr) << path;
    }
}

TEST_F(XMLTest, DocumentCutAtAnyByteKeepsTheItemsBeforeTheCut) {
    std::string const document =
        "<?xml version=\"1.0\"?><r><i k='1'>one</i><i k='2'><![CDATA[two]]></i><i k='3'>&#51;</i></r>";
    char const* const texts[] = {"one", "two", "3"};
    for (std::size_t length = 0; length <= document.size(); ++length) {
        std::string const head = document.substr(0, length);
        std::size_t complete = 0;
        for (auto at = head.find("</i>"); at != std::string::npos; at = head.find("</i>", at + 1))
            ++complete;
        C_XML xml;
        ASSERT_TRUE(parse(xml, head));
        Pairs items;
        xml.FindAttrText("/r/i", "k", std::back_inserter(items));
        ASSERT_GE(items.size(), complete) << head;
        ASSERT_LE(items.size(), complete + 1) << head;
        for (std::size_t i = 0; i < complete; ++i) {
            EXPECT_EQ(items[i], std::make_pair(std::to_string(i + 1), std::string(texts[i]))) << head;
        }
    }
}

TEST_F(XMLTest, ParserFailureKeepsWhatCameBefore) {
    C_XML xml;
    EXPECT_TRUE(parse(xml, "<a><b>1</b></wrong><c/>" + std::string(20000, ' ') + "<d/>"));
    std::string text;
    EXPECT_TRUE(xml.FindFirstText("/a/b", &text));
    EXPECT_EQ(text, "1");
    EXPECT_EQ(xml.FindFirstElement("/a/c"), nullptr);
}

TEST_F(XMLTest, TextAcrossReadsOf4096BytesIsJoined) {
    std::string text;
    for (int i = 0; text.size() < 3 * 4096; ++i)
        text += std::to_string(i) + ' ';
    for (int shift = 0; shift < 4; ++shift) {
        C_XML xml;
        parse(xml, "<a>" + std::string(static_cast<std::size_t>(shift), '.') + text + "</a>");
        EXPECT_EQ(xml.FindFirstElement("/a")->GetData().substr(static_cast<std::size_t>(shift)), text);
    }
}

TEST_F(XMLTest, HugeNamesAndHugeDepthAreHeldAndTakenDown) {
    std::string const name(100000, 'n');
    C_XML wide;
    parse(wide, "<" + name + " " + name + "='v'/>");
    std::string value;
    EXPECT_TRUE(wide.FindFirstAttrValue("/" + name, name, &value));
    EXPECT_EQ(value, "v");

    // Recursion in the destructor or in Clear() would overflow the stack here.
    constexpr int Depth = 1000000;
    std::string deep;
    for (int i = 0; i < Depth; ++i)
        deep += "<d>";
    for (int round = 0; round < 2; ++round) {
        C_XML xml;
        parse(xml, deep);
        EXPECT_NE(xml.FindFirstElement("/d/d/d"), nullptr);
        int depth = 0;
        for (auto* e = xml.GetFirstChild(xml.GetRoot()); e; e = xml.GetFirstChild(e))
            ++depth;
        EXPECT_EQ(depth, Depth);
        if (round == 0) xml.Clear();
    }
}

TEST_F(XMLTest, ExpandingEntitiesAreCutOff) {
    std::string document = "<!DOCTYPE a [<!ENTITY e0 'xxxxxxxxxxxxxxxxxxxx'>";
    for (int i = 1; i < 12; ++i) {
        std::string const one = "&e" + std::to_string(i - 1) + ";";
        document += "<!ENTITY e" + std::to_string(i) + " '";
        for (int k = 0; k < 10; ++k)
            document += one;
        document += "'>";
    }
    C_XML xml;
    EXPECT_TRUE(parse(xml, document + "]><a>&e11;</a>"));
    auto* const a = xml.FindFirstElement("/a");
    ASSERT_NE(a, nullptr);
    EXPECT_LT(a->GetData().size(), 50u * 1024 * 1024);
}

TEST_F(XMLTest, TreeIsNavigableInDocumentOrder) {
    C_XML xml;
    parse(xml, "<a z='1' y='2'><b n='1'/><c>text</c><b n='2'/></a>");
    auto* const root = xml.GetRoot();
    EXPECT_EQ(root->GetTag(), "");
    EXPECT_EQ(xml.GetParent(root), nullptr);
    auto* const a = xml.GetFirstChild(root);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(xml.GetParent(a), root);
    EXPECT_EQ(Pairs(a->AttrBegin(), a->AttrEnd()), (Pairs{{"z", "1"}, {"y", "2"}}));

    std::string tags;
    for (auto* e = xml.GetFirstChild(a); e; e = xml.GetFollowingSibling(e)) {
        tags += e->GetTag();
        EXPECT_EQ(e->GetParent(), a);
    }
    EXPECT_EQ(tags, "bcb");
    EXPECT_EQ(std::distance(a->ChildrenBegin(), a->ChildrenEnd()), 3);

    auto* const b = xml.FindChild(a, "b");
    std::string value = "kept";
    EXPECT_TRUE(xml.FindAttr(b, "n", &value));
    EXPECT_EQ(value, "1");
    EXPECT_TRUE(xml.FindAttr(b, std::string("n"), nullptr));
    EXPECT_FALSE(xml.FindAttr(b, "other", &value));
    EXPECT_EQ(value, "1");
    EXPECT_TRUE(xml.FindFirstText(xml.FindChild(a, "c"), &value));
    EXPECT_EQ(value, "text");
    EXPECT_EQ(xml.FindChild(a, "absent"), nullptr);

    C_XML::C_Element* const none = nullptr;
    EXPECT_EQ(xml.GetParent(none), nullptr);
    EXPECT_EQ(xml.GetFirstChild(none), nullptr);
    EXPECT_EQ(xml.GetFollowingSibling(none), nullptr);
    EXPECT_EQ(xml.FindChild(none, "b"), nullptr);
    EXPECT_FALSE(xml.FindAttr(none, "n", &value));
    EXPECT_FALSE(xml.FindFirstText(none, &value));
}

TEST_F(XMLTest, SecondDocumentStandsBehindTheFirstUntilCleared) {
    C_XML xml;
    parse(xml, "<a/>");
    parse(xml, "<b x='1'>t<c/></b>");
    EXPECT_NE(xml.FindFirstElement("/a"), nullptr);
    EXPECT_NE(xml.FindFirstElement("/b/c"), nullptr);
    xml.Clear();
    EXPECT_EQ(xml.FindFirstElement("/*"), nullptr);
    parse(xml, "<b/>");
    EXPECT_FALSE(xml.FindAttr(xml.FindFirstElement("/b"), "x", nullptr));
}

TEST_F(XMLTest, ClearedElementIsEmptyAndItsSiblingsStay) {
    C_XML xml;
    parse(xml, "<a><b k='1'>t<![CDATA[u]]><c/></b><d/></a>");
    auto* const b = xml.FindFirstElement("/a/b");
    b->Clear();
    EXPECT_EQ(b->GetTag(), "");
    EXPECT_EQ(b->GetData(), "");
    EXPECT_FALSE(b->HasCdata());
    EXPECT_EQ(b->GetParent(), nullptr);
    EXPECT_EQ(b->AttrBegin(), b->AttrEnd());
    EXPECT_EQ(b->ChildrenBegin(), b->ChildrenEnd());
    EXPECT_NE(xml.FindFirstElement("/a/d"), nullptr);
}

TEST_F(XMLTest, QueriesDeliverTheFirstMatchOrAllOfThem) {
    C_XML xml;
    parse(xml, "<a><b>0</b><b k='1'>one</b><c k=''/><b k='2'>two</b></a>");

    std::string text = "kept";
    EXPECT_TRUE(xml.FindFirstText("/a/b", &text));
    EXPECT_EQ(text, "0");
    EXPECT_TRUE(xml.FindFirstText("/a/b", nullptr));
    EXPECT_FALSE(xml.FindFirstText("/a/x", &text));
    EXPECT_EQ(text, "0");

    EXPECT_EQ(xml.FindFirstElement("/a/b[@k]")->GetData(), "one");
    EXPECT_EQ(xml.FindFirstElement("/a/x"), nullptr);

    // The first b lacks the attribute: found all the same, and the value stays as it was.
    std::string value = "kept";
    EXPECT_TRUE(xml.FindFirstAttrValue("/a/b", "k", &value));
    EXPECT_EQ(value, "kept");
    EXPECT_TRUE(xml.FindFirstAttrValue("/a/b[@k='2']", "k", &value));
    EXPECT_EQ(value, "2");
    EXPECT_FALSE(xml.FindFirstAttrValue("/a/x", "k", &value));

    Pairs pairs;
    EXPECT_EQ(xml.FindAttrText("/a/b", "k", std::back_inserter(pairs)), 3);
    EXPECT_EQ(pairs, (Pairs{{"", "0"}, {"1", "one"}, {"2", "two"}}));
    EXPECT_EQ(xml.FindAttrText("/a/x", "k", std::back_inserter(pairs)), 0);
    EXPECT_EQ(pairs.size(), 3u);
}

TEST_F(XMLTest, CallbackErrorsAreFiledAndDoNotEscape) {
    C_XML xml;
    UserData_t state;
    state.document = &xml;
    state.current = xml.GetRoot();
    C_XML::startElement(&state, nullptr, nullptr);  // a std::string from null throws
    EXPECT_EQ(state.errorKind, 2);
    EXPECT_NE(state.errorText, "");
    EXPECT_EQ(state.current, xml.GetRoot());

    C_XML::characterData(&state, nullptr, 3);
    C_XML::characterData(&state, "abc", 0);
    C_XML::characterData(&state, "abc", -1);
    EXPECT_EQ(xml.GetRoot()->GetData(), "");
    C_XML::characterData(&state, "abc", 2);
    EXPECT_EQ(xml.GetRoot()->GetData(), "ab");

    // One end too many leaves no current element; later events then do nothing.
    C_XML::endElement(&state, "");
    EXPECT_EQ(state.current, nullptr);
    C_XML::startElement(&state, "late", nullptr);
    C_XML::endElement(&state, "late");
    C_XML::characterData(&state, "late", 4);
    C_XML::startCdataSection(&state);
    C_XML::endCdataSection(&state);
    C_XML::startElement(nullptr, "late", nullptr);
    C_XML::endCdataSection(nullptr);
    EXPECT_EQ(xml.GetFirstChild(xml.GetRoot()), nullptr);
    EXPECT_EQ(xml.GetRoot()->GetData(), "ab");
}

}  // namespace
