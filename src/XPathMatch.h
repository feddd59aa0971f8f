#pragma once

#include <list>
#include <string>
#include <utility>

#include "src/XPath.h"

/// One step of a path. Owns its predicate; is owned by its C_XPath, or by the step whose predicate it is.
class C_XPath::C_Match {
  public:
    explicit C_Match(C_XPath* xpath) : owner(xpath) {}
    virtual ~C_Match();
    C_Match(C_Match const&) = delete;
    C_Match& operator=(C_Match const&) = delete;

    virtual bool Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator& step,
                         C_Found& found) = 0;
    virtual Axis GetAxis() = 0;

    /// Tries this step, which stands at `step` of the list, on `element`, and the steps behind it on what
    /// they apply to. True goes on searching, false unwinds the whole search. Recursion goes as deep as the
    /// path has steps, however deep the document is.
    bool Match(C_XML* xml, C_XML::C_Element* element, Steps::iterator step, C_Found& found);
    bool MatchPredicate(C_XML* xml, C_XML::C_Element* element);
    /// Takes the predicate over; a former one is deleted.
    void SetPredicate(C_Match* match);
    bool IsEnd(Steps::iterator step) { return step == owner->StepsEnd(); }

  private:
    C_XPath* owner;
    C_Match* predicate = nullptr;
};

/// The element has no parent: the holder of the document.
class C_MatchRoot : public C_XPath::C_Match {
  public:
    using C_Match::C_Match;
    bool Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator& step,
                 C_Found& found) override;
    C_XPath::Axis GetAxis() override { return C_XPath::AxisChildren; }
};

/// Any element.
class C_MatchWild : public C_XPath::C_Match {
  public:
    using C_Match::C_Match;
    bool Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator& step,
                 C_Found& found) override;
    C_XPath::Axis GetAxis() override { return C_XPath::AxisChildren; }
};

class C_MatchTag : public C_XPath::C_Match {
  public:
    C_MatchTag(C_XPath* xpath, std::string tag) : C_Match(xpath), m_tag(std::move(tag)) {}
    bool Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator& step,
                 C_Found& found) override;
    C_XPath::Axis GetAxis() override { return C_XPath::AxisChildren; }

  private:
    std::string m_tag;
};

/// The element has the attribute, whatever its value.
class C_MatchAttr : public C_XPath::C_Match {
  public:
    C_MatchAttr(C_XPath* xpath, std::string name) : C_Match(xpath), m_name(std::move(name)) {}
    bool Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator& step,
                 C_Found& found) override;
    C_XPath::Axis GetAxis() override { return C_XPath::AxisSelf; }

  private:
    std::string m_name;
};

class C_MatchAttrVal : public C_XPath::C_Match {
  public:
    C_MatchAttrVal(C_XPath* xpath, std::string name, std::string value)
        : C_Match(xpath), m_name(std::move(name)), m_value(std::move(value)) {}
    bool Compare(C_XML* xml, C_XML::C_Element*& element, std::list<C_XPath::C_Match*>::iterator& step,
                 C_Found& found) override;
    C_XPath::Axis GetAxis() override { return C_XPath::AxisSelf; }

  private:
    std::string m_name;
    std::string m_value;
};
