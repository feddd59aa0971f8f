#include "src/XPath.h"

#include "src/XPathFound.h"
#include "src/XPathMatch.h"
#include "tests/src/FrontEndFixture.h"

namespace {

// Joins the id of each match; stops the search after `limit` of them.
class CollectIds : public C_Found {
  public:
    explicit CollectIds(int limit = 1000) : m_left(limit) {}
    bool operator()(C_XML* xml, C_XML::C_Element* element) override {
        std::string id = "-";
        xml->FindAttr(element, "id", &id);
        ids += id;
        return --m_left > 0;
    }
    std::string ids;

  private:
    int m_left;
};

class XPathTest : public FrontEndTest {
  protected:
    XPathTest() {
        writeFile("document.xml",
                  "<a id='1'>"
                  "<b id='2' x='1'><c id='3'/></b>"
                  "<b id='4'><c id='5'/></b>"
                  "<d-e.f_9 id='6'><c id='7'/><b id='8'/></d-e.f_9>"
                  "<b id='9' x='2' y=\"it's\"><c id='A'/><c id='B' x='1'/></b>"
                  "<a id='C'><b id='D'/></a>"
                  "</a>");
        m_xml.Parse("document.xml");
    }
    C_XML m_xml;
};

TEST_F(XPathTest, PathsFindTheirElementsInDocumentOrder) {
    struct {
        char const* path;
        char const* ids;
    } const cases[] = {
        {"/a", "1"},
        {"/a/b", "249"},
        {"/a/*/c", "357AB"},
        {"/*/*", "2469C"},
        {"/a/d-e.f_9/c", "7"},
        {"/a/a/b", "D"},
        {"/a/b[@x]", "29"},
        {"/a/b[@x='1']", "2"},
        {"/a/b[@x=\"2\"]/c", "AB"},
        {"/a/b[@y=\"it's\"]", "9"},
        {"/a/b[@x='2']/c[@x='1']", "B"},
        {"/a/*[@x]/*[@id='B']", "B"},
        {"/a/b[@x='3']", ""},
        {" / a / b [ @ x = '1' ] / c ", "3"},
        {"/a/b[@x='1 ']", ""},
        // The root alone is the holder of the document, which has no attributes.
        {"/", "-"},
        // Relative paths start at the holder, whose tag is empty.
        {"a/b", ""},
        {"*/a", "1"},
        {"", ""},
        {"//b", ""},
        {"/a/.", ""},
        {"/a/", ""},
        {"/b", ""},
        {"/a/c", ""},
        // Case counts.
        {"/A", ""},
        // Bad syntax compiles. Wrong characters pass for the right ones, and what trails is ignored.
        {"/a/[", ""},
        {"/a/b[", ""},
        {"/a/b[@x='1'", "2"},
        {"/a/b[@x='1", "2"},
        {"/a/b[#x=!1!)/c", "3"},
        {"/a/b[@x][@y]", "29"},
        {"/a/b trailing", "249"},
        {"/a/b[@x='1']c", "2"},
        {"/a/b[@=", ""},
        {"]", ""},
    };
    for (auto const& c : cases) {
        C_XPath xpath;
        EXPECT_TRUE(xpath.SetPath(c.path)) << c.path;
        CollectIds found;
        EXPECT_TRUE(xpath.FindElement(&m_xml, found)) << c.path;
        EXPECT_EQ(found.ids, c.ids) << c.path;
    }
}

TEST_F(XPathTest, PathCutAtAnyCharacterCompiles) {
    std::string const path = "/a/b[@x='1']/*[@id=\"3\"]";
    for (std::size_t length = 0; length <= path.size(); ++length) {
        C_XPath xpath;
        EXPECT_TRUE(xpath.SetPath(path.substr(0, length)));
        CollectIds found;
        EXPECT_TRUE(xpath.FindElement(&m_xml, found));
    }
}

TEST_F(XPathTest, SearchEndsWhenTheCallbackSaysSo) {
    C_XPath xpath;
    xpath.SetPath("/a/*/c");
    CollectIds found(2);
    EXPECT_FALSE(xpath.FindElement(&m_xml, found));
    EXPECT_EQ(found.ids, "35");
}

TEST_F(XPathTest, SetPathReplacesTheFormerPath) {
    C_XPath xpath;
    CollectIds nothing;
    EXPECT_TRUE(xpath.FindElement(&m_xml, nothing));
    EXPECT_TRUE(xpath.FindElement(nullptr, nothing));
    EXPECT_EQ(nothing.ids, "");
    xpath.SetPath("/a/d-e.f_9");
    xpath.SetPath("/a/b");
    CollectIds found;
    xpath.FindElement(&m_xml, found);
    EXPECT_EQ(found.ids, "249");
}

TEST_F(XPathTest, AnchoredSearchTriesTheGivenStepOnTheGivenElement) {
    C_XPath xpath;
    xpath.SetPath("/a/b/c");
    auto* const a = m_xml.FindFirstElement("/a");
    CollectIds found;
    EXPECT_TRUE(xpath.FindAnchored(&m_xml, a, std::next(xpath.StepsBegin()), found));
    EXPECT_EQ(found.ids, "35AB");
    CollectIds wrongStep;
    EXPECT_TRUE(xpath.FindAnchored(&m_xml, a, xpath.StepsBegin(), wrongStep));
    EXPECT_EQ(wrongStep.ids, "");
}

TEST_F(XPathTest, AttributeStepsStayOnTheElement) {
    C_XPath xpath;
    xpath.AddStep(new C_MatchRoot(&xpath));
    xpath.AddStep(new C_MatchWild(&xpath));
    xpath.AddStep(new C_MatchTag(&xpath, "b"));
    xpath.AddStep(new C_MatchAttr(&xpath, "y"));
    xpath.AddStep(new C_MatchAttrVal(&xpath, "x", "2"));
    xpath.AddStep(new C_MatchWild(&xpath));
    int const axes[] = {4, 4, 4, 3, 3, 4};
    int position = 0;
    for (auto step = xpath.StepsBegin(); step != xpath.StepsEnd(); ++step) {
        EXPECT_EQ((*step)->GetAxis(), axes[position++]);
    }
    CollectIds found;
    xpath.FindElement(&m_xml, found);
    EXPECT_EQ(found.ids, "AB");
}

}  // namespace
