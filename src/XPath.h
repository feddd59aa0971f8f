#pragma once

#include <iosfwd>
#include <list>
#include <string>

#include "src/XML.h"

/// A path query such as /package/devices/device[@id='x']/file, compiled into a list of match steps.
///
///     LocationPath   '/' [ RelativePath ]  |  RelativePath
///     RelativePath   Step { '/' Step }
///     Step           ( '*' | Name ) [ '[' '@' Name [ '=' Literal ] ']' ]
///
/// "//", "." and ".." have no meaning. A relative path has its first step tried on the holder of the
/// document, whose tag is empty, so it finds nothing unless that step is '*'.
class C_XPath {
  public:
    class C_Match;
    using Steps = std::list<C_Match*>;

    /// What the next step applies to: the element reached so far, or its children.
    enum Axis { AxisSelf = 3, AxisChildren = 4 };

    C_XPath() = default;
    virtual ~C_XPath();
    C_XPath(C_XPath const&) = delete;
    C_XPath& operator=(C_XPath const&) = delete;

    /// Compiles `path` in place of what was compiled before. Always returns true: bad syntax isn't reported,
    /// such a path finds nothing.
    bool SetPath(std::string const& path);
    /// Appends one step and takes it over.
    void AddStep(C_Match* step);
    Steps::iterator StepsBegin() { return steps.begin(); }
    Steps::iterator StepsEnd() { return steps.end(); }

    /// Calls `found` on each element that matches the whole path, depth first in document order, beginning at
    /// the tree's root. False when `found` ended the search.
    bool FindElement(C_XML* xml, C_Found& found);
    /// The same from `step` on, tried on `start`.
    bool FindAnchored(C_XML* xml, C_XML::C_Element* start, Steps::iterator step, C_Found& found);

  private:
    void ClearSteps();
    void LocationPath(std::istream& in);
    void AbsoluteLocationPath(std::istream& in);
    void RelativeLocationPath(std::istream& in);
    void Step(std::istream& in);
    C_Match* NodeTest(std::istream& in);
    C_Match* Predicate(std::istream& in);
    C_Match* PredicateExpr(std::istream& in);

    Steps steps;
};
