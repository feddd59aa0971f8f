#include "src/XPath.h"

#include <cctype>
#include <istream>
#include <sstream>

#include "src/XPathMatch.h"

namespace {

constexpr int EndOfText = std::istream::traits_type::eof();

// The next character behind white space, left in the stream; EndOfText at the end.
int peekToken(std::istream& in) {
    while (in.peek() != EndOfText && std::isspace(in.peek()))
        in.get();
    return in.peek();
}

// Takes the next character behind white space, whatever it is: a wrong one is consumed as if right. At the
// end of the text a blank stands in for it.
char takeToken(std::istream& in) {
    return peekToken(in) == EndOfText ? ' ' : static_cast<char>(in.get());
}

bool isNameCharacter(int c) {
    return c != EndOfText && (std::isalnum(c) || c == '_' || c == '-' || c == '.');
}

std::string name(std::istream& in) {
    std::string text(1, takeToken(in));
    while (isNameCharacter(in.peek()))
        text += static_cast<char>(in.get());
    return text;
}

// Text without a closing quote ends with the path.
std::string literal(std::istream& in) {
    char const quote = takeToken(in);
    std::string text;
    while (in.peek() != EndOfText) {
        char const c = static_cast<char>(in.get());
        if (c == quote) break;
        text += c;
    }
    return text;
}

}  // namespace

C_XPath::~C_XPath() {
    ClearSteps();
}

void C_XPath::ClearSteps() {
    for (C_Match* step : steps)
        delete step;
    steps.clear();
}

void C_XPath::AddStep(C_Match* step) {
    steps.push_back(step);
}

bool C_XPath::SetPath(std::string const& path) {
    ClearSteps();
    std::istringstream in(path);
    LocationPath(in);
    return true;
}

bool C_XPath::FindElement(C_XML* xml, C_Found& found) {
    return !xml || FindAnchored(xml, xml->GetRoot(), steps.begin(), found);
}

bool C_XPath::FindAnchored(C_XML* xml, C_XML::C_Element* start, Steps::iterator step, C_Found& found) {
    if (!xml || !start || step == steps.end()) return true;
    return (*step)->Match(xml, start, step, found);
}

void C_XPath::LocationPath(std::istream& in) {
    if (peekToken(in) == '/') {
        AbsoluteLocationPath(in);
    } else {
        RelativeLocationPath(in);
    }
}

void C_XPath::AbsoluteLocationPath(std::istream& in) {
    takeToken(in);
    AddStep(new C_MatchRoot(this));
    if (peekToken(in) != EndOfText) RelativeLocationPath(in);
}

void C_XPath::RelativeLocationPath(std::istream& in) {
    Step(in);
    while (peekToken(in) == '/') {
        takeToken(in);
        Step(in);
    }
}

void C_XPath::Step(std::istream& in) {
    C_Match* const step = NodeTest(in);
    AddStep(step);
    if (peekToken(in) == '[') step->SetPredicate(Predicate(in));
}

C_XPath::C_Match* C_XPath::NodeTest(std::istream& in) {
    if (peekToken(in) == '*') {
        takeToken(in);
        return new C_MatchWild(this);
    }
    return new C_MatchTag(this, name(in));
}

C_XPath::C_Match* C_XPath::Predicate(std::istream& in) {
    takeToken(in);
    C_Match* const match = PredicateExpr(in);
    takeToken(in);
    return match;
}

C_XPath::C_Match* C_XPath::PredicateExpr(std::istream& in) {
    takeToken(in);
    std::string attribute = name(in);
    if (peekToken(in) != '=') return new C_MatchAttr(this, attribute);
    takeToken(in);
    return new C_MatchAttrVal(this, attribute, literal(in));
}
