#include "src/XPathMatch.h"

#include <iterator>

#include "src/XPathFound.h"

C_XPath::C_Match::~C_Match() {
    delete predicate;
}

void C_XPath::C_Match::SetPredicate(C_Match* match) {
    if (match == predicate) return;
    delete predicate;
    predicate = match;
}

bool C_XPath::C_Match::Match(C_XML* xml, C_XML::C_Element* element, Steps::iterator step, C_Found& found) {
    if (!Compare(xml, element, step, found)) return true;
    if (!MatchPredicate(xml, element)) return true;

    ++step;
    if (IsEnd(step)) return found(xml, element);

    C_Match* const next = *step;
    if (next->GetAxis() == AxisSelf) return next->Match(xml, element, step, found);
    for (auto* child = xml->GetFirstChild(element); child; child = xml->GetFollowingSibling(child)) {
        if (!next->Match(xml, child, step, found)) return false;
    }
    return true;
}

bool C_XPath::C_Match::MatchPredicate(C_XML* xml, C_XML::C_Element* element) {
    if (!predicate) return true;
    // The predicate stands in no list: with the last step for its place, nothing comes behind it.
    C_FoundPred found;
    predicate->Match(xml, element, std::prev(owner->StepsEnd()), found);
    return found.IsMatch();
}

bool C_MatchRoot::Compare(C_XML*, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator&,
                          C_Found&) {
    return element->GetParent() == nullptr;
}

bool C_MatchWild::Compare(C_XML*, C_XML::C_Element*&, std::list<C_XPath::C_Match*>::iterator&, C_Found&) {
    return true;
}

bool C_MatchTag::Compare(C_XML*, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator&,
                         C_Found&) {
    return element->GetTag() == m_tag;
}

bool C_MatchAttr::Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator&,
                          C_Found&) {
    return xml->FindAttr(element, m_name, nullptr);
}

bool C_MatchAttrVal::Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator&,
                             C_Found&) {
    std::string value;
    return xml->FindAttr(element, m_name, &value) && value == m_value;
}
